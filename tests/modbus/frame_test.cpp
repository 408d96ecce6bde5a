#include <gtest/gtest.h>

#include <random>

#include "plugins/modbus/modbus_frame.h"

using namespace modbus;
using Bytes = std::vector<BYTE>;

namespace {
const Request kTwo = {0x11, 3, 0x006B, 2};
const Bytes kTwoReply = EncodeReply(kTwo, std::vector<WORD>{0xAE41, 0x5652});

Bytes Join(std::initializer_list<Bytes> parts) {
    Bytes all;
    for (const Bytes& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}
}  // namespace

// Worked frames of the Modbus guides: their CRCs are the outside witness.
TEST(ModbusFrame, EncodesTheGuidesExamples) {
    EXPECT_EQ(Encode({0x11, 3, 0x006B, 3}), (Bytes{0x11, 0x03, 0x00, 0x6B, 0x00, 0x03, 0x76, 0x87}));
    EXPECT_EQ(Encode({0x11, 4, 0x0008, 1}), (Bytes{0x11, 0x04, 0x00, 0x08, 0x00, 0x01, 0xB2, 0x98}));
    EXPECT_EQ(EncodeReply({0x11, 3, 0x006B, 3}, std::vector<WORD>{0xAE41, 0x5652, 0x4340}),
              (Bytes{0x11, 0x03, 0x06, 0xAE, 0x41, 0x56, 0x52, 0x43, 0x40, 0x49, 0xAD}));
    EXPECT_EQ(EncodeException({0x0A, 1, 0, 0}, 2), (Bytes{0x0A, 0x81, 0x02, 0xB0, 0x53}));
}

TEST(ModbusFrame, FindsTheReplyAmongNoise) {
    const Bytes other = EncodeReply({0x12, 3, 0, 2}, std::vector<WORD>{1, 2});
    for (const Bytes& before : {Bytes{}, Bytes{0x11}, Bytes{0x11, 3, 4}, Bytes{0x11, 0x83, 2, 0, 0}, other, Bytes(300, 0xFF)}) {
        const Reply reply = FindReply(Join({before, kTwoReply, {0xAA}}), kTwo);
        ASSERT_EQ(reply.found, Found::Registers) << before.size();
        EXPECT_EQ(reply.registers, (std::vector<WORD>{0xAE41, 0x5652}));
    }
    const Reply refused = FindReply(Join({{0x00, 0x11}, EncodeException(kTwo, kBusy)}), kTwo);
    EXPECT_EQ(refused.found, Found::Exception);
    EXPECT_EQ(refused.exception, kBusy);
}

TEST(ModbusFrame, NothingDamagedOrForeignIsAReply) {
    for (size_t length = 0; length < kTwoReply.size(); ++length) {
        EXPECT_EQ(FindReply({kTwoReply.data(), length}, kTwo).found, Found::Nothing) << length;
    }
    for (size_t bit = 0; bit < kTwoReply.size() * 8; ++bit) {
        Bytes damaged = kTwoReply;
        damaged[bit / 8] ^= static_cast<BYTE>(1 << bit % 8);
        EXPECT_EQ(FindReply(damaged, kTwo).found, Found::Nothing) << bit;
    }
    EXPECT_EQ(FindReply(EncodeReply({0x11, 3, 0, 1}, std::vector<WORD>{7}), kTwo).found, Found::Nothing);  // of another length
    EXPECT_EQ(FindReply(EncodeReply({0x11, 4, 0, 2}, std::vector<WORD>{7, 8}), kTwo).found, Found::Nothing);
}

TEST(ModbusFrame, FindsARequestAtAnyPlace) {
    const Bytes stream = Join({{0xFF, 0x11, 3}, Encode(kTwo), {1, 2}});
    Request found;
    size_t used = 0;
    ASSERT_TRUE(FindRequest(stream, found, used));
    EXPECT_EQ(used, 11u);
    EXPECT_EQ(found.first, kTwo.first);
    EXPECT_FALSE(FindRequest({stream.data(), 10}, found, used));
}
