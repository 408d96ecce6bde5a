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

TEST(Waits, BadHandlesFail) {
    HANDLE closed = CreateEventA(nullptr, TRUE, TRUE, nullptr);
    CloseHandle(closed);
    EXPECT_FAILS(WaitForSingleObject(closed, 0), ERROR_INVALID_HANDLE);
    EXPECT_FAILS(SetEvent(closed), ERROR_INVALID_HANDLE);
    EXPECT_FAILS(WaitForMultipleObjects(0, &closed, FALSE, 0), ERROR_INVALID_PARAMETER);
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

TEST(Threads, TerminationEndsAWaitingThread) {
    const Event never(true);
    const HANDLE thread = CreateThread(nullptr, 0, WaitForParameter, never.handle, 0, nullptr);
    ASSERT_NE(thread, nullptr);
    EXPECT_TRUE(TerminateThread(thread, 99));
    EXPECT_EQ(WaitForSingleObject(thread, kLong), DWORD{WAIT_OBJECT_0});
    DWORD code = 0;
    EXPECT_TRUE(GetExitCodeThread(thread, &code));
    EXPECT_EQ(code, 99u);
    CloseHandle(thread);
}

// Every set of an auto-reset event lets exactly one of several waiters through, and no wake-up is lost.
TEST(Waits, EverySignalReachesOneWaiter) {
    struct Shared {
        HANDLE work, taken;
        std::atomic<int> count{0};
    } shared{CreateEventA(nullptr, FALSE, FALSE, nullptr), CreateEventA(nullptr, FALSE, FALSE, nullptr)};
    constexpr int kRounds = 300;
    const auto worker = [](LPVOID p) -> DWORD {
        auto& s = *static_cast<Shared*>(p);
        while (WaitForSingleObject(s.work, kLong) == WAIT_OBJECT_0 && s.count < kRounds) {
            ++s.count;
            SetEvent(s.taken);
        }
        SetEvent(s.work);  // the next worker ends too
        return 0;
    };
    std::vector<HANDLE> threads;
    for (int i = 0; i < 3; ++i) threads.push_back(CreateThread(nullptr, 0, worker, &shared, 0, nullptr));
    for (int i = 0; i < kRounds; ++i) {
        SetEvent(shared.work);
        ASSERT_EQ(WaitForSingleObject(shared.taken, kLong), DWORD{WAIT_OBJECT_0});
        ASSERT_EQ(shared.count, i + 1);
    }
    SetEvent(shared.work);
    EXPECT_EQ(WaitForMultipleObjects(3, threads.data(), TRUE, kLong), DWORD{WAIT_OBJECT_0});
    for (const HANDLE thread : threads) CloseHandle(thread);
    CloseHandle(shared.work), CloseHandle(shared.taken);
}

TEST(Memory, BlocksAreGivenClearedAndFreed) {
    const auto cleared = [](void* block) { return block != nullptr && static_cast<unsigned char*>(block)[99] == 0; };
    void* const heap = HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, 100);
    void* const local = LocalAlloc(LPTR, 100);
    EXPECT_TRUE(cleared(heap) && cleared(local));
    EXPECT_TRUE(HeapFree(GetProcessHeap(), 0, heap));
    EXPECT_EQ(LocalFree(local), nullptr);
}

TEST(Fonts, KeepTheirDescription) {
    NONCLIENTMETRICSA metrics{};
    metrics.cbSize = 344;
    ASSERT_TRUE(SystemParametersInfoA(SPI_GETNONCLIENTMETRICS, 344, &metrics, 0));
    EXPECT_NE(metrics.lfMenuFont.lfHeight, 0);
    EXPECT_NE(metrics.lfMenuFont.lfFaceName[0], 0);
    const HFONT font = CreateFontIndirectA(&metrics.lfMenuFont);
    ASSERT_NE(font, nullptr);
    LOGFONTA back{};
    EXPECT_EQ(GetObjectA(font, sizeof back, &back), static_cast<int>(sizeof back));
    EXPECT_EQ(back.lfHeight, metrics.lfMenuFont.lfHeight);
    EXPECT_STREQ(back.lfFaceName, metrics.lfMenuFont.lfFaceName);
    EXPECT_TRUE(DeleteObject(font));
    EXPECT_EQ(GetObjectA(font, sizeof back, &back), 0);
}
