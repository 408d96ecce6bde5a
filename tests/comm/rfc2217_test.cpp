// Telnet, and a terminal server's serial port over it. Expected bytes are those of the two documents.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <thread>

#include "comm/telnet.h"
#include "tests/comm/transport_user.h"
#include "tests/support/tcp_peer.h"

namespace {
using namespace std::chrono_literals;
using namespace std::string_literals;

std::span<const BYTE> Bytes(std::string_view text) { return {reinterpret_cast<const BYTE*>(text.data()), text.size()}; }
std::string Text(const std::vector<BYTE>& bytes) { return {bytes.begin(), bytes.end()}; }

// Notes what it is told.
class End : public TelnetEnd {
public:
    End() : TelnetEnd({kBinary}, {kSuppressGoAhead}) {}
    std::string told;

private:
    void OnOwnOption(BYTE option, bool agreed, std::vector<BYTE>&) override {
        told += (agreed ? "+" : "-") + std::to_string(option) + ";";
    }
    void OnMessage(BYTE option, std::span<const BYTE> content, std::vector<BYTE>&) override {
        told += std::to_string(option) + ":" + std::string(content.begin(), content.end()) + ";";
    }
};

TEST(TelnetTest, TellsDataFromCommandsAtAnyCut) {
    struct Case {
        std::string in, data, out, told;
    };
    const Case cases[] = {{"plain\0text\r\n"s, "plain\0text\r\n"s, "", ""},
                          {"a\xff\xff"s + "b", "a\xff"s + "b", "", ""},
                          {"a\xff\xf1"s + "b", "ab", "", ""},        // no operation
                          {"\xff\xfd\x18", "", "\xff\xfc\x18", ""},  // DO what is not known: WONT
                          {"\xff\xfb\x01", "", "\xff\xfe\x01", ""},  // WILL what is not wanted: DONT
                          {"\xff\xfc\x01\xff\xfe\x18", "", "", ""},  // WONT and DONT that change nothing
                          {"\xff\xfd\0\xff\xfd\0\xff\xfb\3"s, "", "\xff\xfb\0\xff\xfd\3"s, "+0;"},
                          {"\xff\xfd\0\xff\xfe\0"s, "", "\xff\xfb\0\xff\xfc\0"s, "+0;-0;"},
                          {"x\xff\xfa,in\xff\xff"
                           "side\xff\xf0y",
                           "xy", "",
                           "44:in\xff"
                           "side;"},
                          {"\xff\xfa\xff\xf0\xff\xfa,\xff\xf0", "", "", "44:;"},
                          {"\xff\xfa," + std::string(256, 'm') + "\xff\xf0", "", "", "44:" + std::string(256, 'm') + ";"},
                          {"\xff\xfa," + std::string(257, 'm') + "\xff\xf0z", "z", "", ""},
                          {"\xff\xfa,cut off\xff\xfb"
                           "data",
                           "data", "", ""}};
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.in));
        for (size_t cut = 0; cut <= c.in.size(); ++cut) {
            End end;
            std::vector<BYTE> data, out;
            end.Feed(Bytes(c.in).first(cut), data, out);
            end.Feed(Bytes(c.in).subspan(cut), data, out);
            ASSERT_EQ(c.data, Text(data)) << cut;
            ASSERT_EQ(c.out, Text(out)) << cut;
            ASSERT_EQ(c.told, end.told) << cut;
        }
    }
    End asking;
    std::vector<BYTE> data, out;
    asking.Begin(out);
    EXPECT_EQ("\xff\xfb\0\xff\xfd\3"s, Text(out));
    out.clear();
    asking.Feed(Bytes("\xff\xfd\0\xff\xfc\3"s), data, out);  // what was asked for is not answered again
    EXPECT_EQ("", Text(out));
    TelnetEnd::Escape(Bytes("a\xff\0"s), out);
    TelnetEnd::AppendMessage(44, Bytes("\1\xff"), out);
    EXPECT_EQ("a\xff\xff\0\xff\xfa,\1\xff\xff\xff\xf0"s, Text(out));
}

