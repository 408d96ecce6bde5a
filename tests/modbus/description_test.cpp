#include <gtest/gtest.h>

#include <cmath>

#include "comm/comm_exception.h"
#include "plugins/modbus/modbus_plan.h"
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

Channel Of(ValueType type, ByteOrder order = kHighFirst, double scale = 1, double offset = 0) {
    Channel channel;
    channel.type = type;
    channel.order = order;
    channel.scale = scale;
    channel.offset = offset;
    return channel;
}

std::vector<BYTE> Bytes(const std::vector<WORD>& words) {
    std::vector<BYTE> bytes;
    for (const WORD word : words) AppendWord(bytes, word);
    return bytes;
}
}  // namespace

TEST_F(ModbusDescription, WhatIsLeftOutHasItsStandard) {
    const Description description = ReadDescription(db);
    EXPECT_EQ(description.slaves[0].address, 5);
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
        {"nSlave", "number", nullptr, 256},
        {"Line.nBaud", "number", nullptr, 9600.5},
        {"Line.sParity", "text", "maybe", 0},
        {"Channels.1.sType", "text", "int128", 0},
        {"Channels.1.nBit", "number", nullptr, 3},
        {"Channels.1.nLength", "number", nullptr, 3},
        {"Channels.1.nNumber", "number", nullptr, 40001},  // beside nRegister
        {"Channels.1.sOrder", "text", "ABCD", 0},
        {"Channels.1.sSlave", "text", "1", 0},
        {"Channels.1.rInvalid", "number", nullptr, -1},
        {"Channels.1.sInvalid", "text", "65535 0x10000", 0},
        {"Channels.1.nWrite", "number", nullptr, 16},
        {"Channels.1.bWritable", "text", "maybe", 0},
        {"nMost", "number", nullptr, 126},
        {"nAttempts", "number", nullptr, 0},
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
    EXPECT_EQ(description.slaves[0].address, 247);
    EXPECT_EQ(description.line.baud, 19200u);
    EXPECT_EQ(static_cast<int>(description.line.dataBits), 7);
    EXPECT_EQ(description.channels[0].scale, 0.1);
    EXPECT_EQ(description.channels[0].offset, -25);
    // In text, decimals are told how they are to be written.
    db.SetValue("Channels.1.rScale", "0,1");
    EXPECT_NE(Refusal().find("point"), std::string::npos);
}

// What is only wrong together with something else.
TEST_F(ModbusDescription, ContradictionsNameTheirKey) {
    struct Setting {
        const char *key, *text;
    };
    const struct {
        const char* named;
        std::vector<Setting> settings;  // of the channel, or with a "." from the top
    } rows[] = {
        {"Channels.1.nBit", {{"sType", "bool"}}},     // which?
        {"Channels.1.nLength", {{"sType", "text"}}},  // how long?
        {"Channels.1.rValue1", {{"rRaw1", "4"}}},
        {"Channels.1.sType", {{"nFunction", "1"}}},  // the coil would be a uint16
        {"Channels.1.bWritable", {{"nFunction", "4"}, {"bWritable", "1"}}},
        {"Channels.1.bWritable", {{"sType", "bool"}, {"nBit", "2"}, {"bWritable", "yes"}}},
        {"Channels.1.bWritable", {{"sType", "text"}, {"nLength", "2"}, {"bWritable", "true"}}},
        {"Channels.1.nWrite", {{"bWritable", "1"}, {"nWrite", "5"}}},
        {"Channels.1.nRegister", {{"sType", "int64"}, {"nRegister", "65533"}}},
        {"Channels.1.sOrder", {{"sType", "uint64"}, {"sOrder", "ABCD"}}},
        {"Channels.1.rScale", {{"rRaw1", "0"}, {"rValue1", "1"}, {"rRaw2", "4"}, {"rValue2", "3"}, {"rScale", "2"}}},
        {"Channels.1.rRaw2", {{"rRaw1", "4"}, {"rValue1", "1"}, {"rRaw2", "4"}, {"rValue2", "3"}}},
        {"Channels.1.sType", {{".nMost", "1"}, {"sType", "int32"}}},
        {"Channels.1.sSlave", {{".Slaves.a.nSlave", "1"}, {"sSlave", "b"}}},
        {"Channels.1.sSlave", {{".Slaves.a.nSlave", "1"}, {"sSlave", "a"}, {"nSlave", "2"}}},
        {"Slaves.b.nSlave", {{".Slaves.a.nSlave", "1"}, {".Slaves.b.nSlave", "1"}}},
        {"Slaves.a.nSlave", {{".Slaves.a.sName", "x"}}},
    };
    for (const auto& row : rows) {
        CPropertyDB whole(db);
        for (const Setting& setting : row.settings) {
            const std::string key = setting.key[0] == '.' ? setting.key + 1 : std::string("Channels.1.") + setting.key;
            db.Remove(key.c_str());
            db.SetValue(key.c_str(), setting.text);
        }
        EXPECT_EQ(Refusal().rfind(row.named, 0), 0u) << row.named << ": " << Refusal();
        db = whole;
    }
}

