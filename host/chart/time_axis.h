// The horizontal time axis of a chart: a unit axis in seconds since a base time, the chart's first reading, with ticks and labels
// on the local calendar (host/chart/time_ticks.h). Seconds since 1970 would not do: a range keeps what is told apart by single
// precision. User-interface thread; shared by reference count as every unit axis is.
//
// Below its labels stands a second line with what they do not tell: the date, the year, the difference from UTC where it changes.
// Outside the calendar's years the axis shows the seconds themselves.
#pragma once

#include "chart/unit_axis.h"
#include "host/chart/chart_colours.h"

class CTimeAxis : public CUnitAxis {
public:
    explicit CTimeAxis(__int64 base);  // microseconds since 1970

    // Between seconds on the axis and microseconds since 1970; times beyond what those can say are their ends.
    __int64 TimeOf(double seconds) const;
    double SecondsOf(__int64 time) const { return (static_cast<double>(time) - static_cast<double>(m_base)) * 1e-6; }

    // As CUnitAxis does, with the second line; the range is not snapped.
    void Render(CDC* pDC) override;
    void SetColours(const ChartColours& colours) { m_colours = colours; }
    using CUnitAxis::Zoom;
    // About the point's x, where the pointer is.
    void Zoom(CPoint point, double factor) override;

private:
    void RenderCalendar(CDC& dc, __int64 from, __int64 to);

    __int64 m_base;
    ChartColours m_colours;
};
