// Puts readings into a file (sqlite_file.h): a batch is one transaction, and what is there already stays as it is.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "plugins/sqlite/sqlite_file.h"
#include "record/sink.h"

namespace sqlite {

class Sink final : public ISink {
public:
    explicit Sink(std::string path) : m_path(std::move(path)) {}

    void Connect() override;
    void Deliver(const CSinkBatch& batch) override;
    void Disconnect() override;
    void Abort() override { m_file.Abort(); }

private:
    struct Statements;
    struct Known {
        sqlite3_int64 number = 0;  // of the session, in its table
        std::vector<CSinkChannel> channels;
    };
    void Write(const CSinkBatch& batch);
    bool IsThere(sqlite3_int64 session);
    sqlite3_int64 SessionOf(const CSinkSource& source);
    void WriteReadings(const CSinkPart& part, size_t channel, sqlite3_int64 session);
    void WriteNotes(const CSinkPart& part, sqlite3_int64 session);

    const std::string m_path;
    File m_file;
    std::shared_ptr<Statements> m_statements;
    std::map<std::tuple<std::string, std::string, __int64>, Known> m_sessions;  // that were committed, or are being written
};

}  // namespace sqlite
