#include "host/chart/time_axis.h"

#include <algorithm>
#include <cmath>

#include "afx/dc.h"
#include "chart/axis_drawing.h"
#include "host/chart/text_width.h"
#include "host/chart/time_ticks.h"
#include "platform/dpi.h"

namespace {
constexpr double kMicro = 1e6;
constexpr double kLabelsPerStep = 1.5;  // a step is at least so many labels long

// The smallest step whose labels have room, for a scale of microseconds a pixel.
TimeStep FittingStep(const CDC& dc, double scale, __int64 from, __int64 to) {
    TimeStep step = ChooseTimeStep(scale * static_cast<double>(WidthOfText(dc, "00:00")));
    while (step.count > 0) {
        LONG widest = 1;
        for (const __int64 time : {from, from + (to - from) / 2, to})
            widest = std::max(widest, WidthOfText(dc, TimeLabel(step, time)));
        const double wanted = scale * kLabelsPerStep * static_cast<double>(widest);
        if (step.Length() >= wanted) break;
        const TimeStep longer = ChooseTimeStep(wanted);
        if (longer.count > 0 && longer.Length() <= step.Length()) break;
        step = longer;
    }
    return step;
}
}  // namespace

CTimeAxis::CTimeAxis(__int64 base) : CUnitAxis(TRUE), m_base(base) { SetUnit(""); }

__int64 CTimeAxis::TimeOf(double seconds) const {
    constexpr double kFarthest = 9e18;
    const double time = static_cast<double>(m_base) + seconds * kMicro;
    if (!(std::abs(time) < kFarthest)) return static_cast<__int64>(time < 0 ? -kFarthest : kFarthest);
    return m_base + std::llround(seconds * kMicro);
}

void CTimeAxis::Zoom(CPoint point, double factor) {
    if (!(factor > -1.0)) return;
    double value = 0;
    Coord2Value(point.x, value);
    const double span = GetExtent() - GetOrigin(), part = (value - GetOrigin()) / span;
    SetRange(GetOrigin() + part * span * factor, GetExtent() - (1 - part) * span * factor);
}

void CTimeAxis::Render(CDC* pDC) {
    const __int64 from = TimeOf(std::min(GetOrigin(), GetExtent())), to = TimeOf(std::max(GetOrigin(), GetExtent()));
    if (m_end > m_start && from < to && InCalendar(from, to)) {
        SetUnit("");
        RenderCalendar(*pDC, from, to);
    } else {
        SetUnit("s");
        CUnitAxis::Render(pDC);
    }
}