TEST_F(ModbusDescription, ManualsNumbersSayKindAndPlace) {
    const struct {
        const char* number;
        int function, first;  // 0: refused
    } rows[] = {{"40001", 3, 0},      {"49999", 3, 9998}, {"400001", 3, 0}, {"465536", 3, 65535},
                {"30011", 4, 10},     {"10001", 2, 0},    {"00001", 1, 0},  {"1", 1, 0},
                {"010001", 1, 10000}, {"40000", 0, 0},    {"20001", 0, 0},  {"465537", 0, 0},
                {"4000001", 0, 0},    {"50001", 0, 0},    {"", 0, 0},       {"4x001", 0, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.number);
        db.Remove("Channels.1");
        db.SetValue("Channels.1.nNumber", row.number);
        db.SetValue("Channels.1.sType", row.function == 1 || row.function == 2 ? "bool" : "int16");
        ASSERT_EQ(Refusal().empty(), row.function != 0) << Refusal();
        if (row.function == 0) continue;
        const Channel channel = ReadDescription(db).channels[0];
        EXPECT_EQ(channel.function, row.function);
        EXPECT_EQ(channel.first, row.first);
    }
}

TEST_F(ModbusDescription, ChannelsFindTheirSlave) {
    db.SetValue("nTimeout", 700u);
    db.SetValue("Slaves.boiler.nSlave", static_cast<unsigned short>(7));
    db.SetValue("Slaves.boiler.sName", "Boiler");
    db.SetValue("Slaves.boiler.nMost", 10u);
    AddChannel("2", 10, "int16");
    AddChannel("3", 10, "int16");
    AddChannel("4", 10, "int16");
    db.SetValue("Channels.2.sSlave", "boiler");
    db.SetValue("Channels.3.nSlave", 7u);
    db.SetValue("Channels.4.nSlave", 9u);
    const Description description = ReadDescription(db);
    ASSERT_EQ(description.slaves.size(), 3u);
    const int addresses[] = {5, 7, 7, 9};
    for (size_t i = 0; i < 4; ++i) EXPECT_EQ(description.slaves[description.channels[i].slave].address, addresses[i]);
    EXPECT_EQ(description.slaves[1].name, "Boiler");
    EXPECT_EQ(description.slaves[1].most, 10);
    EXPECT_EQ(description.slaves[1].timeout, 700u);
    EXPECT_EQ(description.slaves[2].most, 125);
}

TEST_F(ModbusDescription, TwoPointsMakeALine) {
    db.SetValue("Channels.1.rRaw1", 4000.0);
    db.SetValue("Channels.1.rValue1", -50.0);
    db.SetValue("Channels.1.rRaw2", 20000.0);
    db.SetValue("Channels.1.rValue2", 150.0);
    const Channel channel = ReadDescription(db).channels[0];
    for (const auto& [raw, value] : {std::pair(4000, -50.0), std::pair(12000, 50.0), std::pair(20000, 150.0)})
        EXPECT_DOUBLE_EQ(Decode(channel, Bytes({static_cast<WORD>(raw)}).data()), value);
}

