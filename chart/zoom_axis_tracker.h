// Selects an interval of one axis by dragging along it: a line across the plot and a marker on the axis at either end.
// User-interface thread.
#pragma once

#include "chart/axis_hold.h"
#include "chart/tracker.h"

class ORVIK_API CZoomAxisTracker : public CTracker {
public:
    // The caller's plot rectangle and axis outlive the tracker; an axis that is shown is held by it.
    CZoomAxisTracker(const RECT* pPlot, CAxis* pAxis);

    // After tracking: two coordinates along the axis, the first towards its origin, as CAxis::Zoom takes them. FALSE, and both
    // left alone, when the pointer ended where it began.
    BOOL GetSelection(LONG& a, LONG& b) const;

    void OnBeginTrack(CPoint point) override;
    // The start is drawn first and goes last; a movement changes the other end alone.
    void OnTrack(CDC* pDC, UINT code, CPoint point) override;

private:
    BOOL IsVertical() const;
    void Mark(CDC* pDC, LONG coord) const;

    CAxis* m_pAxis;
    orvik::AxisHold m_hold;
    const RECT* m_pPlot;
    LONG m_start = 0;
    LONG m_current = 0;
};
