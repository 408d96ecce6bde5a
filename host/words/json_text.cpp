#include "host/words/json_text.h"

#include <charconv>
#include <cmath>
#include <cstdio>

std::string JsonText(std::string_view utf8) {
    std::string out = "\"";
    for (const char c : utf8) {
        if (c == '"' || c == '\\') {
            out.append(1, '\\').append(1, c);
        } else if (static_cast<unsigned char>(c) < 0x20) {
            char code[8];
            std::snprintf(code, sizeof code, "\\u%04x", static_cast<unsigned char>(c));
            out += code;
        } else {
            out += c;
        }
    }
    return out + '"';
}

std::string JsonNumber(double value) {
    if (!std::isfinite(value)) return "null";
    char digits[64];
    return {digits, std::to_chars(digits, digits + sizeof digits, value).ptr};
}
