// A connection to a PostgreSQL server that never waits for longer than it should: it ends a wait without any progress after a
// minute, and soon after Abort. Failures are CSinkFailure with the server's own reason. One thread, but for Abort.
#pragma once

#include <libpq-fe.h>

#include <atomic>
#include <memory>
#include <string>
#include <vector>

namespace postgresql {

struct ClearResult {
    void operator()(PGresult* result) const { PQclear(result); }
};
using Result = std::unique_ptr<PGresult, ClearResult>;

// A column of rows that go to the server at once, for unnest().
class Column {
public:
    void Add(const std::string& value);
    template <class Number>
    void Add(Number value) {
        Add(std::to_string(value));
    }
    operator std::string() const { return m_text + "}"; }

private:
    std::string m_text = "{";
};

class Connection {
public:
    // That `address` is a URI or words that libpq knows; the complaint names the setting.
    static void Check(const std::string& address);
    // `password` goes before one that stands there, where it is not empty.
    void Open(const std::string& address, const std::string& password);
    void Close();
    ~Connection() { Close(); }

    // One statement, or several without parameters. A parameter is a text in UTF-8.
    Result Run(const std::string& statement, const std::vector<std::string>& parameters = {});
    // Bytes for a COPY ... FROM STDIN, which it ends.
    void Copy(const std::string& statement, const std::string& bytes);
    // Between quotes, as a name in a statement.
    std::string Name(const std::string& name);

    void Abort() { m_aborted = true; }

private:
    using Options = std::unique_ptr<PQconninfoOption, decltype(&PQconninfoFree)>;
    static Options OptionsOf(const std::string& address);
    [[noreturn]] void Fail(const char* said) const;
    // Until the socket can be read, or written as well where `sends`.
    void Wait(bool sends);
    void Flush();
    Result Take();

    PGconn* m_connection = nullptr;
    std::atomic<bool> m_aborted = false;
};

}  // namespace postgresql
