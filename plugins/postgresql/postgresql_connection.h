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

class Connection {
public:
    // Of a URI or the words that libpq knows; `password` goes before one that stands there, where it is not empty.
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
    [[noreturn]] void Fail(const char* said) const;
    // Until the socket can be read, or written as well where `sends`.
    void Wait(bool sends);
    void Flush();
    Result Take();

    PGconn* m_connection = nullptr;
    std::atomic<bool> m_aborted = false;
};

}  // namespace postgresql
