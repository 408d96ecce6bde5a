// Puts readings into the tables of a schema (postgresql_layout.h): a batch is one transaction, and what is there already stays as it is.
#pragma once

#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "plugins/postgresql/postgresql_connection.h"
#include "record/sink.h"

namespace postgresql {

class Sink final : public ISink {
public:
    struct Settings {
        std::string address, password, schema;
    };
    explicit Sink(Settings settings) : m_settings(std::move(settings)) {}

    void Connect() override;
    void Deliver(const CSinkBatch& batch) override;
    void Disconnect() override;
    void Abort() override { m_connection.Abort(); }

private:
    struct Known {
        std::string number;  // of the session, in its table
        std::vector<CSinkChannel> channels;
    };
    using Key = std::tuple<std::string, std::string, __int64>;
    static Key KeyOf(const CSinkSource& source) { return {source.station, source.logger, source.began}; }
    void ForgetCleared(const CSinkBatch& batch);
    const std::string& SessionOf(const CSinkSource& source);
    void WriteReadings(const CSinkBatch& batch);
    void WriteNotes(const CSinkPart& part, const std::string& session);

    const Settings m_settings;
    Connection m_connection;
    std::map<Key, Known> m_sessions;  // that were committed, or are being written
};

}  // namespace postgresql
