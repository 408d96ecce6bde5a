#include "plugins/postgresql/postgresql_sink.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <set>
#include <string_view>

#include "plugins/postgresql/postgresql_layout.h"
#include "plugins/support/sink_tables.h"

namespace postgresql {
using orvik::tables::CleanText;
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

std::string PlacesOf(const CRecordedGap& gap) {
    Column places;
    for (const WORD place : gap.channels) places.Add(place + 1);
    return places;
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
    const auto key = KeyOf(source);
    const auto same = [](const CSinkChannel& a, const CSinkChannel& b) { return a.key == b.key && a.name == b.name && a.unit == b.unit; };
    const auto found = m_sessions.find(key);
    if (found != m_sessions.end() && std::equal(source.channels.begin(), source.channels.end(), found->second.channels.begin(),
                                                found->second.channels.end(), same))
        return found->second.number;
    if (m_sessions.size() >= kMostSessions) m_sessions.clear();
    // An update, so that it gives the number of a row that is there, too.
    const Result row = m_connection.Run(
        "insert into session (station, logger, began, device, family, port) values ($1, $2, $3, $4, $5, $6) "
        "on conflict (station, logger, began) do update set device = excluded.device, family = excluded.family, port = excluded.port "
        "returning session",
        {CleanText(source.station), CleanText(source.logger), Time(source.began), CleanText(source.device), CleanText(source.family), CleanText(source.port)});
    Known& known = m_sessions[key];
    known.number = PQgetvalue(row.get(), 0, 0);
    known.channels = source.channels;
    Column places, keys, names, units;
    for (const CSinkChannel& channel : source.channels) {
        places.Add(&channel - source.channels.data() + 1);
        keys.Add(CleanText(channel.key));
        names.Add(CleanText(channel.name));
        units.Add(CleanText(channel.unit));
    }
    m_connection.Run("insert into channel select $1::integer, * from unnest($2::smallint[], $3::text[], $4::text[], $5::text[]) "
                     "on conflict (session, place) do update set key = excluded.key, name = excluded.name, unit = excluded.unit",
                     {known.number, places, keys, names, units});
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
                PutField(bytes, static_cast<uint64_t>(part.times[row]) - static_cast<uint64_t>(k2000));
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
    // No statement may bring a row up to date twice.
    std::map<DWORD, const CRecordedGap*> latest;
    for (const CRecordedGap& gap : part.gaps) latest[gap.number] = &gap;
    if (!latest.empty()) {
        Column numbers, from, until, missed, attempts, causes, texts, channels;
        for (const auto& [number, gap] : latest) {
            numbers.Add(number);
            from.Add(Time(gap->from));
            until.Add(Time(gap->until));
            missed.Add(gap->missed);
            attempts.Add(gap->attempts);
            causes.Add(gap->cause);
            texts.Add(CleanText(gap->text));
            channels.Add(PlacesOf(*gap));
        }
        m_connection.Run("insert into gap select $1::integer, n, f, u, m, a, c, t, p::smallint[] from unnest($2::bigint[], $3::timestamptz[], "
                         "$4::timestamptz[], $5::bigint[], $6::bigint[], $7::integer[], $8::text[], $9::text[]) as g (n, f, u, m, a, c, t, p) "
                         "on conflict (session, number) do update set from_time = excluded.from_time, until_time = excluded.until_time, "
                         "missed = excluded.missed, attempts = excluded.attempts, cause = excluded.cause, text = excluded.text, "
                         "channels = excluded.channels",
                         {session, numbers, from, until, missed, attempts, causes, texts, channels});
    }
    if (!part.events.empty()) {
        Column times, kinds, amounts, texts;
        for (const CRecordedEvent& event : part.events) {
            times.Add(Time(event.time));
            kinds.Add(event.kind);
            amounts.Add(event.amount);
            texts.Add(CleanText(event.text));
        }
        m_connection.Run("insert into event select $1::integer, * from unnest($2::timestamptz[], $3::integer[], $4::bigint[], $5::text[]) "
                         "on conflict do nothing",
                         {session, times, kinds, amounts, texts});
    }
    if (!part.commented) return;
    m_connection.Run("delete from comment where session = $1", {session});
    Column numbers, times, channels, values, texts;
    for (const CSinkComment& comment : part.comments) {
        numbers.Add(&comment - part.comments.data() + 1);
        times.Add(Time(comment.time));
        channels.Add(CleanText(comment.channel));
        values.Add(Number(comment.value));
        texts.Add(CleanText(comment.text));
    }
    m_connection.Run("insert into comment select $1::integer, * from unnest($2::integer[], $3::timestamptz[], $4::text[], "
                     "$5::double precision[], $6::text[])",
                     {session, numbers, times, channels, values, texts});
}

// Somebody may have cleared a session away whose number is kept in mind. Those that are there stay until the batch is in.
void Sink::ForgetCleared(const CSinkBatch& batch) {
    std::set<std::string> numbers;
    for (const CSinkPart& part : batch.parts) {
        const auto found = m_sessions.find(KeyOf(*part.source));
        if (found != m_sessions.end()) numbers.insert(found->second.number);
    }
    if (numbers.empty()) return;
    Column asked;
    for (const std::string& number : numbers) asked.Add(number);
    const Result there = m_connection.Run("select 1 from session where session = any ($1::integer[]) order by session for key share", {asked});
    if (static_cast<size_t>(PQntuples(there.get())) < numbers.size()) m_sessions.clear();
}

void Sink::Deliver(const CSinkBatch& batch) {
    m_connection.Run("begin");
    ForgetCleared(batch);
    WriteReadings(batch);
    for (const CSinkPart& part : batch.parts) {
        if (!part.gaps.empty() || !part.events.empty() || part.commented) WriteNotes(part, SessionOf(*part.source));
    }
    const Result committed = m_connection.Run("commit");
    if (PQcmdStatus(committed.get()) != std::string_view("COMMIT")) throw CSinkFailure("the server did not commit a batch");
}

}  // namespace postgresql
