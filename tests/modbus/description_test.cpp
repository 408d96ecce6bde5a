#include <gtest/gtest.h>

#include <cmath>

#include "comm/comm_exception.h"
#include "plugins/modbus/modbus_description.h"
#include "plugins/modbus/modbus_simulator.h"
#include "propdb/property_db.h"

using namespace modbus;

namespace {
class ModbusDescription : public testing::Test {
protected:
    ModbusDescription() {
        db.SetValue("nSlave", static_cast<unsigned short>(5));
        AddChannel("1", 10, "uint16");
    }
    void AddChannel(const char* key, unsigned short number, const char* type) {
        db.BeginUsingFmt("Channels.%s", key);
        db.SetValue("nRegister", number);
        db.SetValue("sType", type);
        db.EndUsing();
    }
    // The text of the refusal; empty when the description is accepted.
    std::string Refusal() {
        try {
            ReadDescription(db);
            return "";
        } catch (CCommException* failure) {
            EXPECT_EQ(failure->m_nError, 3);
            const std::string text = static_cast<const char*>(failure->m_strError);
            failure->Delete();
            return text;
        }
    }
    CPropertyDB db;
};

Channel Of(ValueType type, WordOrder order = WordOrder::HighFirst, double scale = 1, double offset = 0) {
    Channel channel;
    channel.type = type;
    channel.order = order;
    channel.scale = scale;
    channel.offset = offset;
    return channel;
}
}  // namespace

TEST_F(ModbusDescription, WhatIsLeftOutHasItsStandard) {
    const Description description = ReadDescription(db);
    EXPECT_EQ(description.slave, 5);
    EXPECT_EQ(description.line.baud, 9600u);
    EXPECT_EQ(static_cast<int>(description.line.dataBits), 8);
    EXPECT_DOUBLE_EQ(description.line.BitsPerCharacter(), 10);
    ASSERT_EQ(description.channels.size(), 1u);
    EXPECT_EQ(description.channels[0].function, 3);
    EXPECT_EQ(description.channels[0].name, "1");
}

TEST_F(ModbusDescription, EveryMistakeNamesItsKey) {
    EXPECT_EQ(Refusal(), "");
    const struct {
        const char* key;
        const char* kind;
        const char* text;
        double number;
    } mistakes[] = {
        {"nSlave", "number", nullptr, 248},
        {"Line.nBaud", "number", nullptr, 9600.5},
        {"Line.sParity", "text", "maybe", 0},
        {"Channels.1.sType", "text", "int64", 0},
        {"Channels.1.sOrder", "text", "middle", 0},
        {"Channels.1.nRegister", "number", nullptr, 65536},
        {"Channels.1.nFunction", "number", nullptr, 6},
        {"Channels.1.rScale", "number", nullptr, 0},
        {"Channels.1.rOffset", "number", nullptr, INFINITY},
        {"Channels.1.nRegister", "text", "ten", 0},
        {"Channels.1.nRegister", "text", "10 x", 0},
        {"Channels.1.nRegister", "text", "", 0},
        {"Channels.1.rScale", "text", "0,1", 0},
        {"Channels.1.rOffset", "text", "inf", 0},
    };
    for (const auto& mistake : mistakes) {
        CPropertyDB whole(db);
        db.Remove(mistake.key);
        if (mistake.text != nullptr) {
            db.SetValue(mistake.key, mistake.text);
        } else {
            db.SetValue(mistake.key, mistake.number);
        }
        EXPECT_EQ(Refusal().rfind(mistake.key, 0), 0u) << mistake.key << ": " << Refusal();
        db = whole;
    }
    db.Remove("Channels");
    EXPECT_EQ(Refusal().rfind("Channels", 0), 0u);
}

TEST_F(ModbusDescription, ANumberMayBeOfAnyKind) {
    CByteArray slave;
    slave.Add(247);
    CInt32Array integer;
    integer.Add(19200);
    db.Remove("nSlave");
    db.SetValue("nSlave", slave);
    db.SetValue("Line.nBaud", integer);
    db.SetValue("Line.nDataBits", static_cast<__int64>(7));
    db.SetValue("Channels.1.rScale", " 0.1 ");
    db.SetValue("Channels.1.rOffset", "-2.5e1");
    const Description description = ReadDescription(db);
    EXPECT_EQ(description.slave, 247);
    EXPECT_EQ(description.line.baud, 19200u);
    EXPECT_EQ(static_cast<int>(description.line.dataBits), 7);
    EXPECT_EQ(description.channels[0].scale, 0.1);
    EXPECT_EQ(description.channels[0].offset, -25);
    // In text, decimals are told how they are to be written.
    db.SetValue("Channels.1.rScale", "0,1");
    EXPECT_NE(Refusal().find("point"), std::string::npos);
}

