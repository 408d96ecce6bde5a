#include <gtest/gtest.h>

#include <thread>

#include "platform/win32.h"

TEST(LastError, BelongsToItsThread) {
    SetLastError(ERROR_TIMEOUT);
    std::thread([] {
        SetLastError(ERROR_ACCESS_DENIED);  // must not reach the other thread
    }).join();
    EXPECT_EQ(GetLastError(), DWORD{ERROR_TIMEOUT});
}
