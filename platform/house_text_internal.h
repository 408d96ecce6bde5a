// Single characters and whole texts between Windows-1252, UTF-8 and this house's text, which is one of the two (house_text.h).
// Any thread; no state but the process's choice.
#pragma once

#include <string>
#include <string_view>

#include "platform/house_text.h"

namespace orvik::detail {
// The choice. From FixHouseText on it stays what it is.
bool HouseIsUtf8();
void FixHouseText();

inline constexpr char32_t kInvalid = 0xFFFFFFFF;
void AppendUtf8(std::string& out, char32_t character);
// Takes one character off the front; kInvalid (one byte taken) where the bytes are no shortest-form UTF-8: surrogates, overlong
// forms, characters beyond 0x10FFFF, and a sequence that is cut off.
char32_t TakeUtf8(std::string_view& text);
bool IsUtf8(std::string_view text);
// Where the bytes above 127 begin; the text's length where there are none.
size_t AsciiPrefix(std::string_view text);

// The Unicode character of a Windows-1252 byte; the five unassigned bytes are the C1 controls of the same number.
char16_t UnicodeFrom1252(unsigned char byte);
// The byte of a character, or -1 for one that Windows-1252 does not hold.
int ByteFromUnicode(char32_t character);
std::string Utf8From1252(std::string_view text);

// Takes one character of this house's text off the front. In a UTF-8 process a byte that belongs to no character counts as the
// Windows-1252 character of its value.
char32_t TakeHouse(std::string_view& text);
inline char32_t FirstHouse(std::string_view text) { return text.empty() ? 0 : TakeHouse(text); }
// Appends a character; "?" and false where this house's text lacks it.
bool AppendHouse(std::string& out, char32_t character);
// The whole text in UTF-8, which is always possible and always valid.
std::string Utf8FromHouse(std::string_view text);
// From Windows-1252, or from UTF-8 of which bytes that are none count as Windows-1252. `lacking` is set where a "?" had to stand.
std::string HouseFrom1252(std::string_view text);
std::string HouseFromUtf8(std::string_view text, bool* lacking = nullptr);
// As HouseFromUtf8 for a text that is UTF-8, as HouseFrom1252 for one that is not: for what was written by a process of either
// choice and does not say which.
std::string HouseFromEither(std::string_view text);

// The letter of the other case: that of Windows-1252 there, else Unicode's simple mapping.
char32_t LowerCase(char32_t character);
char32_t UpperCase(char32_t character);
// Orders by the lower-case characters; < 0, 0, > 0.
int CompareNoCase(std::string_view first, std::string_view second);
bool BeginsNoCase(std::string_view text, std::string_view beginning);
}  // namespace orvik::detail
