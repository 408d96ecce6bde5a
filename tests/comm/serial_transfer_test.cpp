// CSerial: reads, writes and line events, with and without overlapped mode.
#include "tests/comm/serial_fixture.h"

namespace {
TEST_F(SerialTest, WritesTextAndBytesInBothModes) {
    for (const bool overlapped : {false, true}) {
        Open(overlapped);
        DWORD written = 99;
        EXPECT_EQ(0, port.Write("text", &written, nullptr, INFINITE));
        EXPECT_EQ(4u, written);
        const char bytes[] = {'\0', '\x11', '\x13', '\r', '\xFF'};
        EXPECT_EQ(0, port.Write(bytes, sizeof(bytes), &written, nullptr, INFINITE));
        EXPECT_EQ(5u, written);
        EXPECT_EQ(0, port.Write("", &written, nullptr, INFINITE));
        EXPECT_EQ(0u, written);
        EXPECT_EQ(0, port.Write("!", nullptr, nullptr, INFINITE));
        EXPECT_EQ("text" + std::string(bytes, sizeof(bytes)) + "!", peer.Receive(10));
        port.Close();
    }
}

TEST_F(SerialTest, AnOverriddenByteWriteSeesTextsToo) {
    class Counting : public CSerial {
    public:
        using CSerial::Write;
        LONG Write(const void* data, size_t len, DWORD* written, OVERLAPPED* ov, DWORD timeout) override {
            seen.append(static_cast<const char*>(data), len);
            return CSerial::Write(data, len, written, ov, timeout);
        }
        std::string seen;
    } counting;
    ASSERT_EQ(0, counting.Open(peer.Name(), 0, 0, true));
    EXPECT_EQ(0, counting.Write("through", nullptr, nullptr, kSoon));
    EXPECT_EQ("through", counting.seen);
    EXPECT_EQ("through", peer.Receive(7));
}

TEST_F(SerialTest, EveryByteOfALargeTransferComesThrough) {
    Open();
    ASSERT_EQ(0, port.SetupReadTimeouts(CSerial::ReadBlocking));
    std::string all;
    for (int i = 0; i < 256; ++i) all += static_cast<char>(i);
    peer.Send(all);
    EXPECT_EQ(all, Read(256));
    DWORD written = 0;
    EXPECT_EQ(0, port.Write(all.data(), all.size(), &written, nullptr, kSoon));
    EXPECT_EQ(all, peer.Receive(256));
    peer.Send("old");
    AwaitArrival();
    EXPECT_EQ(0, port.Purge());
    peer.Send("new");
    EXPECT_EQ("new", Read(3));
    peer.Stream();
    const std::string bytes = Read(200000);
    EXPECT_EQ(std::string(200000, 'S'), bytes);
}

TEST_F(SerialTest, AReadThatGivesUpLosesNothing) {
    Open();
    ASSERT_EQ(0, port.SetupReadTimeouts(CSerial::ReadBlocking));
    char byte = 0;
    for (int i = 0; i < 3; ++i) {
        DWORD count = 99;
        EXPECT_EQ(1460, port.Read(&byte, 1, &count, nullptr, 20));
        EXPECT_EQ(1460, port.GetLastError());
        EXPECT_EQ(0u, count);
    }
    peer.Send("later");
    EXPECT_EQ("later", Read(5)) << "a cancelled read must not swallow what comes afterwards";
    const auto runOut = [&](const char* sent) {
        ASSERT_EQ(0, port.SetupReadTimeouts(CSerial::ReadBlocking));
        peer.Send(sent);
        AwaitArrival();
        char bytes[8];
        DWORD count = 99;
        EXPECT_EQ(1460, port.Read(bytes, sizeof bytes, &count, nullptr, 20));
        EXPECT_EQ(0u, count);
    };
    runOut("ab");
    runOut("cd");
    EXPECT_EQ("a", Read(1));
    peer.Send("e");
    EXPECT_EQ("bcde", Read(4));

    runOut("f");
    ASSERT_EQ(0, port.SetupReadTimeouts(CSerial::ReadNonBlocking));
    EXPECT_EQ("f", Read(4));

    runOut("g");
    EXPECT_EQ(0, port.Purge());
    peer.Send("h");
    EXPECT_EQ("h", Read(1));

    runOut("i");
    ASSERT_EQ(0, port.Close());
    Open();
    ASSERT_EQ(0, port.SetupReadTimeouts(CSerial::ReadBlocking));
    peer.Send("j");
    EXPECT_EQ("j", Read(1));
}

TEST_F(SerialTest, WithoutOverlappedModeNeitherOverlappedNorTimeOut) {
    Open(false);
    peer.Send("x");
    OVERLAPPED ov{};
    char byte = 0;
    DWORD count = 99;
    EXPECT_EQ(1, port.WaitEvent(&ov, 500));
    EXPECT_EQ(1, port.WaitEvent(nullptr, 500));
    EXPECT_EQ(1, port.WaitEvent(&ov, INFINITE));
    EXPECT_EQ(1, port.Read(&byte, 1, &count, &ov, INFINITE));
    EXPECT_EQ(0u, count);
    EXPECT_EQ(1, port.Read(&byte, 1, &count, nullptr, 0));
    EXPECT_EQ(1, port.Write("y", &count, &ov, INFINITE));
    EXPECT_EQ(1, port.Write("y", &count, nullptr, 10));
    EXPECT_EQ(1, port.GetLastError());
    ASSERT_EQ(0, port.SetupReadTimeouts(CSerial::ReadBlocking));
    EXPECT_EQ("x", Read(1)) << "a refused call does not touch the device";
    EXPECT_EQ("", peer.Receive(1, 0));
}

class CallersOverlapped : public SerialTest {
protected:
    CallersOverlapped() { ov.hEvent = ::CreateEventA(nullptr, TRUE, FALSE, nullptr); }
    ~CallersOverlapped() override { ::CloseHandle(ov.hEvent); }
    OVERLAPPED ov{};
};

TEST_F(CallersOverlapped, ReadsAreCollectedByTheCaller) {
    Open();
    ASSERT_EQ(0, port.SetupReadTimeouts(CSerial::ReadBlocking));
    char bytes[3] = "";
    DWORD count = 99;
    EXPECT_EQ(0, port.Read(bytes, 3, &count, &ov, 0)) << "the caller waits, whatever the time-out says";
    EXPECT_EQ(0u, count);
    EXPECT_EQ(WAIT_TIMEOUT, ::WaitForSingleObject(ov.hEvent, 0));
    peer.Send("xyz");
    EXPECT_EQ(WAIT_OBJECT_0, ::WaitForSingleObject(ov.hEvent, kSoon));
    EXPECT_TRUE(::GetOverlappedResult(port.GetCommHandle(), &ov, &count, FALSE));
    EXPECT_EQ(3u, count);
    EXPECT_EQ("xyz", std::string(bytes, 3));
    peer.Send("q");
    AwaitArrival();
    char byte = 0;
    ASSERT_EQ(0, port.SetupReadTimeouts(CSerial::ReadNonBlocking));
    EXPECT_EQ(0, port.Read(&byte, 1, &count, &ov, 0));
    EXPECT_EQ(WAIT_OBJECT_0, ::WaitForSingleObject(ov.hEvent, kSoon));
    EXPECT_TRUE(::GetOverlappedResult(port.GetCommHandle(), &ov, &count, FALSE));
    EXPECT_EQ(1u, count);
    EXPECT_EQ('q', byte);
}

TEST_F(SerialTest, EventsAreThoseOfTheMask) {
    Open();
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(1460, port.WaitEvent(nullptr, 20));
        EXPECT_EQ(1460, port.GetLastError());
        EXPECT_EQ(CSerial::EventNone, port.GetEventType());
    }
    peer.Send("1");
    EXPECT_EQ(0, port.WaitEvent(nullptr, kSoon));
    EXPECT_EQ(CSerial::EventReceived, port.GetEventType());
    port.m_eEvent = static_cast<CSerial::EEvent>(CSerial::EventReceived | CSerial::EventCts);
    EXPECT_EQ(CSerial::EventReceived, port.GetEventType());
    ASSERT_EQ(0, port.SetMask(CSerial::EventSent));
    EXPECT_EQ(0, port.Write("gone", nullptr, nullptr, kSoon));
    EXPECT_EQ("gone", peer.Receive(4));
    EXPECT_EQ(0, port.WaitEvent(nullptr, kSoon));
    EXPECT_EQ(CSerial::EventSent, port.GetEventType());
}

TEST_F(CallersOverlapped, ModemLinesAndBreakAreEventsOfTheMask) {
    Open();
    for (const auto& [line, event] :
         {std::pair("cts", CSerial::EventCts), std::pair("dsr", CSerial::EventDsr), std::pair("dcd", CSerial::EventRlsd),
          std::pair("rng", CSerial::EventRing), std::pair("brk", CSerial::EventBreak)}) {
        SCOPED_TRACE(line);
        ASSERT_EQ(0, port.SetMask(event));
        ::ResetEvent(ov.hEvent);
        ASSERT_EQ(0, port.WaitEvent(&ov, 0));
        event == CSerial::EventBreak ? peer.Error(line) : peer.Raise(line);
        EXPECT_EQ(WAIT_OBJECT_0, ::WaitForSingleObject(ov.hEvent, kSoon));
        EXPECT_EQ(event, port.GetEventType());
    }
}

}  // namespace
