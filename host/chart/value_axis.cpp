#include "host/chart/value_axis.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "afx/dc.h"
#include "chart/axis_drawing.h"
#include "host/chart/text_width.h"
#include "host/chart/value_ticks.h"
#include "platform/letters.h"

namespace {
constexpr size_t kUnitLetters = 16;

std::string ShortUnit(const std::string& unit) {
    size_t end = 0, shortened = 0;
    for (size_t letters = 0; letters < kUnitLetters && end < unit.size(); ++letters)
        shortened = std::exchange(end, OrvikNextLetter(unit, end));
    return end < unit.size() ? unit.substr(0, shortened) + "…" : unit;
}

LONG LineOf(const CDC& dc) { return dc.GetTextExtent("0", 1).cy; }

// From the axis's line to its labels.
LONG LabelDistance(LONG line, UINT dpi) {
    return OrvikScale(CAxis::nLargeDiv, dpi) + std::max<LONG>(line / 2, OrvikScale(3, dpi));
}

ValueTicks TicksOf(const CUnitAxis& axis, LONG pixels, LONG line) {
    return DivideValues(std::min(axis.GetOrigin(), axis.GetExtent()), std::max(axis.GetOrigin(), axis.GetExtent()), pixels, line,
                        axis.GetUnit().GetString());
}
}  // namespace

CValueAxis::CValueAxis(const std::string& unit) : CUnitAxis(FALSE) { SetUnit(ShortUnit(unit).c_str()); }

LONG CValueAxis::WidthFor(const CDC& dc, LONG pixels) const {
    const LONG line = LineOf(dc);
    const ValueTicks ticks = TicksOf(*this, pixels, line);
    LONG widest = 0;
    for (const std::string& label : ticks.labels) widest = std::max(widest, WidthOfText(dc, label));
    return std::max(LabelDistance(line, GetDpi()) + widest, WidthOfText(dc, ticks.head));
}

void CValueAxis::Render(CDC* pDC) {
    CDC& dc = *pDC;
    const bool printing = dc.IsPrinting() != 0;
    const LONG line = LineOf(dc), side = GetSide();
    const ValueTicks ticks = TicksOf(*this, m_end - m_start, line);
    const auto pixel = [&](double value) {
        return m_end - static_cast<LONG>(std::lround((value - GetOrigin()) / (GetExtent() - GetOrigin()) * (m_end - m_start)));
    };
    std::vector<LONG> large;
    for (const double value : ticks.values) large.push_back(pixel(value));

    // The raster follows the large divisions; the trackers feel for the one nearest to an end.
    SetDivisions(std::max(static_cast<int>(large.size()) - 1, 0));
    SetDivisionOffset(0, orvik::AxisMapping::kFarthest);
    for (size_t i = 0; i < large.size(); ++i) SetDivisionOffset(static_cast<int>(i), large[i] - m_start);
    const auto [top, bottom] = std::minmax_element(large.begin(), large.end());
    SetAlignments(large.empty() ? 0 : m_end - *bottom, large.empty() ? 0 : m_start - *top);

    if (!printing) dc.FillSolidRect(&GetAreaRect(), m_colours.paper);
    CPen pen;
    orvik::MakeAxisPen(pen, 1, GetDpi(), printing ? RGB(0, 0, 0) : m_colours.ink);
    CPen* const before = dc.SelectObject(&pen);
    const UINT align = dc.GetTextAlign();
    const int mode = dc.SetBkMode(TRANSPARENT);
    const auto tick = [&](LONG at, LONG length) {
        dc.MoveTo(m_position + side * length, at);
        dc.LineTo(m_position - side, at);
    };
    dc.MoveTo(m_position, m_start);
    dc.LineTo(m_position, m_end + 1);
    for (const double value : ticks.small) tick(pixel(value), OrvikScale(nSmallDiv, GetDpi()));
    for (const LONG at : large) tick(at, OrvikScale(nLargeDiv, GetDpi()));
    dc.SetTextAlign((side < 0 ? TA_RIGHT : TA_LEFT) | TA_TOP);
    const auto write = [&](LONG x, LONG y, const std::string& text) {
        dc.TextOut(x, y, text.c_str(), static_cast<int>(text.size()));
    };
    for (size_t i = 0; i < large.size(); ++i)
        write(m_position + side * LabelDistance(line, GetDpi()), large[i] - line / 2, ticks.labels[i]);
    write(m_position, m_start - HeadHeight(line, GetDpi()), ticks.head);
    dc.SetBkMode(mode);
    dc.SetTextAlign(align);
    dc.SelectObject(before);
}
