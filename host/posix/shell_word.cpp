#include "host/words/shell_word.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

#include "platform/house_text.h"

namespace {
bool IsControl(char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }
bool IsPlain(char c) {
    return static_cast<unsigned char>(c) >= 0x80 || std::isalnum(static_cast<unsigned char>(c)) != 0 ||
           std::string_view("_./:@%+,=-").find(c) != std::string_view::npos;
}

// For bytes that cannot stand there as they are.
std::string WithEscapes(std::string_view name, bool utf8) {
    std::string word = "$'";
    for (const char c : name) {
        char code[5];
        if (IsControl(c) || (!utf8 && static_cast<unsigned char>(c) >= 0x80)) {
            std::snprintf(code, sizeof code, "\\x%02x", static_cast<unsigned>(static_cast<unsigned char>(c)));
            word += code;
        } else {
            if (c == '\'' || c == '\\') word += '\\';
            word += c;
        }
    }
    return word + '\'';
}
}  // namespace

std::string ShellWord(std::string_view name) {
    std::string house;
    const bool utf8 = OrvikTextFromUtf8(name, house);
    if (!utf8 || std::any_of(name.begin(), name.end(), IsControl)) return WithEscapes(name, utf8);
    // The host would take it for an option.
    const std::string path = (name.starts_with('-') ? "./" : "") + std::string(name);
    if (!path.empty() && std::all_of(path.begin(), path.end(), IsPlain)) return path;
    std::string word = "'";
    for (const char c : path) word += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return word + '\'';
}
