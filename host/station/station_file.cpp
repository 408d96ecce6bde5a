#include "host/station/station_file.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "afx/collections.h"
#include "comm/comm_exception.h"
#include "comm/line_address.h"
#include "host/logger/description_check.h"
#include "host/logger/logger_file.h"
#include "host/measurement/recording_plan.h"
#include "host/session/channel_intervals.h"
#include "host/session/database_file.h"
#include "host/session/recording_files.h"
#include "host/session/value_text.h"
#include "host/words/span_words.h"
#include "host/words/texts.h"

namespace {
constexpr const char* kKeys[] = {"sName",
                                 "sStatus",
                                 "Loggers.*.sPort",
                                 "Loggers.*.sLogger",
                                 "Loggers.*.rInterval",
                                 "Loggers.*.nTimeout",
                                 "Loggers.*.sOut",
                                 "Loggers.*.sRotate",
                                 "Loggers.*.sCsv",
                                 "Loggers.*.sFor",
                                 "Loggers.*.nCount",
                                 "Loggers.*.sGiveUp",
                                 "Loggers.*.Description.*",  // the description's own keys are checked with it
                                 "Sinks.*.*",                // and so are those of what readings are sent to
                                 nullptr};

bool IsAbsolute(const std::string& path) {
    return !path.empty() && (path[0] == '/' || path[0] == '\\' || (path.size() > 1 && path[1] == ':'));
}

// A file that the station's file names, beside that.
std::string Beside(const std::string& station, const std::string& name) {
    if (IsAbsolute(name)) return name;
    return station.substr(0, station.find_last_of("/\\") + 1) + name;  // npos + 1 is 0
}

std::string WithoutEnding(const std::string& path) {
    const size_t slash = path.find_last_of("/\\"), dot = path.find_last_of('.');
    const size_t name = slash == std::string::npos ? 0 : slash + 1;
    return path.substr(name, dot != std::string::npos && dot > name ? dot - name : std::string::npos);
}

std::string StatusFile(const CPropertyDB& db, const std::string& station) {
    const std::string chosen = TextAt(db, "sStatus");
    if (!chosen.empty()) return Beside(station, chosen);
    CStringArray keys;
    db.Enum("Loggers", keys, FALSE, FALSE);
    const std::string out = keys.IsEmpty() ? "" : TextAt(db, std::string("Loggers.") + keys.GetAt(0).GetString() + ".sOut");
    return Beside(Beside(station, out), WithoutEnding(station) + ".status");
}

// One logger's part of the file.
class LoggerReader {
public:
    LoggerReader(CHostApp& app, CPropertyDB& db, const std::string& station, const std::string& key)
        : m_app(app), m_db(db), m_station(station), m_at("Loggers." + key + "."), m_made(std::make_shared<StationLogger>()) {
        m_made->key = key;
    }

