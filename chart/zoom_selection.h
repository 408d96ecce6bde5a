// A selection that stays on a plot: a rectangle with eight handles, to be moved and pulled by CZoomSelTracker.
// A value type; drawing on the user-interface thread. Coordinates are pixels of the window.
#pragma once

#include "afx/geometry.h"

class CDC;

class ORVIK_API CZoomSelection {
public:
    enum EHitCode : int {
        HIT_OUTSIDE = 0,
        HIT_BODY = 1,
        HIT_NORTH = 2,
        HIT_EAST = 3,
        HIT_SOUTH = 4,
        HIT_WEST = 5,
        HIT_NORTHEAST = 6,
        HIT_NORTHWEST = 7,
        HIT_SOUTHEAST = 8,
        HIT_SOUTHWEST = 9,
    };

    CZoomSelection() = default;

    // As it was set. One with its edges on the wrong sides is hit and drawn as the rectangle between them.
    const RECT& GetPosition() const { return m_rect; }
    void SetPosition(const RECT& rect) { m_rect = rect; }

    // Of the window: handles are 6 pixels wide at 96 dots an inch, which is what it begins with.
    void SetDpi(UINT dpi) { m_dpi = dpi; }

    // Handles go before the body, and where they overlap in the order north-west, north, north-east, east and so on around.
    EHitCode HitTest(CPoint point) const;
    // Inverts the outline and the handles: a second call restores the DC.
    void Draw(CDC* pDC) const;

private:
    // Top handles lie a pixel lower than the bottom ones are high, left ones a pixel inside the border and right ones on it; kept
    // so.
    RECT GetNorthWestRect() const;
    RECT GetNorthRect() const;
    RECT GetNorthEastRect() const;
    RECT GetEastRect() const;
    RECT GetSouthEastRect() const;
    RECT GetSouthRect() const;
    RECT GetSouthWestRect() const;
    RECT GetWestRect() const;

    LONG Handle() const;

    RECT m_rect = {};
    UINT m_dpi = 96;
};
