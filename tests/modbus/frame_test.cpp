#include <gtest/gtest.h>

#include <random>

#include "plugins/modbus/modbus_mbap.h"

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

// The first answer in these bytes, if it fits the request.
std::optional<Answer> Find(const Bytes& received, const Request& request) {
    size_t begin = 0, end = 0;
    const std::optional<Answer> answer = FindAnswer(received, begin, end);
    return answer && answer->Fits(request) ? answer : std::nullopt;
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

TEST(ModbusFrame, FindsTheAnswerAmongNoise) {
    for (const Bytes& before : {Bytes{}, Bytes{0x11}, Bytes{0x11, 3, 4}, Bytes{0x11, 0x83, 2, 0, 0}, Bytes(300, 0xFF)}) {
        const Bytes received = Join({before, kTwoReply, {0xAA}});
        size_t begin = 0, end = 0;
        const std::optional<Answer> answer = FindAnswer(received, begin, end);
        ASSERT_TRUE(answer) << before.size();
        EXPECT_EQ(answer->data, (Bytes{0xAE, 0x41, 0x56, 0x52}));
        EXPECT_EQ(begin, before.size());
        EXPECT_EQ(end, received.size() - 1);
    }
    const std::optional<Answer> refused = Find(Join({{0x00, 0x11}, EncodeException(kTwo, kBusy)}), kTwo);
    ASSERT_TRUE(refused);
    EXPECT_EQ(refused->exception, kBusy);
    // A foreign answer is passed over as a whole, with what looks like ours in its registers.
    const Bytes inner = EncodeException(kTwo, kBusy);
    const WORD words[] = {WORD{0x1183}, static_cast<WORD>(inner[2] << 8 | inner[3]), static_cast<WORD>(inner[4] << 8)};
    size_t begin = 0, end = 0;
    const Bytes foreign = EncodeReply({0x12, 3, 0, 3}, words);
    EXPECT_EQ(FindAnswer(foreign, begin, end)->slave, 0x12);
    EXPECT_EQ(end, foreign.size());
}

TEST(ModbusFrame, NothingDamagedOrForeignIsItsAnswer) {
    for (size_t length = 0; length < kTwoReply.size(); ++length) {
        EXPECT_FALSE(Find(Bytes(kTwoReply.begin(), kTwoReply.begin() + static_cast<std::ptrdiff_t>(length)), kTwo)) << length;
    }
    for (size_t bit = 0; bit < kTwoReply.size() * 8; ++bit) {
        Bytes damaged = kTwoReply;
        damaged[bit / 8] ^= static_cast<BYTE>(1 << bit % 8);
        EXPECT_FALSE(Find(damaged, kTwo)) << bit;
    }
    for (const Request& other : {Request{0x11, 3, 0, 1}, Request{0x11, 4, 0, 2}, Request{0x12, 3, 0, 2}}) {
        EXPECT_FALSE(Find(EncodeReply(other, std::vector<WORD>(other.count, 7)), kTwo));
    }
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
