#include <cstring>

#include "platform/house_text_internal.h"
#include "time/separator.h"

namespace orvik::detail {
namespace {

constexpr size_t kLongest = 4;  // bytes of a letter
constexpr char32_t kMinus = 0x2212;

std::string_view AtMostALetter(const char* cursor) { return {cursor, strnlen(cursor, kLongest)}; }

bool IsDirectionMark(char32_t letter) { return letter == 0x200E || letter == 0x200F || letter == 0x61C; }

// The next letter that is no mark of direction, 0 at the end.
char32_t TakeMarkless(std::string_view& text) {
    while (!text.empty())
        if (const char32_t letter = TakeHouse(text); !IsDirectionMark(letter)) return letter;
    return 0;
}
char32_t TakeMarkless(const char*& cursor) {
    while (*cursor)
        if (const char32_t letter = TakeLetter(cursor); !IsDirectionMark(letter)) return letter;
    return 0;
}

bool TakeTextByLetters(const char*& cursor, std::string_view text) {
    const char* behind = cursor;
    while (const char32_t wanted = TakeMarkless(text)) {
        const char32_t letter = TakeMarkless(behind);
        if (letter != wanted && !(IsBlank(letter) && IsBlank(wanted))) return false;
    }
    cursor = behind;
    return true;
}

}  // namespace

bool IsBlank(char32_t letter) {
    return letter == ' ' || letter == 0xA0 || (letter >= 0x2000 && letter <= 0x200A) || letter == 0x202F || letter == 0x3000;
}

char32_t TakeLetter(const char*& cursor) {
    std::string_view rest = AtMostALetter(cursor);
    const size_t size = rest.size();
    const char32_t letter = TakeHouse(rest);
    cursor += size - rest.size();
    return letter;
}

void SkipLetters(const char*& cursor, int count) {
    for (; count > 0 && *cursor; --count) TakeLetter(cursor);
}

bool SkipLongerBlank(const char*& cursor) { return HouseIsUtf8() && IsBlank(TakeLetter(cursor)); }

bool TakeText(const char*& cursor, std::string_view text) {
    if (std::strncmp(cursor, text.data(), text.size()) == 0) {
        cursor += text.size();
        return true;
    }
    return HouseIsUtf8() && TakeTextByLetters(cursor, text);
}

Separator::Separator(std::string_view setting, char standIn) {
    if (setting.empty()) return;
    ascii = setting[0];
    std::string_view rest = setting;
    TakeHouse(rest);
    const size_t size = setting.size() - rest.size();
    if (size > 1) ascii = standIn, letter = setting.substr(0, size);
}

bool Separator::TakeLonger(const char*& cursor) const {
    if (static_cast<unsigned char>(*cursor) < 0x80) return false;
    const char* behind = cursor;
    const char32_t there = TakeLetter(behind), wanted = FirstHouse(letter);
    if (there != wanted && !(IsBlank(there) && IsBlank(wanted))) return false;
    cursor = behind;
    return true;
}

int TakeLongerSign(const char*& cursor) {
    if (!HouseIsUtf8()) return 0;
    const char* behind = cursor;
    const char32_t sign = TakeMarkless(behind);
    if (sign != '-' && sign != '+' && sign != kMinus) return 0;
    cursor = behind;
    return sign == '+' ? 1 : -1;
}

}  // namespace orvik::detail
