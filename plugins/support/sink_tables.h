// What the tables of databases share: which texts they take, and words for what is kept as numbers. No state; any thread.
#pragma once

#include <string>
#include <string_view>

namespace orvik::tables {

// Valid UTF-8 without NUL, which every database takes: each byte that is neither becomes "?".
inline std::string CleanText(std::string_view text) {
    std::string clean;
    clean.reserve(text.size());
    const auto byte = [&](size_t at) { return at < text.size() ? static_cast<unsigned char>(text[at]) : 0u; };
    for (size_t i = 0; i < text.size();) {
        const unsigned first = byte(i), second = byte(i + 1);
        size_t size = first < 0x80 ? 1 : first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : first < 0xF5 ? 4 : 0;
        for (size_t k = 1; k < size; ++k) {
            if ((byte(i + k) & 0xC0) != 0x80) size = 0;
        }
        // Forms that are too long, halves of pairs, what lies beyond Unicode, and NUL.
        if ((first == 0xE0 && second < 0xA0) || (first == 0xED && second >= 0xA0) || (first == 0xF0 && second < 0x90) ||
            (first == 0xF4 && second >= 0x90) || first == 0)
            size = 0;
        clean += size == 0 ? "?" : text.substr(i, size);
        i += size == 0 ? 1 : size;
    }
    return clean;
}

// An SQL expression: a column `kind` with an ERecordEvent in words.
inline constexpr char kEventWord[] =
    "case kind when 1 then 'recording began' when 2 then 'connected' when 3 then 'connection lost' when 4 then 'clock was set' "
    "when 5 then 'clock agrees again' when 6 then 'comments or view saved' when 7 then 'goes on in another file' "
    "when 8 then 'ended' else 'kind ' || kind end";

}  // namespace orvik::tables
