#include "host/session.h"

#include <algorithm>
#include <cstdio>

#include "afx/collections.h"
#include "host/console.h"
#include "host/texts.h"
#include "host/value_text.h"

namespace {
std::string ReadText(IPropertyDB& db, const std::string& key) {
    CString text;
    db.GetValue(key.c_str(), text);
    return static_cast<const char*>(text);
}

// The times of which calendar text can be made, microseconds since 1970: the years 1601 to 9999.
constexpr __int64 kFirstTime = -11'644'473'600'000'000LL, kLastTime = 253'402'300'799'999'999LL;

// 100 ns steps since 1601 for microseconds since 1970, from which the system knows the calendar.
SYSTEMTIME UtcFields(__int64 microseconds) {
    const auto ticks = static_cast<unsigned __int64>((microseconds - kFirstTime) * 10);
    const FILETIME file = {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
    SYSTEMTIME fields = {};
    FileTimeToSystemTime(&file, &fields);
    return fields;
}

std::string Stamp(const SYSTEMTIME& t) {
    char text[64];
    std::snprintf(text, sizeof text, "%04u-%02u-%02uT%02u:%02u:%02u.%03u", t.wYear, t.wMonth, t.wDay, t.wHour, t.wMinute,
                  t.wSecond, t.wMilliseconds);
    return text;
}

std::string CsvField(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
    std::string quoted = "\"";
    for (const char c : text) quoted.append(c == '"' ? 2 : 1, c);
    return quoted + '"';
}
}  // namespace

Session::Channel::Channel(std::string channelKey, std::string channelName, std::string channelUnit)
    : key(std::move(channelKey)), name(std::move(channelName)), unit(std::move(channelUnit)) {}

Session::Channel::Channel(Channel&& other) noexcept
    : key(std::move(other.key)), name(std::move(other.name)), unit(std::move(other.unit)) {
    values.Copy(other.values);
}

Session::Session(IPropertyDB& description, const std::string& port)
    : m_family(ReadText(description, "sFamily")), m_logger(ReadText(description, "sName")), m_port(port) {
    CStringArray keys;
    description.Enum("Channels", keys, FALSE, FALSE);
    for (INT_PTR i = 0; i < keys.GetSize(); ++i) {
        const std::string key = static_cast<const char*>(keys.GetAt(i)), at = "Channels." + key;
        const std::string name = ReadText(description, at + ".sName");
        m_channels.emplace_back(key, name.empty() ? key : name, ReadText(description, at + ".sUnit"));
    }
}

Session::Session(IPropertyDB& stored, const std::string& path, int) {
    const Failure none{kFileFailed, Say(Text::NoSession, {ToUtf8(path)})};
    CStringArray keys;
    if (!stored.Find("Session") || !stored.Enum("Channels", keys, FALSE, FALSE)) throw none;
    m_family = ReadText(stored, "Session.sFamily");
    m_logger = ReadText(stored, "Session.sLogger");
    m_port = ReadText(stored, "Session.sPort");
    stored.GetValue("Session.tTimes", m_times);
    for (INT_PTR i = 0; i < keys.GetSize(); ++i) {
        const std::string key = static_cast<const char*>(keys.GetAt(i)), at = "Channels." + key;
        Channel& channel = m_channels.emplace_back(key, ReadText(stored, at + ".sName"), ReadText(stored, at + ".sUnit"));
        stored.GetValue((at + ".rValues").c_str(), channel.values);
        if (channel.values.GetSize() != m_times.GetSize()) throw none;
    }
}

void Session::Add(CVXTTime time, const CDoubleArray& values) {
    __int64 at = time.GetBinaryTime();
    if (m_times.GetSize() > 0) at = std::max(at, m_times.GetAt(m_times.GetUpperBound()) + 1);
    m_times.Add(at);
    for (size_t i = 0; i < m_channels.size(); ++i) m_channels[i].values.Add(values.GetAt(static_cast<INT_PTR>(i)));
}

void Session::Store(IPropertyDB& db) const {
    db.BeginUsing("Session");
    db.SetValue("sFamily", m_family.c_str());
    db.SetValue("sLogger", m_logger.c_str());
    db.SetValue("sPort", m_port.c_str());
    db.SetValue("tTimes", m_times);
    db.EndUsing();
    db.SetPath("Channels");
    for (const Channel& channel : m_channels) {
        db.BeginUsing(("Channels." + channel.key).c_str());
        db.SetValue("sName", channel.name.c_str());
        db.SetValue("sUnit", channel.unit.c_str());
        db.SetValue("rValues", channel.values);
        db.EndUsing();
    }
}

std::string Session::Table(const std::string& picture) const {
    std::vector<std::vector<std::string>> columns(1, {Say(Text::Time)});
    for (INT_PTR row = 0; row < m_times.GetSize(); ++row) columns[0].push_back(TimeTextOf(m_times.GetAt(row)));
    for (const Channel& channel : m_channels) {
        auto& column = columns.emplace_back();
        column.push_back(ToUtf8(channel.unit.empty() ? channel.name : channel.name + " [" + channel.unit + "]"));
        for (INT_PTR row = 0; row < channel.values.GetSize(); ++row)
            column.push_back(ShortTextOf(channel.values.GetAt(row), picture));
    }
    std::vector<size_t> widths;
    for (const auto& column : columns) {
        size_t& width = widths.emplace_back(0);
        for (const std::string& cell : column) width = std::max(width, WidthOf(cell));
    }
    std::string table;
    for (size_t row = 0; row < columns[0].size(); ++row) {
        for (size_t i = 0; i < columns.size(); ++i) {
            const std::string& cell = columns[i][row];
            const std::string padding(widths[i] - WidthOf(cell), ' ');
            table += i == 0 ? cell + padding : "  " + padding + cell;  // times to the left, numbers to the right
        }
        table += '\n';
    }
    return table;
}

std::string Session::Csv() const {
    std::string csv = "time";
    for (const Channel& channel : m_channels)
        csv += ',' + CsvField(ToUtf8(channel.unit.empty() ? channel.name : channel.name + " [" + channel.unit + "]"));
    csv += '\n';
    for (INT_PTR row = 0; row < m_times.GetSize(); ++row) {
        const __int64 at = std::clamp(m_times.GetAt(row), kFirstTime, kLastTime);
        char micro[8];
        std::snprintf(micro, sizeof micro, "%03d", static_cast<int>(((at % 1000) + 1000) % 1000));
        csv += Stamp(UtcFields(at)) + micro + 'Z';
        for (const Channel& channel : m_channels) csv += ',' + TextOf(channel.values.GetAt(row));
        csv += '\n';
    }
    return csv;
}
