#include "plugins/sqlite/sqlite_file.h"

#include "record/sink.h"

namespace sqlite {
namespace {
constexpr int kApplication = 0x4F525649, kLayout = 1;  // "ORVI" in the file's head, and the layout beside it
constexpr int kBusyFor = 10'000;                       // ms that another program may hold the file

constexpr char kTables[] = R"(
CREATE TABLE session (
    session INTEGER PRIMARY KEY, station TEXT NOT NULL, logger TEXT NOT NULL, began INTEGER NOT NULL,
    device TEXT NOT NULL, family TEXT NOT NULL, port TEXT NOT NULL, UNIQUE (station, logger, began));
CREATE TABLE channel (
    session INTEGER NOT NULL REFERENCES session, place INTEGER NOT NULL, key TEXT NOT NULL, name TEXT NOT NULL, unit TEXT NOT NULL,
    PRIMARY KEY (session, place)) WITHOUT ROWID;
CREATE TABLE reading (
    session INTEGER NOT NULL, channel INTEGER NOT NULL, time INTEGER NOT NULL, value REAL,
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
    value REAL NOT NULL, text TEXT NOT NULL,
    PRIMARY KEY (session, number)) WITHOUT ROWID;
CREATE VIEW readings AS
    SELECT s.station, s.logger, c.name AS channel, c.unit,
           strftime('%Y-%m-%dT%H:%M:%S', (r.time - ((r.time % 1000000) + 1000000) % 1000000) / 1000000, 'unixepoch')
               || printf('.%06dZ', ((r.time % 1000000) + 1000000) % 1000000) AS time, r.value
    FROM reading r JOIN channel c ON c.session = r.session AND c.place = r.channel JOIN session s ON s.session = r.session;
)";
}  // namespace

void File::Fail() const {
    throw CSinkFailure(m_path + ": " + (m_file != nullptr ? sqlite3_errmsg(m_file) : "it cannot be opened"));
}

void File::Open(const std::string& path, int flags) {
    Close();
    m_path = path;
    sqlite3* opened = nullptr;
    const int result = sqlite3_open_v2(path.c_str(), &opened, flags, nullptr);
    {
        const std::lock_guard lock(m_lock);
        m_file = opened;
    }
    if (result != SQLITE_OK) Fail();
    sqlite3_extended_result_codes(m_file, 1);
    sqlite3_busy_timeout(m_file, kBusyFor);
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
            Run(kTables);
            Run(("PRAGMA application_id=" + std::to_string(kApplication) + "; PRAGMA user_version=" + std::to_string(kLayout)).c_str());
        }
        Run("COMMIT");
    }
    // What was committed outlives a power cut.
    Run("PRAGMA synchronous=FULL; PRAGMA cache_size=-65536");
}

void File::OpenToRead(const std::string& path) {
    Open(path, SQLITE_OPEN_READONLY);
    if (Layout() == 0) throw CSinkFailure(m_path + ": it is empty");
}

void File::Close() {
    const std::lock_guard lock(m_lock);
    sqlite3_close_v2(m_file);
    m_file = nullptr;
}

void File::Run(const char* statements) {
    if (sqlite3_exec(m_file, statements, nullptr, nullptr, nullptr) != SQLITE_OK) Fail();
}

void File::Abort() {
    const std::lock_guard lock(m_lock);
    m_aborted = true;
    if (m_file != nullptr) {
        sqlite3_busy_timeout(m_file, 0);
        sqlite3_interrupt(m_file);
    }
}

Statement::Statement(const File& file, const char* text) : m_file(file) {
    sqlite3_stmt* made = nullptr;
    const int result = sqlite3_prepare_v2(file.Handle(), text, -1, &made, nullptr);
    m_statement.reset(made);
    if (result != SQLITE_OK) file.Fail();
}

bool Statement::Next() {
    const int result = sqlite3_step(m_statement.get());
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
