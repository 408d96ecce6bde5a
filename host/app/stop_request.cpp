#include "host/app/stop_request.h"

#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>

namespace {
std::atomic<bool> g_asked = false;
std::mutex g_loggerLock;  // the system calls the handler on a thread of its own
ILogger* g_logger = nullptr;

BOOL WINAPI OnStop(DWORD reason) {
    g_asked = true;
    {
        std::lock_guard lock(g_loggerLock);
        if (g_logger != nullptr) g_logger->Abort();
    }
    // Where the terminal or the whole system goes away, Windows ends the process when this returns, or after a few seconds: until
    // then what was gathered is stored. The process does not wait for this thread.
    if (reason >= CTRL_CLOSE_EVENT) std::this_thread::sleep_for(std::chrono::seconds(10));
    return TRUE;
}
}  // namespace

StopRequest::StopRequest(ILogger* logger) {
    std::lock_guard lock(g_loggerLock);
    g_logger = logger;
    static const BOOL s_installed = SetConsoleCtrlHandler(OnStop, TRUE);
    static_cast<void>(s_installed);
}

StopRequest::~StopRequest() {
    std::lock_guard lock(g_loggerLock);
    g_logger = nullptr;
}

bool StopRequest::Asked() { return g_asked; }
