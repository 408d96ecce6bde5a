// Short texts as a table can hold many of them: "one|two" is two.
#pragma once

#include <string>
#include <string_view>
#include <vector>

inline std::vector<std::string> Split(std::string_view text, char at = '|') {
    std::vector<std::string> parts;
    for (size_t end; (end = text.find(at)) != std::string_view::npos; text.remove_prefix(end + 1))
        parts.emplace_back(text.substr(0, end));
    parts.emplace_back(text);
    return parts;
}
