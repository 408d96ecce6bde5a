// Characters that are no letters but orders: to a terminal, to an XML reader, to whoever sets two directions. Any thread.
#pragma once

#include <string_view>
#include <vector>

struct ControlLetter {
    size_t at, length;  // bytes
    unsigned code;
};

// In the order of the text (UTF-8): those below U+0020, U+007F to U+009F, U+202A to U+202E, which turn the direction of what
// follows, U+2066 to U+2069 without its partner, U+FFFE and U+FFFF.
std::vector<ControlLetter> FindControls(std::string_view text);

// Whether the text is of printable ASCII alone, as nearly all values and times are: nothing to look for.
bool IsPlain(std::string_view text);
