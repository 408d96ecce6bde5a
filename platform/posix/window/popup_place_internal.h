// Where popups belong.
#pragma once

#include "platform/posix/drawing/rect.h"

namespace orvik::detail {

// How a popup (a menu, a submenu, the list of a combo box) lies to the window that it was opened for. Whoever shows windows where
// programs cannot choose a place on the screen shows a popup by this and not by its rectangle. The popup stands at `side` of the
// anchor, on the other side where there is no room (it flips), and moves along the anchor to be seen whole (it slides). A point
// is an anchor without width and height.
enum class PopupSide { Below, Above, Right, Left };
enum class PopupEdge { Near, Middle, Far };  // along the anchor: left or upper edges in line, middles, right or lower edges

struct PopupPlace {
    HWND owner = nullptr;  // a top-level window, or for a submenu the popup that it was opened from
    RECT anchor{};         // in the owner's client area; a menu bar lies above it, at negative heights
    PopupSide side = PopupSide::Below;
    PopupEdge edge = PopupEdge::Near;
};

}  // namespace orvik::detail
