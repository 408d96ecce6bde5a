// A SQLite file with the tables of docs/sqlite.md, and statements on it. Failures are CSinkFailure with SQLite's own reason. One
// thread, but for Abort.
#pragma once

#include <sqlite3.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <string>

namespace sqlite {

class File {
public:
    // To write: made where it is missing. A file of anybody else's, or of a later layout, is refused and left as it is.
    void OpenToWrite(const std::string& path);
    // Also where nothing may be written beside it.
    void OpenToRead(const std::string& path);
    void Close();
    ~File() { Close(); }

    void Run(const std::string& statements);
    // What is under way fails soon, and what comes later at once.
    void Abort();
    bool Aborted() const { return m_aborted; }

    sqlite3* Handle() const { return m_file; }
    [[noreturn]] void Fail() const;

private:
    void Open(const std::string& path, int flags);
    static int OnBusy(void* self, int tries);
    // 0: an empty file.
    int Layout();

    sqlite3* m_file = nullptr;
    std::string m_path;
    std::mutex m_lock;  // m_file comes and goes under it
    std::atomic<bool> m_aborted = false;
};

// An SQL expression: the microseconds of a column as "2026-11-23T06:45:12.123456Z".
std::string Moment(const std::string& column);

// A statement that is run again and again with other values.
class Statement {
public:
    Statement(const File& file, const std::string& text);

    // Without values: with those that it has.
    template <class... Values>
    void Run(const Values&... values) {
        Bind(values...);
        Next();
        Reset();
    }
    template <class... Values>
    void Bind(const Values&... values) {
        Reset();
        int place = 0;
        (Put(++place, values), ...);
    }
    // One value, from 1 on, of a statement that is reset.
    void Put(int place, sqlite3_int64 value) { sqlite3_bind_int64(m_statement.get(), place, value); }
    void Put(int place, double value) { sqlite3_bind_double(m_statement.get(), place, value); }  // a NaN is null
    void Put(int place, const std::string& value) {
        sqlite3_bind_text(m_statement.get(), place, value.data(), static_cast<int>(value.size()), SQLITE_TRANSIENT);
    }
    // The next row; false behind the last one.
    bool Next();
    // The rows that are left are not wanted.
    void Reset() { sqlite3_reset(m_statement.get()); }

    sqlite3_int64 Number(int column) const { return sqlite3_column_int64(m_statement.get(), column); }
    double Real(int column) const { return sqlite3_column_double(m_statement.get(), column); }
    bool IsNull(int column) const { return sqlite3_column_type(m_statement.get(), column) == SQLITE_NULL; }
    std::string Text(int column) const;

private:
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };
    const File& m_file;
    std::unique_ptr<sqlite3_stmt, Finalize> m_statement;
};

}  // namespace sqlite
