// Several transports on one line.
#include <gtest/gtest.h>

#include <cctype>

#include "comm/serial_device.h"
#include "tests/comm/transport_user.h"
#include "tests/support/ports/serial_peer.h"
#include "tests/support/tcp_peer.h"

namespace {

using User = TransportUser;

TEST(SharedLineTest, APortIsSetUpForWhoeverSends) {
    const Awaiting call("a call of a shared port to end");
    SerialPeer peer;
    User one, other;
    one.Open(peer.Port(), {9600});
    std::string sameName = peer.Port();
    for (char& c : sameName) c = static_cast<char>(std::tolower(c));
    other.Open(sameName, {19200});
    EXPECT_TRUE(other.line->IsOpen());
    one.Send("a");
    EXPECT_EQ(CSerial::Baudrate9600, one.port.GetBaudrate());
    other.Send("b");
    EXPECT_EQ(CSerial::Baudrate19200, one.port.GetBaudrate());
    EXPECT_EQ("ab", peer.Receive(2));
    peer.Send("c");
    EXPECT_EQ("c", other.Receive());
    one.line->Close();  // the port was its own
    EXPECT_FALSE(one.line->IsOpen());
    EXPECT_TRUE(other.line->IsOpen());
    other.Send("d");
    EXPECT_TRUE(other.port.IsOpen());
    EXPECT_EQ("d", peer.Receive(1));
    other.line->Close();
    EXPECT_FALSE(CSerialOrvik::IsPortOpen(peer.Name()));
}

TEST(SharedLineTest, AConnectionIsOpenedOnceAndClosedWithTheLast) {
    const Awaiting call("a call of a shared connection to end");
    TcpPeer peer;
    User one, other;
    one.Open(peer.Address());
    peer.Accept();
    EXPECT_FALSE(one.line->IsShared());
    other.Open(peer.Address());
    EXPECT_TRUE(one.line->IsShared());
    other.line->Abort();  // is its own affair
    one.Send("a");
    EXPECT_EQ(9, other.FailureOfReceive().code);
    other.line->Close();
    other.Open(peer.Address());
    other.Send("b");
    EXPECT_EQ("ab", peer.Receive(2));
    one.line->Close();
    EXPECT_FALSE(other.line->IsShared());
    peer.Send("c");
    EXPECT_EQ("c", other.Receive());
    other.line->Close();
    EXPECT_EQ("", peer.Receive(1));
}

TEST(SharedLineTest, ALostConnectionIsOpenedAnewForAll) {
    const Awaiting call("a call of a lost connection to end");
    TcpPeer peer;
    User one, two, three;
    for (User* user : {&one, &two, &three}) user->Open(peer.Address());
    peer.Accept();
    peer.Close();
    EXPECT_EQ(7, two.FailureOfReceive().code);
    EXPECT_TRUE(two.connection->LineLost());
    EXPECT_EQ(7, three.FailureOfReceive().code);
    EXPECT_TRUE(three.connection->LineLost());
    two.line->Close();
    two.Open(peer.Address());
    peer.Accept();
    EXPECT_FALSE(two.connection->LineLost());
    peer.Send("x");
    EXPECT_EQ("x", one.Receive());  // has not even noticed
    three.line->Close();
    three.Open(peer.Address());
    three.Send("y");
    EXPECT_EQ("y", peer.Receive(1));
}

}  // namespace
