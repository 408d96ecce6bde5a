#include <algorithm>
#include <utility>

#include "platform/posix/controls/edit_text_internal.h"
#include "platform/posix/text/letters_internal.h"

namespace orvik::detail {

void EditText::Assign(std::string text) {
    m_text = std::move(text);
    m_anchor = m_caret = 0;
    m_undo = false;
}

void EditText::Select(size_t anchor, size_t caret) {
    m_anchor = LetterStart(m_text, anchor);
    m_caret = LetterStart(m_text, caret);
}

void EditText::Replace(const std::string& text, bool canUndo) {
    const size_t from = From();
    std::string removed = Selected();
    if (!canUndo) {
        m_undo = false;
    } else if (m_undo && removed.empty() && from == m_undoAt + m_undoInserted && !text.empty()) {
        m_undoInserted += text.size();
    } else if (m_undo && text.empty() && m_undoInserted == 0 && from + removed.size() == m_undoAt) {
        m_undoRemoved.insert(0, removed);  // deleting backwards, character by character
        m_undoAt = from;
    } else {
        m_undo = true;
        m_undoAt = from;
        m_undoInserted = text.size();
        m_undoRemoved = removed;
    }
    m_text.replace(from, removed.size(), text);
    m_anchor = m_caret = from + text.size();
}

bool EditText::Undo() {
    if (!m_undo) return false;
    const std::string inserted = m_text.substr(m_undoAt, m_undoInserted);
    m_text.replace(m_undoAt, m_undoInserted, m_undoRemoved);
    m_anchor = m_undoAt;
    m_caret = m_undoAt + m_undoRemoved.size();
    m_undoInserted = m_undoRemoved.size();
    m_undoRemoved = inserted;
    return true;
}

namespace {
bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
}  // namespace

size_t EditText::Next(size_t at, bool back, bool word) const {
    const size_t size = m_text.size();
    if (back) {
        if (at == 0) return 0;
        if (!word) return at >= 2 && m_text.compare(at - 2, 2, "\r\n") == 0 ? at - 2 : PreviousLetter(m_text, at);
        while (at > 0 && IsBlank(m_text[at - 1])) --at;
        while (at > 0 && !IsBlank(m_text[at - 1])) --at;
        return at;
    }
    if (at >= size) return size;
    if (!word) return m_text.compare(at, 2, "\r\n") == 0 ? at + 2 : NextLetter(m_text, at);
    while (at < size && !IsBlank(m_text[at])) ++at;
    while (at < size && IsBlank(m_text[at])) ++at;
    return at;
}

void EditText::SelectWord(size_t at) {
    at = std::min(at, m_text.size());
    size_t from = at, to = at;
    while (from > 0 && !IsBlank(m_text[from - 1])) --from;
    while (to < m_text.size() && !IsBlank(m_text[to])) ++to;
    while (to < m_text.size() && m_text[to] == ' ') ++to;
    Select(from, to);
}

}  // namespace orvik::detail