// Worked out by hand from the types' definitions.
TEST_F(ModbusDescription, EveryTypeAndOrderHasItsValue) {
    const double none = std::nan("");
    const struct {
        const char *type, *order;
        std::vector<WORD> words;
        double value;
        const char *key = nullptr, *text = nullptr;  // one more setting
    } rows[] = {
        {"int16", "high", {0xC0A8}, -16216},
        {"int16", "low", {0xC0A8}, -16216},
        {"uint16", "AB", {0xC0A8}, 49320},
        {"uint16", "BA", {0xA8C0}, 49320},
        {"int32", "high", {0xC0A8, 0x0102}, -1062731518},
        {"uint32", "ABCD", {0xC0A8, 0x0102}, 3232235778},
        {"uint32", "low", {0x0102, 0xC0A8}, 3232235778},
        {"uint32", "cdab", {0x0102, 0xC0A8}, 3232235778},
        {"uint32", "BADC", {0xA8C0, 0x0201}, 3232235778},
        {"uint32", "DCBA", {0x0201, 0xA8C0}, 3232235778},
        {"float32", "high", {0xC0A8, 0x0102}, -5.25012302398681640625},
        {"float32", "high", {0x7FC0, 0}, none},
        {"uint64", "high", {0x0001, 0x0203, 0x0405, 0x0607}, 0x1020304050607},
        {"uint64", "ABCDEFGH", {0x0001, 0x0203, 0x0405, 0x0607}, 0x1020304050607},
        {"uint64", "BADCFEHG", {0x0100, 0x0302, 0x0504, 0x0706}, 0x1020304050607},
        {"uint64", "CDABGHEF", {0x0203, 0x0001, 0x0607, 0x0405}, 0x1020304050607},
        {"uint64", "DCBAHGFE", {0x0302, 0x0100, 0x0706, 0x0504}, 0x1020304050607},
        {"uint64", "EFGHABCD", {0x0405, 0x0607, 0x0001, 0x0203}, 0x1020304050607},
        {"uint64", "FEHGBADC", {0x0504, 0x0706, 0x0100, 0x0302}, 0x1020304050607},
        {"uint64", "GHEFCDAB", {0x0607, 0x0405, 0x0203, 0x0001}, 0x1020304050607},
        {"uint64", "low", {0x0607, 0x0405, 0x0203, 0x0001}, 0x1020304050607},
        {"uint64", "HGFEDCBA", {0x0706, 0x0504, 0x0302, 0x0100}, 0x1020304050607},
        {"uint64", "high", {0x0020, 0, 0, 1}, 0x20000000000000},  // 2^53 + 1: to the nearest
        {"uint64", "high", {0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF}, 0x1p64},
        {"int64", "high", {0xFFFF, 0xFFFF, 0xFFFF, 0xFFFE}, -2},
        {"float64", "high", {0xBFF8, 0, 0, 0}, -1.5},
        {"float64", "low", {0, 0, 0, 0xBFF8}, -1.5},
        {"bcd16", "high", {0x1234}, 1234},
        {"bcd16", "BA", {0x3412}, 1234},
        {"bcd16", "high", {0x12A4}, none},
        {"bcd32", "CDAB", {0x5678, 0x1234}, 12345678},
        {"bool", "high", {0x0400}, 1, "nBit", "10"},
        {"bool", "BA", {0x0400}, 1, "nBit", "2"},
        {"bool", "high", {0xFBFF}, 0, "nBit", "10"},
        {"text", "high", {0x2D32, 0x312E, 0x3520}, -21.5, "nLength", "3"},  // "-21.5 "
        {"text", "BA", {0x322D, 0x2E31, 0x0035}, -21.5, "nLength", "3"},
        {"text", "high", {0x2B31, 0x0000, 0x3939}, 1, "nLength", "3"},  // "+1", then a zero
        {"text", "high", {0x4552, 0x5220}, none, "nLength", "2"},       // "ERR "
        {"text", "high", {0x2020}, none, "nLength", "1"},
        {"text", "high", {0x6E61, 0x6E20}, none, "nLength", "2"},  // "nan "
        {"uint16", "high", {0xFFFF}, none, "sInvalid", "32767 0xffff"},
        {"uint16", "high", {0x7FFF}, none, "sInvalid", "32767 0xffff"},
        {"int16", "high", {0x8000}, none, "rInvalid", "-32768"},
        {"float32", "high", {0xC61C, 0x3F9A}, none, "rInvalid", "-9999.9"},
        {"uint64", "high", {0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF}, none, "sInvalid", "0xFFFFFFFFFFFFFFFF"},
        {"uint64", "high", {0xFFFF, 0xFFFF, 0xFFFF, 0xFFFE}, 0x1p64, "sInvalid", "0xFFFFFFFFFFFFFFFF"},
        {"text", "high", {0x3939}, none, "rInvalid", "99"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.type << ' ' << row.order << ' ' << row.value);
        db.Remove("Channels.1");
        AddChannel("1", 0, row.type);
        db.SetValue("Channels.1.sOrder", row.order);
        if (row.key != nullptr) db.SetValue((std::string("Channels.1.") + row.key).c_str(), row.text);
        if (std::string(row.type) == "text") db.SetValue("Channels.1.nLength", static_cast<unsigned>(row.words.size()));
        ASSERT_EQ(Refusal(), "");
        const Channel channel = ReadDescription(db).channels[0];
        ASSERT_EQ(channel.Count(), row.words.size());
        const double value = Decode(channel, Bytes(row.words).data());
        if (std::isnan(row.value)) {
            EXPECT_TRUE(std::isnan(value)) << value;
            continue;
        }
        EXPECT_EQ(value, row.value);
        const bool exact = channel.type != ValueType::Text && channel.type != ValueType::Bool && value < 0x1p53;
        if (exact) {
            EXPECT_EQ(Encode(channel, value), row.words);
        }
    }
}

