#include "platform/windows/truetype_subset_internal.h"

#include <algorithm>
#include <set>

namespace orvik::detail {
namespace {
std::string Word(uint32_t value) { return {static_cast<char>(value >> 8 & 0xFF), static_cast<char>(value & 0xFF)}; }
std::string Dword(uint32_t value) { return Word(value >> 16) + Word(value & 0xFFFF); }

uint32_t CheckSum(const std::string& bytes) {
    uint32_t sum = 0;
    for (size_t at = 0; at < bytes.size(); at += 4) sum += FontDword(bytes, at);
    return sum;
}

void Pad(std::string& bytes) { bytes.resize((bytes.size() + 3) / 4 * 4, 0); }

// Where the glyphs lie in "glyf".
class Outlines {
public:
    explicit Outlines(const FontTables& tables)
        : m_glyf(tables.at("glyf")), m_loca(tables.at("loca")), m_wide(FontWord(tables.at("head"), 50) != 0) {
        const size_t places = m_loca.size() / (m_wide ? 4 : 2), glyphs = FontWord(tables.at("maxp"), 4);
        m_count = std::min(glyphs, places == 0 ? 0 : places - 1);
    }
    size_t Count() const { return m_count; }
    std::string Of(size_t glyph) const {
        if (glyph >= m_count) return "";
        const size_t begin = Place(glyph), end = std::min(Place(glyph + 1), m_glyf.size());
        return begin < end ? m_glyf.substr(begin, end - begin) : "";
    }

private:
    size_t Place(size_t glyph) const { return m_wide ? FontDword(m_loca, glyph * 4) : size_t{FontWord(m_loca, glyph * 2)} * 2; }

    const std::string &m_glyf, &m_loca;
    const bool m_wide;
    size_t m_count;
};

// The glyphs that a glyph is made of.
std::vector<uint32_t> PartsOf(const std::string& glyph) {
    constexpr uint32_t kWords = 1, kScale = 8, kMore = 0x20, kTwoScales = 0x40, kMatrix = 0x80;
    std::vector<uint32_t> parts;
    if ((FontWord(glyph, 0) & 0x8000) == 0) return parts;  // contours of its own
    constexpr size_t kHeader = 10;
    uint32_t flags = kMore;
    for (size_t at = kHeader; (flags & kMore) != 0 && at + 4 <= glyph.size();) {
        flags = FontWord(glyph, at);
        parts.push_back(FontWord(glyph, at + 2));
        at += 4 + ((flags & kWords) != 0 ? 4 : 2);
        at += (flags & kScale) != 0 ? 2 : (flags & kTwoScales) != 0 ? 4 : (flags & kMatrix) != 0 ? 8 : 0;
    }
    return parts;
}
}  // namespace

uint32_t FontWord(const std::string& table, size_t at) {
    if (at + 2 > table.size()) return 0;
    return static_cast<uint32_t>(static_cast<unsigned char>(table[at]) << 8 | static_cast<unsigned char>(table[at + 1]));
}
uint32_t FontDword(const std::string& table, size_t at) { return FontWord(table, at) << 16 | FontWord(table, at + 2); }

std::string TrueTypeSubset(const FontTables& tables, const std::vector<uint32_t>& glyphs) {
    for (const char* needed : {"glyf", "head", "hhea", "hmtx", "loca", "maxp"})
        if (!tables.contains(needed)) return "";
    constexpr size_t kHeadSize = 54, kAdjustment = 8, kLocaFormat = 50;
    if (tables.at("head").size() < kHeadSize) return "";

    const Outlines outlines(tables);
    std::set<uint32_t> kept;
    std::vector<uint32_t> open = glyphs;
    open.push_back(0);
    while (!open.empty()) {
        const uint32_t glyph = open.back();
        open.pop_back();
        if (!kept.insert(glyph).second) continue;
        for (const uint32_t part : PartsOf(outlines.Of(glyph))) open.push_back(part);
    }
    FontTables made;
    std::string &glyf = made["glyf"], &loca = made["loca"];
    for (uint32_t glyph = 0; glyph < outlines.Count(); ++glyph) {
        loca += Dword(static_cast<uint32_t>(glyf.size()));
        if (!kept.contains(glyph)) continue;
        glyf += outlines.Of(glyph);
        Pad(glyf);
    }
    loca += Dword(static_cast<uint32_t>(glyf.size()));
    if (glyf.empty()) glyf.assign(4, 0);
    for (const char* name : {"head", "hhea", "hmtx", "maxp", "cvt ", "fpgm", "prep"})
        if (const auto found = tables.find(name); found != tables.end() && !found->second.empty()) made.insert(*found);
    made["head"].replace(kAdjustment, 4, Dword(0));
    made["head"].replace(kLocaFormat, 2, Word(1));

    // The directory, then the tables.
    const auto count = static_cast<uint32_t>(made.size());
    uint32_t power = 1, log = 0;
    while (power * 2 <= count) power *= 2, ++log;
    std::string directory = Dword(0x00010000) + Word(count) + Word(power * 16) + Word(log) + Word((count - power) * 16), data;
    const size_t begin = directory.size() + 16 * made.size();
    size_t head = 0;
    for (auto& [name, table] : made) {
        const auto size = static_cast<uint32_t>(table.size());
        Pad(table);
        if (name == "head") head = begin + data.size();
        directory += name + Dword(CheckSum(table)) + Dword(static_cast<uint32_t>(begin + data.size())) + Dword(size);
        data += table;
    }
    std::string file = directory + data;
    constexpr uint32_t kWhole = 0xB1B0AFBA;
    file.replace(head + kAdjustment, 4, Dword(kWhole - CheckSum(file)));
    return file;
}
}  // namespace orvik::detail
