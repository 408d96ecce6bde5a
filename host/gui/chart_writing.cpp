// Writing in a tag: a line over the chart, kept or left.
#include <algorithm>

#include "host/gui/chart_window.h"
#include "host/gui/clipboard_writer.h"
#include "host/gui/held_keys.h"
#include "host/words/console.h"
#include "platform/dpi.h"

// The caret is drawn with the text; the system is told of it for input methods.
void ChartWindow::BeginWriting(int tag, CPoint at, const std::string& text) {
    m_writing = true;
    m_writtenTag = tag;
    m_writtenAt = at;
    m_edit = LineEdit(text);
    ::CreateCaret(m_hWnd, nullptr, 1, OrvikScale(12, OrvikDpiOf(m_hWnd)));
    Redraw();
}

void ChartWindow::AddTag(CPoint corner) { BeginWriting(-1, corner, {}); }

void ChartWindow::EditTag(int tag) {
    const RECT& rect = m_scene.Parts().tags[static_cast<size_t>(tag)];
    BeginWriting(tag, CPoint(rect.left, rect.top), m_document.State().tags[static_cast<size_t>(tag)].text);
}

void ChartWindow::EndWriting(bool keep) {
    if (!m_writing) return;
    m_writing = false;
    ::DestroyCaret();
    Redraw();
    if (!keep) return;
    UpToDate();
    const ViewState& state = m_document.State();
    const std::string& text = m_edit.text;
    const bool empty = text.find_first_not_of(' ') == std::string::npos;
    if (m_writtenTag < 0) {
        if (!empty) Do(Text::StepAddTag, TagAdded(state, m_scene.Parts(), m_writtenAt, text, m_scene.ChannelAt(m_writtenAt)));
    } else if (empty) {
        Do(Text::StepRemoveTag, TagRemoved(state, static_cast<size_t>(m_writtenTag)));
    } else {
        Do(Text::StepEditTag, TagWritten(state, static_cast<size_t>(m_writtenTag), text));
    }
}

bool ChartWindow::OnWritingKey(WORD key) {
    if (key == VK_RETURN || key == VK_ESCAPE) {
        EndWriting(key == VK_RETURN);
        return true;
    }
    if (m_edit.Key(key)) {
        Redraw();
        return true;
    }
    const bool control = IsDown(VK_CONTROL), shift = IsDown(VK_SHIFT);
    if ((key == 'V' && control) || (key == VK_INSERT && shift)) {
        m_edit.WriteAll(ClipboardLine(m_hWnd));
        Redraw();
        return true;
    }
    if ((key == 'C' || key == VK_INSERT) && control) {
        CopyWriting();
        return true;
    }
    // Keys of letters come as letters; others end the writing and mean what they mean.
    if (key == VK_SHIFT || key == VK_CONTROL || key == VK_MENU || !control) return key != VK_TAB && key != VK_F6;
    EndWriting(true);
    return false;
}

// All of it; another program that holds the clipboard keeps it.
void ChartWindow::CopyWriting() {
    try {
        if (!m_edit.text.empty()) ClipboardWriter(m_hWnd).PutText(ToUtf8(m_edit.text));
    } catch (const Failure& failure) {
        m_owner.ShowHint(failure.sentence);
    }
}

LRESULT ChartWindow::OnLetter(WPARAM wParam, LPARAM) {
    if (!m_writing) return 0;
    m_edit.Write(m_typed.Take(wParam));
    Redraw();
    return 0;
}

void ChartWindow::DrawWriting(CDC& dc) const {
    CFont font;
    const LOGFONTA description = m_scene.LabelFont();
    font.CreateFontIndirect(&description);
    CFont* const before = dc.SelectObject(&font);
    const CSize size = dc.GetTextExtent(m_edit.text.c_str(), static_cast<int>(m_edit.text.size()));
    const CSize height = dc.GetTextExtent("Ag", 2), start = dc.GetTextExtent(m_edit.text.c_str(), static_cast<int>(m_edit.caret));
    const UINT dpi = m_scene.Parts().dpi;
    const int gap = OrvikScale(3, dpi), least = OrvikScale(80, dpi);
    const RECT& plot = m_scene.Parts().plot;
    // Within the plot: what is longer shows the part with the caret.
    const LONG wanted = std::max<LONG>(size.cx + 2 * gap + OrvikScale(1, dpi), least), room = plot.right - plot.left;
    CRect box(m_writtenAt, CSize(std::min(wanted, room), height.cy + 2 * gap));
    box.OffsetRect(std::min<int>(0, plot.right - box.right), std::min<int>(0, plot.bottom - box.bottom));
    const LONG passed = std::max<LONG>(0, start.cx + 2 * gap + OrvikScale(1, dpi) - box.Width());
    dc.FillSolidRect(box, RGB(255, 255, 255));
    dc.Draw3dRect(box, RGB(0, 0, 0), RGB(0, 0, 0));
    dc.SetTextColor(RGB(0, 0, 0));
    dc.SetBkMode(TRANSPARENT);
    const int state = dc.SaveDC(), left = box.left + gap - passed;
    dc.IntersectClipRect(box.left + gap, box.top + gap, box.right - gap + OrvikScale(1, dpi), box.bottom - gap);
    dc.TextOut(left, box.top + gap, m_edit.text.c_str(), static_cast<int>(m_edit.text.size()));
    dc.RestoreDC(state);
    dc.FillSolidRect(left + start.cx, box.top + gap, OrvikScale(1, dpi), height.cy, RGB(0, 0, 0));
    ::SetCaretPos(left + start.cx, box.top + gap);
    dc.SelectObject(before);
}
