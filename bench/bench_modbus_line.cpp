// One reading of a Modbus slave over a line, as a recorder makes it, beside libmodbus' own client and beside the bare system
// calls with the same bytes. Each has a connection of its own to the same kind of server, a thread that answers at once, so a
// ratio tells what the layers cost.
#include <benchmark/benchmark.h>
#include <modbus.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <thread>
#include <vector>

#include "bench/bench_support.h"
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

void NoDelay(int fd) {
    const int on = 1;
    setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

// Answers one that connects, always the same but for the transaction.
class Server {
public:
    explicit Server(WORD registers) : m_answer(AnswerWith(registers)) {
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
            BYTE request[12];
            while (recv(fd, request, sizeof request, MSG_WAITALL) == ssize_t{sizeof request}) {
                std::copy_n(request, 2, m_answer.begin());
                if (send(fd, m_answer.data(), m_answer.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(m_answer.size())) break;
            }
            close(fd);
        });
    }
    ~Server() {
        m_thread.join();  // when its client has gone
        close(m_listener);
    }
    uint16_t Port() const { return m_port; }

private:
    const int m_listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    uint16_t m_port = 0;
    Bytes m_answer;
    std::thread m_thread;
};

class Bare {
public:
    Bare(const Server& server, WORD registers) : m_request(RequestFor(registers)), m_answer(AnswerWith(registers).size()) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(server.Port());
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        BENCH_REQUIRE(connect(m_fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0);
        NoDelay(m_fd);
    }
    ~Bare() { close(m_fd); }
    void operator()() {
        BENCH_REQUIRE(send(m_fd, m_request.data(), m_request.size(), 0) == static_cast<ssize_t>(m_request.size()));
        BENCH_REQUIRE(recv(m_fd, m_answer.data(), m_answer.size(), MSG_WAITALL) == static_cast<ssize_t>(m_answer.size()));
    }

private:
    const Bytes m_request;
    Bytes m_answer;
    const int m_fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
};

class Libmodbus {
public:
    Libmodbus(const Server& server, WORD registers)
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
    PlugIn(const Server& server, WORD registers) : m_logger(Device(registers)) {
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

double Median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + static_cast<ptrdiff_t>(values.size() / 2), values.end());
    return values[values.size() / 2];
}

// The ways take turns, and a ratio is the median of those of the turns: how long a wake-up takes depends on what else goes on.
void ReadRegisters(benchmark::State& state) {
    constexpr int trips = 50;
    const auto registers = static_cast<WORD>(state.range(0));
    Server servers[] = {Server(registers), Server(registers), Server(registers)};
    Bare bare(servers[0], registers);
    Libmodbus libmodbus(servers[1], registers);
    PlugIn plugIn(servers[2], registers);
    const auto measure = [](auto& read) {
        read();  // the machine has just done something else
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < trips; ++i) read();
        return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start).count() / trips;
    };
    std::vector<double> byBare, byLibmodbus, byPlugIn, toBare, toLibmodbus;
    for (auto _ : state) {
        byBare.push_back(measure(bare));
        byLibmodbus.push_back(measure(libmodbus));
        byPlugIn.push_back(measure(plugIn));
        toBare.push_back(byPlugIn.back() / byBare.back());
        toLibmodbus.push_back(byPlugIn.back() / byLibmodbus.back());
    }
    state.counters["bare_ns"] = Median(byBare);
    state.counters["libmodbus_ns"] = Median(byLibmodbus);
    state.counters["plugin_ns"] = Median(byPlugIn);
    state.counters["plugin/bare"] = Median(toBare);
    state.counters["plugin/libmodbus"] = Median(toLibmodbus);
}
BENCHMARK(ReadRegisters)->ArgName("registers")->Arg(1)->Arg(100)->Iterations(300)->UseRealTime()->Unit(benchmark::kMillisecond);
}  // namespace

BENCHMARK_MAIN();
