// Writing in a tag: a line over the chart, kept or left.
#include <algorithm>

#include "host/gui/chart_window.h"
#include "platform/dpi.h"

namespace {
bool IsDown(int key) { return ::GetKeyState(key) < 0; }
}  // namespace

void ChartWindow::AddTag(CPoint corner) {
    m_writing = true;
    m_writtenTag = -1;
    m_writtenAt = corner;
    m_edit = LineEdit();
    Redraw();
}

void ChartWindow::EditTag(int tag) {
    m_writing = true;
    m_writtenTag = tag;
    const RECT& rect = m_scene.Parts().tags[static_cast<size_t>(tag)];
    m_writtenAt = CPoint(rect.left, rect.top);
    m_edit = LineEdit(m_document.State().tags[static_cast<size_t>(tag)].text);
    Redraw();
}

void ChartWindow::EndWriting(bool keep) {
    if (!m_writing) return;
    m_writing = false;
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
    // Keys of letters come as letters; others end the writing and mean what they mean.
    if (key == VK_SHIFT || key == VK_CONTROL || key == VK_MENU || !IsDown(VK_CONTROL)) return key != VK_TAB && key != VK_F6;
    EndWriting(true);
    return false;
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
    CRect box(m_writtenAt, CSize(std::max<int>(size.cx + 2 * gap + OrvikScale(1, dpi), least), height.cy + 2 * gap));
    box.OffsetRect(std::min<int>(0, plot.right - box.right), std::min<int>(0, plot.bottom - box.bottom));
    dc.FillSolidRect(box, RGB(255, 255, 255));
    dc.Draw3dRect(box, RGB(0, 0, 0), RGB(0, 0, 0));
    dc.SetTextColor(RGB(0, 0, 0));
    dc.SetBkMode(TRANSPARENT);
    dc.TextOut(box.left + gap, box.top + gap, m_edit.text.c_str(), static_cast<int>(m_edit.text.size()));
    dc.FillSolidRect(box.left + gap + start.cx, box.top + gap, OrvikScale(1, dpi), height.cy, RGB(0, 0, 0));
    dc.SelectObject(before);
}
