// Serial ports beside the bare system calls, over pseudo terminals in one process.
//
// Round trips: one byte out, the far end sends it back, one byte in. The far end is the same thread in every case, so a
// ratio tells what the layers cost.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>

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

void RoundTripRaw(benchmark::State& state) {
    Line line(true);
    const int fd = open(line.Device(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    char byte = 'x';
    for (auto _ : state) {
        if (write(fd, &byte, 1) != 1) std::abort();
        pollfd ready{fd, POLLIN, 0};
        if (poll(&ready, 1, -1) != 1 || read(fd, &byte, 1) != 1) std::abort();
    }
    close(fd);
}

void RoundTripPort(benchmark::State& state) {
    Line line(true);
    CSerial port;
    if (port.Open(line.Device(), 0, 0, true) != 0 || port.SetupReadTimeouts(CSerial::ReadBlocking) != 0) std::abort();
    char byte = 'x';
    DWORD count = 0;
    for (auto _ : state) {
        if (port.Write(&byte, size_t{1}, &count, nullptr, INFINITE) != 0) std::abort();
        if (port.Read(&byte, 1, &count, nullptr, INFINITE) != 0 || count != 1) std::abort();
    }
}

void RoundTripListener(benchmark::State& state) {
    WNDCLASSA about{};
    about.lpfnWndProc = ::DefWindowProcA;
    about.lpszClassName = "bench";
    ::RegisterClassA(&about);
    const HWND window = ::CreateWindowExA(0, "bench", "", WS_POPUP, 0, 0, 0, 0, HWND_MESSAGE, nullptr, about.hInstance, nullptr);
    Line line(true);
    CSerialWnd port;
    if (port.Open(line.Device(), window, 0, 0, 0, 0) != 0) std::abort();
    char byte = 'x';
    DWORD count = 0;
    for (auto _ : state) {
        if (port.Write(&byte, size_t{1}, &count, nullptr, INFINITE) != 0) std::abort();
        do {
            MSG message;
            if (::GetMessageA(&message, window, 0, 0) <= 0 || message.wParam != CSerial::EventReceived) std::abort();
            if (port.Read(&byte, 1, &count, nullptr, INFINITE) != 0) std::abort();
        } while (count == 0);
    }
    port.Close();
    ::DestroyWindow(window);
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

BENCHMARK(RoundTripRaw)->UseRealTime();
BENCHMARK(RoundTripPort)->UseRealTime();
BENCHMARK(RoundTripListener)->UseRealTime();
BENCHMARK(ReadReceivedRaw)->UseManualTime()->Iterations(300);
BENCHMARK(ReadReceivedPort)->ArgName("overlapped")->Arg(1)->Arg(0)->UseManualTime()->Iterations(300);
}  // namespace

BENCHMARK_MAIN();
