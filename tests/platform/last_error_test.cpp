#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "platform/win32.h"

// Both threads set their code before either reads its own. They meet in plain variables, since joining or waiting may itself call
// the system and change the code under test.
TEST(LastError, BelongsToItsThread) {
    std::atomic<int> set{0};
    const auto meet = [&set] {
        ++set;
        while (set < 2) {
        }
    };
    DWORD seenThere = 0;
    std::thread other([&] {
        SetLastError(ERROR_ACCESS_DENIED);
        meet();
        seenThere = GetLastError();
    });
    SetLastError(ERROR_TIMEOUT);
    meet();
    const DWORD seenHere = GetLastError();
    other.join();
    EXPECT_EQ(seenHere, DWORD{ERROR_TIMEOUT});
    EXPECT_EQ(seenThere, DWORD{ERROR_ACCESS_DENIED});
}
