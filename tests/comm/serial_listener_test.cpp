// CSerialEx and CSerialWnd: the listener thread and its messages.
#include <gtest/gtest.h>

#include <atomic>

#include "comm/serial_wnd.h"
#include "tests/comm/mailbox.h"
#include "tests/support/ports/serial_peer.h"

namespace {
constexpr DWORD kSoon = 5000;
constexpr WPARAM kFarewell = 0x04000800;

// Opens what the ports keep to themselves, for ports with and without a window.
template <class Base>
class Opened : public Base {
public:
    using Base::m_fStopping;
    using Base::m_hevtOverlappedWorkerThread;
    using Base::m_hThread;
};

class WindowPort : public Opened<CSerialWnd> {
public:
    ~WindowPort() override { Close(); }  // as every heir does, while it is still whole
    using CSerialWnd::m_hwndDest;
    using CSerialWnd::m_lParam;
    using CSerialWnd::m_nComMsg;
};

class ListenerTest : public testing::Test {
protected:
    static constexpr UINT kMessage = WM_APP + 5;
    static constexpr LPARAM kParameter = 0x12345678;

    void Open(UINT message = kMessage) { ASSERT_EQ(0, port.Open(peer.Name(), box.Window(), message, kParameter, 0, 0)); }

    std::string ReadAll(size_t count) {
        const Awaiting end("a read of the port to end");
        std::string bytes(count, '?');
        DWORD got = 0;
        EXPECT_EQ(0, port.Read(bytes.data(), count, &got, nullptr, kSoon));
        bytes.resize(got);
        return bytes;
    }

