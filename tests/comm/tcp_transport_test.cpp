// Network lines: what arrives, what is told when there is no line any more, and what ends a wait.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <thread>

#include "frame/app_link.h"
#include "tests/comm/transport_user.h"
#include "tests/support/tcp_peer.h"

namespace {
using namespace std::chrono_literals;

class Tracer : public IOrvikApp {
public:
    void Trace(const char* format, ...) override { lines.push_back(format); }
    IDeviceFamily* FindDeviceFamily(const char*) override { return nullptr; }
    int IsCommTraceEnabled() override { return 1; }
    std::vector<std::string> lines;
};

// A window whose only message runs what a test wants to happen while messages are handled.
std::function<void()> g_onMessage;
HWND MakeWindow() {
    static const ATOM windowClass = [] {
        WNDCLASSA about{};
        about.lpfnWndProc = [](HWND window, UINT message, WPARAM wParam, LPARAM lParam) -> LRESULT {
            if (message != WM_APP) return ::DefWindowProcA(window, message, wParam, lParam);
            g_onMessage();
            return 0;
        };
        about.hInstance = ::GetModuleHandleA(nullptr);
        about.lpszClassName = "orvik_test_transport";
        return ::RegisterClassA(&about);
    }();
    EXPECT_NE(0, windowClass);
    return ::CreateWindowExA(0, "orvik_test_transport", "", WS_POPUP, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                             ::GetModuleHandleA(nullptr), nullptr);
}

class TcpTransportTest : public testing::Test, public TransportUser {
protected:
    void Open(const char* scheme = "tcp") {
        TransportUser::Open(peer.Address(scheme));
        peer.Accept();
    }
    void AtMessage(std::function<void()> then) {
        g_onMessage = std::move(then);
        ASSERT_TRUE(::PostMessageA(window, WM_APP, 0, 0));
    }