    // What could be read of it, whatever is wrong with the rest.
    std::shared_ptr<const StationLogger> Read(CPropertyDB& own, std::vector<std::string>& mistakes) {
        const auto step = [&](auto read) {
            try {
                read();
            } catch (const Failure& failure) {
                mistakes.push_back(Say(Text::StationMistake, {ToUtf8(m_made->key), failure.sentence}));
            }
        };
        DownloadPlan& plan = m_made->plan;
        step([&] { ReadPort(); });
        step([&] { ReadTimes(); });
        step([&] { ReadFiles(); });
        step([&] {
            const std::string file = TextAt(m_db, m_at + "sLogger");
            if (own.IsEmpty() == file.empty())
                throw Failure{kWrongUse, Say(Text::StationOneDescription, {Utf8("sLogger"), Utf8("Description")})};
            if (!file.empty()) {
                LoadLoggerDescription(Beside(m_station, file), m_made->description);
            } else {
                m_made->description.OverlayCopy(own, nullptr, nullptr, TRUE);
                SpellHostKeys(m_made->description);
            }
            MakeLogger(m_app, m_made->description);  // what it cannot use, it says
            plan.Measure(m_made->description);
        });
        m_made->identity = Identity();
        return m_made;
    }

private:
    std::string Utf8(const char* name) const { return ToUtf8(m_at + name); }
    bool Has(const char* name) const { return m_db.Find((m_at + name).c_str()) != 0; }
    std::string Need(const char* name) const {
        const std::string text = TextAt(m_db, m_at + name);
        if (text.empty()) throw Failure{kWrongUse, Say(Text::StationKeyMissing, {Utf8(name)})};
        return text;
    }
    // In units of which a whole number is wanted.
    DWORD Number(const char* name, double unit, DWORD low, DWORD high, DWORD standard) const {
        if (!Has(name)) return standard;
        const CObject* const value = m_db.GetValueObject((m_at + name).c_str(), TRUE);
        double number = 0;
        const bool read = !KindOf(value).empty() && RealFromText(TextOf(value), number);
        const double whole = std::round(number * unit);
        const bool fits = read && std::abs(number * unit - whole) < 1e-6 && whole >= low && whole <= high;
        if (fits) return static_cast<DWORD>(whole);
        const bool seconds = unit != 1;
        const auto said = [&](DWORD bound) { return seconds ? TextOf(bound / unit) : std::to_string(bound); };
        throw Failure{kWrongUse, Say(seconds ? Text::StationNotSeconds : Text::NotANumber, {Utf8(name), said(low), said(high)})};
    }
    __int64 Span(const char* name) const {
        if (!Has(name)) return 0;
        const std::optional<__int64> span = SpanFromWords(TextAt(m_db, m_at + name));
        if (!span) throw Failure{kWrongUse, Say(Text::NotASpan, {Utf8(name)})};
        if (*span < 1 || *span > kLongestSpan)
            throw Failure{kWrongUse, Say(Text::SpanRange, {Utf8(name), WordsFromSpan(1), WordsFromSpan(kLongestSpan)})};
        return *span;
    }

    void ReadPort() {
        m_made->plan.port = Need("sPort");
        try {
            CLineAddress::Parse(m_made->plan.port.c_str());
        } catch (CCommException* failure) {
            throw Failure{kWrongUse, Utf8("sPort") + ": " + TakeMessage(failure) + "."};
        }
    }

    void ReadTimes() {
        constexpr DWORD kLongestTimeout = 600'000;
        DownloadPlan& plan = m_made->plan;
        plan.interval = Number("rInterval", 1000, 0, kWeek, plan.interval);
        plan.timeout = Number("nTimeout", 1, 1, kLongestTimeout, plan.timeout);
        plan.count = Number("nCount", 1, 1, kMostReadings, kForEver);
        plan.duration = Span("sFor");
        plan.giveUp = Span("sGiveUp");
        m_made->record.interval = static_cast<__int64>(plan.interval) * 1000;
        if (plan.duration != 0 && Has("nCount"))
            throw Failure{kWrongUse, Say(Text::OptionsExclude, {Utf8("sFor"), Utf8("nCount")})};
    }

    void ReadFiles() {
        const std::string csv = TextAt(m_db, m_at + "sCsv");
        if (!csv.empty()) m_made->plan.csvFile = Beside(m_station, csv);
        m_made->plan.csvAppend = true;
        const std::string out = Need("sOut");
        if (!EndsInRec(out)) throw Failure{kWrongUse, Say(Text::StationNotARecording, {Utf8("sOut"), ToUtf8(out)})};
        m_made->record.path = Beside(m_station, out);
        m_made->record.append = true;
        if (Has("sRotate")) SetRotation(Utf8("sRotate"), TextAt(m_db, m_at + "sRotate"), m_made->record);
    }

    std::string Identity() const {
        std::string all = m_station;
        const auto add = [&](const CPropertyDB& db, const std::string& begin) {
            CStringArray keys;
            db.EnumAll(keys);
            for (INT_PTR i = 0; i < keys.GetSize(); ++i) {
                const std::string key = keys.GetAt(i).GetString();
                if (key.compare(0, begin.size(), begin) == 0)
                    all += "\n" + key + "=" + TextOf(db.GetValueObject(key.c_str(), TRUE));
            }
        };
        add(m_db, m_at);
        add(m_made->description, {});
        return all;
    }

