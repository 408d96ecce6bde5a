#include "plugins/sqlite/sqlite_file.h"

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <thread>

#include "plugins/support/sink_tables.h"
#include "record/sink.h"

namespace sqlite {
namespace {
constexpr int kApplication = 0x4F525649, kLayout = 1;  // "ORVI" in the file's head, and the layout beside it
constexpr int kBusyTries = 500;                        // that another program may hold the file: 10 s
constexpr auto kBusyPause = std::chrono::milliseconds(20);

// Values have no type, since a column of reals would keep -0 as 0.
constexpr char kTables[] = R"(
CREATE TABLE session (
    session INTEGER PRIMARY KEY, station TEXT NOT NULL, logger TEXT NOT NULL, began INTEGER NOT NULL,
    device TEXT NOT NULL, family TEXT NOT NULL, port TEXT NOT NULL, UNIQUE (station, logger, began));
CREATE TABLE channel (
    session INTEGER NOT NULL REFERENCES session, place INTEGER NOT NULL, key TEXT NOT NULL, name TEXT NOT NULL, unit TEXT NOT NULL,
    PRIMARY KEY (session, place)) WITHOUT ROWID;
CREATE TABLE reading (
    session INTEGER NOT NULL, channel INTEGER NOT NULL, time INTEGER NOT NULL, value,
    PRIMARY KEY (session, channel, time)) WITHOUT ROWID;
CREATE TABLE gap (
    session INTEGER NOT NULL REFERENCES session, number INTEGER NOT NULL, from_time INTEGER NOT NULL, until_time INTEGER NOT NULL,
    missed INTEGER NOT NULL, attempts INTEGER NOT NULL, cause INTEGER NOT NULL, text TEXT NOT NULL, channels TEXT NOT NULL,
    PRIMARY KEY (session, number)) WITHOUT ROWID;
CREATE TABLE event (
    session INTEGER NOT NULL REFERENCES session, time INTEGER NOT NULL, kind INTEGER NOT NULL, amount INTEGER NOT NULL, text TEXT NOT NULL,
    PRIMARY KEY (session, time, kind, amount, text)) WITHOUT ROWID;
CREATE TABLE comment (
    session INTEGER NOT NULL REFERENCES session, number INTEGER NOT NULL, time INTEGER NOT NULL, channel TEXT NOT NULL,
    value, text TEXT NOT NULL,
    PRIMARY KEY (session, number)) WITHOUT ROWID;
)";

// What a person opens in a viewer. `us` is the time as the table has it, for questions that are to be fast.
std::string Views() {
    return "CREATE VIEW sessions AS SELECT session, station, logger, " + Moment("began") + " AS began, device, family, port FROM session;"
           "CREATE VIEW readings AS SELECT " + Moment("r.time") + " AS time, s.station, s.logger, c.name AS channel, c.unit, r.value, "
           "ltrim(iif(s.station = '', '', s.station || '/') || s.logger || ' ') || c.name AS metric, r.time AS us "
           // In this order, which finds a stretch of time by the key.
           "FROM session s CROSS JOIN channel c ON c.session = s.session CROSS JOIN reading r ON r.session = c.session AND r.channel = c.place;"
           "CREATE VIEW gaps AS SELECT " + Moment("g.from_time") + " AS from_time, " + Moment("g.until_time") + " AS until_time, "
           "s.station, s.logger, g.missed, g.attempts, g.cause, g.text, (SELECT group_concat(c.name, ', ') FROM channel c "
           "WHERE c.session = g.session AND instr(' ' || g.channels || ' ', ' ' || c.place || ' ')) AS channels "
           "FROM gap g JOIN session s USING (session);"
           "CREATE VIEW events AS SELECT " + Moment("e.time") + " AS time, s.station, s.logger, e.kind, " + orvik::tables::kEventWord +
           " AS event, e.amount, e.text FROM event e JOIN session s USING (session);"
           "CREATE VIEW comments AS SELECT " + Moment("k.time") + " AS time, s.station, s.logger, c.name AS channel, k.value, k.text "
           "FROM comment k JOIN session s USING (session) LEFT JOIN channel c ON c.session = k.session AND c.key = k.channel;";
}

// A file's name as the path of a URI.
std::string Escaped(const std::string& path) {
    std::string text;
    for (const char letter : path) {
        char code[4];
        std::snprintf(code, sizeof code, "%%%02X", static_cast<unsigned>(static_cast<unsigned char>(letter)));
        text += letter == '/' ? "/" : code;
    }
    return text;
}

bool IsThere(const std::string& path) {
    std::error_code ignored;
    return std::filesystem::exists(path, ignored);
}
}  // namespace