// IAC SB COM-PORT-OPTION ... IAC SE
std::string Message(const std::string& content) { return "\xff\xfa," + content + "\xff\xf0"; }
const std::string kOffer = "\xff\xfb\0\xff\xfd\0\xff\xfb\3\xff\xfd\3\xff\xfb,"s;
const std::string kAgreed = "\xff\xfd\0\xff\xfb\0\xff\xfd\3\xff\xfb\3\xff\xfd,"s;
// 19200 baud, 7 data bits, even parity, 2 stop bits, no flow control
const std::string kAsked = Message("\1\0\0\x4b\0"s) + Message("\2\7") + Message("\3\3") + Message("\4\2") + Message("\5\1") +
                           Message("\5\x8") + Message("\5\xb") + Message("\xa\0"s) + Message("\xb\0"s) + Message("\xc\3");
std::string Confirmed(const std::string& baud = "\0\0\x4b\0"s, const std::string& parity = "\3") {
    return Message("\x65" + baud) + Message("\x66\7") + Message("\x67" + parity) + Message("\x68\2") + Message("\x69\1");
}

class Rfc2217Test : public testing::Test, public TransportUser {
protected:
    // Opens while the server says this, whatever it is asked.
    void Open(const std::string& says, ITransport::Duration within = 5s) {
        std::thread server([&] {
            peer.Accept();
            peer.Send(says);
        });
        struct Join {
            std::thread& thread;
            ~Join() { thread.join(); }
        } join{server};
        TransportUser::Open(peer.Address("rfc2217"), {19200, CSerial::DataBits7, CSerial::ParityEven, CSerial::StopBits2},
                            within);
    }
    const Awaiting m_call{"a call of the transport to end"};
    TcpPeer peer;
};

TEST_F(Rfc2217Test, SetsTheLineUpAndCarriesData) {
    // A modem state among the confirmations, and bytes from before the line was set up.
    Open(kAgreed + "early" + Message("\x6b\x30") + Confirmed());
    EXPECT_EQ(testing::PrintToString(kOffer + kAsked), testing::PrintToString(peer.Receive(kOffer.size() + kAsked.size())));
    EXPECT_TRUE(line->IsShared());
    Send("\1\xff\2");
    EXPECT_EQ("\1\xff\xff\2", peer.Receive(4));
    peer.Send(Message("\x6a\x40") + "\3\xff");
    EXPECT_EQ("\3", Receive());
    peer.Send("\xff\4");
    EXPECT_EQ("\xff\4", Receive());
    peer.Send("\xff\xfd\x18late");  // an option in the middle of things
    EXPECT_EQ("late", Receive());
    EXPECT_EQ("\xff\xfc\x18", peer.Receive(3));
    peer.Send(Message("\x6b\x30"));
    EXPECT_EQ("", Receive(50ms));
}

TEST_F(Rfc2217Test, IsSetUpAnewForAnotherLogger) {
    Open(kAgreed + Confirmed());
    peer.Receive(kOffer.size() + kAsked.size());
    TransportUser other;
    other.Open(peer.Address("rfc2217"));
    std::string asked;
    std::thread server([&] {
        asked = peer.Receive(kAsked.size());
        peer.Send(Message("\x65\0\0\x25\x80"s) + Message("\x66\x8") + Message("\x67\1") + Message("\x68\1") + Message("\x69\1"));
    });
    other.Send("x");
    server.join();
    const std::string first = Message("\1\0\0\x25\x80"s) + Message("\2\x8") + Message("\3\1") + Message("\4\1");
    EXPECT_EQ(testing::PrintToString(first), testing::PrintToString(asked.substr(0, first.size())));
    EXPECT_EQ("x", peer.Receive(1));
}

TEST_F(Rfc2217Test, TellsWhatTheServerDoesNotDo) {
    struct Case {
        const char* what;
        std::string says;
        int code;
        UINT text;
    };
    const std::string noPort = "\xff\xfd\0\xff\xfe,"s;
    for (const Case& c : {Case{"no serial port", noPort, 6, 8220}, Case{"no telnet", "login: ", 6, 8220},
                          Case{"nothing is confirmed", kAgreed, 7, 8221},
                          Case{"a rate of too many bytes", kAgreed + Confirmed("\1\0\0\x4b\0"s), 7, 8221},
                          Case{"another rate", kAgreed + Confirmed("\0\0\x25\x80"s), 7, 8222},
                          Case{"another parity", kAgreed + Confirmed("\0\0\x4b\0"s, "\1"), 7, 8222}}) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(Told(c.code, c.text, peer.Address()), FailureOf([&] { Open(c.says, 300ms); }));
        EXPECT_FALSE(line->IsOpen());
    }
}
}  // namespace
