// Network lines: what arrives, what is told when there is no line any more, and what ends a wait.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <thread>

#include "comm/comm_exception.h"
#include "comm/line_connection.h"
#include "comm/serial_orvik.h"
#include "comm/transport.h"
#include "frame/app_link.h"
#include "tests/support/tcp_peer.h"
#include "tests/support/time_limit.h"

namespace {
using namespace std::chrono_literals;
constexpr auto kSoon = 5s;

class Tracer : public IOrvikApp {
public:
    void Trace(const char* format, ...) override { lines.push_back(format); }
    IDeviceFamily* FindDeviceFamily(const char*) override { return nullptr; }
    int IsCommTraceEnabled() override { return 1; }
    std::vector<std::string> lines;
};

class Connection : public CLineConnection {
public:
    EState State() const { return m_eState; }
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

class TcpTransportTest : public testing::Test {
protected:
    TcpTransportTest() { connection->AddRef(); }
    ~TcpTransportTest() override {
        transport.reset();
        connection->Release();
    }

    void Open(const char* scheme = "tcp") {
        transport->Open(peer.Address(scheme).c_str(), {}, transport->Now() + kSoon);
        peer.Accept();
    }
    void Send(std::string_view bytes) {
        transport->Send({reinterpret_cast<const BYTE*>(bytes.data()), bytes.size()}, transport->Now() + kSoon);
    }
    // What comes next, in one piece; empty when nothing came.
    std::string Receive(ITransport::Duration within = kSoon) {
        std::vector<BYTE> received;
        transport->Receive(received, transport->Now() + within);
        return {received.begin(), received.end()};
    }
    // The failure of a call: "code sentence".
    static std::string FailureOf(const std::function<void()>& call) {
        try {
            call();
        } catch (CCommException* failure) {
            const std::string text = std::to_string(failure->m_nError) + " " + failure->m_strError.GetString();
            failure->Delete();
            return text;
        }
        return "none";
    }
    static std::string Standard(int code) {
        return FailureOf([code] { OrvikThrowCommException(code, nullptr); });
    }
    // The sentence of res/strings.def about the address.
    static std::string Told(int code, UINT text, const std::string& address) {
        CString picture, sentence;
        picture.LoadString(text);
        sentence.Format(picture, address.substr(address.find("://") + 3).c_str());
        return std::to_string(code) + " " + sentence.GetString();
    }
    void AtMessage(std::function<void()> then) {
        g_onMessage = std::move(then);
        ASSERT_TRUE(::PostMessageA(window, WM_APP, 0, 0));
    }

    const Awaiting m_call{"a call of the transport to end"};
    TcpPeer peer;
    CSerialOrvik port;
    Connection* const connection = new Connection;
    std::unique_ptr<ITransport> transport = OrvikMakeTransport(port, *connection);
    const HWND window = MakeWindow();
};

TEST_F(TcpTransportTest, CarriesBytesBothWaysAndInPieces) {
    for (int life = 0; life < 2; ++life) {  // closed and opened again
        Open();
        EXPECT_TRUE(transport->IsOpen());
        EXPECT_FALSE(transport->IsShared());
        Send(std::string("ask\0me", 6));
        EXPECT_EQ(std::string("ask\0me", 6), peer.Receive(6));
        for (const char* piece : {"a", "ns", "wer"}) {
            peer.Send(piece);
            EXPECT_EQ(piece, Receive());
        }
        EXPECT_EQ("", Receive(0ms));
        transport->Close();
        EXPECT_EQ("", peer.Receive(1));
    }
    Open("rtu");
    EXPECT_TRUE(transport->IsShared());
}

TEST_F(TcpTransportTest, SendsMoreThanTheSystemHoldsWhileTheFarEndReads) {
    Open();
    const std::string much(8 << 20, 'x');
    std::string got;
    std::thread reader([&] { got = peer.Receive(much.size()); });
    EXPECT_EQ("none", FailureOf([&] { Send(much); }));
    reader.join();
    EXPECT_TRUE(got == much);
}

TEST_F(TcpTransportTest, TellsWhyThereIsNoConnection) {
    const std::string gone = peer.Address();
    peer.StopListening();
    const auto open = [&](const std::string& address) {
        return FailureOf([&] { transport->Open(address.c_str(), {}, transport->Now() + 3s); });
    };
    EXPECT_EQ(Told(6, 8212, gone), open(gone));
    // What a name server that cannot be reached knows of it, the system says; in time either way.
    const std::string nobody = "tcp://nobody.invalid:502";
    EXPECT_THAT(open(nobody), testing::AnyOf(Told(6, 8210, nobody), Told(6, 8211, nobody)));
    EXPECT_EQ(Told(6, 8210, "tcp://no such:502").substr(0, 2), open("tcp://no such:502").substr(0, 2));
    EXPECT_FALSE(transport->IsOpen());
    EXPECT_EQ(Standard(6), FailureOf([&] { Send("x"); }));
    EXPECT_EQ(Standard(6), FailureOf([&] { Receive(); }));
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
        const std::string told = FailureOf([&] { Receive(); });
        // A reset may look like an end in good order under Wine (docs/wine.md).
        EXPECT_THAT(told, testing::AnyOf(Told(7, c.text, peer.Address()), Told(7, c.underWine, peer.Address())));
        EXPECT_EQ(COrvikConnection::Disconnected, connection->State());
        EXPECT_TRUE(connection->LineLost());
        EXPECT_EQ(told, FailureOf([&] { Send("again"); }));
        transport->Close();
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
    EXPECT_EQ("7", FailureOf([&] { Receive(); }).substr(0, 1));
    transport->Close();

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
    EXPECT_EQ("6", FailureOf([&] { Send("ask"); }).substr(0, 1));
}

TEST_F(TcpTransportTest, AnAbortEndsAWaitAndHoldsUntilClosed) {
    transport->Abort();
    EXPECT_EQ(Standard(9), FailureOf([&] { Open(); }));
    Open();  // it has done what it was to do
    std::thread other([&] { transport->Abort(); });
    EXPECT_EQ(Standard(9), FailureOf([&] { Receive(); }));
    other.join();
    EXPECT_EQ(Standard(9), FailureOf([&] { Send("x"); }));
    transport->Close();
    Open();
    Send("x");
}

TEST_F(TcpTransportTest, HandlesMessagesWhileItWaits) {
    Open();
    AtMessage([&] { peer.Send("from within"); });
    EXPECT_EQ("from within", Receive());
    AtMessage([&] { transport->Close(); });
    EXPECT_EQ(Standard(6), FailureOf([&] { Receive(); }));
    Open();
    AtMessage([&] { Open(); });  // another one in its place
    EXPECT_EQ(Standard(6), FailureOf([&] { Receive(); }));
    AtMessage([] { ::PostQuitMessage(3); });
    EXPECT_EQ(Standard(9), FailureOf([&] { Receive(); }));
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
    const auto tail = [](const std::string& line) { return line.substr(line.find(" - ")); };
    EXPECT_EQ(" - " + peer.Address() + " > 01 7F ", tail(host.lines[0]));
    EXPECT_EQ(" - " + peer.Address() + " < 41 42 ", tail(host.lines[1]));
}
}  // namespace
