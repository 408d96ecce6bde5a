// Decimal digits as the user types and reads them. In a UTF-8 process the digits of every script count, in any order; in a
// Windows-1252 process those from '0' to '9' alone.
// Any thread but for SpellDigits, which uses the locale cache.
#pragma once

#include "afx/string.h"

namespace orvik::detail {

// 0 to 9, or -1 for a character that is no decimal digit of any script.
int ValueOfDigit(char32_t character);
// As TakeDigit for what is beyond ASCII.
int TakeNativeDigit(const char*& cursor);

// The value of the digit at the cursor, which moves behind it; -1 and no move where none stands.
inline int TakeAsciiDigit(const char*& cursor) {
    const unsigned digit = static_cast<unsigned char>(*cursor) - unsigned{'0'};
    if (digit > 9) return -1;
    ++cursor;
    return static_cast<int>(digit);
}
inline int TakeDigit(const char*& cursor) {
    if (const int digit = TakeAsciiDigit(cursor); digit >= 0 || static_cast<unsigned char>(*cursor) < 0x80) return digit;
    const char* behind = cursor;  // the cursor itself stays in a register
    const int value = TakeNativeDigit(behind);
    cursor = behind;
    return value;
}
inline bool IsDigitAt(const char* cursor) { return TakeDigit(cursor) >= 0; }

// Ten digits from 0 to 9 in characters of one length, other than ASCII's: what SpellDigits can write and TakeDigit reads.
bool AreNativeDigits(std::string_view digits);
// Puts the user's own digits in the place of '0' to '9', from a place of the text on. Nothing changes for a user of those.
void SpellOwnDigits(CString& text, int from);
extern bool g_hasOwnDigits;  // whether the locale cache holds some
inline void SpellDigits(CString& text, int from = 0) {
    if (g_hasOwnDigits) SpellOwnDigits(text, from);
}

}  // namespace orvik::detail