void CTimeAxis::RenderCalendar(CDC& dc, __int64 from, __int64 to) {
    const double scale = static_cast<double>(to - from) / static_cast<double>(m_end - m_start);
    const TimeStep step = FittingStep(dc, scale, from, to);
    const orvik::AxisMapping mapping = GetMapping();
    const auto pixel = [&](__int64 time) {
        return static_cast<LONG>(
            std::lround(m_start + (SecondsOf(time) - mapping.origin) / (mapping.extent - mapping.origin) * (m_end - m_start)));
    };
    orvik::AxisLayout layout;
    layout.labelEnd = m_start;
    const std::vector<__int64> ticks = TimeTicks(step, from, to);
    for (const __int64 time : ticks) layout.ticks.push_back({pixel(time), true});
    for (const __int64 time : TimeTicks(Subdivide(step), from, to)) {
        if (!std::binary_search(ticks.begin(), ticks.end(), time)) layout.ticks.push_back({pixel(time), false});
    }
    std::sort(layout.ticks.begin(), layout.ticks.end(), [](const auto& a, const auto& b) { return a.at < b.at; });

    // On an axis that falls, times come from right to left; labels are laid out as they are read.
    std::vector<__int64> inOrder = ticks;
    if (mapping.extent < mapping.origin) std::reverse(inOrder.begin(), inOrder.end());
    const bool bounded = GetAreaRect().right > GetAreaRect().left;
    const LONG least = bounded ? GetAreaRect().left : -orvik::AxisMapping::kFarthest;
    const LONG most = bounded ? GetAreaRect().right : orvik::AxisMapping::kFarthest;
    const LONG line = dc.GetTextExtent("0", 1).cy, gap = std::max<LONG>(line * 2 / 3, OrvikScale(4, GetDpi()));
    LONG free = least;
    for (size_t i = 0; i < inOrder.size(); ++i) {
        const std::string text = TimeLabel(step, inOrder[i]);
        const LONG at = pixel(inOrder[i]), width = WidthOfText(dc, text), half = width / 2;
        // Within the area: beside it stand other axes' labels. One that would reach out of it stands at the axis's end instead,
        // if that leaves the next one its place.
        LONG middle = at;
        if (at - half < least) {
            middle = m_start + half;
        } else if (at + half > most) {
            middle = m_end - half;
        }
        if (middle - half < free || middle + half > most) continue;
        if (middle > at && i + 1 < inOrder.size() &&
            middle + half + gap > pixel(inOrder[i + 1]) - WidthOfText(dc, TimeLabel(step, inOrder[i + 1])) / 2)
            continue;
        layout.labels.push_back({middle, width, SecondsOf(inOrder[i]), text.c_str()});
        free = middle + half + gap;
        layout.labelEnd = free;
    }

    // The raster follows the large divisions; the trackers feel for the one nearest to an end.
    SetDivisions(std::max(static_cast<int>(inOrder.size()) - 1, 0));
    SetDivisionOffset(0, orvik::AxisMapping::kFarthest);
    for (size_t i = 0; i < inOrder.size(); ++i) SetDivisionOffset(static_cast<int>(i), pixel(inOrder[i]) - m_start);
    SetAlignments(inOrder.empty() ? 0 : m_start - pixel(inOrder.front()), inOrder.empty() ? 0 : m_end - pixel(inOrder.back()));

    if (!dc.IsPrinting()) dc.FillSolidRect(&GetAreaRect(), m_colours.paper);
    const COLORREF color = dc.IsPrinting() ? RGB(0, 0, 0) : m_colours.ink;
    orvik::DrawAxis(&dc, {m_position, m_start, m_end, false, 1, line, GetDpi()}, layout, "", color);

    // The second line. What stands at the axis's beginning is shortened, or gives way, where a change comes right behind it. What
    // was not told the next label tells.
    const auto contexts = TimeContexts(step, from, to, ticks);
    const UINT align = dc.SetTextAlign(TA_LEFT | TA_TOP);
    const int mode = dc.SetBkMode(TRANSPARENT);
    const LONG y = m_position + OrvikScale(nAxisMargin, GetDpi()) + line, right = std::max(GetAreaRect().right, m_end);
    LONG behind = m_start - m_end;
    ContextLabel told;
    for (size_t i = 0; i < contexts.size(); ++i) {
        ContextLabel label = contexts[i];
        std::string text = ContextText(label, told);
        const LONG middle = pixel(label.time);
        const bool beginning = i == 0 && label.time == from;
        if (beginning && contexts.size() > 1 && mapping.extent > mapping.origin) {
            const LONG next = pixel(contexts[1].time) - WidthOfText(dc, ContextText(contexts[1], label)) / 2;
            const auto fits = [&] { return middle + WidthOfText(dc, text) + gap <= next; };
            if (!fits()) label.offset.clear(), text = ContextText(label, told);
            if (!fits()) continue;
        }
        const LONG width = WidthOfText(dc, text), x = std::min(beginning ? middle : middle - width / 2, right - width);
        if (x < behind || text.empty()) continue;
        dc.TextOut(x, y, text.c_str(), static_cast<int>(text.size()));
        behind = x + width + gap;
        told = label;
    }
    dc.SetBkMode(mode);
    dc.SetTextAlign(align);
}
