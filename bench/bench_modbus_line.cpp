// One reading of a Modbus slave over a line, as a recorder makes it, beside libmodbus' own client and beside the bare system
// calls with the same bytes. Each has a connection of its own to the same kind of server, a thread that answers at once, so a
// ratio tells what the layers cost.
#include <benchmark/benchmark.h>
#include <modbus.h>

#include <string>

#include "bench/loopback.h"
#include "bench/one_processor.h"
#include "plugins/modbus/modbus_logger.h"
#include "plugins/modbus/modbus_mbap.h"

namespace {
using Bytes = std::vector<BYTE>;

Bytes RequestFor(WORD registers) { return modbus::NetworkFrame(1, 1, modbus::RequestMessage({.count = registers})); }
Bytes AnswerWith(WORD registers) {
    Bytes data;
    for (WORD i = 0; i < registers; ++i) modbus::AppendWord(data, static_cast<WORD>(1000 + i));
    return modbus::NetworkFrame(1, 1, modbus::AnswerMessage({.count = registers}, data));
}

// Always the same answer but for the transaction.
std::function<const Bytes&(const Bytes&)> Answering(WORD registers) {
    return [answer = AnswerWith(registers)](const Bytes& request) mutable -> const Bytes& {
        std::copy_n(request.begin(), 2, answer.begin());
        return answer;
    };
}

class Libmodbus {
public:
    Libmodbus(const bench::LoopbackServer& server, WORD registers)
        : m_context(modbus_new_tcp("127.0.0.1", server.Port())), m_registers(registers) {
        BENCH_REQUIRE(modbus_set_slave(m_context, 1) == 0 && modbus_connect(m_context) == 0);
    }
    ~Libmodbus() {
        modbus_close(m_context);
        modbus_free(m_context);
    }
    void operator()() {
        const auto count = static_cast<int>(m_registers.size());
        BENCH_REQUIRE(modbus_read_registers(m_context, 0, count, m_registers.data()) == count);
        BENCH_REQUIRE(m_registers.back() == 1000 + count - 1);
    }

private:
    modbus_t* const m_context;
    std::vector<uint16_t> m_registers;
};

// The plug-in's logger: asks, decodes a channel for each register, hands them over, and tells its connection's states.
class PlugIn {
public:
    PlugIn(const bench::LoopbackServer& server, WORD registers) : m_logger(Device(registers)) {
        m_logger.Connect(("tcp://127.0.0.1:" + std::to_string(server.Port())).c_str(), 1000);
    }
    void operator()() {
        m_logger.ReadSample(m_values);
        BENCH_REQUIRE(m_values.GetAt(m_values.GetUpperBound()) == static_cast<double>(1000 + m_values.GetUpperBound()));
    }

private:
    static modbus::Description Device(WORD registers) {
        modbus::Description description;
        for (WORD i = 0; i < registers; ++i) description.channels.push_back({.first = i, .type = modbus::ValueType::Uint16});
        return description;
    }
    modbus::Logger m_logger;
    CDoubleArray m_values;
};

// The ways take turns, and a ratio is the median of those of the turns: how long a wake-up takes depends on what else goes on.
void ReadRegisters(benchmark::State& state) {
    const bench::OneProcessor together;
    const auto registers = static_cast<WORD>(state.range(0));
    const Bytes request = RequestFor(registers);
    bench::LoopbackServer servers[] = {
        {request.size(), Answering(registers)}, {request.size(), Answering(registers)}, {request.size(), Answering(registers)}};
    bench::BareTrip bare(servers[0], request, AnswerWith(registers).size());
    Libmodbus libmodbus(servers[1], registers);
    PlugIn plugIn(servers[2], registers);
    std::vector<double> byBare, byLibmodbus, byPlugIn, toBare, toLibmodbus;
    for (auto _ : state) {
        byBare.push_back(bench::TimeTrips(bare));
        byLibmodbus.push_back(bench::TimeTrips(libmodbus));
        byPlugIn.push_back(bench::TimeTrips(plugIn));
        toBare.push_back(byPlugIn.back() / byBare.back());
        toLibmodbus.push_back(byPlugIn.back() / byLibmodbus.back());
    }
    state.counters["bare_ns"] = bench::Median(byBare);
    state.counters["libmodbus_ns"] = bench::Median(byLibmodbus);
    state.counters["plugin_ns"] = bench::Median(byPlugIn);
    state.counters["plugin/bare"] = bench::Median(toBare);
    state.counters["plugin/libmodbus"] = bench::Median(toLibmodbus);
}
BENCHMARK(ReadRegisters)->ArgName("registers")->Arg(1)->Arg(100)->Iterations(300)->UseRealTime()->Unit(benchmark::kMillisecond);
}  // namespace

BENCHMARK_MAIN();
