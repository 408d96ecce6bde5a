#include <windows.h>

#include <cstring>

#include "tests/support/time_limit.h"

namespace {
void (*g_expired)(void (*)(const char*));

void Put(const char* text) {
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), text, static_cast<DWORD>(std::strlen(text)), &written, nullptr);
}
void CALLBACK OnTimer(PVOID, BOOLEAN) {
    g_expired(Put);
    TerminateProcess(GetCurrentProcess(), 1);
}
}  // namespace

void SetTestTimer(unsigned seconds, void (*expired)(void (*)(const char*))) {
    static HANDLE timer = nullptr;
    if (timer != nullptr) DeleteTimerQueueTimer(nullptr, timer, INVALID_HANDLE_VALUE);
    timer = nullptr;
    g_expired = expired;
    if (seconds != 0) CreateTimerQueueTimer(&timer, nullptr, OnTimer, nullptr, seconds * 1000, 0, WT_EXECUTEONLYONCE);
}
