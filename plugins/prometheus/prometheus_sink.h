// Serves the station's latest status at /metrics. Scrapes are answered on a thread of the server's own, whoever asks and however
// slowly; the host's thread only leaves a status behind.
#pragma once

#include <chrono>
#include <memory>
#include <mutex>

#include "plugins/prometheus/listen_address.h"
#include "record/sink.h"

struct MHD_Daemon;

namespace prometheus {

class Sink final : public ISink {
public:
    explicit Sink(ListenAddress address) : m_address(std::move(address)) {}
    ~Sink() override { Disconnect(); }

    void Connect() override;
    void Deliver(const CSinkBatch&) override {}
    void Tell(const CSinkStatus& status) override;
    void Disconnect() override;
    void Abort() override {}
    bool WantsReadings() const override { return false; }

    // The page as it is now. Any thread.
    std::string Page() const;
    // Of what listens; 0 while nothing does.
    int Port() const;

private:
    using Clock = std::chrono::steady_clock;
    const ListenAddress m_address;
    MHD_Daemon* m_server = nullptr;
    mutable std::mutex m_lock;
    std::shared_ptr<const CSinkStatus> m_status = std::make_shared<CSinkStatus>();
    Clock::time_point m_told{};
};

}  // namespace prometheus
