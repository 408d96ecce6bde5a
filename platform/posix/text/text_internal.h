// Windows-1252 byte by byte, where a text of it may also be a name that it cannot say. Any thread; no state.
#pragma once

#include <string>
#include <string_view>

#include "platform/house_text_internal.h"
#include "platform/posix/text/text.h"

namespace orvik::detail {
// The lower-case letter of a Windows-1252 byte, other bytes as they are.
char LowerCase1252(char byte);
// Whether a name already is UTF-8 and holds a character that Windows-1252 lacks.
bool IsBeyond1252(std::string_view name);
// From UTF-16; "?" for what this house's text lacks.
std::string HouseFromUtf16(std::u16string_view text);
}  // namespace orvik::detail
