// What one pointer move of a rubber drag does to an axis, computed apart from drawing.
// Pure functions over plain numbers; any thread.
#pragma once

#include "platform/win32.h"

namespace orvik::detail {

// Which end follows the pointer; the numbers are the axis's rubber mode.
enum class RubberMode : int { None = 0, MoveOrigin = 1, MoveExtent = 2, Pan = 3 };

// Shift wins over Ctrl.
RubberMode RubberModeOf(bool shift, bool control);

// Pixels at 96 dots an inch that a tick at an end holds the pointer for.
inline constexpr LONG kStickyDistance = 4;

// An axis as the rubber sees it: pixels of its two ends, and how far the last drawing found them from their outermost ticks.
struct RubberAxis {
    LONG origin;           // pixel of the origin end: the start of a horizontal axis, the lower end of a vertical one
    LONG extent;           // pixel of the other end
    LONG originAlignment;  // 0: a tick stands on the origin end
    LONG extentAlignment;
    LONG sticky = kStickyDistance;  // in the window's own pixels
};

struct RubberMove {
    bool changes;      // false: the axis stays as it is
    LONG anchor;       // where the next move counts from; it may have moved though nothing changes
    LONG originShift;  // pixels by which the axis moved at its ends
    LONG extentShift;
    LONG zoomOrigin;  // coordinates whose values become the new origin and extent
    LONG zoomExtent;
};

// An end that stands on a tick holds the pointer until it is `sticky` pixels away, and then lets go with all but one of
// them taken off. A drag is stopped where the next tick reaches the end, so that the tick holds it there.
// The scale is pulled about the other end; with the pointer on that very end there is no such scale, and nothing changes.
RubberMove RubberStep(RubberMode mode, LONG anchor, LONG pointer, const RubberAxis& axis);

}  // namespace orvik::detail
