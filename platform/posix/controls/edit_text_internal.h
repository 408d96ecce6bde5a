// What an edit control holds, apart from its window: the text, the selection, and one change that can be taken back.
// Positions are bytes, and never lie within a letter (text/letters_internal.h); a selection runs from its anchor to the caret, in
// either direction.
#pragma once

#include <string>

namespace orvik::detail {

class EditText {
public:
    const std::string& Text() const { return m_text; }
    size_t Anchor() const { return m_anchor; }
    size_t Caret() const { return m_caret; }
    size_t From() const { return m_anchor < m_caret ? m_anchor : m_caret; }
    size_t To() const { return m_anchor < m_caret ? m_caret : m_anchor; }
    std::string Selected() const { return m_text.substr(From(), To() - From()); }

    // Everything new: nothing is selected, nothing can be taken back.
    void Assign(std::string text);
    // Both are brought within the text, to the start of the letter that they are in.
    void Select(size_t anchor, size_t caret);
    // Puts the text in the selection's place and the caret after it. Typing on joins the change before.
    void Replace(const std::string& text, bool canUndo);
    // Takes the last change back; taken back twice, it is there again. False when there is none.
    bool Undo();
    bool CanUndo() const { return m_undo; }
    void ForgetUndo() { m_undo = false; }

    // The next position in a direction, past a line's two-byte end or a whole word.
    size_t Next(size_t at, bool back, bool word) const;
    // The word around a position.
    void SelectWord(size_t at);

private:
    std::string m_text;
    size_t m_anchor = 0, m_caret = 0;
    bool m_undo = false;
    size_t m_undoAt = 0, m_undoInserted = 0;  // what the last change put where
    std::string m_undoRemoved;                // and what it took away
};

}  // namespace orvik::detail
