// Moves a selection that stays on a plot, or pulls one of its handles. User-interface thread.
#pragma once

#include "chart/tracker.h"
#include "chart/zoom_selection.h"

class ORVIK_API CZoomSelTracker : public CTracker {
public:
    // Without a plot and a selection: tracks nothing.
    CZoomSelTracker();
    // The caller's plot rectangle outlives the tracker; the selection is copied, and may be given with its edges on the wrong
    // sides. A hit code outside the selection leaves all its edges where they are. A body that is moved stays inside the plot.
    CZoomSelTracker(const RECT* pPlot, const RECT* pSelection, CZoomSelection::EHitCode hit);

    // After tracking, as CZoomAllTracker::GetSelection.
    BOOL GetSelection(RECT* pRect);

    void OnBeginTrack(CPoint point) override;
    void OnTrack(CDC* pDC, UINT code, CPoint point) override;

private:
    using Edge = LONG RECT::*;

    BOOL m_bMove = FALSE;
    Edge m_followsX = nullptr;  // the edges that follow the pointer, or none
    Edge m_followsY = nullptr;
    RECT m_selection = {};
    const RECT* m_pPlot = nullptr;
};
