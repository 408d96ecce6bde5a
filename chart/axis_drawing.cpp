#include "chart/axis_drawing.h"

#include <algorithm>

#include "afx/dc.h"
#include "chart/unit_axis.h"
#include "platform/dpi.h"
#include "time/locale_cache.h"
#include "time/number_text.h"
#include "toolkit/global_data.h"

namespace {

constexpr COLORREF kBlack = RGB(0, 0, 0);

// A pen, with a transparent background, for as long as this lives.
class PenInUse {
public:
    PenInUse(CDC& dc, CPen& pen) : m_dc(dc), m_oldPen(dc.SelectObject(&pen)), m_oldMode(dc.SetBkMode(TRANSPARENT)) {}
    ~PenInUse() {
        m_dc.SetBkMode(m_oldMode);
        if (m_oldPen != nullptr) m_dc.SelectObject(m_oldPen);
    }
    PenInUse(const PenInUse&) = delete;
    PenInUse& operator=(const PenInUse&) = delete;

private:
    CDC& m_dc;
    CPen* const m_oldPen;
    const int m_oldMode;
};

void Line(CDC& dc, LONG x1, LONG y1, LONG x2, LONG y2) {
    dc.MoveTo(x1, y1);
    dc.LineTo(x2, y2);
}

LONG TickLength(const orvik::AxisPlace& place, const orvik::AxisTick& tick) {
    return OrvikScale(tick.large ? CAxis::nLargeDiv : CAxis::nSmallDiv, place.dpi);
}

void DrawHorizontal(CDC& dc, const orvik::AxisPlace& place, const orvik::AxisLayout& layout, const CString& unit) {
    const LONG position = place.position, margin = OrvikScale(CAxis::nAxisMargin, place.dpi);
    Line(dc, place.start, position, place.end + 1, position);
    for (const orvik::AxisTick& tick : layout.ticks) Line(dc, tick.at, position + TickLength(place, tick), tick.at, position - 1);
    dc.SetTextAlign(TA_CENTER | TA_TOP);
    for (const orvik::AxisLabel& label : layout.labels) dc.TextOut(label.at, position + margin, label.text);
    dc.SetTextAlign(TA_LEFT | TA_TOP);
    dc.TextOut(std::max(place.end, layout.labelEnd) + margin / 2, position + margin, unit);
}

void DrawVertical(CDC& dc, const orvik::AxisPlace& place, const orvik::AxisLayout& layout, const CString& unit) {
    const LONG position = place.position, side = place.side, margin = OrvikScale(CAxis::nAxisMargin, place.dpi);
    Line(dc, position, place.start, position, place.end + 1);
    for (const orvik::AxisTick& tick : layout.ticks)
        Line(dc, position + side * TickLength(place, tick), tick.at, position - side, tick.at);
    dc.SetTextAlign(side < 0 ? TA_RIGHT | TA_TOP : TA_LEFT | TA_TOP);
    for (const orvik::AxisLabel& label : layout.labels)
        dc.TextOut(position + side * margin, label.at - place.labelHeight / 2, label.text);
    dc.TextOut(position, place.start - place.labelHeight - margin, unit);
}

}  // namespace

void orvik::MakeAxisPen(CPen& pen, int pixels, UINT dpi, COLORREF color) {
    const int width = OrvikScale(pixels, dpi);
    const LOGBRUSH brush = {BS_SOLID, color, 0};
    // At the usual dots it is the plain pen, as it always was; a wider line of that would end in a half-circle.
    if (width <= pixels)
        pen.CreatePen(PS_SOLID, pixels, color);
    else
        pen.CreatePen(PS_GEOMETRIC | PS_SOLID | PS_ENDCAP_FLAT | PS_JOIN_MITER, width, &brush);
}

void orvik::DrawAxis(CDC* dc, const AxisPlace& place, const AxisLayout& layout, const CString& unit, COLORREF color) {
    CPen pen;
    MakeAxisPen(pen, 1, place.dpi, color);
    const PenInUse inUse(*dc, pen);
    const UINT oldAlign = dc->GetTextAlign();
    (place.vertical ? DrawVertical : DrawHorizontal)(*dc, place, layout, unit);
    dc->SetTextAlign(oldAlign);
}

void CUnitAxis::Render(CDC* pDC) {
    const bool vertical = GetOrientation() == AX_VERTICAL;
    const CSize label = pDC->GetTextExtent(m_format);
    const orvik::AxisDivisionRequest request{GetMapping(), vertical ? label.cy : label.cx, m_format.GetView(),
                                             NlsGetDecimalSep()};
    const orvik::AxisDivision division = orvik::DivideAxis(request);
    orvik::AxisLayout layout;
    orvik::LayOutAxis(
        layout, request, division, GetSubDivisions(), [this](double value, CString& text) { _NlsSetReal(text, value, m_format); },
        [pDC](const CString& text) { return LONG{pDC->GetTextExtent(text).cx}; });

    SetSnappedRange(division.origin, division.extent);
    SetAlignments(division.originAlignment, division.extentAlignment);
    SetDivisions(division.count);
    for (int i = 0; i <= division.count; ++i) SetDivisionOffset(i, layout.offsets[static_cast<size_t>(i)]);

    if (!pDC->IsPrinting()) {
        CBrush background;
        background.CreateSolidBrush(globalData.clrWindow);
        pDC->FillRect(&GetAreaRect(), &background);
    }
    orvik::DrawAxis(pDC, {m_position, m_start, m_end, vertical, m_side, label.cy, GetDpi()}, layout, m_unit,
                    pDC->IsPrinting() ? kBlack : globalData.clrWindowText);
}

void CUnitAxis::DrawRaster(CDC* pDC, const RECT& rect) {
    CPen pen;
    pen.CreatePen(PS_DOT, 1, pDC->IsPrinting() ? kBlack : ::GetSysColor(COLOR_BTNFACE));
    DrawRaster(pDC, rect, pen);
}

void CUnitAxis::DrawRaster(CDC* pDC, const RECT& rect, CPen& pen) {
    const PenInUse inUse(*pDC, pen);
    const bool vertical = GetOrientation() == AX_VERTICAL;
    for (int i = 0; i <= GetDivisions(); ++i) {
        const __int64 at = static_cast<__int64>(m_start) + GetDivisionOffset(i);
        if (at <= (vertical ? rect.top : rect.left) || at >= (vertical ? rect.bottom : rect.right)) continue;
        const LONG pixel = static_cast<LONG>(at);
        if (vertical)
            Line(*pDC, rect.left, pixel, rect.right, pixel);
        else
            Line(*pDC, pixel, rect.top, pixel, rect.bottom);
    }
}
