// Several slaves on one line, serial and of a network, and the writing of channels, against the plug-in's own simulator.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "plugins/modbus/modbus_logger.h"
#include "plugins/modbus/modbus_mbap.h"
#include "tests/modbus/simulator_wire.h"
#include "tests/support/comm_failure.h"
#include "tests/support/described.h"

namespace {
using std::chrono::milliseconds;
using std::chrono::seconds;
constexpr const char* kSerial = "COM1";
constexpr const char* kNetwork = "tcp://meter";

// Two registers that are asked for one by one, of each of these slaves.
modbus::Description Bus(std::initializer_list<int> slaves) {
    modbus::Description description;
    description.slaves.clear();
    for (const int address : slaves) {
        modbus::Slave slave;
        slave.address = static_cast<BYTE>(address);
        if (address == 7) slave.name = "Boiler";
        description.slaves.push_back(slave);
        for (const int first : {10, 20}) {
            modbus::Channel channel;
            channel.slave = description.slaves.size() - 1;
            channel.first = static_cast<WORD>(first);
            channel.type = modbus::ValueType::Uint16;
            description.channels.push_back(channel);
        }
    }
    return description;
}

// A logger on such a line, and what it tells.
class Station : private IReadingWatch {
public:
    explicit Station(const modbus::Description& description, const char* address = kSerial)
        : wire(*new SimulatorWire(description)), logger(description, std::unique_ptr<ITransport>(&wire)), m_address(address) {
        logger.Watch(this);
        Connect();
    }
    void Connect() { logger.Connect(m_address, 1000); }

    // One reading: its code, 0 for none.
    int Read() {
        told.clear();
        values.RemoveAll();
        wire.asked.clear();
        wire.askedAt.clear();
        wire.sent.clear();
        const auto begun = wire.Now();
        const int code = FailureOf([&] { logger.ReadSample(values); }).code;
        took = wire.Now() - begun;
        return code;
    }
    // How many channels have a value.
    int Good() const {
        return static_cast<int>(
            std::count_if(values.GetData(), values.GetData() + values.GetSize(), [](double v) { return !std::isnan(v); }));
    }
    int Asked(BYTE slave) const { return static_cast<int>(std::count(wire.asked.begin(), wire.asked.end(), slave)); }

    SimulatorWire& wire;
    modbus::Logger logger;
    CDoubleArray values;
    std::map<int, std::pair<int, std::string>> told;
    ITransport::Duration took{};
    int lateAnswers = 0;

private:
    void OnAnswer(DWORD) override {}
    void OnChannelFailed(int channel, int code, const char* text) override {
        told[channel] = {code, text != nullptr ? text : ""};
    }
    void OnLateAnswer(DWORD) override { ++lateAnswers; }
    const char* const m_address;
};
}  // namespace

TEST(ModbusBus, ASilentSlaveCostsTheOthersOneTimeout) {
    for (const char* address : {kSerial, kNetwork}) {
        SCOPED_TRACE(address);
        Station station(Bus({5, 7, 9}), address);
        station.wire.dead = {7};
        int asked = 0, readings = 0;
        for (; readings < 40; ++readings) {
            ASSERT_EQ(station.Read(), 0);
            EXPECT_EQ(station.Good(), 4);
            ASSERT_EQ(station.told.size(), 2u) << "in every reading";
            EXPECT_EQ(station.told[2], std::pair(8, std::string("Receive timeout (slave 7, Boiler)")));
            EXPECT_EQ(station.told[2], station.told[3]);
            // Only at first it may still be thought that an answer was lost.
            EXPECT_LT(station.took, seconds(readings == 0 ? 4 : 1) + milliseconds(300)) << readings;
            asked += station.Asked(7);
            station.wire.Idle(milliseconds(100));
        }
        EXPECT_LE(asked, 10);
        // However long it was away, it is back after a minute at most.
        station.wire.Idle(seconds(60));
        station.wire.dead.clear();
        EXPECT_EQ(station.Read(), 0);
        EXPECT_EQ(station.Good(), 6);
        EXPECT_TRUE(station.told.empty());
    }
}

