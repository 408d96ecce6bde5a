#include "plugins/modbus/modbus_channel.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>

namespace modbus {
namespace {
constexpr double kNoValue = std::numeric_limits<double>::quiet_NaN();
constexpr int kDigitBits = 4;

struct Range {
    double low, high;
};
// Of 64 bits the ends are the next doubles beyond what the type holds; BitsOf and CanHold take care of them.
Range RangeOf(ValueType type) {
    switch (type) {
        case ValueType::Bool:
            return {0, 1};
        case ValueType::Int16:
            return {-0x1p15, 0x1p15 - 1};
        case ValueType::Uint16:
            return {0, 0x1p16 - 1};
        case ValueType::Int32:
            return {-0x1p31, 0x1p31 - 1};
        case ValueType::Uint32:
            return {0, 0x1p32 - 1};
        case ValueType::Int64:
            return {-0x1p63, 0x1p63};
        case ValueType::Uint64:
            return {0, 0x1p64};
        case ValueType::Float32:
            return {-double{std::numeric_limits<float>::max()}, double{std::numeric_limits<float>::max()}};
        case ValueType::Bcd16:
            return {0, 9999};
        case ValueType::Bcd32:
            return {0, 99'999'999};
        case ValueType::Float64:
        case ValueType::Text:
            break;
    }
    return {std::numeric_limits<double>::lowest(), std::numeric_limits<double>::max()};
}

double FromDigits(uint64_t bits, int digits) {
    double number = 0;
    for (int i = digits - 1; i >= 0; --i) {
        const unsigned digit = bits >> (i * kDigitBits) & 0xF;
        if (digit > 9) return kNoValue;
        number = number * 10 + digit;
    }
    return number;
}

uint64_t ToDigits(uint64_t number) {
    uint64_t bits = 0;
    for (int at = 0; number != 0; number /= 10, at += kDigitBits) bits |= number % 10 << at;
    return bits;
}

WORD Swapped(WORD word) { return static_cast<WORD>(word << 8 | word >> 8); }

// Which register holds the one that is the i-th from the highest, of `count`.
size_t PlaceOf(size_t i, size_t count, ByteOrder order) {
    const size_t exchanged = (order & kSwapWords ? 1u : 0u) | (order & kSwapHalves ? 2u : 0u);
    return i ^ (exchanged & (count - 1));
}

uint64_t Gather(const Channel& channel, const BYTE* registers) {
    const size_t count = channel.Count();
    uint64_t bits = 0;
    for (size_t i = 0; i < count; ++i) {
        const WORD word = WordAt(registers + 2 * PlaceOf(i, count, channel.order));
        bits = bits << 16 | (channel.order & kSwapBytes ? Swapped(word) : word);
    }
    return bits;
}

// The number that letters say, with nothing but blanks around it; they end at the first zero.
double NumberIn(const Channel& channel, const BYTE* registers) {
    char text[2 * kMaxRegisters];
    char* end = text;
    for (size_t i = 0; i < channel.length * size_t{2}; ++i) {
        const BYTE letter = registers[channel.order & kSwapBytes ? i ^ 1 : i];
        if (letter == 0) break;
        *end++ = static_cast<char>(letter);
    }
    const char* begin = text;
    while (begin != end && *begin == ' ') ++begin;
    while (end != begin && end[-1] == ' ') --end;
    if (end - begin > 1 && *begin == '+' && begin[1] != '-') ++begin;
    double number = 0;
    const auto [read, error] = std::from_chars(begin, end, number);
    return error == std::errc() && read == end && std::isfinite(number) ? number : kNoValue;
}

// As many digits as there is room for.
std::vector<WORD> Letters(const Channel& channel, double number) {
    char text[64];
    int written = 0, digits = 15;
    const int room = channel.length * 2;
    do written = std::snprintf(text, sizeof text, "%.*g", digits, number);
    while (written > room && --digits > 0);
    std::vector<WORD> registers;
    const auto letter = [&](int i) { return static_cast<BYTE>(i < std::min(written, room) ? text[i] : ' '); };
    for (int i = 0; i < room; i += 2) {
        const WORD word = static_cast<WORD>(letter(i) << 8 | letter(i + 1));
        registers.push_back(channel.order & kSwapBytes ? Swapped(word) : word);
    }
    return registers;
}

// Scales and offsets are mostly decimal, and so is what people expect: 189 times 0.1 is 18.9, where doubles would make
// 18.900000000000002 of it. With both as whole numbers of some power of ten only the last step is rounded.
double Scaled(const Channel& channel, double raw) {
    constexpr double kExact = 0x1p53, kFinest = 1e9;
    if (std::abs(raw) < kExact && raw == std::floor(raw)) {
        for (double parts = 10; parts <= kFinest; parts *= 10) {
            const double scale = std::round(channel.scale * parts), offset = std::round(channel.offset * parts);
            if (scale / parts != channel.scale || offset / parts != channel.offset) continue;
            const double product = raw * scale, sum = product + offset;
            if (std::abs(product) >= kExact || std::abs(sum) >= kExact || sum == 0) break;
            return sum / parts;
        }
    }
    const double scaled = raw * channel.scale;
    return channel.offset == 0 ? scaled : scaled + channel.offset;  // adding 0 would turn -0 into 0
}

double RawOf(const Channel& channel, double value) { return (value - channel.offset) / channel.scale; }
}  // namespace

WORD Channel::Count() const {
    switch (type) {
        case ValueType::Int32:
        case ValueType::Uint32:
        case ValueType::Float32:
        case ValueType::Bcd32:
            return 2;
        case ValueType::Int64:
        case ValueType::Uint64:
        case ValueType::Float64:
            return 4;
        case ValueType::Text:
            return length;
        default:
            return 1;
    }
}

double Decode(const Channel& channel, const BYTE* data, WORD offset) {
    double raw = 0;
    uint64_t bits = 0;
    if (ReadsCoils(channel.function)) {
        raw = data[offset / 8] >> offset % 8 & 1;
    } else if (channel.type == ValueType::Text) {
        raw = NumberIn(channel, data + 2 * offset);
        bits = std::bit_cast<uint64_t>(raw);
    } else {
        bits = Gather(channel, data + 2 * offset);
        switch (channel.type) {
            case ValueType::Bool:
                raw = static_cast<double>(bits >> channel.bit & 1);
                break;
            case ValueType::Int16:
                raw = static_cast<int16_t>(bits);
                break;
            case ValueType::Int32:
                raw = static_cast<int32_t>(bits);
                break;
            case ValueType::Int64:
                raw = static_cast<double>(static_cast<int64_t>(bits));
                break;
            case ValueType::Float32:
                raw = std::bit_cast<float>(static_cast<uint32_t>(bits));
                break;
            case ValueType::Float64:
                raw = std::bit_cast<double>(bits);
                break;
            case ValueType::Bcd16:
                raw = FromDigits(bits, 4);
                break;
            case ValueType::Bcd32:
                raw = FromDigits(bits, 8);
                break;
            default:
                raw = static_cast<double>(bits);
        }
    }
    if (std::find(channel.none.begin(), channel.none.end(), bits) != channel.none.end()) return kNoValue;
    return Scaled(channel, raw);
}

uint64_t BitsOf(ValueType type, double number) {
    if (type == ValueType::Float64 || type == ValueType::Text) return std::bit_cast<uint64_t>(number);
    const Range range = RangeOf(type);
    const double limited = std::clamp(std::isnan(number) ? 0 : number, range.low, range.high);
    if (type == ValueType::Float32) return std::bit_cast<uint32_t>(static_cast<float>(limited));
    if (limited >= 0x1p63) {
        if (type == ValueType::Int64) return static_cast<uint64_t>(std::numeric_limits<int64_t>::max());
        return limited >= 0x1p64 ? std::numeric_limits<uint64_t>::max() : static_cast<uint64_t>(limited);
    }
    const auto whole = static_cast<uint64_t>(std::llround(limited));
    switch (type) {
        case ValueType::Int16:
            return whole & 0xFFFF;
        case ValueType::Int32:
            return whole & 0xFFFF'FFFF;
        case ValueType::Bcd16:
        case ValueType::Bcd32:
            return ToDigits(whole);
        default:
            return whole;
    }
}

std::vector<WORD> Encode(const Channel& channel, double value) {
    const double raw = RawOf(channel, value);
    if (channel.type == ValueType::Text) return Letters(channel, raw);
    uint64_t bits = BitsOf(channel.type, raw);
    if (ReadsCoils(channel.function)) return {static_cast<WORD>(bits)};
    if (channel.type == ValueType::Bool) bits <<= channel.bit;
    return RegistersOf(channel, bits);
}

uint64_t BitsIn(const Channel& channel, const std::vector<WORD>& registers) {
    std::vector<BYTE> data;
    for (const WORD word : registers) AppendWord(data, word);
    return Gather(channel, data.data());
}

std::vector<WORD> RegistersOf(const Channel& channel, uint64_t bits) {
    const size_t count = channel.Count();
    std::vector<WORD> registers(count);
    for (size_t i = count; i-- > 0; bits >>= 16) {
        const auto word = static_cast<WORD>(bits);
        registers[PlaceOf(i, count, channel.order)] = channel.order & kSwapBytes ? Swapped(word) : word;
    }
    return registers;
}

bool CanHold(const Channel& channel, double value) {
    double raw = RawOf(channel, value);
    if (!std::isfinite(raw)) return false;
    if (channel.type != ValueType::Float32 && channel.type != ValueType::Float64 && channel.type != ValueType::Text) {
        // What a division by the scale leaves: 21.3 / 0.1 is no whole number.
        const double whole = std::round(raw);
        if (std::abs(raw - whole) > 1e-6 * std::max(1.0, std::abs(raw) * 1e-6)) return false;
        raw = whole;
    }
    constexpr double kExact = 0x1p53;
    const Range range = RangeOf(channel.type);
    if ((channel.type == ValueType::Int64 || channel.type == ValueType::Uint64) && std::abs(raw) > kExact) return false;
    if (channel.type == ValueType::Text) {
        const std::vector<WORD> letters = Letters(channel, raw);
        std::vector<BYTE> data;
        for (const WORD word : letters) AppendWord(data, word);
        return std::abs(NumberIn(channel, data.data()) - raw) <= 1e-12 * std::abs(raw);
    }
    return raw >= range.low && raw <= range.high;
}

}  // namespace modbus
