#include "plugins/postgresql/postgresql_sink.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>

#include "plugins/postgresql/postgresql_layout.h"

namespace postgresql {
namespace {
constexpr __int64 k2000 = 946'684'800'000'000;  // us from 1970 to the server's own beginning of time
constexpr size_t kMostSessions = 10'000;        // whose numbers are kept in mind

// Of the binary form of COPY: highest byte first.
template <class Number>
void Put(std::string& bytes, Number number) {
    for (int shift = static_cast<int>(sizeof number) * 8 - 8; shift >= 0; shift -= 8)
        bytes += static_cast<char>(static_cast<unsigned char>(static_cast<uint64_t>(number) >> shift));
}
template <class Number>
void PutField(std::string& bytes, Number number) {
    Put(bytes, static_cast<uint32_t>(sizeof number));
    Put(bytes, number);
}

// A point of time as a text that says the same microsecond.
std::string Time(__int64 time) {
    // Days to a date of the calendar that runs on for ever, by eras of 400 years (146,097 days) from 0000-03-01 on.
    const __int64 us = ((time % 86'400'000'000) + 86'400'000'000) % 86'400'000'000;
    const __int64 days = (time - us) / 86'400'000'000 + 719'468;
    const __int64 era = (days >= 0 ? days : days - 146'096) / 146'097, ofEra = days - era * 146'097;
    const __int64 yearOfEra = (ofEra - ofEra / 1'460 + ofEra / 36'524 - ofEra / 146'096) / 365;
    const __int64 dayOfYear = ofEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100), month = (5 * dayOfYear + 2) / 153;
    const __int64 year = yearOfEra + era * 400 + (month >= 10 ? 1 : 0);
    char text[96];
    std::snprintf(text, sizeof text, "%04lld-%02lld-%02lld %02lld:%02lld:%02lld.%06lld+00%s", year > 0 ? year : 1 - year,
                  month < 10 ? month + 3 : month - 9, dayOfYear - (153 * month + 2) / 5 + 1, us / 3'600'000'000, us / 60'000'000 % 60,
                  us / 1'000'000 % 60, us % 1'000'000, year > 0 ? "" : " BC");
    return text;
}

std::string Number(double value) {
    if (std::isinf(value)) return value > 0 ? "Infinity" : "-Infinity";
    if (std::isnan(value)) return "NaN";
    char text[64];
    return std::string(text, std::to_chars(text, text + sizeof text, value).ptr);
}

// What the server takes: UTF-8 without NUL; each byte that is none becomes "?".
std::string Text(const std::string& text) {
    std::string clean;
    for (size_t i = 0; i < text.size();) {
        const auto byte = [&](size_t at) { return at < text.size() ? static_cast<unsigned char>(text[at]) : 0u; };
        const unsigned first = byte(i);
        const size_t size = first < 0x80 ? 1 : first >= 0xC2 && first < 0xE0 ? 2 : first >= 0xE0 && first < 0xF0 ? 3 : first >= 0xF0 && first < 0xF5 ? 4 : 0;
        bool whole = size != 0 && first != 0;
        for (size_t k = 1; whole && k < size; ++k) whole = (byte(i + k) & 0xC0) == 0x80;
        // Forms that are too long, halves of pairs, and what lies beyond Unicode.
        if (size > 2 && whole) {
            const unsigned second = byte(i + 1);
            whole = !(first == 0xE0 && second < 0xA0) && !(first == 0xED && second >= 0xA0) && !(first == 0xF0 && second < 0x90) &&
                    !(first == 0xF4 && second >= 0x90);
        }
        clean += whole ? text.substr(i, size) : "?";
        i += whole ? size : 1;
    }
    return clean;
}

std::string ChannelsOf(const CRecordedGap& gap, const CSinkSource& source) {
    std::string keys;
    for (const WORD place : gap.channels) {
        if (place < source.channels.size()) keys += (keys.empty() ? "" : " ") + source.channels[place].key;
    }
    return keys;
}
}  // namespace

void Sink::Connect() {
    m_sessions.clear();
    m_connection.Open(m_settings.address, m_settings.password);
    PrepareLayout(m_connection, m_settings.schema);
    m_connection.Run("create temporary table arriving (session integer, channel smallint, time timestamptz, value double precision) "
                     "on commit delete rows");
}

void Sink::Disconnect() {
    m_connection.Close();
    m_sessions.clear();
}

// Its number, and its channels as they are called now.
const std::string& Sink::SessionOf(const CSinkSource& source) {
    const auto key = std::make_tuple(source.station, source.logger, source.began);
    const auto same = [](const CSinkChannel& a, const CSinkChannel& b) { return a.key == b.key && a.name == b.name && a.unit == b.unit; };
    const auto found = m_sessions.find(key);
    if (found != m_sessions.end() && std::equal(source.channels.begin(), source.channels.end(), found->second.channels.begin(),
                                                found->second.channels.end(), same))
        return found->second.number;
    if (m_sessions.size() >= kMostSessions) m_sessions.clear();
    // An update that changes nothing, so that it gives the number of a row that is there.
    const Result row = m_connection.Run(
        "insert into session (station, logger, began, device, family, port) values ($1, $2, $3, $4, $5, $6) "
        "on conflict (station, logger, began) do update set device = excluded.device returning session",
        {Text(source.station), Text(source.logger), Time(source.began), Text(source.device), Text(source.family), Text(source.port)});
    Known& known = m_sessions[key];
    known.number = PQgetvalue(row.get(), 0, 0);
    known.channels = source.channels;
    for (size_t i = 0; i < source.channels.size(); ++i) {
        const CSinkChannel& channel = source.channels[i];
        m_connection.Run("insert into channel values ($1, $2, $3, $4, $5) on conflict (session, place) "
                         "do update set key = excluded.key, name = excluded.name, unit = excluded.unit",
                         {known.number, std::to_string(i + 1), Text(channel.key), Text(channel.name), Text(channel.unit)});
    }
    return known.number;
}

void Sink::WriteReadings(const CSinkBatch& batch) {
    std::string bytes("PGCOPY\n\377\r\n\0\0\0\0\0\0\0\0\0", 19);
    const size_t head = bytes.size();
    for (const CSinkPart& part : batch.parts) {
        if (part.times.empty()) continue;
        const std::string& number = SessionOf(*part.source);
        uint32_t session = 0;
        std::from_chars(number.data(), number.data() + number.size(), session);
        // Channel by channel, as the table is ordered.
        for (size_t channel = 0; channel < part.source->channels.size(); ++channel) {
            for (size_t row = 0; row < part.times.size(); ++row) {
                const BYTE flag = part.RowFlags(row)[channel];
                if (flag != RF_GOOD && flag != RF_NO_VALUE) continue;
                Put(bytes, uint16_t{4});
                PutField(bytes, session);
                PutField(bytes, static_cast<uint16_t>(channel + 1));
                PutField(bytes, static_cast<uint64_t>(part.times[row] - k2000));
                if (flag == RF_GOOD) {
                    PutField(bytes, std::bit_cast<uint64_t>(part.Row(row)[channel]));
                } else {
                    Put(bytes, uint32_t{0xFFFFFFFF});  // null
                }
            }
        }
    }
    if (bytes.size() == head) return;
    Put(bytes, uint16_t{0xFFFF});
    m_connection.Copy("copy arriving from stdin binary", bytes);
    m_connection.Run("insert into reading select * from arriving on conflict do nothing");
}

void Sink::WriteNotes(const CSinkPart& part, const std::string& session) {
    for (const CRecordedGap& gap : part.gaps) {
        m_connection.Run("insert into gap values ($1, $2, $3, $4, $5, $6, $7, $8, $9) on conflict (session, number) do update set "
                         "from_time = excluded.from_time, until_time = excluded.until_time, missed = excluded.missed, "
                         "attempts = excluded.attempts, cause = excluded.cause, text = excluded.text, channels = excluded.channels",
                         {session, std::to_string(gap.number), Time(gap.from), Time(gap.until), std::to_string(gap.missed),
                          std::to_string(gap.attempts), std::to_string(gap.cause), Text(gap.text), Text(ChannelsOf(gap, *part.source))});
    }
    for (const CRecordedEvent& event : part.events) {
        m_connection.Run("insert into event values ($1, $2, $3, $4, $5) on conflict do nothing",
                         {session, Time(event.time), std::to_string(event.kind), std::to_string(event.amount), Text(event.text)});
    }
    if (!part.commented) return;
    m_connection.Run("delete from comment where session = $1", {session});
    for (size_t i = 0; i < part.comments.size(); ++i) {
        const CSinkComment& comment = part.comments[i];
        m_connection.Run("insert into comment values ($1, $2, $3, $4, $5, $6)",
                         {session, std::to_string(i + 1), Time(comment.time), Text(comment.channel), Number(comment.value), Text(comment.text)});
    }
}

void Sink::Deliver(const CSinkBatch& batch) {
    m_connection.Run("begin");
    WriteReadings(batch);
    for (const CSinkPart& part : batch.parts) {
        if (!part.gaps.empty() || !part.events.empty() || part.commented) WriteNotes(part, SessionOf(*part.source));
    }
    m_connection.Run("commit");
}

}  // namespace postgresql
