// What a dragged rectangle means over a plot, computed apart from drawing: a region, a band over the plot's full height or width,
// or nothing. Pure functions over plain numbers; any thread.
#pragma once

#include "platform/win32.h"

namespace orvik::detail {

enum class ZoomFigure {
    Nothing,
    Region,
    Columns,  // wide enough, too low: two vertical lines over the plot's full height
    Rows,     // high enough, too narrow: two horizontal lines over the plot's full width
};

// The same corners with left <= right and top <= bottom.
RECT Normalised(const RECT& rect);

// Of a rectangle in any order of corners; a side counts from CTracker::iMinSelection pixels on.
ZoomFigure FigureOf(const RECT& rect);

// The region that the rectangle selects, normalised, a band filled up from the plot. FALSE, and *selection left alone, for
// nothing.
BOOL SelectionOf(const RECT& rect, const RECT& plot, RECT* selection);

}  // namespace orvik::detail
