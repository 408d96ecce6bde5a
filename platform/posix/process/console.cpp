#include "platform/posix/process/console.h"

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

#include "platform/posix/files/path_internal.h"
#include "platform/posix/kernel/errors.h"
#include "platform/posix/text/text_internal.h"
#include "platform/service.h"

namespace {
int StreamNumber(HANDLE stream) {
    switch (static_cast<DWORD>(reinterpret_cast<ULONG_PTR>(stream))) {
        case STD_INPUT_HANDLE:
            return 0;
        case STD_OUTPUT_HANDLE:
            return 1;
        case STD_ERROR_HANDLE:
            return 2;
        default:
            return -1;
    }
}

std::atomic<bool> g_catchesReload = false, g_reloadAsked = false;
std::atomic<bool> g_hadTerminal = false;

// Signals become calls on one thread, reached through a pipe: a signal handler itself may do next to nothing.
class StopRequests {
public:
    static StopRequests& The() {
        static StopRequests* requests = new StopRequests;  // outlives static destruction: a signal may come at any time
        return *requests;
    }
    bool Add(PHANDLER_ROUTINE handler) {
        std::lock_guard lock(m_mutex);
        if (!m_started && !Start()) return false;
        m_handlers.push_back(handler);
        return true;
    }
    bool Remove(PHANDLER_ROUTINE handler) {
        std::lock_guard lock(m_mutex);
        for (size_t i = m_handlers.size(); i-- > 0;) {
            if (m_handlers[i] != handler) continue;
            m_handlers.erase(m_handlers.begin() + static_cast<std::ptrdiff_t>(i));
            return true;
        }
        return false;
    }

    // Also where that signal was to be ignored.
    void CatchHangUp() {
        std::lock_guard lock(m_mutex);
        if (m_started || Start()) Catch(SIGHUP);
    }

private:
    static void Catch(int signal) {
        struct sigaction action = {};
        action.sa_handler = [](int number) {
            const char byte = static_cast<char>(number);
            if (write(s_pipe[1], &byte, 1) < 0) _exit(128 + number);
        };
        action.sa_flags = SA_RESTART;
        sigaction(signal, &action, nullptr);
    }
    bool Start() {
        if (pipe2(s_pipe, O_CLOEXEC) != 0) return false;
        std::thread([this] { Serve(); }).detach();
        for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
            struct sigaction action = {};
            // A program that was told to outlive its terminal (nohup) goes on doing so.
            if (signal == SIGHUP && sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN) continue;
            Catch(signal);
        }
        return m_started = true;
    }
    void Serve() {
        for (char number = 0; read(s_pipe[0], &number, 1) == 1;) {
            std::vector<PHANDLER_ROUTINE> handlers;
            {
                std::lock_guard lock(m_mutex);
                handlers = m_handlers;
            }
            if (number == SIGHUP && g_catchesReload && (!g_hadTerminal || isatty(2))) {
                g_reloadAsked = true;
                continue;
            }
            bool handled = false;
            for (size_t i = handlers.size(); !handled && i-- > 0;)
                handled = handlers[i](number == SIGINT ? CTRL_C_EVENT : CTRL_CLOSE_EVENT) != 0;
            if (handled) continue;
            signal(number, SIG_DFL);
            raise(number);
        }
    }

    static inline int s_pipe[2] = {-1, -1};
    std::mutex m_mutex;
    bool m_started = false;
    std::vector<PHANDLER_ROUTINE> m_handlers;
};
}  // namespace

HANDLE GetStdHandle(DWORD which) { return reinterpret_cast<HANDLE>(static_cast<ULONG_PTR>(which)); }

BOOL GetConsoleMode(HANDLE stream, LPDWORD mode) {
    const int number = StreamNumber(stream);
    if (number < 0 || !isatty(number)) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    if (mode != nullptr) *mode = 0;
    return TRUE;
}

BOOL SetConsoleOutputCP(UINT codePage) {
    // A standard stream that the caller has closed leaves its number to the next file or port opened, and what is said to the
    // user would land in there.
    for (int stream = 0; stream <= 2; ++stream) {
        if (fcntl(stream, F_GETFD) < 0 && open("/dev/null", O_RDWR) < 0) break;
    }
    if (codePage == CP_UTF8) return TRUE;
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
}

DWORD GetEnvironmentVariableA(LPCSTR name, LPSTR out, DWORD size) {
    const char* found = name == nullptr ? nullptr : std::getenv(name);
    if (found == nullptr) {
        SetLastError(ERROR_ENVVAR_NOT_FOUND);
        return 0;
    }
    const std::string value = orvik::detail::HousePath(found);
    const DWORD length = static_cast<DWORD>(value.size());
    if (size <= length || out == nullptr) return length + 1;
    std::memcpy(out, value.c_str(), value.size() + 1);
    return length;
}

BOOL SetConsoleCtrlHandler(PHANDLER_ROUTINE handler, BOOL add) {
    // Who wants to end in an orderly way is not to be ended by a pipe whose reader has gone; writing into it then fails, as on
    // Windows.
    if (add) signal(SIGPIPE, SIG_IGN);
    if (handler != nullptr && (add ? StopRequests::The().Add(handler) : StopRequests::The().Remove(handler))) return TRUE;
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
}

void OrvikCatchReload() {
    g_hadTerminal = isatty(2) != 0;
    g_catchesReload = true;
    StopRequests::The().CatchHangUp();
}

BOOL OrvikReloadAsked() { return g_reloadAsked.exchange(false); }
