// The simulated logger on its lines: which answer gets which fault, and what connections see of each other.
#include <gtest/gtest.h>

#include <thread>

#include "host/logger/simulated_server.h"
#include "host/words/console.h"
#include "tests/support/time_limit.h"

namespace {
// Answers every line that ends with "\n" by itself; says "tick" as often as it is wanted.
class LineLogger : public ILoggerSimulator {
public:
    explicit LineLogger(int ticks = 0) : m_ticks(ticks) {}
    void Receive(const BYTE* data, size_t size, CByteArray& reply) override {
        reply.RemoveAll();
        m_heard.append(reinterpret_cast<const char*>(data), size);
        const size_t end = m_heard.find('\n');
        if (end == std::string::npos) return;
        for (const char c : m_heard.substr(0, end + 1)) reply.Add(static_cast<BYTE>(c));
        m_heard.erase(0, end + 1);
    }
    void Reset() override { m_heard.clear(); }
    bool SetFault(const char* name, int percent) override {
        fault = name + std::to_string(percent);
        return fault.starts_with("crc");
    }
    DWORD Speak(CByteArray& out) override {
        out.RemoveAll();
        if (m_ticks == 0) return INFINITE;
        for (const char c : std::string("tick\n")) out.Add(static_cast<BYTE>(c));
        return --m_ticks == 0 ? INFINITE : 10;
    }
    std::string fault;

private:
    std::string m_heard;
    int m_ticks;
};

class Client {
public:
    explicit Client(const std::string& address) {
        const Awaiting connection("a simulated logger to be connected to");
        const CLineAddress to = CLineAddress::Parse(address.c_str());
        SocketConnect connecting(to.host.c_str(), to.port, 5000);
        ::WaitForSingleObject(connecting.Done(), INFINITE);
        EXPECT_EQ(0u, connecting.Take(m_socket));
    }
    Client& Say(std::string_view text) {
        DWORD sent = 0;
        EXPECT_EQ(0u, m_socket.Send(text.data(), static_cast<DWORD>(text.size()), sent));
        return *this;
    }
    // So many characters; fewer where the connection ends.
    std::string Hear(size_t count) {
        const Awaiting answer("a simulated logger to answer");
        std::string heard;
        while (heard.size() < count) {
            char block[64];
            DWORD got = 0;
            if (m_socket.Receive(block, static_cast<DWORD>(std::min(sizeof block, count - heard.size())), got) != 0) break;
            heard.append(block, got);
            if (got == 0) ::WaitForSingleObject(m_socket.Await(), INFINITE);
        }
        return heard;
    }

private:
    Socket m_socket;
};

class Served {
public:
    explicit Served(const std::vector<std::string>& faults = {}, int ticks = 0)
        : m_logger(std::make_unique<LineLogger>(ticks), Faults(faults)), m_server(m_logger, "tcp://127.0.0.1:0") {}
    ~Served() {
        m_server.Stop();
        m_thread.join();
    }
    std::string Address() const { return m_server.Address(); }

private:
    static LineFaults Faults(const std::vector<std::string>& words) {
        LineLogger any;
        return LineFaults(words, any, 1, 1);
    }
    SimulatedLogger m_logger;
    SimulatedServer m_server;
    std::thread m_thread{[this] { m_server.Serve(); }};
};

TEST(LineFaultsTest, OthersAreTheFamilysOwn) {
    LineLogger logger;
    LineFaults({"crc=3"}, logger, 0, 0);
    EXPECT_EQ("crc3", logger.fault);
    for (const char* word : {"loud", "loud=3", "late=101", "late=", "late=-1", "late=5x"}) {
        SCOPED_TRACE(word);
        EXPECT_THROW(LineFaults({word}, logger, 0, 0), Failure);
    }
}

TEST(SimulatedServerTest, ConnectionsDoNotDisturbEachOther) {
    Served served;
    Client one(served.Address()), other(served.Address());
    one.Say("ask").Say("ed\n");
    EXPECT_EQ("asked\n", one.Hear(6));
    one.Say("in pie");
    other.Say("between\n");
    EXPECT_EQ("between\n", other.Hear(8));
    one.Say("ces\n");
    EXPECT_EQ("in pieces\n", one.Hear(10));
}

TEST(SimulatedServerTest, FaultsBefallTheConnection) {
    Served split({"split", "late"}), drop({"drop"}), unplug({"unplug"});
    EXPECT_EQ("in two\n", Client(split.Address()).Say("in two\n").Hear(7));
    EXPECT_EQ("", Client(drop.Address()).Say("gone\n").Hear(5));
    Client last(unplug.Address());
    for (int i = 0; i < 3; ++i) EXPECT_EQ("x\n", last.Say("x\n").Hear(2));
    EXPECT_EQ("", last.Say("x\n").Hear(2));
}

TEST(SimulatedServerTest, WhatItSaysByItselfIsHeardByAll) {
    Served served({}, 1000);
    Client one(served.Address()), other(served.Address());
    EXPECT_EQ("tick\ntick\n", one.Hear(10));
    EXPECT_EQ("tick\ntick\n", other.Hear(10));
}

TEST(SimulatedServerTest, RefusesWhatItCannotListenAt) {
    Served served;
    SimulatedLogger logger(std::make_unique<LineLogger>(), {});
    for (const std::string& address :
         {served.Address(), std::string("tcp://192.0.2.1:0"), std::string("COM3"), std::string("tcp://:x")}) {
        SCOPED_TRACE(address);
        EXPECT_THROW(SimulatedServer(logger, address), Failure);
    }
}
}  // namespace
