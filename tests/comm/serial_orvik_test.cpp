// CSerialOrvik: records, trace, and the way of a line event to its connection.
#include "comm/serial_orvik.h"

#include <gtest/gtest.h>

#include <cstdarg>
#include <string>
#include <vector>

#include "comm/orvik_connection.h"
#include "comm/serial_device.h"
#include "frame/app_link.h"
#include "tests/comm/pump.h"
#include "tests/support/ports/serial_peer.h"
#include "time/time_point.h"

namespace {
constexpr DWORD kSoon = 5000;

class Host : public IOrvikApp {
public:
    void Trace(const char* format, ...) override { lines.push_back(format); }
    IDeviceFamily* FindDeviceFamily(const char*) override { return nullptr; }
    int IsCommTraceEnabled() override { return tracing; }

    std::vector<std::string> lines;
    int tracing = 1;
};

class Connection : public COrvikConnection {
public:
    void OnSerialCommEvent(CSerial::EEvent event, CSerial::EError error) override {
        events.push_back({event, error, ::GetCurrentThreadId()});
    }
    struct Event {
        DWORD event, error, thread;
    };
    std::vector<Event> events;
};

class Port : public CSerialOrvik {
public:
    using CSerialOrvik::DumpTrace;
    using CSerialOrvik::m_nTraceDirection;
    using CSerialOrvik::m_strPort;
    using CSerialOrvik::m_strTrace;
    using CSerialOrvik::m_wndCom;
};

class SerialOrvikTest : public testing::Test {
protected:
    void SetUp() override { Connect2Application(&host); }
    void TearDown() override {
        port.Close();
        Connect2Application(nullptr);
    }

    void Open() {
        ASSERT_EQ(0, port.Open(peer.Name(), &connection, 0, 0));
        ASSERT_EQ(0, port.SetupReadTimeouts(CSerial::ReadBlocking));
    }
    void Traced(bool hex = false) {
        Open();
        port.m_bTraceEnabled = TRUE;
        port.m_bTraceHex = hex;
    }
    void Write(const std::string& bytes) {
        EXPECT_EQ(0, port.Write(bytes.data(), bytes.size(), nullptr, nullptr, kSoon));
        EXPECT_EQ(bytes, peer.Receive(bytes.size()));
    }
    void Receive(const std::string& bytes) {
        peer.Send(bytes);
        std::string got(bytes.size(), '?');
        EXPECT_EQ(0, port.Read(got.data(), got.size(), nullptr, nullptr, kSoon));
        EXPECT_EQ(bytes, got);
    }
    // A trace line without its time, which stands in front of the first " - ".
    static std::string WithoutTime(const std::string& line) {
        const size_t end = line.find(" - ");
        return end == std::string::npos ? "no time: " + line : line.substr(end + 3);
    }
    std::vector<std::string> Lines() {
        std::vector<std::string> lines;
        for (const std::string& line : host.lines) lines.push_back(WithoutTime(line));
        return lines;
    }
    static CSerialOrvik* PortOf(const char* name) {
        CSerialOrvik* found = nullptr;
        return CSerialOrvik::m_mapPorts.Lookup(name, found) ? found : nullptr;
    }
    static COrvikConnection* HolderOf(const char* name) {
        COrvikConnection* found = nullptr;
        return CSerialDevice::LookupBusyPort(name, found) ? found : nullptr;
    }

