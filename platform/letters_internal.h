// Characters of UTF-8 in bytes, and what each home knows of one on a terminal. Any thread.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace orvik::detail {
// The start of the character that ends at `end`, which is above 0.
size_t CharacterBefore(std::string_view text, size_t end);
// The start of the character that the byte is part of.
size_t CharacterOf(std::string_view text, size_t at);
// 2 for a wide one, 0 for one that sits on another or is not seen, else 1.
size_t ColumnsOf(char32_t character);
// Unicode's form C of UTF-8; the text itself where that fails.
std::string FormC(std::string_view utf8);
// How a character is read: strongly from one side, as a number of Arabic, or as its neighbours are.
enum class Reading { FromLeft, FromRight, ArabicNumber, AsNeighbours };
Reading ReadingOf(char32_t character);
// Whether a line of this process's text is read from the right: its first letter that has a direction says so.
bool IsLineFromRight(std::string_view text);
}  // namespace orvik::detail
