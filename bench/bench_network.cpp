// A transport over a network beside a bare pair of send and recv: 12 bytes out, the far end sends them back. The far end is the
// same thread in both cases, so a ratio tells what the layers cost.
#include <benchmark/benchmark.h>

#include <string>

#include "bench/loopback.h"
#include "bench/one_processor.h"
#include "comm/line_connection.h"
#include "comm/serial_orvik.h"
#include "comm/transport.h"

namespace {
constexpr size_t kFrame = 12;  // a Modbus TCP request

class TransportTrip {
public:
    explicit TransportTrip(const bench::LoopbackServer& echo) {
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

// The ways take turns, and a ratio is the median of those of the turns: how long a wake-up takes depends on what else goes on.
void NetworkRoundTrips(benchmark::State& state) {
    const bench::OneProcessor together;
    const auto same = [](const bench::Octets& request) -> const bench::Octets& { return request; };
    bench::LoopbackServer echoes[] = {{kFrame, same}, {kFrame, same}};
    bench::BareTrip raw(echoes[0], bench::Octets(kFrame), kFrame);
    TransportTrip transport(echoes[1]);
    std::vector<double> byRaw, byTransport, ratio;
    for (auto _ : state) {
        byRaw.push_back(bench::TimeTrips(raw));
        byTransport.push_back(bench::TimeTrips(transport));
        ratio.push_back(byTransport.back() / byRaw.back());
    }
    state.counters["raw_ns"] = bench::Median(byRaw);
    state.counters["transport_ns"] = bench::Median(byTransport);
    state.counters["transport/raw"] = bench::Median(ratio);
}

BENCHMARK(NetworkRoundTrips)->Iterations(300)->UseRealTime()->Unit(benchmark::kMillisecond);
}  // namespace

BENCHMARK_MAIN();
