// A set of pixels as rectangles that do not overlap: what of a window is to be seen, and what is to be painted anew.
// A value type. Sets of windows are small, so plain lists serve.
#pragma once

#include <vector>

#include "platform/posix/types.h"

namespace orvik::detail {

inline bool IsEmptyRectangle(const RECT& r) { return r.left >= r.right || r.top >= r.bottom; }
RECT CommonRectangle(const RECT& a, const RECT& b);  // 0, 0, 0, 0 when there is none
inline RECT Moved(const RECT& r, LONG dx, LONG dy) { return {r.left + dx, r.top + dy, r.right + dx, r.bottom + dy}; }
inline bool HoldsPoint(const RECT& r, POINT p) { return p.x >= r.left && p.x < r.right && p.y >= r.top && p.y < r.bottom; }

class Area {
public:
    Area() = default;
    explicit Area(const RECT& rectangle) { Add(rectangle); }

    bool Empty() const { return m_parts.empty(); }
    RECT Bounds() const;  // 0, 0, 0, 0 for an empty set
    const std::vector<RECT>& Parts() const { return m_parts; }

    void Clear() { m_parts.clear(); }
    void Add(const RECT& rectangle);
    void Add(const Area& other);
    void Subtract(const RECT& rectangle);
    void Subtract(const Area& other);
    void Intersect(const RECT& rectangle);
    void Intersect(const Area& other);
    void Move(LONG dx, LONG dy);

private:
    std::vector<RECT> m_parts;
};

}  // namespace orvik::detail
