// The movement of bytes through a port: reads and their time-outs, writes, ends of all kinds.
#include <cstring>
#include <thread>

#include "tests/platform/posix_port_fixture.h"
#include "tests/support/last_error.h"

TEST_F(PortTest, ReadTimeoutsFollowTheirRules) {
    struct Case {
        const char* what;
        DWORD interval, multiplier, constant;
        const char* sent;
        const char* expected;
    };
    Open(0);
    for (const Case& c :
         {Case{"a total time-out without bytes", 0, 0, 30, "", ""},
          Case{"a total time-out keeps what came", 0, 0, 30, "ab", "ab"},
          Case{"a total time-out from the count", 0, 5, 0, "ab", "ab"}, Case{"a gap ends the read", 20, 0, 0, "ab", "ab"},
          Case{"the first byte ends the read", MAXDWORD, MAXDWORD, kLong, "a", "a"},
          Case{"no first byte in time", MAXDWORD, MAXDWORD, 30, "", ""},
          Case{"an endless gap leaves the total", MAXDWORD, 0, 30, "ab", "ab"}}) {
        SCOPED_TRACE(c.what);
        SetReading(c.interval, c.multiplier, c.constant);
        FarSends(c.sent);
        if (*c.sent != 0) Arrive(static_cast<DWORD>(std::strlen(c.sent)));
        char got[8];
        DWORD count = 99;
        EXPECT_TRUE(ReadFile(port, got, sizeof got, &count, nullptr));
        EXPECT_EQ(std::string(got, count), c.expected);
    }
}

TEST_F(PortTest, CancelEndsTheThreadsOwnOperationsOnly) {
    Open();
    ASSERT_TRUE(SetCommMask(port, EV_RXCHAR));
    Overlapped waiting, reading;
    DWORD events = 99, count = 0;
    std::thread([&] {
        // The waiting thread must live on: what it has pending ends with it.
        EXPECT_FALSE(WaitCommEvent(port, &events, &waiting));
        char byte;
        std::thread([&] {
            EXPECT_FALSE(ReadFile(port, &byte, 1, &count, &reading));
            EXPECT_TRUE(CancelIo(port));
            EXPECT_FAILS(GetOverlappedResult(port, &reading, &count, FALSE), ERROR_OPERATION_ABORTED);
        }).join();
        EXPECT_EQ(WaitForSingleObject(waiting.hEvent, 0), WAIT_TIMEOUT);
        FarSends("x");
        EXPECT_EQ(WaitForSingleObject(waiting.hEvent, kLong), WAIT_OBJECT_0);
    }).join();
    EXPECT_EQ(events, DWORD{EV_RXCHAR});
}

TEST_F(PortTest, OperationsEndWithTheirThread) {
    Open();
    Overlapped ov;
    char byte;
    std::thread([&] {
        DWORD count;
        EXPECT_FALSE(ReadFile(port, &byte, 1, &count, &ov));
    }).join();
    DWORD count = 0;
    EXPECT_FAILS(GetOverlappedResult(port, &ov, &count, FALSE), ERROR_OPERATION_ABORTED);
}

TEST_F(PortTest, WriterWaitsWhileTheBufferIsFull) {
    Open(0);
    const std::string much(300'000, 'x');
    std::thread writer([&] {
        DWORD count = 0;
        EXPECT_TRUE(WriteFile(port, much.data(), static_cast<DWORD>(much.size()), &count, nullptr));
        EXPECT_EQ(count, much.size());
    });
    EXPECT_EQ(FarGets(much.size()).size(), much.size());
    writer.join();
}

TEST_F(PortTest, WriteTimeoutReportsWhatWent) {
    Open(0);
    COMMTIMEOUTS timeouts{0, 0, 0, 0, 30};
    ASSERT_TRUE(SetCommTimeouts(port, &timeouts));
    const std::string much(300'000, 'x');
    DWORD count = 0;
    EXPECT_TRUE(WriteFile(port, much.data(), static_cast<DWORD>(much.size()), &count, nullptr));
    EXPECT_GT(count, 0u);
    EXPECT_LT(count, much.size());
}

TEST_F(PortTest, FullReceiveBufferLeavesTheRestWithTheSystem) {
    Open();
    ASSERT_TRUE(SetupComm(port, 1, 1));  // 4 KiB
    ASSERT_TRUE(SetCommMask(port, EV_RXCHAR | EV_RX80FULL));
    const std::string much(8'000, 'y');
    std::thread sender([&] { FarSends(much); });
    SetReading(0, 0, 0);
    std::string got(much.size(), 0);
    DWORD events = 0, count = 0;
    Overlapped waiting, reading;
    while ((events & EV_RX80FULL) == 0)
        ASSERT_TRUE(WaitCommEvent(port, &events, &waiting) || WaitForSingleObject(waiting.hEvent, kLong) == WAIT_OBJECT_0);
    if (!ReadFile(port, got.data(), static_cast<DWORD>(got.size()), &count, &reading)) {
        ASSERT_EQ(WaitForSingleObject(reading.hEvent, kLong), WAIT_OBJECT_0);
        ASSERT_TRUE(GetOverlappedResult(port, &reading, &count, FALSE));
    }
    sender.join();
    EXPECT_EQ(count, much.size());
    EXPECT_EQ(got, much);
}

// A listener, a reader, a writer and a closer at once; what counts is that the sanitizers find nothing and everybody ends.
TEST_F(PortTest, ManyThreadsShareAPort) {
    for (int round = 0; round < 5; ++round) {
        Open();
        SetCommMask(port, EV_RXCHAR);
        const HANDLE shared = port;
        std::thread listener([&] {
            Overlapped ov;
            for (DWORD events = 0, errors;;) {
                ResetEvent(ov.hEvent);
                if (!WaitCommEvent(shared, &events, &ov) && GetLastError() != ERROR_IO_PENDING) break;
                if (WaitForSingleObject(ov.hEvent, kLong) != WAIT_OBJECT_0 || !ClearCommError(shared, &errors, nullptr)) break;
            }
        });
        const auto move = [shared](bool out) {
            Overlapped ov;
            for (DWORD count = 0;; Sleep(0)) {
                char bytes[64] = "1234567";
                if (out ? WriteFile(shared, bytes, 8, &count, &ov) : ReadFile(shared, bytes, sizeof bytes, &count, &ov)) continue;
                if (GetLastError() != ERROR_IO_PENDING) break;
                WaitForSingleObject(ov.hEvent, 1);
                CancelIo(shared);
            }
        };
        std::thread reader(move, false), writer(move, true);
        for (int i = 0; i < 50; ++i) {
            FarSends("abcdefgh");
            FarGets(1);
        }
        Close();
        listener.join();
        reader.join();
        writer.join();
    }
}
