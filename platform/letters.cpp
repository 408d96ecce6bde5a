#include "platform/letters.h"

#include <algorithm>
#include <utility>

#include "platform/house_text_internal.h"
#include "platform/letters_internal.h"

using namespace orvik::detail;

size_t orvik::detail::CharacterBefore(std::string_view text, size_t end) {
    constexpr size_t kLongest = 4;
    for (size_t length = 1; length <= std::min(end, kLongest); ++length) {
        std::string_view character = text.substr(end - length, length);
        if (TakeUtf8(character) != kInvalid && character.empty()) return end - length;
    }
    return end - 1;
}

size_t orvik::detail::CharacterOf(std::string_view text, size_t at) {
    constexpr size_t kBack = 3;
    for (size_t start = at; at - start < kBack && start > 0;) {
        --start;
        std::string_view rest = text.substr(start);
        if (TakeUtf8(rest) != kInvalid && text.size() - rest.size() > at) return start;
    }
    return at;
}

std::string_view OrvikWholeLetters(std::string_view text, size_t bytes) {
    return bytes < text.size() ? text.substr(0, OrvikPreviousLetter(text, bytes + 1)) : text;
}

size_t OrvikColumns(std::string_view utf8) {
    size_t columns = AsciiPrefix(utf8);
    for (utf8.remove_prefix(columns); !utf8.empty();) {
        const char32_t character = TakeUtf8(utf8);
        columns += character == kInvalid ? 1 : ColumnsOf(character);
    }
    return columns;
}

bool OrvikHasRightToLeft(std::string_view utf8) {
    for (utf8.remove_prefix(AsciiPrefix(utf8)); !utf8.empty();) {
        const char32_t character = TakeUtf8(utf8);
        if (character == kInvalid) continue;
        const Reading reading = ReadingOf(character);
        if (reading == Reading::FromRight || reading == Reading::ArabicNumber) return true;
    }
    return false;
}

bool orvik::detail::IsLineFromRight(std::string_view text) {
    if (!HouseIsUtf8() || AsciiPrefix(text) == text.size()) return false;
    while (!text.empty()) {
        const Reading reading = ReadingOf(TakeHouse(text));
        if (reading == Reading::FromLeft || reading == Reading::FromRight) return reading == Reading::FromRight;
    }
    return false;
}

std::string OrvikComposed(std::string_view text) {
    const bool plain = AsciiPrefix(text) == text.size() || !HouseIsUtf8() || !IsUtf8(text);
    return plain ? std::string(text) : FormC(text);
}

std::string OrvikTypedText::Take(WPARAM typed) {
    if (!HouseIsUtf8()) return std::string(1, static_cast<char>(typed));
    const auto unit = static_cast<char16_t>(typed);
    const char16_t first = std::exchange(m_first, 0);
    std::string text;
    if (unit >= 0xD800 && unit < 0xDC00) {
        m_first = unit;
    } else if (unit < 0xDC00 || unit > 0xDFFF) {
        AppendUtf8(text, unit);
    } else if (first != 0) {
        AppendUtf8(text, 0x10000 + (static_cast<char32_t>(first - 0xD800) << 10) + (unit - 0xDC00));
    }
    return text;
}