    const Awaiting m_call{"a call of the port, or its listener, to end"};
    SerialPeer peer;
    Mailbox box;
    WindowPort port;
};

TEST_F(ListenerTest, MessageNumberZeroStandsForTheRegisteredOne) {
    EXPECT_EQ(CSerialWnd::mg_nDefaultComMsg, ::RegisterWindowMessageA("CSerialWnd_DefaultComMsg"));
    EXPECT_GE(CSerialWnd::mg_nDefaultComMsg, 0xC000u);
    Open(0);
    peer.Send("x");
    const auto message = box.Next();
    ASSERT_TRUE(message);
    EXPECT_EQ(CSerialWnd::mg_nDefaultComMsg, message->message);
}

TEST_F(ListenerTest, StartsOnceStopsAndStartsAgain) {
    Open();
    const HANDLE first = port.m_hThread;
    ASSERT_NE(nullptr, first);
    EXPECT_EQ(0, port.StartListener());
    EXPECT_EQ(first, port.m_hThread);
    EXPECT_EQ(WAIT_TIMEOUT, ::WaitForSingleObject(first, 0));
    EXPECT_EQ(0, port.StopListener(INFINITE));
    EXPECT_EQ(nullptr, port.m_hThread);
    EXPECT_FALSE(port.m_fStopping);
    EXPECT_TRUE(port.IsOpen());
    EXPECT_EQ(0, port.StopListener(INFINITE)) << "nothing to stop is no error";
    EXPECT_EQ(0, box.Empty()) << "a stop says no farewell";
    EXPECT_EQ(0, port.StartListener());
    peer.Send("x");
    EXPECT_TRUE(box.Next());
}

TEST_F(ListenerTest, AStopWhoseTimeRanOutStillStops) {
    struct Slow : Opened<CSerialEx> {
        ~Slow() override { Close(); }
        void OnEvent(EEvent, EError) override {
            static HANDLE tell;  // not the thread's own: the compiler for Windows may free that before it calls the destructor
            tell = ended;
            struct AtThreadsEnd {
                ~AtThreadsEnd() { ::SetEvent(tell); }
            };
            const thread_local AtThreadsEnd end;
            ::SetEvent(inside);
            // The next listener may be told of the same byte, and must not take the word that is meant for this one.
            ::WaitForSingleObject(held.exchange(true) ? nextGoOn : goOn, kSoon);
        }
        std::atomic<bool> held = false;
        const HANDLE inside = ::CreateEventA(nullptr, FALSE, FALSE, nullptr),
                     goOn = ::CreateEventA(nullptr, FALSE, FALSE, nullptr),
                     nextGoOn = ::CreateEventA(nullptr, TRUE, FALSE, nullptr),
                     ended = ::CreateEventA(nullptr, FALSE, FALSE, nullptr);
    } slow;
    ASSERT_EQ(0, slow.Open(peer.Name(), 0, 0, true));
    peer.Send("x");
    ASSERT_EQ(WAIT_OBJECT_0, ::WaitForSingleObject(slow.inside, kSoon));
    EXPECT_EQ(0, slow.StopListener(1));
    EXPECT_FALSE(slow.m_fStopping);
    ASSERT_EQ(0, slow.StartListener());
    ::SetEvent(slow.goOn);
    ASSERT_EQ(WAIT_OBJECT_0, ::WaitForSingleObject(slow.ended, kSoon)) << "the stopped listener goes";
    peer.Send("y");
    ASSERT_EQ(WAIT_OBJECT_0, ::WaitForSingleObject(slow.inside, kSoon)) << "the new one listens";
    ::SetEvent(slow.nextGoOn);
    EXPECT_EQ(0, slow.Close());
    for (const HANDLE event : {slow.inside, slow.goOn, slow.ended}) ::CloseHandle(event);
}

TEST_F(ListenerTest, OnlyAnOpenPortHasItsWindow) {
    Open();
    EXPECT_EQ(0, port.Close());
    EXPECT_EQ(nullptr, port.m_hwndDest.load());
    EXPECT_EQ(0u, port.m_nComMsg.load());
    EXPECT_EQ(kParameter, port.m_lParam);
    EXPECT_EQ(nullptr, port.m_hThread);
    EXPECT_EQ(nullptr, port.m_hevtOverlappedWorkerThread);
    EXPECT_EQ(0, box.Empty());
    EXPECT_EQ(0, port.Close());
    EXPECT_EQ(2, port.Open("COM77", box.Window(), kMessage, kParameter, 0, 0));
    EXPECT_EQ(nullptr, port.m_hThread);
    EXPECT_EQ(nullptr, port.m_hwndDest.load());
    Open();
    EXPECT_EQ(1247, port.Open(peer.Name(), nullptr, 0, 0, 0, 0));
    EXPECT_EQ(box.Window(), port.m_hwndDest.load());
}

TEST_F(ListenerTest, ClosesAtAnyMomentOfAStream) {
    for (int round = 0; round < 20; ++round) {
        Open();
        peer.Stream();
        if (round % 2) {
            ASSERT_TRUE(box.Next());
        }
        EXPECT_EQ(0, port.Close());
        box.Empty();
        EXPECT_FALSE(box.Waiting());
        peer.Unplug();
        peer.Plug();
    }
    {
        CSerialWnd other;
        ASSERT_EQ(0, other.Open(peer.Name(), box.Window(), kMessage, 0, 0, 0));
    }
    EXPECT_EQ(CSerial::PortAvailable, CSerial::CheckPort(peer.Name()));
}

// Holds its events back until the port is being closed: the moment in which a message could slip through.
class HoldingPort : public WindowPort {
public:
    HoldingPort() : m_inside(::CreateEventA(nullptr, TRUE, FALSE, nullptr)) {}
    ~HoldingPort() override {
        Close();
        ::CloseHandle(m_inside);
    }
    void OnEvent(EEvent event, EError error) override {
        ::SetEvent(m_inside);
        for (const DWORD start = ::GetTickCount(); m_hwndDest.load() && ::GetTickCount() - start < kSoon;) ::Sleep(1);
        WindowPort::OnEvent(event, error);
    }
    HANDLE m_inside;
};

TEST_F(ListenerTest, NothingReachesTheWindowOnceCloseHasBegun) {
    HoldingPort holding;
    ASSERT_EQ(0, holding.Open(peer.Name(), box.Window(), kMessage, kParameter, 0, 0));
    peer.Send("x");
    ASSERT_EQ(WAIT_OBJECT_0, ::WaitForSingleObject(holding.m_inside, kSoon));
    EXPECT_EQ(0, holding.Close());
    EXPECT_FALSE(box.Waiting());
}

// Comes to its wait only after the stop has set the mask: the moment in which a stop could be missed.
class LatePort : public WindowPort {
public:
    LatePort() : m_stopped(::CreateEventA(nullptr, TRUE, FALSE, nullptr)) {}
    ~LatePort() override {
        Close();
        ::CloseHandle(m_stopped);
    }
    LONG SetMask(DWORD mask) override {
        const LONG result = WindowPort::SetMask(mask);
        if (m_fStopping) ::SetEvent(m_stopped);
        return result;
    }
    LONG WaitEvent(OVERLAPPED* ov, DWORD timeout) override {
        ::WaitForSingleObject(m_stopped, kSoon);
        return WindowPort::WaitEvent(ov, timeout);
    }
    HANDLE m_stopped;
};

TEST_F(ListenerTest, AStopJustBeforeTheWaitIsNotMissed) {
    LatePort late;
    ASSERT_EQ(0, late.Open(peer.Name(), box.Window(), kMessage, kParameter, 0, 0));
    EXPECT_EQ(0, late.Close());
    EXPECT_FALSE(box.Waiting());
}

// The listener without a window.
class CountingPort : public Opened<CSerialEx> {
public:
    CountingPort() : m_told(::CreateEventA(nullptr, TRUE, FALSE, nullptr)) {}
    ~CountingPort() override {
        Close();
        ::CloseHandle(m_told);
    }
    void OnEvent(EEvent event, EError) override {
        m_events |= event;
        m_thread = ::GetCurrentThreadId();
        ::SetEvent(m_told);
    }
    std::atomic<DWORD> m_events{0};
    std::atomic<DWORD> m_thread{0};
    HANDLE m_told;
};

TEST(SerialEx, ListensOnlyWhenAsked) {
    SerialPeer peer;
    CountingPort port;
    EXPECT_EQ(0, port.Open(peer.Name(), 0, 0, false));
    EXPECT_NE(nullptr, port.m_hevtOverlappedWorkerThread);
    EXPECT_EQ(nullptr, port.m_hThread);
    EXPECT_EQ(0, port.StartListener());
    peer.Send("x");
    ASSERT_EQ(WAIT_OBJECT_0, ::WaitForSingleObject(port.m_told, kSoon));
    EXPECT_EQ(CSerial::EventReceived, static_cast<CSerial::EEvent>(port.m_events.load()));
    EXPECT_NE(::GetCurrentThreadId(), port.m_thread.load());
    EXPECT_EQ(0, port.Close());
    EXPECT_EQ(nullptr, port.m_hevtOverlappedWorkerThread);
}

}  // namespace
