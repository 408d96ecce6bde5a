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

// The host chooses UTF-8 (platform/house_text.h), so that its own texts are what terminals and files take. Texts of others, names
// of files among them, may hold bytes that are none: here each becomes the Windows-1252 character of its value.
std::string ToUtf8(std::string_view text);
// False when the text is no UTF-8; `text` is then unchanged.
bool FromUtf8(std::string_view utf8, std::string& text);
