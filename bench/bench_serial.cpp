// Serial ports beside the bare system calls, over pseudo terminals in one process.
//
// Round trips: one byte out, the far end sends it back, one byte in. The far end is the same thread in every case, so a
// ratio tells what the layers cost.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <poll.h>
#include <sched.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "comm/serial_wnd.h"

namespace {
// A raw pseudo terminal; its far end may echo from a thread of its own.
class Line {
public:
    explicit Line(bool echo) {
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
        if (!echo) return;
        m_echo = std::thread([this] {
            for (char byte; read(m_master, &byte, 1) == 1 && !m_done;) {
                if (write(m_master, &byte, 1) != 1) break;
            }
        });
    }
    ~Line() {
        m_done = true;
        if (m_echo.joinable()) {
            if (write(m_keeper, "", 1) != 1) std::abort();
            m_echo.join();
        }
        close(m_keeper);
        close(m_master);
    }
    const char* Device() const { return m_device.c_str(); }
    void Send(const std::string& bytes) {
        if (write(m_master, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) std::abort();
    }

private:
    int m_master = -1, m_keeper = -1;
    std::string m_device;
    std::atomic<bool> m_done{false};
    std::thread m_echo;
};

// The three ways to make a round trip.
class RawTrip {
public:
    explicit RawTrip(const Line& line) : m_fd(open(line.Device(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {}
    ~RawTrip() { close(m_fd); }
    void operator()() {
        char byte = 'x';
        pollfd ready{m_fd, POLLIN, 0};
        if (write(m_fd, &byte, 1) != 1 || poll(&ready, 1, -1) != 1 || read(m_fd, &byte, 1) != 1) std::abort();
    }

private:
    int m_fd;
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

// While it lives, this thread and those that it makes share one processor.
class OneProcessor {
public:
    OneProcessor() {
        sched_getaffinity(0, sizeof(m_before), &m_before);
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(sched_getcpu(), &one);
        sched_setaffinity(0, sizeof(one), &one);
    }
    ~OneProcessor() { sched_setaffinity(0, sizeof(m_before), &m_before); }

private:
    cpu_set_t m_before;
};

// How long a wake-up takes depends on what the machine does besides, by a factor of three and more. So the ways take turns, a
// few trips each, and a ratio is the median of the ratios within one turn. On one processor it is their work that is compared;
// on several, where the scheduler put the threads counts most.
void RoundTrips(benchmark::State& state) {
    constexpr int trips = 25;
    std::optional<OneProcessor> together;
    if (state.range(0)) together.emplace();
    Line lines[] = {Line(true), Line(true), Line(true)};
    RawTrip raw(lines[0]);
    PortTrip port(lines[1]);
    ListenerTrip listener(lines[2]);
    const auto measure = [](auto& trip) {
        trip();  // the machine has just done something else
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < trips; ++i) trip();
        return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start).count() / trips;
    };
    std::vector<double> byRaw, byPort, byListener, portRatio, listenerRatio;
    for (auto _ : state) {
        byRaw.push_back(measure(raw));
        byPort.push_back(measure(port));
        byListener.push_back(measure(listener));
        portRatio.push_back(byPort.back() / byRaw.back());
        listenerRatio.push_back(byListener.back() / byRaw.back());
    }
    state.counters["raw_ns"] = Median(byRaw);
    state.counters["port_ns"] = Median(byPort);
    state.counters["listener_ns"] = Median(byListener);
    state.counters["port/raw"] = Median(portRatio);
    state.counters["listener/raw"] = Median(listenerRatio);
}

// One byte that has come in already, in a port's receive buffer; beside it, the same from the system.
constexpr int kWaiting = 2000;

void ReadReceivedPort(benchmark::State& state) {
    Line line(false);
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
    Line line(false);
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

BENCHMARK(RoundTrips)->ArgName("oneProcessor")->Arg(1)->Arg(0)->Iterations(300)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(ReadReceivedRaw)->UseManualTime()->Iterations(300);
BENCHMARK(ReadReceivedPort)->ArgName("overlapped")->Arg(1)->Arg(0)->UseManualTime()->Iterations(300);
}  // namespace

BENCHMARK_MAIN();
