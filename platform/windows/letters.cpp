// Without a library of Unicode's rules of its own: a letter is a character with the combining marks, joiners and variation
// selectors behind it, by what the system knows of each character. Emoji joined to one picture are stepped over one by one.
#include "platform/letters.h"

#include <algorithm>

#include "platform/house_text_internal.h"
#include "platform/letters_internal.h"

using namespace orvik::detail;

namespace {
WORD Type3(char32_t character) {
    if (character >= 0x10000) return 0;
    const auto unit = static_cast<WCHAR>(character);
    WORD type = 0;
    return GetStringTypeW(CT_CTYPE3, &unit, 1, &type) ? type : 0;
}

// Part of the letter before it.
bool Joins(char32_t c) {
    constexpr char32_t kJoiner = 0x200D, kNonJoiner = 0x200C;
    if (c < 0x300) return false;
    return c == kJoiner || c == kNonJoiner || (c >= 0xFE00 && c <= 0xFE0F) || (c >= 0xE0100 && c <= 0xE01EF) ||
           (c >= 0x1F3FB && c <= 0x1F3FF) || (Type3(c) & C3_NONSPACING) != 0;
}

// The character at `at`, where one begins, and where the next one does.
char32_t CharacterAt(std::string_view text, size_t at, size_t& next) {
    std::string_view rest = text.substr(at);
    const char32_t character = TakeHouse(rest);
    next = text.size() - rest.size();
    return character;
}

bool IsLineEnd(std::string_view text, size_t at) { return text.substr(at, 2) == "\r\n"; }
}  // namespace

size_t OrvikNextLetter(std::string_view text, size_t at) {
    if (at + 1 >= text.size()) return text.size();
    if (!HouseIsUtf8()) return at + 1;
    if (IsLineEnd(text, at)) return at + 2;
    size_t next = 0;
    CharacterAt(text, CharacterOf(text, at), next);
    for (size_t behind = 0; next < text.size() && Joins(CharacterAt(text, next, behind)); next = behind) {
    }
    return next;
}

size_t OrvikPreviousLetter(std::string_view text, size_t at) {
    at = std::min(at, text.size());
    if (at < 2) return 0;
    if (!HouseIsUtf8()) return at - 1;
    if (IsLineEnd(text, at - 2)) return at - 2;
    size_t start = CharacterOf(text, at - 1), next = 0;
    while (start > 0 && Joins(CharacterAt(text, start, next))) start = CharacterBefore(text, start);
    return start;
}

size_t orvik::detail::ColumnsOf(char32_t c) {
    if (c != 0xAD && Joins(c)) return 0;
    if (c >= 0x1160 && c < 0x1200) return 0;  // parts of a Korean syllable behind its first one, which has two columns
    if (c >= 0x1100 && c < 0x1160) return 2;
    if (c >= 0x20000 || (c >= 0x1F300 && c < 0x1FB00)) return 2;
    const WORD type = Type3(c);
    if ((type & C3_HALFWIDTH) != 0) return 1;
    return (type & (C3_FULLWIDTH | C3_IDEOGRAPH | C3_HIRAGANA | C3_KATAKANA)) != 0 || (c >= 0xAC00 && c < 0xD7A4) ? 2 : 1;
}

Reading orvik::detail::ReadingOf(char32_t c) {
    if (c >= 0x10000) {
        const bool fromRight = (c >= 0x10800 && c < 0x11000) || (c >= 0x1E800 && c < 0x1F000);
        const bool picture = c >= 0x1F000 && c < 0x20000;
        return fromRight ? Reading::FromRight : picture ? Reading::AsNeighbours : Reading::FromLeft;
    }
    const auto unit = static_cast<WCHAR>(c);
    WORD type = 0;
    if (!GetStringTypeW(CT_CTYPE2, &unit, 1, &type)) return Reading::AsNeighbours;
    return type == C2_LEFTTORIGHT    ? Reading::FromLeft
           : type == C2_RIGHTTOLEFT  ? Reading::FromRight
           : type == C2_ARABICNUMBER ? Reading::ArabicNumber
                                     : Reading::AsNeighbours;
}

std::string orvik::detail::FormC(std::string_view utf8) {
    const auto length = static_cast<int>(utf8.size());
    std::wstring wide(utf8.size(), 0);
    wide.resize(static_cast<size_t>(MultiByteToWideChar(CP_UTF8, 0, utf8.data(), length, wide.data(), length)));
    const auto units = static_cast<int>(wide.size());
    std::wstring composed(3 * wide.size(), 0);  // no character has a form of more than three
    const int taken = NormalizeString(NormalizationC, wide.data(), units, composed.data(), static_cast<int>(composed.size()));
    if (taken <= 0) return std::string(utf8);
    std::string text(3 * static_cast<size_t>(taken), 0);
    text.resize(static_cast<size_t>(
        WideCharToMultiByte(CP_UTF8, 0, composed.data(), taken, text.data(), static_cast<int>(text.size()), nullptr, nullptr)));
    return text;
}

std::string OrvikLettersWithoutFont(std::string_view) { return {}; }
