#include "chart/split_bar_trackers.h"

#include "afx/dc.h"

CVertSplitBarTracker::CVertSplitBarTracker(const RECT& constrain, const RECT& bar) : m_bar(bar) {
    SetConstrainRect(constrain);
    SetHotRect(bar);
    SetTrackFlags(TRACK_HORIZONTAL);
}

void CVertSplitBarTracker::OnBeginTrack(CPoint point) {
    m_start = m_bar.left;
    SetDelta(m_start - point.x, 0);
}

void CVertSplitBarTracker::OnTrack(CDC* pDC, UINT, CPoint point) {
    m_bar.right += point.x - m_bar.left;
    m_bar.left = point.x;
    pDC->InvertRect(&m_bar);
}

CHorzSplitBarTracker::CHorzSplitBarTracker(const RECT& constrain, const RECT& bar) : m_bar(bar) {
    SetConstrainRect(constrain);
    SetHotRect(bar);
    SetTrackFlags(TRACK_VERTICAL);
}

void CHorzSplitBarTracker::OnBeginTrack(CPoint point) {
    m_start = m_bar.top;
    SetDelta(0, m_start - point.y);
}

void CHorzSplitBarTracker::OnTrack(CDC* pDC, UINT, CPoint point) {
    m_bar.bottom += point.y - m_bar.top;
    m_bar.top = point.y;
    pDC->InvertRect(&m_bar);
}