TEST(ModbusBus, ASlaveThatFallsSilentIsAskedAgainAfterTheOthers) {
    Station station(Bus({7, 9}));
    station.Read();
    ASSERT_EQ(station.Good(), 4);
    station.wire.dead = {7};
    EXPECT_EQ(station.Read(), 0);
    EXPECT_EQ(station.wire.asked, (std::vector<BYTE>{7, 9, 9, 7, 7}));
    station.wire.dead.clear();
    station.Read();
    EXPECT_EQ(station.Good(), 4);
}

TEST(ModbusBus, WhereNoneAnswersAllAreAsked) {
    Station station(Bus({5, 7, 9}));
    station.wire.dead = {5, 7, 9};
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(station.Read(), 8);
        EXPECT_EQ(station.told.size(), 6u);
        EXPECT_TRUE(station.Asked(5) && station.Asked(7) && station.Asked(9));
    }
    station.wire.dead.clear();
    station.Read();
    EXPECT_EQ(station.Good(), 6);
}

// An answer of the one while the other is asked, and of the reading before.
TEST(ModbusBus, ALateSlaveIsKnown) {
    for (const char* address : {kSerial, kNetwork}) {
        SCOPED_TRACE(address);
        Station station(Bus({5, 7}), address);
        station.wire.late[5] = milliseconds(1500);
        int good = 0;
        for (int i = 0; i < 10; ++i) {
            ASSERT_EQ(station.Read(), 0);
            EXPECT_FALSE(std::isnan(station.values[2]));
            good += station.Good();
        }
        EXPECT_GT(good, 25);
        EXPECT_GT(station.lateAnswers, 0);
    }
}

TEST(ModbusBus, PausesAndAttemptsAreTheSlaves) {
    modbus::Description description = Bus({5, 7});
    description.pauseOpen = 2000;
    description.slaves[0].pause = 300;
    description.slaves[1].attempts = 1;
    Station station(description);
    const auto opened = station.wire.Now();
    station.Read();
    EXPECT_GE(station.wire.askedAt[0] - opened, milliseconds(2000));
    for (size_t i = 1; i < station.wire.asked.size(); ++i) {
        if (station.wire.asked[i] == 5 && station.wire.asked[i - 1] == 5) {
            EXPECT_GE(station.wire.askedAt[i] - station.wire.askedAt[i - 1], milliseconds(320));
        }
    }
    station.wire.dead = {7};
    station.Read();
    EXPECT_EQ(station.Asked(7), 1);
}

TEST(ModbusBus, OnlyWhatIsDueIsAskedFor) {
    Station station(Bus({5, 7}));
    station.Read();
    CByteArray due;
    for (int i = 0; i < 4; ++i) due.Add(i == 0);
    station.logger.Select(due);
    EXPECT_EQ(station.Read(), 0);
    EXPECT_EQ(station.wire.asked, (std::vector<BYTE>{5}));
    EXPECT_EQ(station.Good(), 1);
    EXPECT_FALSE(std::isnan(station.values[0]));
    EXPECT_TRUE(station.told.empty());
    due[0] = 0;
    station.logger.Select(due);
    EXPECT_EQ(station.Read(), 0);
    EXPECT_TRUE(station.wire.asked.empty());
}

// A logger that has no value has answered: nothing is missing, even if it has none at all.
TEST(ModbusBus, NoValueIsNoFailure) {
    modbus::Description description = Bus({5});
    description.channels[0].type = modbus::ValueType::Bcd16;
    description.channels[0].first = 21;
    description.channels[0].none = {modbus::BitsOf(modbus::ValueType::Bcd16, 20)};  // the simulator's first value
    description.channels.resize(1);
    Station station(description);
    EXPECT_EQ(station.Read(), 0);
    EXPECT_EQ(station.Good(), 0);
    EXPECT_TRUE(station.told.empty());
}

TEST(ModbusBus, EveryFaultOfTheSimulatorGivesNoValue) {
    const struct {
        const char* fault;
        int code;
    } rows[] = {{"crc", 3}, {"exception", 4}, {"unit", 3}, {"function", 3}, {"length", 3}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.fault);
        Station station(Bus({5}));
        ASSERT_TRUE(station.wire.simulator.SetFault(row.fault, 100));
        EXPECT_EQ(station.Read(), row.code);
        EXPECT_EQ(station.Good(), 0);
        station.wire.simulator.SetFault(row.fault, 0);
        EXPECT_EQ(station.Read(), 0);
        EXPECT_EQ(station.Good(), 2);
    }
    EXPECT_FALSE(modbus::Simulator(Bus({5})).SetFault("noise", 100));
}

