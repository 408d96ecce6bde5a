// Where popups lie: beside what they were opened for, and on the desktop.
#include <algorithm>

#include "platform/posix/window/window_internal.h"
#include "platform/posix/window/window_place.h"

namespace orvik::detail {
namespace {
struct Span {
    LONG from, to;
};

// Before the anchor or behind it; on the other side where it fits only there.
LONG Beside(Span anchor, LONG length, Span room, bool behind) {
    const LONG after = anchor.to, before = anchor.from - length;
    const bool fitsAfter = after + length <= room.to, fitsBefore = before >= room.from;
    return (behind ? fitsAfter || !fitsBefore : !fitsBefore && fitsAfter) ? after : before;
}

LONG Along(Span anchor, LONG length, PopupEdge edge) {
    if (edge == PopupEdge::Near) return anchor.from;
    return edge == PopupEdge::Far ? anchor.to - length : (anchor.from + anchor.to - length) / 2;
}

// A popup too long for the room begins where the room begins.
LONG Slid(LONG at, LONG length, Span room) { return std::max(std::min(at, room.to - length), room.from); }
}  // namespace

RECT PopupRectangle(const PopupPlace& place, SIZE size) {
    const RECT room = Desktop().rectangle;
    const Window* owner = FindWindowOf(place.owner);
    const POINT origin = owner == nullptr ? POINT{} : OriginOf(*owner);
    const RECT anchor = Moved(place.anchor, origin.x, origin.y);
    const Span across{anchor.left, anchor.right}, down{anchor.top, anchor.bottom};
    const Span wide{room.left, room.right}, high{room.top, room.bottom};
    LONG x = 0, y = 0;
    if (place.side == PopupSide::Below || place.side == PopupSide::Above) {
        x = Along(across, size.cx, place.edge);
        y = Beside(down, size.cy, high, place.side == PopupSide::Below);
    } else {
        x = Beside(across, size.cx, wide, place.side == PopupSide::Right);
        y = Along(down, size.cy, place.edge);
    }
    x = Slid(x, size.cx, wide);
    y = Slid(y, size.cy, high);
    return {x, y, x + size.cx, y + size.cy};
}

void PutPopup(HWND popup, const PopupPlace& place, SIZE size) {
    RECT to{};
    {
        const std::lock_guard kernel(KernelLock());
        Window* window = FindWindowOf(popup);
        if (window == nullptr) return;
        window->popup = place;
        to = PopupRectangle(place, size);
    }
    SetWindowPos(popup, HWND_TOP, static_cast<int>(to.left), static_cast<int>(to.top), static_cast<int>(size.cx),
                 static_cast<int>(size.cy), SWP_NOACTIVATE);
}
}  // namespace orvik::detail
