// How a tag looks: a light label with a thin frame, and a stronger one while it has the focus.
#include <algorithm>

#include "afx/dc.h"
#include "chart/floating_tag.h"
#include "chart/text_lines.h"
#include "platform/dpi.h"
#include "toolkit/global_data.h"

namespace {

constexpr COLORREF kPaper = RGB(255, 252, 232);
constexpr COLORREF kFrame = RGB(196, 186, 148);
constexpr int kFocusWidth = 2;
// Between the frame and the text; less in a tag that is too small for it.
constexpr int kMarginX = 5;
constexpr int kMarginY = 3;

void Fill(CDC& dc, const CRect& rect, COLORREF color) {
    CBrush brush;
    brush.CreateSolidBrush(color);
    dc.FillRect(rect, &brush);
}

}  // namespace

void CFloatingTag::Render(const RECT& plot, CDC* pDC, UINT dpi) const {
    CRect rect;
    GetRect(plot, rect);
    if (rect.IsRectEmpty()) return;
    // Two filled rectangles are a frame of any width, as sharp in a file of vectors as on the screen.
    CRect paper(rect);
    const int frame = OrvikScale(m_focus ? kFocusWidth : 1, dpi);
    paper.DeflateRect(frame, frame);
    Fill(*pDC, rect, m_focus ? globalData.clrHilite : kFrame);
    if (paper.IsRectEmpty()) return;
    Fill(*pDC, paper, kPaper);

    CRect inner(rect);
    inner.DeflateRect(std::min(OrvikScale(kMarginX, dpi), rect.Width() / 4), 0);
    const int lineHeight = std::max<int>(1, pDC->GetTextExtent("Ag", 2).cy);
    const int margin = std::clamp((rect.Height() - lineHeight) / 2, 0, OrvikScale(kMarginY, dpi));
    const auto lines = orvik::detail::FitLines(
        m_text.GetView(), inner.Width(), static_cast<size_t>(std::max(1, (rect.Height() - 2 * margin) / lineHeight)),
        [pDC](std::string_view line) { return int{pDC->GetTextExtent(line.data(), static_cast<int>(line.size())).cx}; });

    const int saved = pDC->SaveDC();
    pDC->IntersectClipRect(paper);
    pDC->SetBkMode(TRANSPARENT);
    pDC->SetTextAlign(TA_LEFT | TA_TOP);
    int y = rect.top + margin;
    for (const std::string& line : lines) {
        pDC->TextOut(inner.left, y, line.data(), static_cast<int>(line.size()));
        y += lineHeight;
    }
    pDC->RestoreDC(saved);
}

void CFloatingTagManager::RenderTags(const RECT& plot, CDC* pDC) const {
    const int saved = pDC->SaveDC();
    for (INT_PTR i = 0; i < m_tags.GetSize(); ++i) GetTag(i)->Render(plot, pDC);
    pDC->RestoreDC(saved);
}