TEST(ModbusValues, ScaleAndOffsetKeepTheSignOfZero) {
    EXPECT_EQ(Decode(Of(ValueType::Int16, kHighFirst, 0.5, 100), Bytes({0xC0A8}).data()), -8008);
    EXPECT_EQ(Decode(Of(ValueType::Int16, kHighFirst, 0.1), Bytes({189}).data()), 18.9);
    EXPECT_EQ(Decode(Of(ValueType::Int16, kHighFirst, 0.01, -40), Bytes({1890}).data()), -21.1);
    EXPECT_TRUE(std::signbit(Decode(Of(ValueType::Float32), Bytes({0x8000, 0}).data())));
    Channel coil = Of(ValueType::Bool);
    coil.function = kReadCoils;
    const BYTE coils[] = {0x01, 0x04};
    EXPECT_EQ(Decode(coil, coils, 10), 1);
    EXPECT_EQ(Decode(coil, coils, 9), 0);
}

TEST(ModbusValues, EncodeTakesTheNearest) {
    EXPECT_EQ(Encode(Of(ValueType::Int16), 1e9), (std::vector<WORD>{0x7FFF}));
    EXPECT_EQ(Encode(Of(ValueType::Uint32, kLowFirst), -1), (std::vector<WORD>{0, 0}));
    EXPECT_EQ(Encode(Of(ValueType::Int64), 1e30), (std::vector<WORD>{0x7FFF, 0xFFFF, 0xFFFF, 0xFFFF}));
    EXPECT_EQ(Encode(Of(ValueType::Uint64), 1e30), (std::vector<WORD>{0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF}));
    Channel text = Of(ValueType::Text);
    text.length = 3;
    EXPECT_EQ(Encode(text, -21.123456), (std::vector<WORD>{0x2D32, 0x312E, 0x3132}));  // "-21.12"
}

