#include "host/session/column_format.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "host/words/texts.h"
#include "time/locale_cache.h"

namespace {
constexpr int kDigits = 6, kRangeDigits = 3, kMostDigits = 17;
constexpr int kLargest = 12, kSmallest = -5;  // powers of ten that are written without an exponent

int PowerOf(double value) { return static_cast<int>(std::floor(std::log10(value))); }
}  // namespace

std::string DecimalSign() {
    const char sign = NlsGetDecimalSep();
    return sign == 0 ? "." : ToUtf8(std::string(1, sign));
}

ColumnFormat::ColumnFormat(double low, double high) : m_sign(DecimalSign()) {
    const double largest = std::max(std::abs(low), std::abs(high)), range = high - low;
    int digits = kDigits;
    const int power = largest > 0 ? PowerOf(largest) : 0;
    if (range > 0 && std::isfinite(range)) digits = std::clamp(power - PowerOf(range) + kRangeDigits, kDigits, kMostDigits);
    m_exponent = power > kLargest || power < kSmallest;
    m_decimals = m_exponent ? digits - 1 : std::max(digits - 1 - power, 0);
}

void ColumnFormat::Append(std::string& text, double value) const {
    if (std::isnan(value)) return;
    char digits[400];
    const std::chars_format form = m_exponent ? std::chars_format::scientific : std::chars_format::fixed;
    char* const end = std::to_chars(digits, digits + sizeof digits, value, form, m_decimals).ptr;
    char* begin = digits;
    // What is rounded to nothing has no sign.
    if (*begin == '-' && std::none_of(begin, end, [](char c) { return (c >= '1' && c <= '9') || c == 'i'; })) ++begin;
    char* const point = std::find(begin, end, '.');
    text.append(begin, point);
    if (point != end) text.append(m_sign).append(point + 1, end);
}

std::string ColumnFormat::Text(double value) const {
    std::string text;
    Append(text, value);
    return text;
}
