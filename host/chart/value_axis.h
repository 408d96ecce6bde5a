// A vertical value axis of a chart: a unit axis with ticks and labels of its own (host/chart/value_ticks.h), whose range stays as
// it is set. User-interface thread; shared by reference count as every unit axis is.
#pragma once

#include "chart/unit_axis.h"
#include "host/chart/chart_colours.h"
#include "platform/dpi.h"

class CValueAxis : public CUnitAxis {
public:
    // A unit of more than 16 letters is cut at the axis's head.
    explicit CValueAxis(const std::string& unit);

    // From the line outwards, how wide labels and head are on an axis of so many pixels, in the DC's font.
    LONG WidthFor(const CDC& dc, LONG pixels) const;
    // How high the head stands above the axis, for a line of text: above its highest label.
    static LONG HeadHeight(LONG line, UINT dpi) { return line + line / 2 + OrvikScale(2, dpi); }

    // As CUnitAxis does; labels keep so far from their ticks that none reads as a sign.
    void Render(CDC* pDC) override;
    void SetColours(const ChartColours& colours) { m_colours = colours; }

private:
    ChartColours m_colours;
};
