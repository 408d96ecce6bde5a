// The module's writer of integers with a minimum width, for every text that has one.
// Pure; any thread.
#pragma once

#include <algorithm>
#include <charconv>
#include <string_view>

#include "afx/string.h"

namespace orvik::detail {

// Appends the decimal digits with a "-" for a negative value, and as many zeros in front of all of it, the sign included, as the
// width asks for. A width of -1 pads nothing.
template <class Integer>
void AppendInteger(CString& text, Integer value, int width = -1) {
    if (width <= 2 && value >= 0 && value <= 99) {  // what most parts of dates and clocks are
        const auto number = static_cast<unsigned>(value);
        const char two[] = {static_cast<char>('0' + number / 10), static_cast<char>('0' + number % 10)};
        const bool one = number < 10 && width < 2;
        text += std::string_view(two + one, one ? 1 : 2);
        return;
    }
    constexpr int kPad = 8;  // zeros that go with the digits in one piece
    char piece[kPad + 24] = {'0', '0', '0', '0', '0', '0', '0', '0'};
    char* const digits = piece + kPad;
    const auto length = static_cast<int>(std::to_chars(digits, piece + sizeof piece, value).ptr - digits);
    int zeros = std::max(width - length, 0);
    for (; zeros > kPad; --zeros) text += '0';
    text += std::string_view(digits - zeros, static_cast<size_t>(zeros + length));
}

}  // namespace orvik::detail
