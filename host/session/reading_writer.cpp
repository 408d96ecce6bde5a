#include "host/session/reading_writer.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <optional>
#include <set>

#include "host/session/time_stamp.h"
#include "host/session/value_text.h"
#include "host/words/console.h"
#include "host/words/isolated.h"
#include "host/words/json_text.h"
#include "host/words/same_text.h"
#include "host/words/texts.h"
#include "platform/letters.h"
#include "record/line_protocol.h"

namespace {
std::string HeadingOf(const Session::Channel& channel) {
    return ToUtf8(channel.unit.empty() ? channel.name : channel.name + " [" + channel.unit + "]");
}

// On one line, and nothing that a terminal would obey.
std::string ShownHeading(const Session::Channel& channel) {
    std::string heading = WithoutControls(HeadingOf(channel));
    std::replace_if(
        heading.begin(), heading.end(), [](char c) { return c == '\t' || c == '\r' || c == '\n'; }, ' ');
    return heading;
}

// The times of the first and the last reading, and of some between.
std::vector<__int64> SomeTimes(const Session& session) {
    constexpr __int64 kSome = 200;
    std::vector<__int64> times;
    if (const RecordedSeries* const recorded = session.Recorded()) {
        const auto& spans = recorded->Index().Spans();
        for (size_t i = 0; i < spans.size(); i += 1 + spans.size() / kSome) {
            if (spans[i].readings > 0) times.insert(times.end(), {spans[i].firstTime, spans[i].lastTime});
        }
        if (!spans.empty() && spans.back().readings > 0) times.push_back(spans.back().lastTime);
    } else {
        const INT_PTR count = session.Times().GetSize();
        for (INT_PTR i = 0; i < count; i += 1 + count / (10 * kSome)) times.push_back(session.Times().GetAt(i));
        if (count > 0) times.push_back(session.Times().GetAt(count - 1));
    }
    return times;
}

class TableWriter : public ReadingWriter {
public:
    TableWriter(const Session& session, ShownChannels shown, const std::string& picture) : m_picture(picture) {
        m_timeWidth = OrvikColumns(Say(Text::Time));
        for (const __int64 time : SomeTimes(session)) m_timeWidth = std::max(m_timeWidth, OrvikColumns(TimeTextOf(time)));
        for (const size_t place : shown) {
            double low = 0, high = 0;
            const bool any = session.Range(place, low, high);
            Column column{place, ShownHeading(session.Channels()[place]), ColumnFormat(low, high), 0};
            column.width = OrvikColumns(column.heading);
            if (any) column.width = std::max({column.width, OrvikColumns(Cell(column, low)), OrvikColumns(Cell(column, high))});
            m_columns.push_back(std::move(column));
        }
    }
    void Heading(std::string& out) override {
        const std::string time = Say(Text::Time);
        out += time;
        out.append(m_timeWidth - OrvikColumns(time), ' ');
        for (const Column& column : m_columns) Right(out, column.heading, column.width);
        out += '\n';
    }
    void Row(std::string& out, __int64 time, const double* values) override {
        const std::string stamp = TimeTextOf(time);
        out += Isolated(stamp);
        out.append(m_timeWidth - std::min(m_timeWidth, OrvikColumns(stamp)), ' ');
        for (const Column& column : m_columns) Right(out, Cell(column, values[column.place]), column.width);
        out.erase(out.find_last_not_of(' ') + 1);
        out += '\n';
    }

private:
    struct Column {
        size_t place;
        std::string heading;
        ColumnFormat format;
        size_t width;
    };
    std::string Cell(const Column& column, double value) const {
        if (std::isnan(value)) return {};
        return m_picture.empty() ? column.format.Text(value) : ShortTextOf(value, m_picture);
    }
    static void Right(std::string& out, const std::string& cell, size_t width) {
        out.append(2 + width - std::min(width, OrvikColumns(cell)), ' ');
        out += Isolated(cell);
    }

    const std::string m_picture;
    size_t m_timeWidth;
    std::vector<Column> m_columns;
};

// With this decimal sign, to the last bit; for people a 32-bit real, which most loggers send, has no more digits than that.
void AppendNumber(std::string& out, double value, const std::string& sign, bool people) {
    char digits[64];
    const auto narrow = static_cast<float>(value);
    const bool brief = people && static_cast<double>(narrow) == value;
    char* const end = (brief ? std::to_chars(digits, std::end(digits), narrow) : std::to_chars(digits, std::end(digits), value)).ptr;
    char* const point = std::find(digits, end, '.');
    out.append(digits, point);
    if (point != end) out.append(sign).append(point + 1, end);
}

class CsvWriter : public ReadingWriter {
public:
    CsvWriter(const Session& session, ShownChannels shown, const CsvForm& form)
        : m_session(session), m_shown(std::move(shown)), m_form(form), m_sign(form.local ? DecimalSign() : ".") {}
    void Heading(std::string& out) override {
        if (m_form.local && m_form.mark) out += "\xEF\xBB\xBF";
        out += "time";
        for (const size_t place : m_shown) {
            out += m_form.separator;
            out += Field(HeadingOf(m_session.Channels()[place]));
        }
        out += '\n';
    }
    void Row(std::string& out, __int64 time, const double* values) override {
        if (m_form.local) {
            AppendLocalStamp(out, time, m_sign);
        } else {
            AppendUtcStamp(out, time);
        }
        for (const size_t place : m_shown) {
            out += m_form.separator;
            if (std::isnan(values[place])) continue;
            AppendNumber(out, values[place], m_sign, m_form.local);
        }
        out += '\n';
    }

private:
    std::string Field(const std::string& text) const {
        if (text.find(m_form.separator) == text.npos && text.find_first_of("\"\r\n") == text.npos) return text;
        std::string quoted = "\"";
        for (const char c : text) quoted.append(c == '"' ? 2 : 1, c);
        return quoted + '"';
    }