    using Text = std::vector<std::string>;
    const Awaiting m_call{"a call of the port, or its listener, to end"};
    Host host;
    SerialPeer peer;
    Connection connection;
    Port port;
};

TEST_F(SerialOrvikTest, RecordsThePortWhileItIsOpen) {
    Open();
    EXPECT_STREQ("COM7", port.m_strPort);
    EXPECT_EQ(&port, PortOf("COM7"));
    EXPECT_EQ(&connection, HolderOf("COM7"));
    EXPECT_EQ(nullptr, HolderOf("com7")) << "names are compared exactly";
    EXPECT_EQ(0, port.Close());
    EXPECT_EQ(nullptr, PortOf("COM7"));
    EXPECT_EQ(nullptr, HolderOf("COM7"));
    EXPECT_TRUE(CSerialOrvik::m_mapPorts.IsEmpty());
    EXPECT_STREQ("COM7", port.m_strPort) << "the name outlives the port";
    Port next;
    Connection other;
    ASSERT_EQ(0, next.Open(peer.Name(), &other, 0, 0));
    EXPECT_EQ(0, port.Close());
    EXPECT_EQ(&next, PortOf("COM7"));
    EXPECT_EQ(&other, HolderOf("COM7"));
    EXPECT_EQ(0, next.Close());
    EXPECT_EQ(nullptr, HolderOf("COM7"));
    EXPECT_EQ(2, port.Open("COM77", &connection, 0, 0));
    EXPECT_EQ(nullptr, PortOf("COM77"));
    EXPECT_EQ(nullptr, HolderOf("COM77"));
    Open();
    EXPECT_EQ(1247, port.Open("COM78", nullptr, 0, 0));
    EXPECT_EQ(&port, PortOf("COM7"));
    EXPECT_EQ(&connection, HolderOf("COM7"));
    Port never;
    EXPECT_EQ(0, never.Close());
    EXPECT_EQ(&port, PortOf("COM7"));
}

TEST_F(SerialOrvikTest, TheOtherWaysToOpenBypassTheRecords) {
    Port other;
    EXPECT_EQ(0, other.Open(peer.Name(), 0, 0, false));
    EXPECT_EQ(0, other.Close());
    EXPECT_EQ(0, other.Open(peer.Name(), nullptr, 0, 0, 0, 0));
    EXPECT_EQ(nullptr, PortOf("COM7"));
    EXPECT_EQ(0, other.Close());
}

TEST_F(SerialOrvikTest, BringsLineEventsAndTheFarewellToTheMainThread) {
    Open();
    peer.Send("x");
    ASSERT_TRUE(PumpUntil([&] { return !connection.events.empty(); }));
    EXPECT_EQ(1u, connection.events[0].event);
    EXPECT_EQ(0u, connection.events[0].error);
    EXPECT_EQ(::GetCurrentThreadId(), connection.events[0].thread);
    peer.Unplug();
    const auto farewells = [&] {
        int count = 0;
        for (const auto& e : connection.events) count += e.event == 0x0800 && e.error == 0x0400 ? 1 : 0;
        return count;
    };
    ASSERT_TRUE(PumpUntil([&] { return farewells() > 0; }));
    EXPECT_EQ(0, port.Close());
    PumpOnce();
    EXPECT_EQ(1, farewells());
}

TEST_F(SerialOrvikTest, TracesAnExchange) {
    Traced(true);
    Write("\x01\x02\x03");
    Receive("\xFE\x7F\x0A%\xAB");
    EXPECT_EQ((Text{"COM7 > 01 02 03 "}), Lines());
    port.DumpTrace();
    EXPECT_EQ((Text{"COM7 > 01 02 03 ", "COM7 < FE 7F 0A 25 AB "}), Lines());
    EXPECT_EQ(0, port.m_nTraceDirection);
    port.m_bTraceHex = false;
    host.lines.clear();
    Write("%s%n 100 % \xE5\xE4\xF6\r\n");
    port.DumpTrace();
    EXPECT_EQ((Text{"COM7 > %s%n 100 % \xE5\xE4\xF6\r\n"}), Lines()) << "finished text, whatever it holds";
}

TEST_F(SerialOrvikTest, StampsALineWithTheTimeItBegan) {
    Traced();
    const std::string before = CVXTTime::Now().Format().GetString();
    Write("x");
    const std::string after = CVXTTime::Now().Format().GetString();
    port.DumpTrace();
    ASSERT_EQ(1u, host.lines.size());
    EXPECT_TRUE(host.lines[0] == before + " - COM7 > x" || host.lines[0] == after + " - COM7 > x") << host.lines[0];
}

TEST_F(SerialOrvikTest, OneLineForEachChangeOfDirection) {
    Traced();
    Write("one ");
    Write("two");
    Receive("three");
    Write("four");
    port.DumpTrace();
    EXPECT_EQ((Text{"COM7 > one two", "COM7 < three", "COM7 > four"}), Lines());
    host.lines.clear();
    Write("ask");
    char byte = 0;
    DWORD count = 99;
    EXPECT_EQ(1460, port.Read(&byte, 1, &count, nullptr, 1));
    EXPECT_EQ(0u, count);
    EXPECT_EQ((Text{"COM7 > ask"}), Lines());
    EXPECT_EQ(1, port.m_nTraceDirection);
    port.DumpTrace();
    EXPECT_EQ((Text{"COM7 > ask", "COM7 < "}), Lines());
}

TEST_F(SerialOrvikTest, TracesWhatWasAskedToBeWrittenAndNeverChangesTheResult) {
    port.m_bTraceEnabled = TRUE;
    DWORD written = 99;
    EXPECT_EQ(6, port.Write("lost", &written, nullptr, kSoon)) << "the port is closed";
    EXPECT_EQ(0u, written);
    port.DumpTrace();
    EXPECT_EQ((Text{" > lost"}), Lines());
}

TEST_F(SerialOrvikTest, CollectsNothingUnlessBothTrace) {
    Traced();
    host.tracing = 0;
    Write("quiet");
    Receive("quiet");
    EXPECT_EQ(0, port.m_nTraceDirection);
    EXPECT_STREQ("", port.m_strTrace);
    host.tracing = 1;
    Write("heard");
    EXPECT_EQ(-1, port.m_nTraceDirection);
    host.tracing = 0;
    Receive("quiet again");
    EXPECT_EQ(-1, port.m_nTraceDirection);
    EXPECT_TRUE(host.lines.empty());
    port.DumpTrace();
    EXPECT_TRUE(host.lines.empty()) << "a line that may not be shown is dropped";
    EXPECT_EQ(0, port.m_nTraceDirection);
    EXPECT_STREQ("", port.m_strTrace);
    host.tracing = 1;
    port.m_bTraceEnabled = FALSE;
    Write("quiet");
    port.m_bTraceEnabled = TRUE;
    Connect2Application(nullptr);
    Write("quiet");
    EXPECT_EQ(0, port.m_nTraceDirection);
}

TEST_F(SerialOrvikTest, DestructionFlushesTheLineAndCloseDoesNot) {
    {
        Port other;
        ASSERT_EQ(0, other.Open(peer.Name(), &connection, 0, 0));
        other.m_bTraceEnabled = TRUE;
        EXPECT_EQ(0, other.Write("last words", nullptr, nullptr, kSoon));
        EXPECT_EQ(0, other.Close());
        EXPECT_TRUE(host.lines.empty());
    }
    EXPECT_EQ((Text{"COM7 > last words"}), Lines());
}

}  // namespace
