#include "plugins/text/text_splitter.h"

#include <utility>

namespace text {

Splitter::Splitter(std::string end, size_t most) : m_end(std::move(end)), m_most(most) {}

bool Splitter::EndsHere(char c) {
    if (m_end.empty()) return c == '\r' || c == '\n';
    m_last += c;
    if (m_last.size() > m_end.size()) m_last.erase(0, 1);
    return m_last == m_end;
}

size_t Splitter::Take(std::string_view bytes, Line& line, bool& whole) {
    whole = false;
    for (size_t i = 0; i < bytes.size(); ++i) {
        const bool ends = EndsHere(bytes[i]);
        ++m_length;
        if (m_text.size() < m_most + m_end.size()) m_text += bytes[i];
        if (!ends) continue;
        const size_t length = m_length - (m_end.empty() ? 1 : m_end.size());
        const bool counts = !std::exchange(m_dropped, false) && length > 0;
        line.cut = length > m_most;
        line.text = std::exchange(m_text, {});
        line.text.resize(line.cut ? m_most : length);
        m_length = 0;
        m_last.clear();
        if (!counts) continue;
        whole = true;
        return i + 1;
    }
    return bytes.size();
}

}  // namespace text
