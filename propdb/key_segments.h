// How a property's key falls into segments. Pure functions on text that the caller keeps; any thread.
#pragma once

#include "platform/api.h"

#include <string_view>

namespace orvik::detail {
// Where the first separator of a key stands; npos when the whole key is one segment: it has no "." outside quotes, begins with
// one, or has a quote that does not end before the first one.
inline size_t FindSeparator(std::string_view key) {
    for (size_t at = 0; at < key.size(); ++at) {
        const char ch = key[at];
        if (ch == '.') return at == 0 ? key.npos : at;
        if (ch == '\'' || ch == '"') {
            at = key.find(ch, at + 1);
            if (at == key.npos) break;
        }
    }
    return key.npos;
}

// Cuts the first segment off a key that is not empty.
inline std::string_view TakeSegment(std::string_view& rest) {
    const size_t separator = FindSeparator(rest);
    const std::string_view segment = rest.substr(0, separator);
    rest = separator == rest.npos ? std::string_view() : rest.substr(separator + 1);
    return segment;
}
}  // namespace orvik::detail
