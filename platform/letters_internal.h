// Characters of UTF-8 in bytes, and what each home knows of one on a terminal. Any thread.
#pragma once

#include <cstddef>
#include <string_view>

namespace orvik::detail {
// The start of the character that ends at `end`, which is above 0.
size_t CharacterBefore(std::string_view text, size_t end);
// The start of the character that the byte is part of.
size_t CharacterOf(std::string_view text, size_t at);
// 2 for a wide one, 0 for one that sits on another or is not seen, else 1.
size_t ColumnsOf(char32_t character);
// Of a script that is read from the right, its digits included.
bool IsRightToLeft(char32_t character);
}  // namespace orvik::detail
