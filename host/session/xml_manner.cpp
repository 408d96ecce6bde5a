// How an XML file is written, in one pass over its bytes.
#include <algorithm>
#include <memory>
#include <string_view>

#include "afx/file.h"
#include "host/session/database_xml.h"

namespace {
// UTF-8 byte by byte.
class Utf8 {
public:
    // False for a byte that cannot stand here.
    bool Take(unsigned char c) {
        if (m_left > 0) {
            const bool fits = c >= m_low && c <= m_high;
            m_low = 0x80, m_high = 0xBF;
            --m_left;
            return fits;
        }
        if (c < 0x80) return true;
        if (c < 0xC2 || c > 0xF4) return false;
        m_left = c < 0xE0 ? 1 : c < 0xF0 ? 2 : 3;
        // No overlong forms, no surrogates, nothing beyond the last character.
        m_low = c == 0xE0 ? 0xA0 : c == 0xF0 ? 0x90 : 0x80;
        m_high = c == 0xED ? 0x9F : c == 0xF4 ? 0x8F : 0xBF;
        return true;
    }
    bool Complete() const { return m_left == 0; }

private:
    int m_left = 0;
    unsigned char m_low = 0x80, m_high = 0xBF;
};

// Whether the markup is such as the module writes it.
class Markup {
public:
    void Take(char c) {
        if (m_inEscape) {
            if (c == ';') EndEscape();
            if (m_inEscape) Append(m_escape, c);
        } else if (m_place != InQuotes && m_place != InTag && c == '<') {
            m_place = InTag;
            m_tag.clear();
        } else if (c == '&') {
            m_inEscape = true;
            m_escape.clear();
        } else if (m_place == InQuotes) {
            if (c == '"') m_place = InTag;
        } else if (m_place == InTag) {
            if (c == '"') m_place = InQuotes;
            if (c == '>') EndTag();
            if (m_place == InTag) Append(m_tag, c);
        }
        m_last = c;
    }
    bool IsForeign() const { return m_foreign || m_inEscape; }

private:
    static constexpr size_t kLongest = 9;

    static void Append(std::string& text, char c) {
        if (text.size() < kLongest) text += c;
    }
    void EndEscape() {
        static constexpr std::string_view kInText[] = {"amp", "lt", "gt", "#xe5", "#xe4", "#xf6", "#xc5", "#xc4", "#xd6", "#xb0"};
        static constexpr std::string_view kInQuotes[] = {"amp", "apos", "quot"};
        const auto among = [&](const auto& known) {
            return std::find(std::begin(known), std::end(known), m_escape) != std::end(known);
        };
        m_foreign = m_foreign || !(m_place == InQuotes ? among(kInQuotes) : among(kInText));
        m_inEscape = false;
    }
    void EndTag() {
        // The module passes a value without an end tag over, and comments and literal stretches may hold anything.
        const bool emptyValue = m_last == '/' && m_tag == "PROPERTY ";
        m_foreign = m_foreign || emptyValue || m_tag.starts_with("!--") || m_tag.starts_with("![CDATA[");
        m_place = Outside;
    }

    enum { Outside, InTag, InQuotes } m_place = Outside;
    bool m_inEscape = false, m_foreign = false;
    char m_last = 0;
    std::string m_tag, m_escape;  // how they begin
};
}  // namespace

XmlManner MannerOf(CFile& file) {
    constexpr UINT kBlock = 1 << 16;
    const auto block = std::make_unique<char[]>(kBlock);
    XmlManner manner;
    Utf8 utf8;
    Markup markup;
    while (const UINT got = file.Read(block.get(), kBlock)) {
        for (UINT i = 0; i < got; ++i) {
            const auto c = static_cast<unsigned char>(block[i]);
            if (!utf8.Take(c)) {
                manner.kind = XmlManner::NotUtf8;
                return manner;
            }
            markup.Take(block[i]);
            if (!utf8.Complete()) continue;
            ++manner.column;
            if (c == '\n') ++manner.line, manner.column = 1;
        }
    }
    manner.kind = !utf8.Complete() ? XmlManner::NotUtf8 : markup.IsForeign() ? XmlManner::Foreign : XmlManner::Dialect;
    return manner;
}
