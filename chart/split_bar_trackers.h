// Move a splitter bar across the space between two panes; the bar itself is inverted. User-interface thread.
#pragma once

#include "chart/tracker.h"

// An upright bar, moved to the left and right.
class ORVIK_API CVertSplitBarTracker : public CTracker {
public:
    // The bar's left stays within the constrain rectangle; the bar is also the hot rectangle.
    CVertSplitBarTracker(const RECT& constrain, const RECT& bar);

    // The bar at its last place.
    void GetRect(RECT* pRect) const { *pRect = m_bar; }

    void OnBeginTrack(CPoint point) override;
    void OnTrack(CDC* pDC, UINT code, CPoint point) override;

private:
    RECT m_bar;
    LONG m_start = 0;  // where its left was at the start
};

// A level bar, moved up and down; the same with top and bottom.
class ORVIK_API CHorzSplitBarTracker : public CTracker {
public:
    CHorzSplitBarTracker(const RECT& constrain, const RECT& bar);

    void GetRect(RECT* pRect) const { *pRect = m_bar; }

    void OnBeginTrack(CPoint point) override;
    void OnTrack(CDC* pDC, UINT code, CPoint point) override;

private:
    RECT m_bar;
    LONG m_start = 0;
};