TEST(ModbusNetwork, AnAnswerIsKnownByItsNumber) {
    Station station(Bus({5}), kNetwork);
    station.wire.inPieces = true;
    ASSERT_EQ(station.Read(), 0);
    EXPECT_EQ(station.wire.asked.size(), 2u) << "no probes";
    EXPECT_LT(station.took, milliseconds(60)) << "no silences";
    // One that comes after its reading is nobody's, and one that comes late in its reading is a value.
    station.wire.late[5] = milliseconds(8000);
    EXPECT_EQ(station.Read(), 8);
    station.wire.late[5] = {};
    EXPECT_EQ(station.Read(), 0);
    EXPECT_EQ(station.Good(), 2);
    station.wire.late[5] = milliseconds(1500);
    EXPECT_EQ(station.Read(), 0);
    EXPECT_EQ(station.Good(), 2);
    EXPECT_GT(station.lateAnswers, 0);
}

// A code of 3 with a line that is closed; or nothing but time that passes.
TEST(ModbusNetwork, WhatDoesNotFitIsNoAnswer) {
    const struct {
        const char* what;
        std::vector<BYTE> bytes;  // before each answer
        const char* fault;
        bool closes;
    } rows[] = {{"another unit", {}, "unit", false},
                {"another function", {}, "function", false},
                {"a message that is shorter than it says", {}, "length", true},
                {"another protocol", {0, 1, 0, 1, 0, 5, 5, 3, 2, 0, 0}, nullptr, true},
                {"a length of nothing", {0, 1, 0, 0, 0, 1, 5}, nullptr, true},
                {"a length beyond any message", {0, 1, 0, 0, 1, 0, 5}, nullptr, true},
                {"a byte count that lies", {0, 1, 0, 0, 0, 5, 5, 3, 4, 0, 0}, nullptr, true},
                {"a frame that does not go on", {0, 1, 0, 0, 0, 99, 5, 3}, nullptr, true},
                {"letters", {'2', '3', '.', '5', '\r', '\n'}, nullptr, true}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        Station station(Bus({5}), kNetwork);
        if (row.fault != nullptr) {
            ASSERT_TRUE(station.wire.simulator.SetFault(row.fault, 100));
        } else {
            station.wire.Come(station.wire.Now() + milliseconds(5), row.bytes);
        }
        EXPECT_EQ(station.Read(), 3);
        EXPECT_EQ(station.Good(), 0);
        EXPECT_EQ(station.wire.IsOpen(), !row.closes);
        EXPECT_EQ(station.logger.Connection().IsConnected(), !row.closes);
        if (row.fault != nullptr) station.wire.simulator.SetFault(row.fault, 0);
        station.logger.Disconnect();
        station.Connect();
        EXPECT_EQ(station.Read(), 0);
        EXPECT_EQ(station.Good(), 2);
    }
}

// The same number, and another question's registers.
TEST(ModbusNetwork, AnAnswerOfAnotherLengthIsNone) {
    Station station(Bus({5}), kNetwork);
    station.wire.dead = {5};
    const modbus::Request two{5, 3, 10, 2};
    const BYTE data[] = {1, 2, 3, 4};
    station.wire.Come(station.wire.Now() + milliseconds(5), modbus::NetworkFrame(1, 5, modbus::AnswerMessage(two, data)));
    EXPECT_EQ(station.Read(), 3);
    EXPECT_EQ(station.Good(), 0);
}

TEST(ModbusBus, SlavesOfASerialLineHaveItsNumbers) {
    Station station(Bus({255}), kNetwork);
    EXPECT_EQ(station.Read(), 0);
    EXPECT_EQ(FailureOf([&] { station.logger.Connect(kSerial, 1000); }).code, 3) << "nobody hears 255 there";
}

