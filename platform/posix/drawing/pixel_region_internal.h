// Sets of pixels: what a DC may draw on, what of a window is to be seen, and what of it is to be painted anew.
// A value type.
#pragma once

#include <span>
#include <vector>

#include "platform/posix/drawing/region.h"

namespace orvik::detail {

inline bool IsEmptyRectangle(const RECT& r) { return r.left >= r.right || r.top >= r.bottom; }
RECT CommonRectangle(const RECT& a, const RECT& b);  // 0, 0, 0, 0 when there is none
inline RECT Moved(const RECT& r, LONG dx, LONG dy) { return {r.left + dx, r.top + dy, r.right + dx, r.bottom + dy}; }
inline bool HoldsPoint(const RECT& r, POINT p) { return p.x >= r.left && p.x < r.right && p.y >= r.top && p.y < r.bottom; }

// Rectangles that do not overlap, sorted by rows and then columns, in bands of the same rows.
class PixelRegion {
public:
    PixelRegion() = default;
    PixelRegion(const RECT& rect);  // empty for an empty rectangle
    // Of rectangles that are sorted and lie in bands of one height each already.
    static PixelRegion FromSorted(std::vector<RECT> rects);

    bool Empty() const { return m_rects.empty(); }
    std::span<const RECT> Rects() const { return m_rects; }
    RECT Box() const;  // 0, 0, 0, 0 when empty
    bool Contains(int x, int y) const;
    bool Touches(const RECT& rect) const;
    void Offset(int dx, int dy);
    // RGN_AND, RGN_OR, RGN_XOR, RGN_DIFF: this region by the other. RGN_COPY: the other.
    void Combine(const PixelRegion& other, int mode);
    bool operator==(const PixelRegion& other) const;

private:
    std::vector<RECT> m_rects;
};

// NULLREGION, SIMPLEREGION or COMPLEXREGION.
int LooksOf(const PixelRegion& region);

}  // namespace orvik::detail
