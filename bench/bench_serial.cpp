// Serial ports beside Asio's and the bare system calls, over pseudo terminals in one process.
//
// Round trips: one byte out, the far end sends it back, one byte in. The far end is the same thread in every case, so a
// ratio tells what the layers cost.
#include <asio/io_context.hpp>
#include <asio/read.hpp>
#include <asio/serial_port.hpp>
#include <asio/write.hpp>
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "bench/one_processor.h"
#include "comm/serial_wnd.h"

namespace {
// A raw pseudo terminal; its far end may echo from a thread of its own.
class Line {
public:
    enum class Far { Quiet, Echoes, Reads };
    explicit Line(Far far) {
        m_master = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        char name[64];
        if (m_master < 0 || grantpt(m_master) != 0 || unlockpt(m_master) != 0 || ptsname_r(m_master, name, sizeof(name)) != 0) {
            std::abort();
        }
        m_device = name;
        m_keeper = open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);  // so that no moment without a user hangs the line up
        termios raw;
        tcgetattr(m_keeper, &raw);
        cfmakeraw(&raw);
        tcsetattr(m_keeper, TCSANOW, &raw);
        if (far == Far::Quiet) return;
        m_far = std::thread([this, far] {
            char bytes[4096];
            const size_t most = far == Far::Echoes ? 1 : sizeof bytes;
            for (ssize_t count; (count = read(m_master, bytes, most)) > 0 && !m_done;) {
                m_read += static_cast<size_t>(count);
                if (far == Far::Echoes && write(m_master, bytes, 1) != 1) break;
            }
        });
    }
    ~Line() {
        m_done = true;
        if (m_far.joinable()) {
            if (write(m_keeper, "", 1) != 1) std::abort();
            m_far.join();
        }
        close(m_keeper);
        close(m_master);
    }
    const char* Device() const { return m_device.c_str(); }
    // Until the far end has read so much in all.
    void WaitFor(size_t bytes) const {
        while (m_read < bytes) std::this_thread::yield();
    }
    void Send(const std::string& bytes) {
        if (write(m_master, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) std::abort();
    }

private:
    int m_master = -1, m_keeper = -1;
    std::string m_device;
    std::atomic<bool> m_done{false};
    std::atomic<size_t> m_read{0};
    std::thread m_far;
};

// The ways to make a round trip, and to send.
class RawTrip {
public:
    explicit RawTrip(const Line& line) : m_fd(open(line.Device(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {}
    ~RawTrip() { close(m_fd); }
    void operator()() {
        char byte = 'x';
        pollfd ready{m_fd, POLLIN, 0};
        if (write(m_fd, &byte, 1) != 1 || poll(&ready, 1, -1) != 1 || read(m_fd, &byte, 1) != 1) std::abort();
    }
    void Send(const std::string& bytes) {
        for (size_t sent = 0; sent < bytes.size();) {
            pollfd ready{m_fd, POLLOUT, 0};
            const ssize_t count = write(m_fd, bytes.data() + sent, bytes.size() - sent);
            if (count > 0) sent += static_cast<size_t>(count);
            if (count < 0 && (errno != EAGAIN || poll(&ready, 1, -1) != 1)) std::abort();
        }
    }

private:
    int m_fd;
};

class AsioTrip {
public:
    explicit AsioTrip(const Line& line) : m_port(m_context, line.Device()) {}
    void operator()() {
        char byte = 'x';
        asio::async_write(m_port, asio::buffer(&byte, 1), [](const asio::error_code& error, size_t) { Require(!error); });
        asio::async_read(m_port, asio::buffer(&byte, 1), [](const asio::error_code& error, size_t) { Require(!error); });
        m_context.run();
        m_context.restart();
    }
    void Send(const std::string& bytes) {
        asio::async_write(m_port, asio::buffer(bytes), [](const asio::error_code& error, size_t) { Require(!error); });
        m_context.run();
        m_context.restart();
    }

private:
    static void Require(bool well) {
        if (!well) std::abort();
    }
    asio::io_context m_context;
    asio::serial_port m_port;
};

class PortTrip {
public:
    explicit PortTrip(const Line& line) {
        if (m_port.Open(line.Device(), 0, 0, true) != 0 || m_port.SetupReadTimeouts(CSerial::ReadBlocking) != 0) std::abort();
    }
    void operator()() {
        char byte = 'x';
        DWORD count = 0;
        if (m_port.Write(&byte, size_t{1}, &count, nullptr, INFINITE) != 0) std::abort();
        if (m_port.Read(&byte, 1, &count, nullptr, INFINITE) != 0 || count != 1) std::abort();
    }
    void Send(const std::string& bytes) {
        DWORD count = 0;
        if (m_port.Write(bytes.data(), bytes.size(), &count, nullptr, INFINITE) != 0 || count != bytes.size()) std::abort();
    }

private:
    CSerial m_port;
};

class ListenerTrip {
public:
    explicit ListenerTrip(const Line& line) {
        WNDCLASSA about{};
        about.lpfnWndProc = ::DefWindowProcA;
        about.lpszClassName = "bench";
        ::RegisterClassA(&about);
        m_window = ::CreateWindowExA(0, "bench", "", WS_POPUP, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
        if (m_port.Open(line.Device(), m_window, 0, 0, 0, 0) != 0) std::abort();
    }
    ~ListenerTrip() {
        m_port.Close();
        ::DestroyWindow(m_window);
    }
    void operator()() {
        char byte = 'x';
        DWORD count = 0;
        if (m_port.Write(&byte, size_t{1}, &count, nullptr, INFINITE) != 0) std::abort();
        do {
            MSG message;
            if (::GetMessageA(&message, m_window, 0, 0) <= 0 || message.wParam != CSerial::EventReceived) std::abort();
            if (m_port.Read(&byte, 1, &count, nullptr, INFINITE) != 0) std::abort();
        } while (count == 0);
    }

private:
    HWND m_window = nullptr;
    CSerialWnd m_port;
};

double Median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + static_cast<ptrdiff_t>(values.size() / 2), values.end());
    return values[values.size() / 2];
}

// How long a wake-up takes depends on what the machine does besides, by a factor of three and more. So the ways take turns, a
// few trips each, and a ratio is the median of the ratios within one turn. On one processor it is their work that is compared;
// on several, where the scheduler put the threads counts most.
void RoundTrips(benchmark::State& state) {
    constexpr int trips = 25;
    std::optional<bench::OneProcessor> together;
    if (state.range(0)) together.emplace();
    Line lines[] = {Line(Line::Far::Echoes), Line(Line::Far::Echoes), Line(Line::Far::Echoes), Line(Line::Far::Echoes)};
    RawTrip raw(lines[0]);
    PortTrip port(lines[1]);
    ListenerTrip listener(lines[2]);
    AsioTrip asio(lines[3]);
    const auto measure = [](auto& trip) {
        trip();  // the machine has just done something else
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < trips; ++i) trip();
        return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start).count() / trips;
    };
    std::vector<double> byRaw, byPort, byListener, byAsio, portRatio, listenerRatio, asioRatio;
    for (auto _ : state) {
        byRaw.push_back(measure(raw));
        byPort.push_back(measure(port));
        byListener.push_back(measure(listener));
        byAsio.push_back(measure(asio));
        portRatio.push_back(byPort.back() / byRaw.back());
        listenerRatio.push_back(byListener.back() / byRaw.back());
        asioRatio.push_back(byPort.back() / byAsio.back());
    }
    state.counters["raw_ns"] = Median(byRaw);
    state.counters["port_ns"] = Median(byPort);
    state.counters["listener_ns"] = Median(byListener);
    state.counters["asio_ns"] = Median(byAsio);
    state.counters["port/asio"] = Median(asioRatio);
    state.counters["port/raw"] = Median(portRatio);
    state.counters["listener/raw"] = Median(listenerRatio);
}

// A mebibyte out, until the far end has read it all.
void Sending(benchmark::State& state) {
    const std::string bytes(1 << 20, 'x');
    Line lines[] = {Line(Line::Far::Reads), Line(Line::Far::Reads), Line(Line::Far::Reads)};
    RawTrip raw(lines[0]);
    PortTrip port(lines[1]);
    AsioTrip asio(lines[2]);
    size_t sent = 0;
    const auto measure = [&](auto& way, const Line& line) {
        const auto start = std::chrono::steady_clock::now();
        way.Send(bytes);
        line.WaitFor(sent);
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    };
    std::vector<double> byRaw, byPort, byAsio, ratio;
    for (auto _ : state) {
        sent += bytes.size();
        byRaw.push_back(measure(raw, lines[0]));
        byPort.push_back(measure(port, lines[1]));
        byAsio.push_back(measure(asio, lines[2]));
        ratio.push_back(byPort.back() / byAsio.back());
    }
    state.counters["raw_ms"] = Median(byRaw);
    state.counters["port_ms"] = Median(byPort);
    state.counters["asio_ms"] = Median(byAsio);
    state.counters["port/asio"] = Median(ratio);
}

// One byte that has come in already, in a port's receive buffer; beside it, the same from the system.
constexpr int kWaiting = 2000;

void ReadReceivedPort(benchmark::State& state) {
    Line line(Line::Far::Quiet);
    CSerial port;
    if (port.Open(line.Device(), 0, 0, state.range(0) != 0) != 0) std::abort();
    char byte = 0;
    DWORD count = 0;
    for (auto _ : state) {
        line.Send(std::string(kWaiting + 1, 'x'));
        do port.Read(&byte, 1, &count, nullptr, INFINITE);
        while (count == 0);
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < kWaiting; ++i) {
            if (port.Read(&byte, 1, &count, nullptr, INFINITE) != 0 || count != 1) std::abort();
        }
        const std::chrono::duration<double> gone = std::chrono::steady_clock::now() - start;
        state.SetIterationTime(gone.count() / kWaiting);
    }
}

void ReadReceivedRaw(benchmark::State& state) {
    Line line(Line::Far::Quiet);
    const int fd = open(line.Device(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    char byte = 0;
    for (auto _ : state) {
        line.Send(std::string(kWaiting + 1, 'x'));
        while (read(fd, &byte, 1) != 1) {
        }
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < kWaiting; ++i) {
            if (read(fd, &byte, 1) != 1) std::abort();
        }
        const std::chrono::duration<double> gone = std::chrono::steady_clock::now() - start;
        state.SetIterationTime(gone.count() / kWaiting);
    }
    close(fd);
}

BENCHMARK(Sending)->Iterations(50)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(RoundTrips)->ArgName("oneProcessor")->Arg(1)->Arg(0)->Iterations(300)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(ReadReceivedRaw)->UseManualTime()->Iterations(300);
BENCHMARK(ReadReceivedPort)->ArgName("overlapped")->Arg(1)->Arg(0)->UseManualTime()->Iterations(300);
}  // namespace

BENCHMARK_MAIN();
