#include "plugins/modbus/modbus_number.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace modbus {
namespace {
double DoubleOf(std::string_view text) {
    if (text.starts_with('+')) text.remove_prefix(1);
    double number = std::nan("");
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

bool IsWhole64(const Channel& channel) {
    return (channel.type == ValueType::Int64 || channel.type == ValueType::Uint64) && channel.scale == 1 && channel.offset == 0;
}

template <class Whole>
std::vector<WORD> WholeRegisters(const Channel& channel, const std::string& digits) {
    Whole number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (digits.empty() || error != std::errc() || end != digits.data() + digits.size()) return {};
    return RegistersOf(channel, static_cast<uint64_t>(number));
}

// Without an exponent where that is no longer than a line can well be.
std::string Plain(double number) {
    constexpr double kLeast = 1e-5, kMost = 1e21;
    const double size = std::fabs(number);
    const bool fixed = size == 0 || (size >= kLeast && size < kMost);
    char text[64];
    const auto form = fixed ? std::chars_format::fixed : std::chars_format::scientific;
    return std::string(text, std::to_chars(text, std::end(text), number, form).ptr);
}

double Rounded(double number, int digits) {
    char text[64];
    const auto end = std::to_chars(text, std::end(text), number, std::chars_format::general, digits).ptr;
    return DoubleOf({text, static_cast<size_t>(end - text)});
}
}  // namespace

Decimal::Decimal(std::string_view text) {
    if (text.starts_with('+') || text.starts_with('-')) {
        negative = text[0] == '-';
        text.remove_prefix(1);
    }
    const size_t e = text.find_first_of("eE");
    if (e != std::string_view::npos) {
        std::string_view power = text.substr(e + 1);
        if (power.starts_with('+')) power.remove_prefix(1);
        std::from_chars(power.data(), power.data() + power.size(), exponent);
        text = text.substr(0, e);
    }
    if (const size_t point = text.find('.'); point != std::string_view::npos)
        exponent -= static_cast<int>(text.size() - point - 1);
    std::copy_if(text.begin(), text.end(), std::back_inserter(digits), [](char c) { return c != '.'; });
    digits.erase(0, digits.find_first_not_of('0'));
    for (; digits.ends_with('0'); ++exponent) digits.pop_back();
    if (!digits.empty()) return;
    negative = false;
    exponent = 0;
}

std::string Decimal::Whole() const {
    constexpr size_t kMost = 20;
    if (exponent < 0 || exponent > static_cast<int>(kMost) || digits.size() + static_cast<size_t>(exponent) > kMost) return {};
    if (digits.empty()) return "0";
    return (negative ? "-" : "") + digits + std::string(static_cast<size_t>(exponent), '0');
}

std::vector<WORD> RegistersFor(const Channel& channel, std::string_view number) {
    if (IsWhole64(channel)) {
        const std::string digits = Decimal(number).Whole();
        return channel.type == ValueType::Int64 ? WholeRegisters<int64_t>(channel, digits)
                                                : WholeRegisters<uint64_t>(channel, digits);
    }
    const double value = DoubleOf(number);
    return CanHold(channel, value) ? Encode(channel, value) : std::vector<WORD>();
}

std::string DigitsOf(const Channel& channel, const std::vector<WORD>& registers) {
    if (IsWhole64(channel)) {
        const uint64_t bits = BitsIn(channel, registers);
        return channel.type == ValueType::Int64 ? std::to_string(static_cast<int64_t>(bits)) : std::to_string(bits);
    }
    Channel any = channel;
    any.none.clear();
    std::vector<BYTE> data;
    for (const WORD word : registers) AppendWord(data, word);
    if (ReadsCoils(channel.function)) data = {static_cast<BYTE>(registers[0])};
    const double value = Decode(any, data.data());
    if (!std::isfinite(value)) return "nan";
    constexpr int kSure = 15, kAll = 17;
    const bool isFloat = channel.type == ValueType::Float32 || channel.type == ValueType::Float64;
    int digits = isFloat ? 1 : kSure;
    while (digits < kAll && Encode(channel, Rounded(value, digits)) != registers) ++digits;
    return Plain(Rounded(value, digits));
}

}  // namespace modbus
