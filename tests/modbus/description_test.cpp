#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "plugins/modbus/modbus_plan.h"
#include "plugins/modbus/modbus_simulator.h"
#include "tests/support/comm_failure.h"
#include "tests/support/described.h"
#include "tests/support/split.h"

using namespace modbus;

namespace {
// A description with a channel that has these settings, or from the top those that begin with ".".
CPropertyDB With(const std::string& settings) {
    CPropertyDB db;
    Describe(db, "nSlave=5; Channels.1.nRegister=10; Channels.1.sType=uint16");
    std::istringstream each(settings);
    for (std::string one; std::getline(each, one, ';');) Describe(db, one[0] == '.' ? one.substr(1) : "Channels.1." + one);
    return db;
}
Description Read(CPropertyDB db) { return ReadDescription(db); }
// The text of the refusal; empty when the description is accepted.
std::string Refusal(CPropertyDB db) {
    const CommFailure failure = FailureOf([&] { ReadDescription(db); });
    EXPECT_EQ(failure.code, failure.text.empty() ? 0 : 3);
    return failure.text;
}

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

TEST(ModbusDescription, WhatIsLeftOutHasItsStandard) {
    const Description description = Read(With(""));
    EXPECT_EQ(description.slaves[0].address, 5);
    EXPECT_EQ(description.line.baud, 9600u);
    EXPECT_EQ(static_cast<int>(description.line.dataBits), 8);
    EXPECT_DOUBLE_EQ(description.line.BitsPerCharacter(), 10);
    ASSERT_EQ(description.channels.size(), 1u);
    EXPECT_EQ(description.channels[0].function, 3);
    EXPECT_EQ(description.channels[0].name, "1");
}

TEST(ModbusDescription, EveryMistakeNamesItsKey) {
    for (const std::string& mistake :
         Split(".nSlave=256|.Line.nBaud=9600.5|.Line.sParity=maybe|.nMost=126|.nAttempts=0|sType=int128|nBit=3|nLength=3|nNumber="
               "40001|sOrder=ABCD|sOrder=middle|sSlave=1|rInvalid=-1|sInvalid=65535 "
               "0x10000|nWrite=16|bWritable=maybe|nRegister=65536|nRegister=ten|nRegister=10 "
               "x|nRegister=|nFunction=6|rScale=0|rScale=0,1|rOffset=inf")) {
        const std::string key = mistake.substr(0, mistake.find('='));
        const std::string named = key[0] == '.' ? key.substr(1) : "Channels.1." + key, said = Refusal(With(mistake));
        EXPECT_TRUE(said.starts_with(named)) << mistake << ": " << said;
    }
    CPropertyDB none = With("");
    none.Remove("Channels");
    EXPECT_TRUE(Refusal(none).starts_with("Channels"));
    // In text, decimals are told how they are to be written.
    EXPECT_NE(Refusal(With("rScale=0,1")).find("point"), std::string::npos);
    // What is only wrong together with something else.
    const struct {
        const char *named, *settings;
    } rows[] = {{"Channels.1.nBit", "sType=bool"},     // which?
                {"Channels.1.nLength", "sType=text"},  // how long?
                {"Channels.1.rValue1", "rRaw1=4"},
                {"Channels.1.sType", "nFunction=1"},  // the coil would be a uint16
                {"Channels.1.bWritable", "nFunction=4;bWritable=1"},
                {"Channels.1.bWritable", "sType=bool;nBit=2;bWritable=yes"},
                {"Channels.1.bWritable", "sType=text;nLength=2;bWritable=true"},
                {"Channels.1.nWrite", "bWritable=1;nWrite=5"},
                {"Channels.1.nRegister", "sType=int64;nRegister=65533"},
                {"Channels.1.sOrder", "sType=uint64;sOrder=ABCD"},
                {"Channels.1.rScale", "rRaw1=0;rValue1=1;rRaw2=4;rValue2=3;rScale=2"},
                {"Channels.1.rRaw2", "rRaw1=4;rValue1=1;rRaw2=4;rValue2=3"},
                {"Channels.1.sType", ".nMost=1;sType=int32"},
                {"Channels.1.sSlave", ".Slaves.a.nSlave=1;sSlave=b"},
                {"Channels.1.sSlave", ".Slaves.a.nSlave=1;sSlave=a;nSlave=2"},
                {"Slaves.b.nSlave", ".Slaves.a.nSlave=1;.Slaves.b.nSlave=1"},
                {"Slaves.a.nSlave", ".Slaves.a.sName=x"}};
    for (const auto& row : rows) EXPECT_TRUE(Refusal(With(row.settings)).starts_with(row.named)) << row.settings;
}

TEST(ModbusDescription, ANumberMayBeOfAnyKind) {
    CByteArray slave;
    slave.Add(247);
    CInt32Array integer;
    integer.Add(19200);
    CPropertyDB db = With("rScale= 0.1 ;rOffset=-2.5e1");
    for (const char* key : {"nSlave", "Channels.1.nRegister"}) db.Remove(key);
    db.SetValue("nSlave", slave);
    db.SetValue("Line.nBaud", integer);
    db.SetValue("Line.nDataBits", static_cast<__int64>(7));
    db.SetValue("Channels.1.nRegister", 20.0);
    const Description description = Read(db);
    EXPECT_EQ(description.slaves[0].address, 247);
    EXPECT_EQ(description.line.baud, 19200u);
    EXPECT_EQ(static_cast<int>(description.line.dataBits), 7);
    EXPECT_EQ(description.channels[0].first, 20);
    EXPECT_EQ(description.channels[0].scale, 0.1);
    EXPECT_EQ(description.channels[0].offset, -25);
    db.Remove("Channels.1.rOffset");
    db.SetValue("Channels.1.rOffset", INFINITY);
    EXPECT_TRUE(Refusal(db).starts_with("Channels.1.rOffset"));
}

TEST(ModbusDescription, ManualsNumbersSayKindAndPlace) {
    const struct {
        const char* number;
        int function, first;  // 0: refused
    } rows[] = {{"40001", 3, 0},      {"49999", 3, 9998}, {"400001", 3, 0}, {"465536", 3, 65535},
                {"30011", 4, 10},     {"10001", 2, 0},    {"00001", 1, 0},  {"1", 1, 0},
                {"010001", 1, 10000}, {"40000", 0, 0},    {"20001", 0, 0},  {"465537", 0, 0},
                {"4000001", 0, 0},    {"50001", 0, 0},    {"", 0, 0},       {"4x001", 0, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.number);
        const bool bit = row.function == 1 || row.function == 2;
        CPropertyDB db = With(std::string("nNumber=") + row.number + (bit ? ";sType=bool" : ";sType=int16"));
        db.Remove("Channels.1.nRegister");
        ASSERT_EQ(Refusal(db).empty(), row.function != 0);
        if (row.function == 0) continue;
        const Channel channel = Read(db).channels[0];
        EXPECT_EQ(channel.function, row.function);
        EXPECT_EQ(channel.first, row.first);
    }
}

TEST(ModbusDescription, ChannelsFindTheirSlave) {
    CPropertyDB db = With(".nTimeout=700;.Slaves.boiler.nSlave=7;.Slaves.boiler.sName=Boiler;.Slaves.boiler.nMost=10");
    for (const char* const settings : {"2.sSlave=boiler", "3.nSlave=7", "4.nSlave=9"}) {
        const std::string channel = std::string("Channels.") + settings;
        Describe(db, channel + "; " + channel.substr(0, 11) + "nRegister=10; " + channel.substr(0, 11) + "sType=int16");
    }
    const Description description = Read(db);
    ASSERT_EQ(description.slaves.size(), 3u);
    const int addresses[] = {5, 7, 7, 9};
    for (size_t i = 0; i < 4; ++i) EXPECT_EQ(description.slaves[description.channels[i].slave].address, addresses[i]);
    EXPECT_EQ(description.slaves[1].name, "Boiler");
    EXPECT_EQ(description.slaves[1].most, 10);
    EXPECT_EQ(description.slaves[1].timeout, 700u);
    EXPECT_EQ(description.slaves[2].most, 125);
}

TEST(ModbusDescription, TwoPointsMakeALine) {
    const Channel channel = Read(With("rRaw1=4000;rValue1=-50;rRaw2=20000;rValue2=150")).channels[0];
    for (const auto& [raw, value] : {std::pair(4000, -50.0), std::pair(12000, 50.0), std::pair(20000, 150.0)})
        EXPECT_DOUBLE_EQ(Decode(channel, Bytes({static_cast<WORD>(raw)}).data()), value);
}

// Type, order, registers, one more setting, and the value: worked out by hand from the types' definitions.
TEST(ModbusDescription, EveryTypeAndOrderHasItsValue) {
    std::istringstream rows(
        R"(int16 high C0A8 = -16216 | int16 low C0A8 = -16216 | uint16 AB C0A8 = 49320 | uint16 BA A8C0 = 49320 |
        int32 high C0A80102 = -1062731518 | uint32 ABCD C0A80102 = 3232235778 | uint32 low 0102C0A8 = 3232235778 |
        uint32 cdab 0102C0A8 = 3232235778 | uint32 BADC A8C00201 = 3232235778 | uint32 DCBA 0201A8C0 = 3232235778 |
        float32 high C0A80102 = -5.25012302398681640625 | float32 high 7FC00000 = nan |
        uint64 high 0001020304050607 = 0x1020304050607 | uint64 ABCDEFGH 0001020304050607 = 0x1020304050607 |
        uint64 BADCFEHG 0100030205040706 = 0x1020304050607 | uint64 CDABGHEF 0203000106070405 = 0x1020304050607 |
        uint64 DCBAHGFE 0302010007060504 = 0x1020304050607 | uint64 EFGHABCD 0405060700010203 = 0x1020304050607 |
        uint64 FEHGBADC 0504070601000302 = 0x1020304050607 | uint64 GHEFCDAB 0607040502030001 = 0x1020304050607 |
        uint64 low 0607040502030001 = 0x1020304050607 | uint64 HGFEDCBA 0706050403020100 = 0x1020304050607 |
        uint64 high 0020000000000001 = 0x20000000000000 | uint64 high FFFFFFFFFFFFFFFF = 0x1p64 | int64 high FFFFFFFFFFFFFFFE = -2 |
        float64 high BFF8000000000000 = -1.5 | float64 low 000000000000BFF8 = -1.5 | bcd16 high 1234 = 1234 | bcd16 BA 3412 = 1234 |
        bcd16 high 12A4 = nan | bcd32 CDAB 56781234 = 12345678 | bool high 0400 nBit=10 = 1 | bool BA 0400 nBit=2 = 1 |
        bool high FBFF nBit=10 = 0 | text high 2D32312E3520 nLength=3 = -21.5 | text BA 322D2E310035 nLength=3 = -21.5 |
        text high 2B3100003939 nLength=3 = 1 | text high 45525220 nLength=2 = nan | text high 2020 nLength=1 = nan |
        text high 6E616E20 nLength=2 = nan | uint16 high FFFF sInvalid=32767 0xffff = nan |
        uint16 high 7FFF sInvalid=32767 0xffff = nan | int16 high 8000 rInvalid=-32768 = nan |
        float32 high C61C3F9A rInvalid=-9999.9 = nan | uint64 high FFFFFFFFFFFFFFFF sInvalid=0xFFFFFFFFFFFFFFFF = nan |
        uint64 high FFFFFFFFFFFFFFFE sInvalid=0xFFFFFFFFFFFFFFFF = 0x1p64 | text high 3939 nLength=1;rInvalid=99 = nan)");
    for (std::string row; std::getline(rows >> std::ws, row, '|');) {
        SCOPED_TRACE(row);
        const size_t sign = row.find(" = ");
        std::istringstream text(row.substr(0, sign));
        const double expected = std::stod(row.substr(sign + 3));
        std::string type, order, registers, more;
        text >> type >> order >> registers >> std::ws;
        std::getline(text, more);
        std::vector<WORD> words;
        for (size_t i = 0; i < registers.size(); i += 4)
            words.push_back(static_cast<WORD>(std::stoul(registers.substr(i, 4), nullptr, 16)));
        const CPropertyDB db = With("sType=" + type + ";sOrder=" + order + ";" + more);
        ASSERT_EQ(Refusal(db), "");
        const Channel channel = Read(db).channels[0];
        ASSERT_EQ(channel.Count(), words.size());
        const double value = Decode(channel, Bytes(words).data());
        if (std::isnan(expected)) {
            EXPECT_TRUE(std::isnan(value)) << value;
            continue;
        }
        EXPECT_EQ(value, expected);
        const bool exact = channel.type != ValueType::Text && channel.type != ValueType::Bool && value < 0x1p53;
        if (exact) {
            EXPECT_EQ(Encode(channel, value), words);
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