    const Awaiting m_call{"a call of the transport to end"};
    TcpPeer peer;
    const HWND window = MakeWindow();
};

TEST_F(TcpTransportTest, CarriesBytesBothWaysAndInPieces) {
    for (int life = 0; life < 2; ++life) {  // closed and opened again
        Open();
        EXPECT_TRUE(line->IsOpen());
        EXPECT_FALSE(line->IsShared());
        Send(std::string("ask\0me", 6));
        EXPECT_EQ(std::string("ask\0me", 6), peer.Receive(6));
        for (const char* piece : {"a", "ns", "wer"}) {
            peer.Send(piece);
            EXPECT_EQ(piece, Receive());
        }
        EXPECT_EQ("", Receive(0ms));
        line->Close();
        EXPECT_EQ("", peer.Receive(1));
    }
    Open("rtu");
    EXPECT_TRUE(line->IsShared());
}

TEST_F(TcpTransportTest, SendsMoreThanTheSystemHoldsWhileTheFarEndReads) {
    Open();
    const std::string much(8 << 20, 'x');
    std::string got;
    std::thread reader([&] { got = peer.Receive(much.size()); });
    Send(much);
    reader.join();
    EXPECT_TRUE(got == much);
}

TEST_F(TcpTransportTest, TellsWhyThereIsNoConnection) {
    const std::string gone = peer.Address();
    peer.StopListening();
    const auto open = [&](const std::string& address) { return FailureOf([&] { TransportUser::Open(address, {}, 3s); }); };
    EXPECT_EQ(Told(6, 8212, gone), open(gone));
    // What a name server that cannot be reached knows of it, the system says; in time either way.
    const std::string nobody = "tcp://nobody.invalid:502";
    EXPECT_THAT(open(nobody), testing::AnyOf(Told(6, 8210, nobody), Told(6, 8211, nobody)));
    EXPECT_EQ(6, open("tcp://no such:502").code);
    EXPECT_FALSE(line->IsOpen());
    EXPECT_EQ(Standard(6), FailureOf([&] { Send("x"); }));
    EXPECT_EQ(Standard(6), FailureOfReceive());
}

TEST_F(TcpTransportTest, ALostConnectionIsTold) {
    struct Case {
        const char* how;
        UINT text, underWine;
        bool unread;  // bytes that the far end leaves lie make its closing a reset
    };
    for (const Case& c : {Case{"closed", 8215, 8215, false}, Case{"reset", 8216, 8215, true}}) {
        SCOPED_TRACE(c.how);
        Open();
        connection->Enter(COrvikConnection::Working);
        Send("ask");
        if (!c.unread) peer.Receive(3);
        peer.Send("half an ans");
        EXPECT_EQ("half an ans", Receive());
        peer.Close();
        const CommFailure told = FailureOfReceive();
        // A reset may look like an end in good order under Wine (docs/wine.md).
        EXPECT_THAT(told, testing::AnyOf(Told(7, c.text, peer.Address()), Told(7, c.underWine, peer.Address())));
        EXPECT_EQ(COrvikConnection::Disconnected, connection->State());
        EXPECT_TRUE(connection->LineLost());
        EXPECT_EQ(told, FailureOf([&] { Send("again"); }));
        line->Close();
        EXPECT_FALSE(connection->LineLost());
    }
}

TEST_F(TcpTransportTest, AConnectionThatWasClosedWhileIdleIsOpenedAnew) {
    // The line looks by its own clock, and the system closes when it comes to it.
    const auto idle = [](DWORD milliseconds) { ::Sleep(milliseconds); };
    Open();
    peer.Send("late");
    peer.Close();
    idle(60);
    // What came is not thrown away: it tells first, and the end with it.
    Send("lost");
    EXPECT_EQ("late", Receive());
    EXPECT_EQ(7, FailureOfReceive().code);
    line->Close();

    Open();
    peer.Close();
    idle(60);
    Send("ask");
    peer.Accept();
    EXPECT_EQ("ask", peer.Receive(3));
    peer.Send("answer");
    EXPECT_EQ("answer", Receive());
    peer.Close();
    idle(1010);
    EXPECT_EQ("", Receive(0ms));
    peer.Accept();
    peer.Close();
    peer.StopListening();
    idle(60);
    EXPECT_EQ(6, FailureOf([&] { Send("ask"); }).code);
}

TEST_F(TcpTransportTest, AnAbortEndsAWaitAndHoldsUntilClosed) {
    line->Abort();
    EXPECT_EQ(Standard(9), FailureOf([&] { Open(); }));
    Open();  // it has done what it was to do
    std::thread other([&] { line->Abort(); });
    EXPECT_EQ(Standard(9), FailureOfReceive());
    other.join();
    EXPECT_EQ(Standard(9), FailureOf([&] { Send("x"); }));
    line->Close();
    Open();
    Send("x");
}

TEST_F(TcpTransportTest, HandlesMessagesWhileItWaits) {
    Open();
    AtMessage([&] { peer.Send("from within"); });
    EXPECT_EQ("from within", Receive());
    AtMessage([&] { line->Close(); });
    EXPECT_EQ(Standard(6), FailureOfReceive());
    Open();
    AtMessage([&] { Open(); });  // another one in its place
    EXPECT_EQ(Standard(6), FailureOfReceive());
    AtMessage([] { ::PostQuitMessage(3); });
    EXPECT_EQ(Standard(9), FailureOfReceive());
    MSG quit{};
    EXPECT_TRUE(::PeekMessageA(&quit, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(WM_QUIT, quit.message);
    EXPECT_EQ(3u, quit.wParam);
}

TEST_F(TcpTransportTest, TracesUnderTheAddress) {
    Tracer host;
    Connect2Application(&host);
    port.m_bTraceEnabled = port.m_bTraceHex = TRUE;
    Open();
    Send("\x01\x7f");
    peer.Send("AB");
    EXPECT_EQ("AB", Receive());
    Send("\x02");
    Connect2Application(nullptr);
    ASSERT_EQ(2u, host.lines.size());
    const auto tail = [](const std::string& traced) { return traced.substr(traced.find(" - ")); };
    EXPECT_EQ(" - " + peer.Address() + " > 01 7F ", tail(host.lines[0]));
    EXPECT_EQ(" - " + peer.Address() + " < 41 42 ", tail(host.lines[1]));
}
}  // namespace