std::string Moment(const std::string& column) {
    const std::string part = "((" + column + " % 1000000 + 1000000) % 1000000)";
    // Years that the calendar of SQLite lacks stay numbers.
    return "coalesce(strftime('%Y-%m-%dT%H:%M:%S', (" + column + " - " + part + ") / 1000000, 'unixepoch') || printf('.%06dZ', " + part +
           "), " + column + " || ' us')";
}

void File::Fail() const {
    if (m_aborted) throw CSinkFailure(m_path + ": it was broken off");
    throw CSinkFailure(m_path + ": " + (m_file != nullptr ? sqlite3_errmsg(m_file) : "it cannot be opened"));
}

void File::Open(const std::string& path, int flags) {
    Close();
    m_path = path;
    sqlite3* opened = nullptr;
    // Interrupting is for any thread even so.
    const int result = sqlite3_open_v2(path.c_str(), &opened, flags | SQLITE_OPEN_NOMUTEX, nullptr);
    {
        const std::lock_guard lock(m_lock);
        m_file = opened;
    }
    if (result != SQLITE_OK) Fail();
    sqlite3_extended_result_codes(m_file, 1);
    sqlite3_busy_handler(m_file, &OnBusy, this);
}

int File::Layout() {
    const auto ask = [this](const char* question) {
        Statement asked(*this, question);
        asked.Next();
        return asked.Number(0);
    };
    const sqlite3_int64 application = ask("PRAGMA application_id");
    if (application == 0 && ask("SELECT count(*) FROM sqlite_schema") == 0) return 0;
    if (application != kApplication) throw CSinkFailure(m_path + ": it is a database of something else");
    if (ask("PRAGMA user_version") != kLayout) throw CSinkFailure(m_path + ": a later version made it");
    return kLayout;
}

void File::OpenToWrite(const std::string& path) {
    Open(path, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    if (Layout() == 0) {
        // Before the first table, for the file's whole life; whole or not at all, whoever else begins at the same time.
        Run("PRAGMA journal_mode=WAL; BEGIN IMMEDIATE");
        if (Layout() == 0) {
            Run(kTables + Views() + "PRAGMA application_id=" + std::to_string(kApplication) +
                "; PRAGMA user_version=" + std::to_string(kLayout));
        }
        Run("COMMIT");
    }
    // What was committed outlives a power cut.
    Run("PRAGMA synchronous=FULL; PRAGMA cache_size=-65536");
}

int File::OnBusy(void* self, int tries) {
    if (static_cast<File*>(self)->m_aborted || tries >= kBusyTries) return 0;
    std::this_thread::sleep_for(kBusyPause);
    return 1;
}

void File::OpenToRead(const std::string& path) {
    Open(path, SQLITE_OPEN_READONLY);
    const int read = sqlite3_exec(m_file, "PRAGMA user_version", nullptr, nullptr, nullptr) & 0xFF;
    // Readers, too, write beside a file in write-ahead mode, to know of writers. Where that is not allowed there are none, unless one
    // has left something.
    if ((read == SQLITE_CANTOPEN || read == SQLITE_READONLY) && IsThere(path) && !IsThere(path + "-wal")) {
        Open("file:" + Escaped(path) + "?immutable=1", SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
        m_path = path;
    }
    if (Layout() == 0) throw CSinkFailure(m_path + ": it is empty");
}

void File::Close() {
    const std::lock_guard lock(m_lock);
    sqlite3_close_v2(m_file);
    m_file = nullptr;
}

void File::Run(const std::string& statements) {
    if (m_aborted || sqlite3_exec(m_file, statements.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) Fail();
}

void File::Abort() {
    const std::lock_guard lock(m_lock);
    m_aborted = true;
    if (m_file != nullptr) sqlite3_interrupt(m_file);
}

Statement::Statement(const File& file, const std::string& text) : m_file(file) {
    sqlite3_stmt* made = nullptr;
    const int result = sqlite3_prepare_v2(file.Handle(), text.c_str(), static_cast<int>(text.size()), &made, nullptr);
    m_statement.reset(made);
    if (result != SQLITE_OK) file.Fail();
}

bool Statement::Next() {
    const int result = m_file.Aborted() ? SQLITE_INTERRUPT : sqlite3_step(m_statement.get());
    if (result == SQLITE_ROW) return true;
    if (result != SQLITE_DONE) {
        sqlite3_reset(m_statement.get());
        m_file.Fail();
    }
    return false;
}

std::string Statement::Text(int column) const {
    const auto* const text = reinterpret_cast<const char*>(sqlite3_column_text(m_statement.get(), column));
    return text != nullptr ? std::string(text, static_cast<size_t>(sqlite3_column_bytes(m_statement.get(), column))) : std::string();
}

}  // namespace sqlite
