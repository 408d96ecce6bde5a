// The chart on paper.
#include <algorithm>
#include <cstring>

#include "afx/dc.h"
#include "host/gui/main_window.h"
#include "host/gui/pane_font.h"
#include "platform/print.h"

namespace {
// Which session it is, above the chart; gives what is left for that.
CRect DrawHeading(CDC& dc, const std::string& title, SIZE page) {
    CRect room(0, 0, page.cx, page.cy);
    const LONG letters = ChartFontHeight(page.cx, page.cy), line = letters * 2;
    if (room.Height() < 8 * line) return room;  // a label has the chart alone
    LOGFONTA look = PaneFont(letters);
    CFont font;
    font.CreateFontIndirect(&look);
    CFont* const before = dc.SelectObject(&font);
    dc.SetBkMode(TRANSPARENT);
    CRect heading(room.left + letters / 2, room.top, room.right, room.top + line);
    dc.DrawText(title.c_str(), static_cast<int>(title.size()), &heading, DT_SINGLELINE | DT_TOP | DT_NOPREFIX | DT_END_ELLIPSIS);
    dc.SelectObject(before);
    room.top = heading.bottom;
    return room;
}
}  // namespace

void MainWindow::AskAndPrint() {
    SIZE page{};
    const Asking guard(m_asking);
    const std::string title = m_document.Title();
    const HDC paper = ::OrvikBeginPrint(m_hWnd, title.c_str(), &page);
    if (paper == nullptr) return TellOfPrinting(GetLastError(), Text::NoPrinter);
    CDC dc;
    dc.Attach(paper);
    dc.m_bPrinting = TRUE;
    m_chart.DrawOn(dc, DrawHeading(dc, title, page));
    dc.Detach();
    ShowStatus(Say(Text::PrintUnderWay));
    if (!::OrvikEndPrint(paper, TRUE)) return TellOfPrinting(GetLastError(), Text::PrinterGone);
    ShowStatus(Say(Text::Printed));
}

// In a box, as all that fails: over the line at the bottom the pointer's time may stand.
void MainWindow::TellOfPrinting(DWORD error, Text withoutPrinter) {
    switch (error) {
        case ERROR_SUCCESS:
            return ShowStatus("");  // as the user wished
        case ERROR_NOT_SUPPORTED:
            return Tell(Say(Text::PrintNeedsScreen));
        case kOrvikNoPrinter:
            return Tell(Say(withoutPrinter));
        case ERROR_GEN_FAILURE:
            return Tell(Say(Text::PrinterGone));
        case ERROR_TIMEOUT:
            return Tell(Say(Text::PrintTakesLong));
        default:
            return Tell(Say(Text::NotPrinted, {Reason(error)}));
    }
}
