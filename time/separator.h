// The separators and signs of the user's settings as readers and writers of text take them: by letters of this house's text
// (platform/house_text.h), which are bytes in a Windows-1252 process and may have several bytes in a UTF-8 one.
// Pure but for the choice of this house's text; any thread.
#pragma once

#include <string_view>

#include "afx/string.h"

namespace orvik::detail {

// Takes one letter off a zero-terminated text that is not at its end.
ORVIK_API char32_t TakeLetter(const char*& cursor);
// Moves on by so many letters, at most to the text's end.
ORVIK_API void SkipLetters(const char*& cursor, int count);
ORVIK_API bool IsBlank(char32_t letter);
// Spaces, those that do not break a line among them; U+00A0 and beyond in a UTF-8 process only.
ORVIK_API bool SkipLongerBlank(const char*& cursor);
inline void SkipBlanks(const char*& cursor) {
    for (;;) {
        while (*cursor == ' ') ++cursor;
        if (static_cast<unsigned char>(*cursor) < 0x80) return;
        const char* behind = cursor;  // the cursor itself stays in a register
        if (!SkipLongerBlank(behind)) return;
        cursor = behind;
    }
}
// Takes the text if it stands at the cursor. In a UTF-8 process a blank is any blank, and marks of direction, which nobody
// types, are passed over in both.
ORVIK_API bool TakeText(const char*& cursor, std::string_view text);

// The first letter of a setting. One beyond ASCII, which only a UTF-8 process has, is written as it is; readers take for it an
// ASCII character besides, which is also what functions that give a separator as one `char` say. A blank is any blank to readers.
struct Separator {
    Separator() = default;
    explicit Separator(char c) : ascii(c) {}
    ORVIK_API Separator(std::string_view setting, char standIn);

    char ascii = 0;           // the letter or, where it is longer, what stands for it; 0 for an empty setting
    std::string_view letter;  // a longer one, within the setting's text

    std::string_view Text() const { return letter.empty() ? std::string_view(&ascii, ascii != 0) : letter; }
    bool Take(const char*& cursor) const {
        if (ascii != 0 && *cursor == ascii) {
            ++cursor;
            return true;
        }
        if (letter.empty()) return false;
        const char* behind = cursor;
        const bool taken = TakeLonger(behind);
        cursor = behind;
        return taken;
    }
    bool operator==(const Separator& other) const { return Text() == other.Text(); }

private:
    ORVIK_API bool TakeLonger(const char*& cursor) const;
};

inline bool TakeAscii(const char*& cursor, char c) { return Separator(c).Take(cursor); }

// -1, 1, or 0 where no sign stands. In a UTF-8 process the mathematical minus is one, and marks of direction may stand in front.
ORVIK_API int TakeLongerSign(const char*& cursor);
inline int TakeSign(const char*& cursor) {
    if (*cursor == '-' || *cursor == '+') return *cursor++ == '-' ? -1 : 1;
    if (static_cast<unsigned char>(*cursor) < 0x80) return 0;
    const char* behind = cursor;
    const int sign = TakeLongerSign(behind);
    cursor = behind;
    return sign;
}
inline bool TakeMinus(const char*& cursor) {
    const char* behind = cursor;
    if (TakeSign(behind) >= 0) return false;
    cursor = behind;
    return true;
}

}  // namespace orvik::detail
