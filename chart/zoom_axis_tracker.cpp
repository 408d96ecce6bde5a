#include "chart/zoom_axis_tracker.h"

#include <algorithm>

#include "chart/invert_drawing_internal.h"
#include "platform/dpi.h"

using namespace orvik::detail;

CZoomAxisTracker::CZoomAxisTracker(const RECT* pPlot, CAxis* pAxis) : m_pAxis(pAxis), m_hold(pAxis), m_pPlot(pPlot) {
    SetConstrainRect(pAxis->GetZoomRect());
}

BOOL CZoomAxisTracker::IsVertical() const { return m_pAxis->GetOrientation() == CAxis::AX_VERTICAL; }

void CZoomAxisTracker::OnBeginTrack(CPoint point) {
    OnConstrainTrack(point);
    m_start = m_current = IsVertical() ? point.y : point.x;
    SetTrackFlags(IsVertical() ? TRACK_VERTICAL : TRACK_HORIZONTAL);
}

void CZoomAxisTracker::OnTrack(CDC* pDC, UINT code, CPoint point) {
    m_current = IsVertical() ? point.y : point.x;
    if (m_current != m_start) Mark(pDC, m_current);
    if ((code & TRACK_MOVE) == 0) Mark(pDC, m_start);
}

void CZoomAxisTracker::Mark(CDC* pDC, LONG coord) const {
    const LONG position = m_pAxis->GetPosition();
    const LONG half = OrvikScale(CAxis::nSmallDiv, m_pAxis->GetDpi());
    RECT across = {position - half, coord - half, position + half, coord + half};
    {
        InvertDrawing drawing(pDC, PS_DOT, RGB(0, 0, 0));
        if (IsVertical()) {
            drawing.HorizontalLine(coord, m_pPlot->left, m_pPlot->right);
        } else {
            drawing.VerticalLine(coord, m_pPlot->top, m_pPlot->bottom);
            std::swap(across.left, across.top);
            std::swap(across.right, across.bottom);
        }
    }
    pDC->InvertRect(&across);
}

BOOL CZoomAxisTracker::GetSelection(LONG& a, LONG& b) const {
    if (m_start == m_current) return FALSE;
    const auto [low, high] = std::minmax(m_start, m_current);
    // Coordinates of a vertical axis grow downwards, its values upwards.
    a = IsVertical() ? high : low;
    b = IsVertical() ? low : high;
    return TRUE;
}
