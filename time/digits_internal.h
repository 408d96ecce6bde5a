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
inline int TakeDigit(const char*& cursor) {
    const int digit = *cursor - '0';
    if (digit >= 0 && digit <= 9) {
        ++cursor;
        return digit;
    }
    return static_cast<unsigned char>(*cursor) < 0x80 ? -1 : TakeNativeDigit(cursor);
}
inline bool IsDigitAt(const char* cursor) { return TakeDigit(cursor) >= 0; }

// Ten digits from 0 to 9 in characters of one length, other than ASCII's: what SpellDigits can write and TakeDigit reads.
bool AreNativeDigits(std::string_view digits);
// Puts the user's own digits in the place of '0' to '9', from a place of the text on. Nothing changes for a user of those.
void SpellDigits(CString& text, int from = 0);

}  // namespace orvik::detail
