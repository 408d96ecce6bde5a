// Single characters and whole texts between Windows-1252, UTF-8 and Unicode. Any thread; no state.
#pragma once

#include <string>
#include <string_view>

#include "platform/posix/text/text.h"

namespace orvik::detail {
inline constexpr char32_t kInvalid = 0xFFFFFFFF;
void AppendUtf8(std::string& out, char32_t character);
// Takes one character off the front; kInvalid (one byte taken) where the bytes are no shortest-form UTF-8.
char32_t TakeUtf8(std::string_view& text);

// The Unicode character of a Windows-1252 byte; the five unassigned bytes are the C1 controls of the same number.
char16_t UnicodeFrom1252(unsigned char byte);
// The byte of a character, or -1 for one that Windows-1252 does not hold.
int ByteFromUnicode(char32_t character);
std::string Utf8From1252(std::string_view text);
// The lower-case letter of a Windows-1252 byte, other bytes as they are.
char LowerCase1252(char byte);
// Whether a name already is UTF-8 and holds a character that Windows-1252 lacks.
bool IsBeyond1252(std::string_view name);
}  // namespace orvik::detail