TEST(ModbusValues, WhatATypeCannotHoldIsKnown) {
    const struct {
        ValueType type;
        double scale, value;
        bool can;
    } rows[] = {
        {ValueType::Int16, 1, 32767, true},
        {ValueType::Int16, 1, 32768, false},
        {ValueType::Int16, 1, -32769, false},
        {ValueType::Uint16, 1, -1, false},
        {ValueType::Uint16, 0.1, 21.3, true},  // 212.99999999999997
        {ValueType::Uint16, 0.1, 21.35, false},
        {ValueType::Uint16, 1, 0.5, false},
        {ValueType::Uint32, 0.001, 4294967.295, true},
        {ValueType::Int64, 1, -0x1p53, true},
        {ValueType::Int64, 1, -0x1p53 - 2, false},
        {ValueType::Uint64, 1, 0x1p54, false},
        {ValueType::Float32, 1, 0.1, true},
        {ValueType::Float32, 1, 1e39, false},
        {ValueType::Float64, 1, 1e300, true},
        {ValueType::Float64, 1, INFINITY, false},
        {ValueType::Float64, 1, NAN, false},
        {ValueType::Bcd16, 1, 9999, true},
        {ValueType::Bcd16, 1, 10000, false},
        {ValueType::Bool, 1, 1, true},
        {ValueType::Bool, 1, 2, false},
    };
    for (const auto& row : rows) EXPECT_EQ(CanHold(Of(row.type, kHighFirst, row.scale), row.value), row.can) << row.value;
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

TEST(ModbusPlan, KeepsEachSlavesLimits) {
    const struct {
        WORD most, gap;
        BYTE function;
        size_t blocks;
    } rows[] = {{125, 0, 3, 3}, {125, 1, 3, 2}, {125, 7, 3, 1}, {11, 7, 3, 2}, {1, 7, 3, 4}, {1, 7, 1, 1}, {125, 0, 1, 3}};
    for (const auto& row : rows) {
        Description description;
        description.slaves[0].most = row.most;
        description.slaves[0].gap = row.gap;
        description.slaves.push_back({});
        description.slaves[1].address = 2;
        for (const int first : {10, 11, 13, 21, 22}) {
            Channel& channel = description.channels.emplace_back(Of(ValueType::Bool));
            channel.function = row.function;
            channel.first = static_cast<WORD>(first);
            channel.slave = first == 22;  // another's: never one request
        }
        EXPECT_EQ(PlanBlocks(description).size(), row.blocks + 1) << row.most << ' ' << row.gap;
    }
}

// Where an adapter repeats it.
TEST(ModbusPlan, NoRequestLooksLikeItsAnswer) {
    for (const int first : {0x0300, 0x0310, 0x03FF, 0x0203, 0x0003}) {
        Description description;
        for (int i = 0; i < 60; ++i) {
            Channel& channel = description.channels.emplace_back(Of(ValueType::Bool));
            channel.function = kReadCoils;
            channel.first = static_cast<WORD>(first + i);
        }
        for (const Block& block : PlanBlocks(description)) {
            size_t begin = 0, end = 0;
            const auto answer = FindAnswer(Encode(block.request), begin, end);
            EXPECT_FALSE(answer && answer->Fits(block.request)) << block.request.first;
        }
    }
}

TEST(ModbusSimulator, RefusesWhatNoChannelNames) {
    Description description;
    description.slaves[0].address = 9;
    description.channels.push_back(Of(ValueType::Uint16));
    description.channels[0].first = 40;
    Simulator simulator(description);
    CByteArray reply;
    const auto ask = [&](const Request& request) {
        const auto frame = Encode(request);
        simulator.Receive(frame.data(), frame.size(), reply);
        return std::vector<BYTE>(reply.GetData(), reply.GetData() + reply.GetSize());
    };
    const Request good = {9, 3, 40, 1}, beyond = {9, 3, 40, 2}, none = {9, 3, 40, 0}, write = {9, 6, 40, 1, {0, 1}},
                  other = {9, 7, 0, 0};
    EXPECT_EQ(ask(good), EncodeReply(good, std::vector<WORD>{20}));
    EXPECT_EQ(ask(beyond), EncodeException(beyond, kIllegalAddress));
    EXPECT_EQ(ask(none), EncodeException(none, kIllegalValue));
    EXPECT_EQ(ask(write), EncodeException(write, kIllegalAddress));  // not marked writable
    EXPECT_EQ(ask(other), EncodeException(other, kIllegalFunction));
    EXPECT_TRUE(ask({8, 3, 40, 1}).empty());  // not for this logger: silence
}