TEST(ModbusWriting, SetsAndReadsBack) {
    const struct {
        const char *settings, *function;  // none: not to be written
        const char *wanted, *held;        // null: as it was wanted
        int sends;                        // the function that is seen on the line; 0: nothing is sent, and the code is 5
    } rows[] = {{"nNumber=1; sType=bool", "5", "1", nullptr, 5},
                {"nNumber=1; sType=bool", "15", "0", nullptr, 15},
                {"nNumber=1; sType=bool", "5", "2", nullptr, 0},
                {"nNumber=40001; sType=int16; sOrder=BA; rScale=0.1", "6", "-21.3", nullptr, 6},
                {"nNumber=40001; sType=int16", "16", "-300", nullptr, 16},
                {"nNumber=40001; sType=int16", "6", "32768", nullptr, 0},
                {"nNumber=40001; sType=int16; rScale=0.1", "6", "21.35", nullptr, 0},
                {"nNumber=40001; sType=uint32; sOrder=CDAB", "16", "3232235778", nullptr, 16},
                {"nNumber=40001; sType=float32; sOrder=DCBA", "16", "0.1", nullptr, 16},
                {"nNumber=40001; sType=float64; sOrder=GHEFCDAB; rScale=2", "16", "-1e+100", nullptr, 16},
                {"nNumber=40001; sType=float32", "16", "16777217", "16777216", 16},
                {"nNumber=40001; sType=float32", "16", "1e-46", "0", 16},
                {"nNumber=40001; sType=float32", "16", "1234567.891", "1234567.9", 16},
                {"nNumber=40001; sType=float32; rScale=0.1", "16", "+21.50", "21.5", 16},
                {"nNumber=40001; sType=uint64", "16", "9007199254740993", nullptr, 16},
                {"nNumber=40001; sType=uint64; sOrder=low", "16", "1844674407370955161.5e1", "18446744073709551615", 16},
                {"nNumber=40001; sType=uint64", "16", "18446744073709551616", nullptr, 0},
                {"nNumber=40001; sType=uint64", "16", "0.5", nullptr, 0},
                {"nNumber=40001; sType=uint64; rScale=0.001", "16", "12345.678", nullptr, 16},
                {"nNumber=40001; sType=uint64; rScale=0.001", "16", "4503599627370.497", nullptr, 16},
                {"nNumber=40001; sType=uint64; rScale=0.001", "16", "90071992547410.993", nullptr, 0},
                {"nNumber=40001; sType=int64", "16", "-9223372036854775808", nullptr, 16},
                {"nNumber=40001; sType=bcd32", "16", "12345678", nullptr, 16},
                {"nNumber=40001; sType=bcd32", "16", "-1", nullptr, 0},
                {"nNumber=40001; sType=int16", nullptr, "5", nullptr, 0},
                {"nNumber=30001; sType=int16", nullptr, "5", nullptr, 0}};
    for (const char* address : {kSerial, kNetwork}) {
        for (const auto& row : rows) {
            SCOPED_TRACE(testing::Message() << address << ' ' << row.settings << ' ' << row.wanted);
            CPropertyDB db;
            Describe(db, "nSlave=5");
            db.BeginUsing("Channels.a");
            Describe(db, row.settings);
            if (row.function != nullptr) Describe(db, std::string("bWritable=1; nWrite=") + row.function);
            db.EndUsing();
            Station station(modbus::ReadDescription(db), address);
            station.Read();
            station.wire.sent.clear();
            Written written = {};
            EXPECT_EQ(FailureOf([&] { written = station.logger.Write(0, row.wanted); }).code, row.sends == 0 ? 5 : 0);
            ASSERT_EQ(station.wire.sent.size(), row.sends == 0 ? 0u : 2u);
            if (row.sends == 0) continue;
            EXPECT_EQ(station.wire.sent[0][address == kNetwork ? 7 : 1], row.sends);
            const std::string held = row.held != nullptr ? row.held : row.wanted;
            EXPECT_EQ(written.sent, held.c_str());
            EXPECT_EQ(written.held, held.c_str());
            EXPECT_EQ(written.exact, std::stod(held) == std::stod(row.wanted));
            station.Read();
            EXPECT_FLOAT_EQ(static_cast<float>(station.values[0]), static_cast<float>(std::stod(row.wanted)));
        }
    }
}

TEST(ModbusWriting, WhatTheLoggerRefusesIsTold) {
    modbus::Description writable = Bus({5});
    writable.channels[0].write = modbus::kWriteRegister;
    modbus::Logger logger(writable, std::make_unique<SimulatorWire>(Bus({5})));  // which knows of no writing
    logger.Connect(kSerial, 1000);
    EXPECT_EQ(FailureOf([&] { logger.Write(0, "4"); }), (CommFailure{4, "Illegal response (Modbus 2)"}));
}
