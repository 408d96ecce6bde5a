#include "xml/number_text.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace orvik::detail {
namespace {
bool IsSpace(char ch) { return ch == ' ' || (ch >= '\t' && ch <= '\r'); }
bool IsDigit(char ch) { return ch >= '0' && ch <= '9'; }

const char* SkipSpace(const char* at, const char* end) {
    while (at != end && IsSpace(*at)) ++at;
    return at;
}

// Takes one sign; true for "-".
bool TakeSign(const char*& at, const char* end) {
    if (at == end || (*at != '-' && *at != '+')) return false;
    return *at++ == '-';
}

// The library converter leaves the value alone when it does not fit, so tell too large from too small by the exponent of the
// first digit that counts.
double OutOfRange(const char* at, const char* end, bool hex) {
    const char* const exponentMarks = hex ? "pP" : "eE";
    const auto digitValue = [hex](char ch) {
        return IsDigit(ch) || (hex && ((ch >= 'a' && ch <= 'f') || (ch >= 'A' && ch <= 'F')));
    };
    int64_t leading = 0;
    bool point = false, started = false;
    for (; at != end && (digitValue(*at) || *at == '.'); ++at) {
        if (*at == '.') {
            point = true;
            continue;
        }
        started = started || *at != '0';
        if (started && !point) ++leading;
        if (!started && point) --leading;
    }
    if (hex) leading *= 4;
    int64_t exponent = 0;
    if (at != end && (*at == exponentMarks[0] || *at == exponentMarks[1])) {
        ++at;
        const bool negative = TakeSign(at, end);
        for (; at != end && IsDigit(*at); ++at)
            if (exponent < 1'000'000'000'000) exponent = exponent * 10 + (*at - '0');
        if (negative) exponent = -exponent;
    }
    return leading + exponent > 0 ? std::numeric_limits<double>::infinity() : 0.0;
}

// Digits as `write` makes them, the exponent's mark in capitals, or a name; the length.
template <class Real, class Write>
unsigned WriteReal(char (&text)[32], Real value, Write write) {
    char* end = text;
    if (std::isfinite(value)) {
        end = write(text, text + sizeof text - 1, value);
        for (char* at = text; at != end; ++at)
            if (*at == 'e') *at = 'E';
    } else {
        const std::string_view name = std::isnan(value) ? "NAN" : value < 0 ? "-INF" : "INF";
        end += name.copy(text, name.size());
    }
    *end = 0;
    return static_cast<unsigned>(end - text);
}
}  // namespace

NumberText GeneralText(double value) {
    NumberText text;
    text.m_length = WriteReal(text.m_text, value, [](char* at, char* end, double number) {
        return std::to_chars(at, end, number, std::chars_format::general, 6).ptr;
    });
    return text;
}

NumberText ExactText(double value) {
    NumberText text;
    text.m_length =
        WriteReal(text.m_text, value, [](char* at, char* end, double number) { return std::to_chars(at, end, number).ptr; });
    return text;
}

// A float is read as a double and then rounded. Twice rounded, a few of the shortest texts miss: those take their double's.
NumberText ExactText(float value) {
    NumberText text;
    text.m_length =
        WriteReal(text.m_text, value, [](char* at, char* end, float number) { return std::to_chars(at, end, number).ptr; });
    return std::isnan(value) || static_cast<float>(ParseReal(text.View())) == value ? text
                                                                                    : ExactText(static_cast<double>(value));
}

NumberText IntegerText(int64_t value) {
    NumberText text;
    char* const end = std::to_chars(text.m_text, text.m_text + sizeof text.m_text - 1, value).ptr;
    *end = 0;
    text.m_length = static_cast<unsigned>(end - text.m_text);
    return text;
}

NumberText UnsignedText(uint64_t value) {
    NumberText text;
    char* const end = std::to_chars(text.m_text, text.m_text + sizeof text.m_text - 1, value).ptr;
    *end = 0;
    text.m_length = static_cast<unsigned>(end - text.m_text);
    return text;
}

double ParseReal(std::string_view text) {
    const char* const end = text.data() + text.size();
    const char* at = SkipSpace(text.data(), end);
    const bool negative = TakeSign(at, end);
    if (at == end || *at == '-' || *at == '+') return 0.0;
    // "0x" counts only with a digit behind it; otherwise the 0 stands alone.
    const bool hex = end - at > 2 && at[0] == '0' && (at[1] == 'x' || at[1] == 'X');
    double value = 0.0;
    std::from_chars_result result =
        std::from_chars(hex ? at + 2 : at, end, value, hex ? std::chars_format::hex : std::chars_format::general);
    if (result.ec == std::errc::result_out_of_range) value = OutOfRange(hex ? at + 2 : at, result.ptr, hex);
    if (result.ec == std::errc::invalid_argument) return 0.0;  // a sign alone is no number, and leaves none
    return negative ? -value : value;
}

int64_t ParseInteger(std::string_view text) {
    const char* const end = text.data() + text.size();
    const char* at = SkipSpace(text.data(), end);
    const bool negative = TakeSign(at, end);
    uint64_t value = 0;
    for (; at != end && IsDigit(*at); ++at) value = value * 10 + static_cast<uint64_t>(*at - '0');
    return static_cast<int64_t>(negative ? 0 - value : value);
}
}  // namespace orvik::detail
