// What each home knows of a character on a terminal. Any thread.
#pragma once

#include <cstddef>

namespace orvik::detail {
// 2 for a wide one, 0 for one that sits on another or is not seen, else 1.
size_t ColumnsOf(char32_t character);
}  // namespace orvik::detail
