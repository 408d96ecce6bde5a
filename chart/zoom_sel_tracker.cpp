#include "chart/zoom_sel_tracker.h"

#include "chart/invert_drawing_internal.h"
#include "chart/zoom_figure_internal.h"

using namespace orvik::detail;

CZoomSelTracker::CZoomSelTracker() = default;

CZoomSelTracker::CZoomSelTracker(const RECT* pPlot, const RECT* pSelection, CZoomSelection::EHitCode hit)
    : m_selection(Normalised(*pSelection)), m_pPlot(pPlot) {
    struct Follow {
        Edge x, y;
    };
    static constexpr Follow kFollows[] = {
        {nullptr, nullptr},             // outside
        {&RECT::left, &RECT::top},      // body
        {nullptr, &RECT::top},          // north
        {&RECT::right, nullptr},        // east
        {nullptr, &RECT::bottom},       // south
        {&RECT::left, nullptr},         // west
        {&RECT::right, &RECT::top},     // north-east
        {&RECT::left, &RECT::top},      // north-west
        {&RECT::right, &RECT::bottom},  // south-east
        {&RECT::left, &RECT::bottom},   // south-west
    };
    if (hit >= CZoomSelection::HIT_OUTSIDE && hit <= CZoomSelection::HIT_SOUTHWEST) {
        m_followsX = kFollows[hit].x;
        m_followsY = kFollows[hit].y;
    }
    m_bMove = hit == CZoomSelection::HIT_BODY;

    RECT constrain = *pPlot;
    if (m_bMove) {
        constrain.right -= m_selection.right - m_selection.left;
        constrain.bottom -= m_selection.bottom - m_selection.top;
    }
    SetConstrainRect(constrain);
    SetTrackFlags(TRACK_HORIZONTAL | TRACK_VERTICAL);
}

void CZoomSelTracker::OnBeginTrack(CPoint point) {
    SetDelta(m_followsX != nullptr ? m_selection.*m_followsX - point.x : 0,
             m_followsY != nullptr ? m_selection.*m_followsY - point.y : 0);
}

void CZoomSelTracker::OnTrack(CDC* pDC, UINT, CPoint point) {
    const LONG width = m_selection.right - m_selection.left;
    const LONG height = m_selection.bottom - m_selection.top;
    if (m_followsX != nullptr) m_selection.*m_followsX = point.x;
    if (m_followsY != nullptr) m_selection.*m_followsY = point.y;
    if (m_bMove) {
        m_selection.right = m_selection.left + width;
        m_selection.bottom = m_selection.top + height;
    }
    if (m_pPlot != nullptr) DrawZoomFigure(pDC, Normalised(m_selection), *m_pPlot);
}

BOOL CZoomSelTracker::GetSelection(RECT* pRect) {
    m_selection = Normalised(m_selection);
    return m_pPlot != nullptr && SelectionOf(m_selection, *m_pPlot, pRect);
}
