#include "chart/drag_axis_tracker.h"

#include <cstdlib>

#include "afx/dc.h"
#include "platform/dpi.h"

CDragAxisTracker::CDragAxisTracker(CTypedPtrArray<CPtrArray, CUnitAxis*>& axes, CUnitAxis* pAxis)
    : m_pAxes(&axes),
      m_pAxis(pAxis),
      m_orientation(pAxis->GetOrientation()),
      m_reach(OrvikScale(CAxis::nLargeDiv, pAxis->GetDpi())) {
    LONG position = 0;
    LONG start = 0;
    LONG end = 0;
    pAxis->GetPosition(&position, &start, &end);
    const LONG first = position - m_reach, last = position + m_reach + 1;
    m_band = m_orientation == CAxis::AX_VERTICAL ? RECT{first, start, last, end} : RECT{start, first, end, last};
}

void CDragAxisTracker::OnBeginTrack(CPoint) {
    SetTrackFlags(m_orientation == CAxis::AX_VERTICAL ? TRACK_HORIZONTAL : TRACK_VERTICAL);
}

void CDragAxisTracker::OnConstrainTrack(CPoint& point) {
    LONG& across = m_orientation == CAxis::AX_VERTICAL ? point.x : point.y;
    m_pExchanged = nullptr;
    long long nearest = 0;
    for (INT_PTR i = 0; i < m_pAxes->GetSize(); ++i) {
        CUnitAxis* axis = m_pAxes->GetAt(i);
        if (axis == nullptr || !axis->IsVisible()) continue;
        const long long distance = std::llabs(static_cast<long long>(axis->GetPosition()) - across);
        if (m_pExchanged != nullptr && distance >= nearest) continue;
        m_pExchanged = axis;
        nearest = distance;
    }
    if (m_pExchanged != nullptr) across = m_pExchanged->GetPosition();
}

void CDragAxisTracker::OnTrack(CDC* pDC, UINT, CPoint point) {
    if (m_orientation == CAxis::AX_VERTICAL) {
        m_band.left = point.x - m_reach;
        m_band.right = point.x + m_reach + 1;
    } else {
        m_band.top = point.y - m_reach;
        m_band.bottom = point.y + m_reach + 1;
    }
    pDC->InvertRect(&m_band);
}

INT_PTR CDragAxisTracker::Find(const CUnitAxis* pAxis) const {
    for (INT_PTR i = 0; i < m_pAxes->GetSize(); ++i)
        if (m_pAxes->GetAt(i) == pAxis) return i;
    return -1;
}

void CDragAxisTracker::OnEndTrack(CPoint, BOOL moved, BOOL cancelled) {
    const INT_PTR target = m_pExchanged != nullptr ? Find(m_pExchanged) : -1;
    if (target < 0) m_pExchanged = nullptr;
    if (m_pExchanged == m_pAxis || cancelled || !moved) return;
    const INT_PTR dragged = Find(m_pAxis);
    if (target < 0 || dragged < 0) return;
    m_pAxes->SetAt(target, m_pAxis);
    m_pAxes->SetAt(dragged, m_pExchanged);
}
