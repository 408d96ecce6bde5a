// A line of JSON (RFC 8259), flattened: every number, text, true, false and null with the path that leads to it, such as
// "air.temperature" or "probes[2]". Strict: what is not JSON through and through is none. Pure functions, any thread.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace text {

struct JsonLeaf {
    enum Kind { Null, False, True, Number, Text };
    std::string path;
    Kind kind = Null;
    std::string text;  // a number's digits, a text's characters ("?" for those that this process's text lacks)
};

// Deepest nesting, and longest path; a leaf with a longer one is left out.
constexpr size_t kJsonDepth = 32, kJsonPath = 200;

// False: no JSON, or too deep. Memory stays below a small multiple of the line's.
bool ReadJson(std::string_view line, std::vector<JsonLeaf>& leaves);

// `text` between quotes.
std::string JsonText(std::string_view text);

}  // namespace text
