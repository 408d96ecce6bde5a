// Sizes a column of a list: a dotted line follows the column's right edge. User-interface thread.
#pragma once

#include "afx/gdi.h"
#include "chart/tracker.h"

class ORVIK_API CColSizeTracker : public CTracker {
public:
    // The line reaches from the constrain rectangle's top to its bottom; the column is also the hot rectangle.
    CColSizeTracker(const RECT& constrain, const RECT& column);

    // After tracking. The dragged width for a drag that began on the column's right edge; one that began k pixels inside gives
    // k pixels more, kept so.
    int GetWidth() const;

    void OnBeginTrack(CPoint point) override;
    void OnTrack(CDC* pDC, UINT code, CPoint point) override;
    void OnEndTrack(CPoint point, BOOL moved, BOOL cancelled) override;

private:
    CPen m_pen;  // while tracking
    LONG m_start = 0;
};