    CHostApp& m_app;
    CPropertyDB& m_db;
    const std::string m_station, m_at;
    const std::shared_ptr<StationLogger> m_made;
};

// Two loggers must not write into one file.
void CheckFiles(const Station& station, std::vector<std::string>& mistakes) {
    std::vector<std::pair<std::string, std::string>> files;  // and whose
    const auto add = [&](const std::string& file, const std::string& key) {
        if (file.empty()) return;
        const auto same = [&](const auto& other) { return other.first == file || SameFile(other.first, file); };
        const auto found = std::find_if(files.begin(), files.end(), same);
        if (found != files.end()) {
            mistakes.push_back(
                Say(Text::StationMistake, {ToUtf8(key), Say(Text::StationSameFile, {ToUtf8(file), ToUtf8(found->second)})}));
        } else {
            files.emplace_back(file, key);
        }
    };
    for (const auto& logger : station.loggers) {
        add(logger->record.path, logger->key);
        add(logger->plan.csvFile, logger->key);
    }
}

}  // namespace

std::string TextAt(const CPropertyDB& db, const std::string& key) {
    CString text;
    db.GetValue(key.c_str(), text);
    return text.GetString();
}

bool IsStation(const CPropertyDB& db) {
    CStringArray names;
    db.Enum("", names, FALSE, FALSE);
    for (INT_PTR i = 0; i < names.GetSize(); ++i) {
        CString name = names.GetAt(i);
        name.MakeLower();
        if (name == "loggers") return true;
    }
    return false;
}

std::vector<RecordingQueue::Plan> Station::QueuesFor(const SinkSettings& sink, __int64 now) const {
    std::vector<RecordingQueue::Plan> queues;
    for (const auto& logger : loggers) {
        queues.push_back({name, logger->key, logger->record.path, logger->record.rotateEvery != 0 || logger->record.rotateSize != 0,
                          false, std::numeric_limits<__int64>::min()});
        if (sink.fromNow) queues.back().notBefore = now;
    }
    return queues;
}

std::string Station::PlacesFile(const SinkSettings& sink) const {
    std::string file;
    for (const char letter : sink.key) {
        constexpr char kDigits[] = "0123456789ABCDEF";
        const auto code = static_cast<unsigned char>(letter);
        const bool plain = (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') || (letter >= '0' && letter <= '9') ||
                           letter == '-' || letter == '_';
        file += plain ? std::string(1, letter) : std::string{'%', kDigits[code >> 4], kDigits[code & 15]};
    }
    return status + "." + file + ".sent";
}

std::string StatusFileOf(const std::string& path) {
    CPropertyDB db;
    LoadDatabase(path, db);
    SpellKeys(db, kKeys);
    return StatusFile(db, path);
}

Station ReadStation(CHostApp& app, const std::string& path) {
    CPropertyDB db;
    LoadDatabase(path, db);
    if (IsXmlName(path)) CheckXml(path);
    SpellKeys(db, kKeys);
    std::vector<std::string> mistakes;
    Station station;
    station.path = path;
    station.name = TextAt(db, "sName");
    if (station.name.empty()) station.name = WithoutEnding(path);
    station.status = StatusFile(db, path);
    CStringArray keys;
    db.Enum("Loggers", keys, FALSE, FALSE);
    if (keys.IsEmpty()) throw Failure{kWrongUse, Say(Text::StationEmpty, {ToUtf8(path)})};
    for (INT_PTR i = 0; i < keys.GetSize(); ++i) {
        const std::string key = keys.GetAt(i).GetString(), description = "Loggers." + key + ".Description";
        CPropertyDB own;
        if (db.Find(description.c_str())) own.OverlayCopy(&db, (description + ".").c_str(), nullptr, FALSE);
        db.Remove(description.c_str());
        station.loggers.push_back(LoggerReader(app, db, path, key).Read(own, mistakes));
    }
    keys.RemoveAll();
    db.Enum("Sinks", keys, FALSE, FALSE);
    for (INT_PTR i = 0; i < keys.GetSize(); ++i) {
        const std::string key = keys.GetAt(i).GetString();
        try {
            CPropertyDB own;
            own.OverlayCopy(&db, ("Sinks." + key + ".").c_str(), nullptr, FALSE);
            station.sinks.push_back(ReadSinkSettings(app, own, key, path));
        } catch (const Failure& failure) {
            mistakes.push_back(Say(Text::SinkMistake, {ToUtf8(key), failure.sentence}));
        }
    }
    db.Remove("Sinks");
    for (const StrayKey& stray : FindStrayKeys(db, kKeys))
        mistakes.push_back(Say(Text::StationUnknownKey, {ToUtf8(stray.key), ToUtf8(stray.meant)}));
    CheckFiles(station, mistakes);
    if (!mistakes.empty()) throw StationMistakes{std::move(mistakes)};
    return station;
}
