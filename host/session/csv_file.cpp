#include "host/session/csv_file.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <vector>

#include "afx/exception.h"
#include "afx/file.h"
#include "frame/numeric_arrays.h"
#include "host/session/database_file.h"
#include "host/session/recorded_notes.h"
#include "host/session/time_stamp.h"
#include "host/words/console.h"
#include "host/words/texts.h"
#include "host/words/time_input.h"

namespace {
constexpr size_t kMostChannels = 16'384, kLongestLine = 4 * 1024 * 1024;

// Lines of a text file, without their ends.
class Lines {
public:
    explicit Lines(const std::string& path) {
        if (!FileExists(path)) throw Failure{kFileFailed, Say(Text::FileNotFound, {ToUtf8(path)})};
        CFileException error;
        if (!m_file.Open(path.c_str(), CFile::modeRead | CFile::shareDenyWrite, &error))
            throw Failure{kFileFailed,
                          Say(Text::FileNotOpened, {ToUtf8(path), Reason(static_cast<unsigned long>(error.m_lOsError))})};
    }
    // False behind the last one. A line beyond all reason comes in pieces, which are no readings.
    bool Next(std::string& line) {
        line.clear();
        for (;;) {
            const size_t end = m_text.find('\n', m_at);
            line.append(m_text, m_at, end == std::string::npos ? end : end - m_at);
            m_at = end == std::string::npos ? m_text.size() : end + 1;
            if (end != std::string::npos || line.size() > kLongestLine) break;
            m_text.resize(256 * 1024);
            m_text.resize(m_file.Read(m_text.data(), static_cast<UINT>(m_text.size())));
            m_at = 0;
            if (m_text.empty()) {
                if (line.empty()) return false;
                break;
            }
        }
        if (!line.empty() && line.back() == '\r') line.pop_back();
        ++number;
        return true;
    }
    size_t number = 0;

private:
    CFile m_file;
    std::string m_text;
    size_t m_at = 0;
};

// The fields of a line; false where a quote is not closed.
bool Part(const std::string& line, char separator, std::vector<std::string>& fields) {
    fields.assign(1, {});
    bool quoted = false;
    for (size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (quoted && c == '"' && i + 1 < line.size() && line[i + 1] == '"') {
            fields.back() += '"';
            ++i;
        } else if (c == '"' && (quoted || fields.back().empty())) {
            quoted = !quoted;
        } else if (c == separator && !quoted) {
            fields.emplace_back();
        } else {
            fields.back() += c;
        }
    }
    return !quoted;
}

class Reader {
public:
    Reader(const std::string& path, CPropertyDB& db) : m_path(path), m_db(db), m_lines(path) {}

    void Load() {
        std::string line;
        if (!m_lines.Next(line)) Fail(Text::CsvHeading);
        TakeHeading(line);
        while (m_lines.Next(line)) {
            if (!line.empty()) TakeReading(line);
        }
        m_db.SetValue("Session.tTimes", m_times);
        for (size_t i = 0; i < m_values.size(); ++i) {
            m_db.SetValue(("Channels." + NumberedKey(i + 1, m_values.size()) + ".rValues").c_str(), m_values[i]);
            m_values[i].RemoveAll();
        }
    }

private:
    [[noreturn]] void Fail(Text what, const std::string& shown = {}) const {
        throw Failure{kFileFailed,
                      Say(Text::CsvLine, {ToUtf8(m_path), std::to_string(m_lines.number), Say(what, {ToUtf8(shown)})})};
    }

    void TakeHeading(std::string line) {
        constexpr char kMark[] = "\xEF\xBB\xBF", kTime[] = "time";
        if (line.compare(0, 3, kMark) == 0) line.erase(0, 3);
        const size_t behind = sizeof kTime - 1;
        if (line.compare(0, behind, kTime) != 0) Fail(Text::CsvHeading);
        m_separator = line.size() > behind ? line[behind] : ',';
        if (!Part(line, m_separator, m_fields) || m_fields[0] != kTime || m_fields.size() - 1 > kMostChannels)
            Fail(Text::CsvHeading);
        m_values = std::vector<CDoubleArray>(m_fields.size() - 1);
        m_db.SetValue("Session.sFamily", "");
        m_db.SetValue("Session.sLogger", "");
        m_db.SetValue("Session.sPort", "");
        m_db.SetPath("Channels");
        for (size_t i = 1; i < m_fields.size(); ++i) {
            std::string name, unit;
            if (!FromUtf8(m_fields[i], name)) Fail(Text::CsvLetters);
            const size_t bracket = name.rfind(" [");
            if (bracket != std::string::npos && name.back() == ']') {
                unit = name.substr(bracket + 2, name.size() - bracket - 3);
                name.resize(bracket);
            }
            const std::string at = "Channels." + NumberedKey(i, m_values.size());
            m_db.SetValue((at + ".sName").c_str(), name.c_str());
            m_db.SetValue((at + ".sUnit").c_str(), unit.c_str());
        }
    }

    void TakeReading(const std::string& line) {
        if (!Part(line, m_separator, m_fields) || m_fields.size() != m_values.size() + 1) Fail(Text::CsvColumns);
        // The first reading says for all whether times are local: those of programs end in Z.
        if (m_times.IsEmpty()) m_local = !m_fields[0].ends_with('Z');
        const __int64 time = TimeFrom(m_fields[0]);
        if (m_times.GetSize() > 0 && time <= m_times.GetAt(m_times.GetUpperBound())) Fail(Text::CsvOrder, m_fields[0]);
        m_times.Add(time);
        for (size_t i = 0; i < m_values.size(); ++i) m_values[i].Add(ValueFrom(m_fields[i + 1]));
    }

    __int64 TimeFrom(const std::string& text) const {
        __int64 time = 0;
        if (!m_local) {
            const bool utc = !text.empty() && text.back() == 'Z';
            const std::optional<__int64> read = utc ? TimeFromText(text) : std::nullopt;
            if (!read) Fail(Text::CsvTime, text);
            return *read;
        }
        const LocalStamp read = FromLocalStamp(text, time);
        if (read == LocalStamp::Ambiguous) Fail(Text::CsvTimeTwice, text);
        if (read == LocalStamp::Wrong) Fail(Text::CsvTime, text);
        return time;
    }

    double ValueFrom(const std::string& given) const {
        constexpr std::string_view kMinus = "\u2212";
        if (given.empty()) return std::numeric_limits<double>::quiet_NaN();
        std::string text = given;
        if (m_local) {
            std::replace(text.begin(), text.end(), ',', '.');
            if (text.starts_with(kMinus)) text.replace(0, kMinus.size(), 1, '-');
        }
        double value = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
        if (error != std::errc() || end != text.data() + text.size()) Fail(Text::CsvValue, given);
        return value;
    }

    const std::string m_path;
    CPropertyDB& m_db;
    Lines m_lines;
    bool m_local = false;
    char m_separator = ',';
    std::vector<std::string> m_fields;
    CInt64Array m_times;
    std::vector<CDoubleArray> m_values;
};
}  // namespace

void LoadCsv(const std::string& path, CPropertyDB& db) { Reader(path, db).Load(); }

bool EndsInCsv(const std::string& path) {
    CString end = path.size() < 4 ? "" : path.substr(path.size() - 4).c_str();
    end.MakeLower();
    return end == ".csv";
}
