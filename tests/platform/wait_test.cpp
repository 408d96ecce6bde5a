// Events, threads and waits, by their documentation.
#include <gtest/gtest.h>

#include <atomic>
#include <vector>

#include "platform/win32.h"
#include "tests/support/last_error.h"

namespace {
constexpr DWORD kLong = 10'000;  // ms; only reached by a failing test

struct Event {
    explicit Event(bool manualReset, bool signalled = false) : handle(CreateEventA(nullptr, manualReset, signalled, nullptr)) {}
    ~Event() { CloseHandle(handle); }
    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;
    HANDLE handle;
};

DWORD WINAPI WaitForParameter(LPVOID event) {
    return WaitForSingleObject(static_cast<HANDLE>(event), kLong) == WAIT_OBJECT_0 ? 7 : 8;
}
}  // namespace

TEST(Events, ManualResetStaysAndAutoResetLetsOneThrough) {
    const Event manual(true, true), automatic(false, true);
    for (int turn = 0; turn < 2; ++turn) EXPECT_EQ(WaitForSingleObject(manual.handle, 0), DWORD{WAIT_OBJECT_0});
    EXPECT_TRUE(ResetEvent(manual.handle));
    EXPECT_EQ(WaitForSingleObject(manual.handle, 0), DWORD{WAIT_TIMEOUT});
    EXPECT_EQ(WaitForSingleObject(automatic.handle, 0), DWORD{WAIT_OBJECT_0});
    EXPECT_EQ(WaitForSingleObject(automatic.handle, 0), DWORD{WAIT_TIMEOUT});
}

TEST(Waits, AnyGivesTheFirstAndTakesOnlyThat) {
    const Event a(false), b(false, true), c(false, true);
    const HANDLE all[] = {a.handle, b.handle, c.handle};
    for (const DWORD result : {DWORD{WAIT_OBJECT_0 + 1}, DWORD{WAIT_OBJECT_0 + 2}, DWORD{WAIT_TIMEOUT}})
        EXPECT_EQ(WaitForMultipleObjects(3, all, FALSE, 0), result);
}

TEST(Waits, AllTakesNothingUntilAllAreThere) {
    const Event a(false, true), b(false);
    const HANDLE both[] = {a.handle, b.handle};
    EXPECT_EQ(WaitForMultipleObjects(2, both, TRUE, 0), DWORD{WAIT_TIMEOUT});
    EXPECT_EQ(WaitForSingleObject(a.handle, 0), DWORD{WAIT_OBJECT_0});  // still there
    SetEvent(a.handle), SetEvent(b.handle);
    EXPECT_EQ(WaitForMultipleObjects(2, both, TRUE, 0), DWORD{WAIT_OBJECT_0});
    EXPECT_EQ(WaitForMultipleObjects(2, both, FALSE, 0), DWORD{WAIT_TIMEOUT});
}

TEST(Threads, EndSignalsAndKeepsTheExitCode) {
    const Event go(true);
    DWORD id = 0, code = 0;
    const HANDLE thread = CreateThread(nullptr, 0, WaitForParameter, go.handle, 0, &id);
    ASSERT_NE(thread, nullptr);
    EXPECT_NE(id, 0u);
    EXPECT_NE(id, GetCurrentThreadId());
    EXPECT_EQ(GetThreadId(thread), id);
    EXPECT_TRUE(GetExitCodeThread(thread, &code));
    EXPECT_EQ(code, DWORD{STILL_ACTIVE});
    EXPECT_EQ(WaitForSingleObject(thread, 0), DWORD{WAIT_TIMEOUT});
    SetEvent(go.handle);
    EXPECT_EQ(WaitForSingleObject(thread, kLong), DWORD{WAIT_OBJECT_0});
    EXPECT_TRUE(GetExitCodeThread(thread, &code));
    EXPECT_EQ(code, 7u);
    EXPECT_TRUE(CloseHandle(thread));
}

TEST(Memory, BlocksAreGivenClearedAndFreed) {
    const auto cleared = [](void* block) { return block != nullptr && static_cast<unsigned char*>(block)[99] == 0; };
    void* const heap = HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, 100);
    void* const local = LocalAlloc(LPTR, 100);
    EXPECT_TRUE(cleared(heap) && cleared(local));
    EXPECT_TRUE(HeapFree(GetProcessHeap(), 0, heap));
    EXPECT_EQ(LocalFree(local), nullptr);
}