TEST(ModbusValues, DecodesEveryTypeAndOrder) {
    const WORD words[] = {0xC0A8, 0x0102};
    EXPECT_EQ(Decode(Of(ValueType::Int16), words), -16216);
    EXPECT_EQ(Decode(Of(ValueType::Uint16), words), 49320);
    EXPECT_EQ(Decode(Of(ValueType::Int32), words), -1062731518.0);
    EXPECT_EQ(Decode(Of(ValueType::Uint32), words), 3232235778.0);
    EXPECT_EQ(Decode(Of(ValueType::Uint32, WordOrder::LowFirst), words), 0x0102C0A8);
    EXPECT_EQ(Decode(Of(ValueType::Float32), words), -5.25012302398681640625);  // 0xC0A80102
    EXPECT_EQ(Decode(Of(ValueType::Int16, WordOrder::HighFirst, 0.5, 100), words), -8008);
    const WORD minusZero[] = {0x8000, 0};
    EXPECT_TRUE(std::signbit(Decode(Of(ValueType::Float32), minusZero)));
}

TEST(ModbusValues, EncodeLimitsToTheType) {
    WORD words[2];
    Encode(Of(ValueType::Int16), 1e9, words);
    EXPECT_EQ(words[0], 0x7FFF);
    Encode(Of(ValueType::Uint32, WordOrder::LowFirst), -1, words);
    EXPECT_EQ(words[0], 0);
    Encode(Of(ValueType::Int32, WordOrder::LowFirst), -2, words);
    EXPECT_EQ(words[0], 0xFFFE);
    EXPECT_EQ(words[1], 0xFFFF);
}

TEST(ModbusPlan, JoinsNeighboursAndNothingElse) {
    Description description;
    const auto add = [&](BYTE function, WORD first, ValueType type) {
        Channel& channel = description.channels.emplace_back(Of(type));
        channel.function = function;
        channel.first = first;
    };
    add(3, 12, ValueType::Uint16);   // after the pair at 10
    add(3, 10, ValueType::Float32);  // a pair
    add(3, 14, ValueType::Uint16);   // a hole at 13 that nobody named
    add(4, 13, ValueType::Uint16);   // other registers
    add(3, 65535, ValueType::Int16);
    const std::vector<Block> blocks = PlanBlocks(description);
    ASSERT_EQ(blocks.size(), 4u);
    EXPECT_EQ(blocks[0].request.first, 10);
    EXPECT_EQ(blocks[0].request.count, 3);
    EXPECT_EQ(blocks[0].parts[1].channel, 0u);
    EXPECT_EQ(blocks[0].parts[1].offset, 2);
    EXPECT_EQ(blocks[2].request.count, 1);
    for (WORD i = 0; i < 126; ++i) add(3, static_cast<WORD>(1000 + i), ValueType::Uint16);
    EXPECT_EQ(PlanBlocks(description).size(), 6u);  // 126 registers need two requests
}

TEST(ModbusSimulator, RefusesWhatNoChannelNames) {
    Description description;
    description.slave = 9;
    description.channels.push_back(Of(ValueType::Uint16));
    description.channels[0].first = 40;
    Simulator simulator(description);
    CByteArray reply;
    const auto ask = [&](const Request& request) {
        const auto frame = Encode(request);
        simulator.Receive(frame.data(), frame.size(), reply);
        return std::vector<BYTE>(reply.GetData(), reply.GetData() + reply.GetSize());
    };
    const Request good = {9, 3, 40, 1}, beyond = {9, 3, 40, 2}, none = {9, 3, 40, 0}, write = {9, 6, 40, 1};
    EXPECT_EQ(ask(good), EncodeReply(good, std::vector<WORD>{20}));
    EXPECT_EQ(ask(beyond), EncodeException(beyond, kIllegalAddress));
    EXPECT_EQ(ask(none), EncodeException(none, kIllegalValue));
    EXPECT_EQ(ask(write), EncodeException(write, kIllegalFunction));
    EXPECT_TRUE(ask({8, 3, 40, 1}).empty());  // not for this logger: silence
}
