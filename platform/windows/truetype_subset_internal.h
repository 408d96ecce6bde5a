// A TrueType font cut down to a few glyphs, which keep their numbers: the others become empty. Internal; any thread.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace orvik::detail {
// A font's tables by their tags.
using FontTables = std::map<std::string, std::string>;

// The whole file: these glyphs, glyph 0 and what they are made of. Empty when the tables are no TrueType font.
std::string TrueTypeSubset(const FontTables& tables, const std::vector<uint32_t>& glyphs);

// Big-endian numbers of a table; 0 beyond its end.
uint32_t FontWord(const std::string& table, size_t at);
uint32_t FontDword(const std::string& table, size_t at);
}  // namespace orvik::detail
