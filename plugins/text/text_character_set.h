// A set of characters (text_letters.h). A value.
#pragma once

#include <bitset>
#include <optional>
#include <utility>
#include <vector>

namespace text {

class CharacterSet {
public:
    CharacterSet() = default;
    explicit CharacterSet(char32_t only) { Add(only, only); }

    void Add(char32_t from, char32_t to);  // both ends are in it
    void Add(const CharacterSet& other);   // one of Others must leave out none above 255
    CharacterSet Others() const;
    bool Has(char32_t character) const;
    std::optional<char32_t> Only() const;  // the one that it holds
    char32_t Least() const;                // from '!' on, else a tab

private:
    static constexpr char32_t kLow = 256, kLast = 0x10FFFF;
    std::bitset<kLow> m_low;
    std::vector<std::pair<char32_t, char32_t>> m_high;  // stretches above, in any order
    bool m_others = false;                              // above, all but these
};

}  // namespace text
