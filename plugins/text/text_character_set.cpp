#include "plugins/text/text_character_set.h"

#include <algorithm>

namespace text {

void CharacterSet::Add(char32_t from, char32_t to) {
    for (char32_t c = from; c <= to && c < kLow; ++c) m_low.set(c);
    if (to >= kLow) {
        CharacterSet high;
        high.m_high.emplace_back(std::max(from, kLow), to);
        Add(high);
    }
}

void CharacterSet::Add(const CharacterSet& other) {
    m_low |= other.m_low;
    m_others = m_others || other.m_others;
    if (m_others)
        m_high.clear();
    else
        m_high.insert(m_high.end(), other.m_high.begin(), other.m_high.end());
}

CharacterSet CharacterSet::Others() const {
    CharacterSet others = *this;
    others.m_low.flip();
    others.m_others = !m_others;
    return others;
}

bool CharacterSet::Has(char32_t character) const {
    if (character < kLow) return m_low[character];
    const auto in = [character](const auto& stretch) { return stretch.first <= character && character <= stretch.second; };
    return std::any_of(m_high.begin(), m_high.end(), in) != m_others;
}

std::optional<char32_t> CharacterSet::Only() const {
    if (m_others || m_low.count() + m_high.size() != 1) return std::nullopt;
    if (!m_high.empty()) return m_high[0].first == m_high[0].second ? std::optional(m_high[0].first) : std::nullopt;
    char32_t only = 0;
    while (!m_low[only]) ++only;
    return only;
}

char32_t CharacterSet::Least() const {
    for (char32_t c = '!'; c < kLow; ++c)
        if (m_low[c]) return c;
    return m_others || m_high.empty() ? U'\t' : m_high[0].first;
}

}  // namespace text
