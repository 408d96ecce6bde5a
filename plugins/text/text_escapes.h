// Bytes that a description cannot hold as they are, written as in C: \r \n \t \\ and \xHH. Pure functions, any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace text {

// Nothing for a backslash that begins none of them.
std::optional<std::string> Unescape(std::string_view text);
// Control characters, bytes that are no character of this process's text, and the backslash as escapes. `also`: further ones.
std::string Escape(std::string_view bytes, std::string_view also = {});
// The number that two hexadecimal digits say, in any case; nothing if they are none.
std::optional<unsigned char> HexByte(std::string_view digits);

}  // namespace text
