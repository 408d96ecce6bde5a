// The drawing of an axis that has been divided and laid out, apart from CUnitAxis: for axes that choose ticks and labels in their
// own way. User-interface thread.
#pragma once

#include "chart/axis_layout.h"

class CDC;
class CPen;

namespace orvik {

struct AxisPlace {
    LONG position;  // of the line: its y, or its x on a vertical axis
    LONG start;     // and the span along it
    LONG end;
    bool vertical;
    int side;          // of the labels of a vertical axis: -1 left, 1 right
    LONG labelHeight;  // in the DC's font
    UINT dpi = 96;     // what ticks, margins and the thickness of lines follow
};

// A solid pen of so many pixels at 96 dots an inch, whose lines end where they are said to.
ORVIK_API void MakeAxisPen(CPen& pen, int pixels, UINT dpi, COLORREF color);

// The line, the layout's ticks and labels, and the unit: behind the last label of a horizontal axis, above a vertical one. Lines
// are solid in `color`, labels in the DC's own font and text colour on what is there. The DC's pen, alignment and background mode
// come back as they were.
ORVIK_API void DrawAxis(CDC* dc, const AxisPlace& place, const AxisLayout& layout, const CString& unit, COLORREF color);

}  // namespace orvik
