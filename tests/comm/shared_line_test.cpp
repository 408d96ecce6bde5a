// Several transports on one line, and ports on several threads.
#include <gtest/gtest.h>

#include <atomic>
#include <cctype>
#include <thread>

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

TEST(SharedLineTest, PortsOpenAndCloseOnThreads) {
    constexpr int kTimes = 20;
    SerialPeer peers[] = {SerialPeer("COM7"), SerialPeer("COM8"), SerialPeer("COM9")};
    std::atomic<int> opened = 0;
    std::vector<std::thread> threads;
    for (const SerialPeer& peer : peers) {
        threads.emplace_back([&opened, name = peer.Port()] {
            const Awaiting call("ports to open and close on a thread");
            User user;
            for (int i = 0; i < kTimes; ++i) {
                user.Open(name);
                COrvikConnection* holder = nullptr;
                opened += CSerialOrvik::IsPortOpen(name.c_str()) && CSerialDevice::LookupBusyPort(name.c_str(), holder) &&
                          holder == user.connection;
                user.Send("x");
                user.line->Close();
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(kTimes * 3, opened);
    for (const SerialPeer& peer : peers) EXPECT_FALSE(CSerialOrvik::IsPortOpen(peer.Name()));
}
}  // namespace
