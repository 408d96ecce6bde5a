// Sends readings in the line protocol over HTTP: a request for about a megabyte, answered before the next one. A point that is sent
// again takes its own place, by its tags and its time.
#pragma once

#include <atomic>
#include <memory>
#include <string>

#include "record/sink.h"

namespace influx {

struct Settings {
    std::string address;           // "http://host:8086"
    std::string path;              // of writes, with its query
    std::string ping;              // a path that answers 2xx where the server is there; empty: none is known
    std::string user, password, token, caFile;
    std::string measurement = "orvik";

    // A CSinkFailure that begins with the key to blame.
    static Settings Read(IPropertyDB& db, const std::string& folder);
    static const char* const* Keys();
};

class Sink final : public ISink {
public:
    explicit Sink(Settings settings);
    ~Sink() override;

    void Connect() override;
    void Deliver(const CSinkBatch& batch) override;
    void Disconnect() override;
    void Abort() override { m_aborted = true; }

private:
    struct Http;
    void Post(const std::string& body);

    const Settings m_settings;
    std::unique_ptr<Http> m_http;  // while connected
    std::atomic<bool> m_aborted = false;
};

}  // namespace influx
