#include "chart/zoom_selection.h"

#include "chart/invert_drawing_internal.h"
#include "chart/zoom_figure_internal.h"
#include "platform/dpi.h"

using namespace orvik::detail;

namespace {

constexpr LONG kHandle = 6;

// Where a handle starts that is to stand in the middle of an edge.
LONG Centred(LONG from, LONG to, LONG handle) { return static_cast<LONG>((static_cast<long long>(from) + to - handle) / 2); }

}  // namespace

LONG CZoomSelection::Handle() const { return OrvikScale(kHandle, m_dpi); }

RECT CZoomSelection::GetNorthWestRect() const {
    return {m_rect.left + 1, m_rect.top + 1, m_rect.left + 1 + Handle(), m_rect.top + Handle()};
}

RECT CZoomSelection::GetNorthRect() const {
    const LONG left = Centred(m_rect.left, m_rect.right, Handle());
    return {left, m_rect.top + 1, left + Handle(), m_rect.top + Handle()};
}

RECT CZoomSelection::GetNorthEastRect() const {
    return {m_rect.right - Handle(), m_rect.top + 1, m_rect.right, m_rect.top + Handle()};
}

RECT CZoomSelection::GetEastRect() const {
    const LONG top = Centred(m_rect.top, m_rect.bottom, Handle());
    return {m_rect.right - Handle(), top, m_rect.right, top + Handle()};
}

RECT CZoomSelection::GetSouthEastRect() const {
    return {m_rect.right - Handle(), m_rect.bottom - Handle(), m_rect.right, m_rect.bottom};
}

RECT CZoomSelection::GetSouthRect() const {
    const LONG left = Centred(m_rect.left, m_rect.right, Handle());
    return {left, m_rect.bottom - Handle(), left + Handle(), m_rect.bottom};
}

RECT CZoomSelection::GetSouthWestRect() const {
    return {m_rect.left + 1, m_rect.bottom - Handle(), m_rect.left + 1 + Handle(), m_rect.bottom};
}

RECT CZoomSelection::GetWestRect() const {
    const LONG top = Centred(m_rect.top, m_rect.bottom, Handle());
    return {m_rect.left + 1, top, m_rect.left + 1 + Handle(), top + Handle()};
}

CZoomSelection::EHitCode CZoomSelection::HitTest(CPoint point) const {
    CZoomSelection upright = *this;
    upright.SetPosition(Normalised(m_rect));
    if (!::PtInRect(&upright.m_rect, point)) return HIT_OUTSIDE;
    const struct {
        RECT rect;
        EHitCode code;
    } handles[] = {
        {upright.GetNorthWestRect(), HIT_NORTHWEST}, {upright.GetNorthRect(), HIT_NORTH},
        {upright.GetNorthEastRect(), HIT_NORTHEAST}, {upright.GetEastRect(), HIT_EAST},
        {upright.GetSouthEastRect(), HIT_SOUTHEAST}, {upright.GetSouthRect(), HIT_SOUTH},
        {upright.GetSouthWestRect(), HIT_SOUTHWEST}, {upright.GetWestRect(), HIT_WEST},
    };
    for (const auto& handle : handles)
        if (::PtInRect(&handle.rect, point)) return handle.code;
    return HIT_BODY;
}

void CZoomSelection::Draw(CDC* pDC) const {
    CZoomSelection upright = *this;
    upright.SetPosition(Normalised(m_rect));
    {
        InvertDrawing drawing(pDC, PS_SOLID, RGB(0, 0, 0));
        drawing.Outline(upright.m_rect);
    }
    for (const RECT& handle :
         {upright.GetNorthWestRect(), upright.GetNorthRect(), upright.GetNorthEastRect(), upright.GetEastRect(),
          upright.GetSouthEastRect(), upright.GetSouthRect(), upright.GetSouthWestRect(), upright.GetWestRect()})
        pDC->InvertRect(&handle);
}
