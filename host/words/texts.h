// What the host says to its user, in English or, when that is the user's language, in Swedish. UTF-8, as it goes to the terminal.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

enum class Text {
#define HOST_TEXT(name, english, swedish) name,
#include "host/words/texts.def"
#undef HOST_TEXT
};

// The text with %1, %2 ... replaced. An argument is never itself searched for places. "{1:reading|readings}" is the word for as
// many as %1 says: the first for "1", else the second.
std::string Say(Text text, std::initializer_list<std::string_view> arguments = {});

// Why a file operation failed, for use inside a sentence, by the system's error code.
std::string Reason(unsigned long error);

// Characters, not bytes, of UTF-8 text: what it is wide in a column.
size_t WidthOf(std::string_view utf8);

// Between this house's Windows-1252 text and the terminal's UTF-8.
std::string ToUtf8(std::string_view houseText);
// False when the text holds characters that Windows-1252 lacks; `houseText` is then unchanged.
bool FromUtf8(std::string_view utf8, std::string& houseText);
// As windows take it. Text that Windows-1252 cannot say stays as it is, which is better than nothing to read.
std::string ToHouse(std::string_view utf8);
std::string HouseText(Text text, std::initializer_list<std::string_view> arguments = {});
