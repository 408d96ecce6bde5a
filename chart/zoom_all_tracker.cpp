#include "chart/zoom_all_tracker.h"

#include "chart/invert_drawing_internal.h"
#include "chart/zoom_figure_internal.h"

using namespace orvik::detail;

CZoomAllTracker::CZoomAllTracker(const RECT* pPlot) : m_pPlot(pPlot) {
    SetConstrainRect(*pPlot);
    SetTrackFlags(TRACK_HORIZONTAL | TRACK_VERTICAL);
}

void CZoomAllTracker::OnBeginTrack(CPoint point) { m_anchor = m_current = point; }

void CZoomAllTracker::OnTrack(CDC* pDC, UINT, CPoint point) {
    m_current = point;
    DrawZoomFigure(pDC, {m_anchor.x, m_anchor.y, m_current.x, m_current.y}, *m_pPlot);
}

BOOL CZoomAllTracker::GetSelection(RECT* pRect) const {
    return SelectionOf({m_anchor.x, m_anchor.y, m_current.x, m_current.y}, *m_pPlot, pRect);
}