    const Session& m_session;
    const ShownChannels m_shown;
    const CsvForm m_form;
    const std::string m_sign;
};

class HtmlWriter : public ReadingWriter {
public:
    HtmlWriter(const Session& session, ShownChannels shown) : m_session(session), m_shown(std::move(shown)) {}
    void Heading(std::string& out) override {
        out += "<table><tr><th>" + Escaped(Say(Text::Time)) + "</th>";
        for (const size_t place : m_shown) out += "<th>" + Escaped(ShownHeading(m_session.Channels()[place])) + "</th>";
        out += "</tr>\n";
    }
    void Row(std::string& out, __int64 time, const double* values) override {
        out += "<tr><td>";
        AppendLocalStamp(out, time, m_sign);
        out += "</td>";
        for (const size_t place : m_shown) {
            out += "<td align=\"right\">";
            if (!std::isnan(values[place])) AppendNumber(out, values[place], m_sign, true);
            out += "</td>";
        }
        out += "</tr>\n";
    }
    void End(std::string& out) override { out += "</table>"; }

private:
    static std::string Escaped(const std::string& text) {
        std::string out;
        for (const char c : text) {
            if (c == '<' || c == '>' || c == '&') {
                out += c == '<' ? "&lt;" : c == '>' ? "&gt;" : "&amp;";
            } else {
                out += c;
            }
        }
        return out;
    }

    const Session& m_session;
    const ShownChannels m_shown;
    const std::string m_sign = DecimalSign();
};

class JsonWriter : public ReadingWriter {
public:
    JsonWriter(const Session& session, ShownChannels shown) : m_shown(std::move(shown)) {
        std::set<std::string> names = {"time"};
        const auto isNew = [&](size_t place) { return names.insert(session.Channels()[place].name).second; };
        const bool different = std::all_of(m_shown.begin(), m_shown.end(), isNew);
        for (const size_t place : m_shown) {
            const Session::Channel& channel = session.Channels()[place];
            m_keys.push_back("," + JsonText(ToUtf8(different ? channel.name : channel.key)) + ":");
        }
    }
    void Heading(std::string&) override {}
    void Row(std::string& out, __int64 time, const double* values) override {
        out += "{\"time\":\"";
        AppendUtcStamp(out, time);
        out += '"';
        for (size_t i = 0; i < m_shown.size(); ++i) {
            out += m_keys[i];
            out += JsonNumber(values[m_shown[i]]);
        }
        out += "}\n";
    }

private:
    const ShownChannels m_shown;
    std::vector<std::string> m_keys;
};

class LineProtocolWriter : public ReadingWriter {
public:
    LineProtocolWriter(const Session& session, ShownChannels shown) : m_shown(std::move(shown)) {
        for (const size_t place : m_shown) {
            const Session::Channel& channel = session.Channels()[place];
            m_heads.push_back("orvik" + orvik::line::Tag("logger", ToUtf8(session.Logger())) +
                              orvik::line::ChannelTags(ToUtf8(channel.name), ToUtf8(channel.key), ToUtf8(channel.unit)));
        }
    }
    void Heading(std::string&) override {}
    void Row(std::string& out, __int64 time, const double* values) override {
        for (size_t i = 0; i < m_shown.size(); ++i) {
            if (std::isfinite(values[m_shown[i]])) orvik::line::AppendValue(out, m_heads[i], values[m_shown[i]], time);
        }
    }

private:
    const ShownChannels m_shown;
    std::vector<std::string> m_heads;
};
}  // namespace

ShownChannels ChannelsNamed(const Session& session, const std::vector<std::string>& names) {
    const std::vector<Session::Channel>& all = session.Channels();
    ShownChannels shown;
    for (size_t i = 0; i < all.size() && names.empty(); ++i) shown.push_back(i);
    for (const std::string& name : names) {
        bool found = false;
        std::string there;
        for (size_t i = 0; i < all.size(); ++i) {
            there += (i == 0 ? "" : ", ") + ToUtf8(all[i].name);
            if (!LookTheSame(all[i].name, name) && !LookTheSame(all[i].key, name)) continue;
            found = true;
            if (std::find(shown.begin(), shown.end(), i) == shown.end()) shown.push_back(i);
        }
        if (!found) throw Failure{kWrongUse, Say(Text::NoChannel, {ToUtf8(name), there})};
    }
    return shown;
}

std::unique_ptr<ReadingWriter> MakeTableWriter(const Session& session, ShownChannels shown, const std::string& picture) {
    return std::make_unique<TableWriter>(session, std::move(shown), picture);
}
std::unique_ptr<ReadingWriter> MakeCsvWriter(const Session& session, ShownChannels shown, const CsvForm& form) {
    return std::make_unique<CsvWriter>(session, std::move(shown), form);
}
std::unique_ptr<ReadingWriter> MakeHtmlWriter(const Session& session, ShownChannels shown) {
    return std::make_unique<HtmlWriter>(session, std::move(shown));
}
CsvForm SpreadsheetForm() { return {DecimalSign() == "," ? ';' : ',', true}; }
std::unique_ptr<ReadingWriter> MakeLineProtocolWriter(const Session& session, ShownChannels shown) {
    return std::make_unique<LineProtocolWriter>(session, std::move(shown));
}
std::unique_ptr<ReadingWriter> MakeJsonWriter(const Session& session, ShownChannels shown) {
    return std::make_unique<JsonWriter>(session, std::move(shown));
}
