// A line as text, and the characters of it: bytes in a Windows-1252 process, Unicode's in a UTF-8 one. Pure functions, any
// thread.
#pragma once

#include <string>
#include <string_view>

namespace text {

// The line as text. In a UTF-8 process bytes that are no UTF-8 are the characters of Windows-1252; in a Windows-1252 process
// letters of Latin-1 in UTF-8 are what they say.
std::string LineText(std::string_view line);

// Whether a line that came begins with a text of the description, whichever bytes say it on the line.
bool LineBegins(std::string_view line, std::string_view text);

// Whether the byte belongs to a letter: of ASCII, and in a UTF-8 process of whatever lies beyond.
bool IsLetterByte(char c);
bool HasLetter(std::string_view text);
inline bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// The character at a place, and how many bytes it takes. A byte that belongs to none stands for itself.
size_t CharacterAt(std::string_view text, size_t at, char32_t& character);
// Where that many characters end; the text's size where it has fewer.
size_t PlaceOf(std::string_view text, size_t characters);
// The character that a byte stands for in text that is no UTF-8.
char32_t CharacterOf(unsigned char byte);
std::string TextOf(char32_t character);

}  // namespace text
