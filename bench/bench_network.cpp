// A transport over a network beside a bare pair of send and recv: 12 bytes out, the far end sends them back. The far end is the
// same thread in both cases, so a ratio tells what the layers cost.
#include <benchmark/benchmark.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "bench/bench_support.h"
#include "comm/line_connection.h"
#include "comm/serial_orvik.h"
#include "comm/transport.h"

namespace {
constexpr size_t kFrame = 12;  // a Modbus TCP request

// Sends back what comes, to one that connects.
class Echo {
public:
    Echo() {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        BENCH_REQUIRE(bind(m_listener, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 && listen(m_listener, 1) == 0);
        socklen_t length = sizeof address;
        getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &length);
        m_port = ntohs(address.sin_port);
        m_thread = std::thread([this] {
            const int fd = accept(m_listener, nullptr, nullptr);
            NoDelay(fd);
            char bytes[kFrame];
            while (recv(fd, bytes, kFrame, MSG_WAITALL) == ssize_t{kFrame} &&
                   send(fd, bytes, kFrame, MSG_NOSIGNAL) == ssize_t{kFrame}) {
            }
            close(fd);
        });
    }
    ~Echo() {
        m_thread.join();  // when its client has gone
        close(m_listener);
    }
    static void NoDelay(int fd) {
        const int on = 1;
        setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    }
    uint16_t Port() const { return m_port; }

private:
    const int m_listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    uint16_t m_port = 0;
    std::thread m_thread;
};

class RawTrip {
public:
    explicit RawTrip(const Echo& echo) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(echo.Port());
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        BENCH_REQUIRE(connect(m_fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0);
        Echo::NoDelay(m_fd);
    }
    ~RawTrip() { close(m_fd); }
    void operator()() {
        char bytes[kFrame] = {};
        BENCH_REQUIRE(send(m_fd, bytes, kFrame, 0) == ssize_t{kFrame});
        BENCH_REQUIRE(recv(m_fd, bytes, kFrame, MSG_WAITALL) == ssize_t{kFrame});
    }

private:
    const int m_fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
};

class TransportTrip {
public:
    explicit TransportTrip(const Echo& echo) {
        m_connection->AddRef();
        m_transport = OrvikMakeTransport(m_port, *m_connection);
        const std::string address = "tcp://127.0.0.1:" + std::to_string(echo.Port());
        m_transport->Open(address.c_str(), {}, m_transport->Now() + std::chrono::seconds(5));
    }
    ~TransportTrip() {
        m_transport.reset();
        m_connection->Release();
    }
    void operator()() {
        const BYTE bytes[kFrame] = {};
        const auto until = m_transport->Now() + std::chrono::seconds(5);
        m_transport->Send(bytes, until);
        m_received.clear();
        while (m_received.size() < kFrame) BENCH_REQUIRE(m_transport->Receive(m_received, until));
    }

private:
    CSerialOrvik m_port;
    CLineConnection* const m_connection = new CLineConnection;
    std::unique_ptr<ITransport> m_transport;
    std::vector<BYTE> m_received;
};

double Median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + static_cast<ptrdiff_t>(values.size() / 2), values.end());
    return values[values.size() / 2];
}

// The ways take turns, and a ratio is the median of those of the turns: how long a wake-up takes depends on what else goes on.
void NetworkRoundTrips(benchmark::State& state) {
    constexpr int trips = 50;
    Echo echoes[2];
    RawTrip raw(echoes[0]);
    TransportTrip transport(echoes[1]);
    const auto measure = [](auto& trip) {
        trip();  // the machine has just done something else
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < trips; ++i) trip();
        return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start).count() / trips;
    };
    std::vector<double> byRaw, byTransport, ratio;
    for (auto _ : state) {
        byRaw.push_back(measure(raw));
        byTransport.push_back(measure(transport));
        ratio.push_back(byTransport.back() / byRaw.back());
    }
    state.counters["raw_ns"] = Median(byRaw);
    state.counters["transport_ns"] = Median(byTransport);
    state.counters["transport/raw"] = Median(ratio);
}

BENCHMARK(NetworkRoundTrips)->Iterations(300)->UseRealTime()->Unit(benchmark::kMillisecond);
}  // namespace

BENCHMARK_MAIN();
