// An axis of a chart as geometry: where its line lies on the screen, which pixels it covers, how it is divided, and the
// rectangles that the mouse is tested against. Values, texts and drawing are CUnitAxis's (chart/unit_axis.h). User-interface
// thread. A copy has division offsets of its own. All coordinates are pixels of the window that shows the axis.
#pragma once

#include <vector>

#include "platform/win32.h"
#include "time/time_span.h"

class CDC;

class ORVIK_API CAxis {
public:
    enum AXORIENT : int { AX_HORIZONTAL = 0, AX_VERTICAL = 1 };
    enum HITCODE : int { HIT_NONE = 0, HIT_ZOOM = 1, HIT_RUBBER = 2, HIT_DRAG = 3 };

    // Spans that suit a unit of CVXTTimeSpanType.
    struct TimeSpanTypeSelector {
        CVXTTimeSpan m_lower, m_upper;
    };
    // Row i belongs to the unit i. The gaps between rows are meant: a span in one is left in the unit that it has.
    static const TimeSpanTypeSelector tstsVector[7];

    // Pixels at 96 dots an inch.
    static const LONG nAxisMargin;  // between the axis's line and its labels; half of it before the unit's text
    static const LONG nSmallDiv;    // length of a small division's tick
    static const LONG nLargeDiv;    // length of a large one's; half the width of the band in which an axis can be dragged

    explicit CAxis(int horizontal);  // non-zero for a horizontal axis
    CAxis(const CAxis& other);
    CAxis& operator=(const CAxis& other);
    virtual ~CAxis();

    // The range becomes that between two pixels, in the direction from a to b.
    virtual void Zoom(LONG a, LONG b) = 0;
    virtual void Render(CDC* pDC) = 0;
    virtual void SaveRange() = 0;

    // The axis's line: the y of a horizontal axis, the x of a vertical one. Then the span along it: start <= end.
    LONG GetPosition() const { return m_position; }
    void GetPosition(LONG* position, LONG* start, LONG* end) const;  // null pointers are left out
    void SetPosition(LONG position) { m_position = position; }
    void SetPosition(LONG position, LONG start, LONG end);

    // Pixels between an end of the axis and the large division nearest to it, as last drawn: 0 where the end is on a tick.
    LONG GetOriginAlignment() const { return m_originAlignment; }
    LONG GetExtentAlignment() const { return m_extentAlignment; }

    // Large divisions are counted anew by each drawing; small steps in each of them stay as they are set.
    void SetDivisions(int n);
    int GetDivisions() const { return m_divisions; }
    void SetSubDivisions(int n) { m_subDivisions = n; }
    int GetSubDivisions() const { return m_subDivisions; }
    int GetTotalDivisions() const;

    AXORIENT GetOrientation() const { return m_orientation; }
    // The dots an inch of what shows the axis, 96 at first. Ticks, margins and what trackers measure by them follow it.
    UINT GetDpi() const { return m_dpi; }
    void SetDpi(UINT dpi) { m_dpi = dpi; }
    // A word that trackers keep while they stretch the axis; 0 at other times.
    int GetRubberMode() const { return m_rubberMode; }
    void SetRubberMode(int mode) { m_rubberMode = mode; }

    // The area is what the axis draws into. The others are set by the view that owns the axis, for the trackers.
    const RECT& GetRubberRect() const { return m_rubberRect; }
    const RECT& GetDragRect() const { return m_dragRect; }
    const RECT& GetAreaRect() const { return m_areaRect; }
    const RECT& GetZoomRect() const { return m_zoomRect; }
    void SetRubberRect(const RECT& rect) { m_rubberRect = rect; }
    void SetDragRect(const RECT& rect) { m_dragRect = rect; }
    void SetAreaRect(const RECT& rect) { m_areaRect = rect; }
    void SetZoomRect(const RECT& rect) { m_zoomRect = rect; }
    // The smallest rectangle around the drag rectangle and the area.
    RECT GetBoundRect() const;

    // The first of zoom, rubber and drag rectangle that holds the point.
    HITCODE HitTest(POINT point) const;

protected:
    // For classes that draw: where the large divisions came to lie, counted from the start. There is one more than divisions.
    void SetAlignments(LONG origin, LONG extent) { m_originAlignment = origin, m_extentAlignment = extent; }
    void SetDivisionOffset(int i, LONG offset) { m_divisionOffsets[static_cast<size_t>(i)] = offset; }
    LONG GetDivisionOffset(int i) const { return m_divisionOffsets[static_cast<size_t>(i)]; }

    LONG m_position = 100;
    LONG m_start = 0;
    LONG m_end = 100;

private:
    LONG m_originAlignment = 0;
    LONG m_extentAlignment = 0;
    LONG m_divisions = 10;
    LONG m_subDivisions = 5;
    std::vector<LONG> m_divisionOffsets;
    RECT m_rubberRect = {};
    RECT m_zoomRect = {};
    RECT m_dragRect = {};
    RECT m_areaRect = {};
    LONG m_rubberMode = 0;
    UINT m_dpi = 96;
    AXORIENT m_orientation;
};
