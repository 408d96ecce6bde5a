#include "plugins/sqlite/sqlite_sink.h"

#include <algorithm>
#include <utility>

#include "plugins/support/sink_tables.h"

namespace sqlite {
using orvik::tables::CleanText;
namespace {
constexpr size_t kMostSessions = 10'000;  // whose numbers are kept in mind

constexpr int kRows = 64;  // that one statement inserts, at a third of what as many would cost

std::string InsertRows() {
    std::string text = "INSERT OR IGNORE INTO reading VALUES ";
    for (int i = 0; i < kRows; ++i)
        text += (i > 0 ? ", (?1, ?2, ?" : "(?1, ?2, ?") + std::to_string(2 * i + 3) + ", ?" + std::to_string(2 * i + 4) + ")";
    return text;
}

std::string PlacesOf(const CRecordedGap& gap) {
    std::string places;
    for (const WORD place : gap.channels) places += (places.empty() ? "" : " ") + std::to_string(place + 1);
    return places;
}
}  // namespace

struct Sink::Statements {
    explicit Statements(const File& file)
        : session(file, "INSERT INTO session (station, logger, began, device, family, port) VALUES (?, ?, ?, ?, ?, ?) "
                        "ON CONFLICT DO UPDATE SET device = excluded.device, family = excluded.family, port = excluded.port RETURNING session"),
          known(file, "SELECT 1 FROM session WHERE session = ?"),
          channel(file, "INSERT OR REPLACE INTO channel VALUES (?, ?, ?, ?, ?)"),
          reading(file, "INSERT OR IGNORE INTO reading VALUES (?, ?, ?, ?)"),
          readings(file, InsertRows()),
          gap(file, "INSERT OR REPLACE INTO gap VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)"),
          event(file, "INSERT OR IGNORE INTO event VALUES (?, ?, ?, ?, ?)"),
          uncomment(file, "DELETE FROM comment WHERE session = ?"),
          comment(file, "INSERT INTO comment VALUES (?, ?, ?, ?, ?, ?)") {}
    Statement session, known, channel, reading, readings, gap, event, uncomment, comment;
};

void Sink::Connect() {
    Disconnect();
    m_file.OpenToWrite(m_path);
    m_statements = std::make_shared<Statements>(m_file);
}

void Sink::Disconnect() {
    m_statements.reset();
    m_file.Close();
    m_sessions.clear();
}

// Somebody may have cleared it away.
bool Sink::IsThere(sqlite3_int64 session) {
    m_statements->known.Bind(session);
    const bool there = m_statements->known.Next();
    m_statements->known.Reset();
    return there;
}

// Its number, and its channels as they are called now.
sqlite3_int64 Sink::SessionOf(const CSinkSource& source) {
    const auto key = std::make_tuple(source.station, source.logger, source.began);
    const auto same = [](const CSinkChannel& a, const CSinkChannel& b) { return a.key == b.key && a.name == b.name && a.unit == b.unit; };
    const auto found = m_sessions.find(key);
    if (found != m_sessions.end() && std::equal(source.channels.begin(), source.channels.end(), found->second.channels.begin(),
                                                found->second.channels.end(), same) &&
        IsThere(found->second.number))
        return found->second.number;
    if (m_sessions.size() >= kMostSessions) m_sessions.clear();
    Statement& session = m_statements->session;
    session.Bind(CleanText(source.station), CleanText(source.logger), source.began, CleanText(source.device), CleanText(source.family),
                 CleanText(source.port));
    session.Next();
    const sqlite3_int64 number = session.Number(0);
    while (session.Next()) {
    }
    m_sessions[key] = {number, source.channels};
    for (size_t i = 0; i < source.channels.size(); ++i) {
        const CSinkChannel& channel = source.channels[i];
        m_statements->channel.Run(number, static_cast<sqlite3_int64>(i + 1), CleanText(channel.key), CleanText(channel.name),
                                  CleanText(channel.unit));
    }
    return number;
}

void Sink::WriteNotes(const CSinkPart& part, sqlite3_int64 session) {
    const auto number = [](auto value) { return static_cast<sqlite3_int64>(value); };
    for (const CRecordedGap& gap : part.gaps) {
        m_statements->gap.Run(session, number(gap.number), gap.from, gap.until, number(gap.missed), number(gap.attempts),
                              number(gap.cause), CleanText(gap.text), PlacesOf(gap));
    }
    for (const CRecordedEvent& event : part.events)
        m_statements->event.Run(session, event.time, number(event.kind), event.amount, CleanText(event.text));
    if (!part.commented) return;
    m_statements->uncomment.Run(session);
    for (size_t i = 0; i < part.comments.size(); ++i) {
        const CSinkComment& comment = part.comments[i];
        m_statements->comment.Run(session, number(i + 1), comment.time, CleanText(comment.channel), comment.value, CleanText(comment.text));
    }
}

void Sink::WriteReadings(const CSinkPart& part, size_t channel, sqlite3_int64 session) {
    const auto place = static_cast<sqlite3_int64>(channel + 1);
    std::vector<std::pair<__int64, double>> rows;
    for (size_t row = 0; row < part.times.size(); ++row) {
        const BYTE flag = part.RowFlags(row)[channel];
        if (flag != RF_GOOD && flag != RF_NO_VALUE) continue;
        rows.emplace_back(part.times[row], part.Row(row)[channel]);
        if (rows.size() < kRows) continue;
        Statement& all = m_statements->readings;
        all.Bind(session, place);
        int at = 2;
        for (const auto& [time, value] : rows) {
            all.Put(++at, time);
            all.Put(++at, value);
        }
        all.Run();
        rows.clear();
    }
    for (const auto& [time, value] : rows) m_statements->reading.Run(session, place, time, value);
}

void Sink::Write(const CSinkBatch& batch) {
    for (const CSinkPart& part : batch.parts) {
        const sqlite3_int64 session = SessionOf(*part.source);
        // Channel by channel, as the table is ordered.
        for (size_t channel = 0; channel < part.source->channels.size(); ++channel) WriteReadings(part, channel, session);
        WriteNotes(part, session);
    }
}

void Sink::Deliver(const CSinkBatch& batch) {
    m_file.Run("BEGIN IMMEDIATE");
    try {
        Write(batch);
        m_file.Run("COMMIT");
    } catch (...) {
        // What is kept in mind may be of this batch.
        m_sessions.clear();
        sqlite3_exec(m_file.Handle(), "ROLLBACK", nullptr, nullptr, nullptr);
        throw;
    }
}

}  // namespace sqlite
