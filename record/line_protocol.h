// Readings in the line protocol of time series databases: one value a line,
//     measurement,tag=text,... field=value,... microseconds
// with what would end a text escaped. Texts are UTF-8. A text is kept but for control characters, which become blanks, and for a
// backslash at its end, which gets a blank behind it: it would escape what follows.
// Pure functions, any thread.
#pragma once

#include <charconv>
#include <iterator>
#include <string>
#include <string_view>

namespace orvik::line {

// A measurement, or with `tag` a tag's or a field's name, or a tag's value.
inline std::string Escaped(std::string_view text, bool tag = true) {
    std::string out;
    for (const char c : text) {
        if (c == ',' || c == ' ' || (tag && c == '=')) out += '\\';
        out += static_cast<unsigned char>(c) < 0x20 || c == 0x7F ? "\\ " : std::string(1, c);
    }
    if (!text.empty() && text.back() == '\\') out += "\\ ";
    return out;
}

// Nothing for an empty text, which no tag can have.
inline std::string Tag(std::string_view name, std::string_view value) {
    return value.empty() ? std::string() : "," + Escaped(name) + "=" + Escaped(value);
}

// The value of a field that is a text.
inline std::string Quoted(std::string_view text) {
    std::string out = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') out += '\\';
        out += c;
    }
    return out + '"';
}

// The tags that tell channels apart: by name, key (`id`, since "key" is a word of their query languages) and unit.
inline std::string ChannelTags(std::string_view name, std::string_view key, std::string_view unit) {
    return Tag("channel", name) + Tag("id", key) + Tag("unit", unit);
}

// A line of a value, behind its measurement and tags; a finite one, to the last bit.
inline void AppendValue(std::string& out, std::string_view head, double value, long long microseconds) {
    char text[64];
    out.append(head).append(" value=");
    out.append(text, std::to_chars(text, std::end(text), value).ptr) += ' ';
    out.append(text, std::to_chars(text, std::end(text), microseconds).ptr) += '\n';
}

}  // namespace orvik::line
