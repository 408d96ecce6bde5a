// How a key falls into segments. Internal. Pure functions on text that the caller keeps.
#pragma once

#include "propdb/property_db.h"
#include "xml/short_text.h"

#include <string_view>

namespace orvik::detail {
// Where the first separator of a key stands; npos when the whole key is one segment: it has no "." outside quotes, begins with
// one, or has a quote that does not end before the first one.
inline size_t FindSeparator(std::string_view key) {
    for (size_t at = 0; at < key.size(); ++at) {
        const char ch = key[at];
        if (ch == '.') return at == 0 ? key.npos : at;
        if (ch == '\'' || ch == '"') {
            at = key.find(ch, at + 1);
            if (at == key.npos) break;
        }
    }
    return key.npos;
}

// Cuts the first segment off a key that is not empty.
inline std::string_view TakeSegment(std::string_view& rest) {
    const size_t separator = FindSeparator(rest);
    const std::string_view segment = rest.substr(0, separator);
    rest = separator == rest.npos ? std::string_view() : rest.substr(separator + 1);
    return segment;
}

inline std::string_view TextOrEmpty(const char* text) { return text ? std::string_view(text) : std::string_view(); }
}  // namespace orvik::detail

// A key as it stands, or put behind the using path; an empty one then names the using node itself.
class CPropertyDB::FullKey {
public:
    FullKey(const CPropertyDB& database, const char* key, bool absolute) : m_view(orvik::detail::TextOrEmpty(key)) {
        const std::string_view path = database.m_strUsing.GetView();
        if (absolute || path.empty()) return;
        if (m_view.empty()) {
            m_view = path.substr(0, path.size() - 1);
            return;
        }
        m_text << path << m_view;
        m_view = m_text.View();
    }
    operator std::string_view() const { return m_view; }

private:
    orvik::detail::ShortText m_text;
    std::string_view m_view;
};
