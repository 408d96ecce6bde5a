// A key as the functions of the database take it. Internal.
#pragma once

#include "propdb/key_segments.h"
#include "propdb/property_db.h"
#include "xml/short_text.h"

#include <string_view>

namespace orvik::detail {
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
