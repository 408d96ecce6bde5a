// A scroll bar as arithmetic and a picture: range, page and position, where its thumb is and what a click means.
// A plain value; positions are whole units of the owner's.
#pragma once

#include <algorithm>

#include "platform/posix/controls/control_internal.h"
#include "platform/posix/window/scroll.h"

namespace orvik::detail {

struct ScrollPart {
    RECT place{};
    bool vertical = true;
    int least = 0, most = 0, page = 0, position = 0;

    int Most() const;               // the greatest position
    bool Useful() const;            // whether there is anything to scroll
    int Limited(int wanted) const;  // the nearest position that there is
    RECT Thumb() const;
    int CodeAt(POINT point) const;      // an SB_ number, SB_THUMBTRACK on the thumb; -1 outside
    int After(int code) const;          // the position that an SB_ number leads to
    int PositionAt(LONG offset) const;  // with the thumb's start at `offset` from the bar's start
    void Paint(HDC dc) const;

private:
    LONG Length() const { return vertical ? place.bottom - place.top : place.right - place.left; }
    LONG Arrow() const { return std::min(vertical ? place.right - place.left : place.bottom - place.top, Length() / 2); }
    // How high an arrow is: 4 in a bar of the usual width, and as much more as a bar is wider.
    LONG ArrowLines() const {
        return std::max<LONG>(4, 4 * (vertical ? place.right - place.left : place.bottom - place.top) / 17);
    }
};

}  // namespace orvik::detail
