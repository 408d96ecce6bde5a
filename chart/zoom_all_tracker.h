// Selects a region of a plot, or a band over its full height or width, by dragging. User-interface thread.
#pragma once

#include "chart/tracker.h"

class ORVIK_API CZoomAllTracker : public CTracker {
public:
    // The caller's plot rectangle outlives the tracker.
    explicit CZoomAllTracker(const RECT* pPlot);

    // After tracking: the region from left to right and from top to bottom. A drag of less than iMinSelection pixels in one
    // direction takes the plot's edges there; in both directions it is no selection: FALSE, and *pRect left alone.
    BOOL GetSelection(RECT* pRect) const;

    void OnBeginTrack(CPoint point) override;
    void OnTrack(CDC* pDC, UINT code, CPoint point) override;

private:
    const RECT* m_pPlot;
    CPoint m_anchor;
    CPoint m_current;
};
