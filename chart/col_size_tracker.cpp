#include "chart/col_size_tracker.h"

#include "chart/invert_drawing_internal.h"

CColSizeTracker::CColSizeTracker(const RECT& constrain, const RECT& column) {
    SetConstrainRect(constrain);
    SetHotRect(column);
    SetTrackFlags(TRACK_HORIZONTAL);
}

void CColSizeTracker::OnBeginTrack(CPoint point) {
    m_pen.DeleteObject();  // of a drag that a throwing hook left without its end
    m_pen.CreatePen(PS_DOT, 1, RGB(0, 0, 0));
    SetDelta(m_rectHot.right - point.x, 0);
    m_start = point.x;
}

void CColSizeTracker::OnTrack(CDC* pDC, UINT, CPoint point) {
    orvik::detail::InvertDrawing drawing(pDC, m_pen);
    drawing.VerticalLine(point.x, m_rectConstrain.top, m_rectConstrain.bottom);
}

void CColSizeTracker::OnEndTrack(CPoint, BOOL, BOOL) { m_pen.DeleteObject(); }

int CColSizeTracker::GetWidth() const { return m_rectHot.right - m_start + m_point.x - m_rectHot.left; }
