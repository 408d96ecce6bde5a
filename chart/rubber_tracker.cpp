#include "chart/rubber_tracker.h"

#include "afx/wnd.h"
#include "chart/rubber_step_internal.h"
#include "frame/app_stock.h"
#include "platform/dpi.h"

using namespace orvik::detail;

const UINT CRubberTracker::uMessage = WM_USER + 4;

namespace {

HCURSOR CursorOf(RubberMode mode, bool vertical) {
    switch (mode) {
        case RubberMode::MoveOrigin:
            return vertical ? hMoveYOrgCursor : hMoveXOrgCursor;
        case RubberMode::MoveExtent:
            return vertical ? hMoveYExtCursor : hMoveXExtCursor;
        case RubberMode::Pan:
            return vertical ? hMoveYCursor : hMoveXCursor;
        case RubberMode::None:
            break;
    }
    return nullptr;
}

}  // namespace

CRubberTracker::CRubberTracker(CWnd* pWnd, const RECT& rect, const LOGFONTA& font, CAxis* pAxis)
    : m_hWnd(pWnd->GetSafeHwnd()), m_rect(rect), m_pAxis(pAxis), m_hold(pAxis) {
    SetConstrainRect(pAxis->GetRubberRect());
    CDC windowDC;
    windowDC.Attach(::GetDC(m_hWnd));
    m_memoryDC.CreateCompatibleDC(&windowDC);
    m_bitmap.CreateCompatibleBitmap(&windowDC, rect.right - rect.left, rect.bottom - rect.top);
    ::ReleaseDC(m_hWnd, windowDC.Detach());
    m_font.CreateFontIndirect(&font);
    m_pOldBitmap = m_memoryDC.SelectObject(&m_bitmap);
    m_pOldFont = m_memoryDC.SelectObject(&m_font);
    m_memoryDC.SetTextColor(::GetSysColor(COLOR_BTNTEXT));
    m_memoryDC.SetWindowOrg(rect.left, rect.top);
}

CRubberTracker::~CRubberTracker() {
    if (m_pOldBitmap != nullptr) m_memoryDC.SelectObject(m_pOldBitmap);
    if (m_pOldFont != nullptr) m_memoryDC.SelectObject(m_pOldFont);
}

void CRubberTracker::SetMode() {
    const RubberMode mode = RubberModeOf(::GetKeyState(VK_SHIFT) < 0, ::GetKeyState(VK_CONTROL) < 0);
    m_pAxis->SetRubberMode(static_cast<int>(mode));
    // Before LoadAppStock there are no cursors, and none would be no pointer at all.
    if (const HCURSOR cursor = CursorOf(mode, IsVertical())) ::SetCursor(cursor);
}

void CRubberTracker::OnBeginTrack(CPoint point) {
    m_anchor = IsVertical() ? point.y : point.x;
    SetTrackFlags(IsVertical() ? TRACK_VERTICAL : TRACK_HORIZONTAL);
    m_pAxis->SaveRange();
    if (const auto* axis = dynamic_cast<const CUnitAxis*>(m_pAxis)) m_format = axis->GetFormat();
    SetMode();
}

void CRubberTracker::OnTrack(CDC* pDC, UINT code, CPoint point) {
    if ((code & TRACK_CANCEL) != 0) {
        if (auto* axis = dynamic_cast<CUnitAxis*>(m_pAxis)) {
            axis->RestoreRange();
            // Not derived again: drawing may have snapped the range after its format was chosen.
            axis->m_format = m_format;
        }
        ShowAxis(pDC, 0, 0);
        return;
    }
    if (code != (TRACK_MOVE | TRACK_DRAW)) return;

    RubberAxis axis{0, 0, m_pAxis->GetOriginAlignment(), m_pAxis->GetExtentAlignment(),
                    OrvikScale(kStickyDistance, m_pAxis->GetDpi())};
    if (IsVertical())
        m_pAxis->GetPosition(nullptr, &axis.extent, &axis.origin);
    else
        m_pAxis->GetPosition(nullptr, &axis.origin, &axis.extent);
    const RubberMove move =
        RubberStep(static_cast<RubberMode>(m_pAxis->GetRubberMode()), m_anchor, IsVertical() ? point.y : point.x, axis);
    m_anchor = move.anchor;
    if (!move.changes) return;
    m_pAxis->Zoom(move.zoomOrigin, move.zoomExtent);
    ShowAxis(pDC, move.originShift, move.extentShift);
}

void CRubberTracker::ShowAxis(CDC* pDC, LONG originShift, LONG extentShift) {
    m_pAxis->Render(&m_memoryDC);
    pDC->BitBlt(m_rect.left, m_rect.top, m_rect.right - m_rect.left, m_rect.bottom - m_rect.top, &m_memoryDC, m_rect.left,
                m_rect.top, SRCCOPY);
    ::SendMessageA(m_hWnd, uMessage, static_cast<WPARAM>(static_cast<DWORD>(MAKELONG(originShift, extentShift))),
                   reinterpret_cast<LPARAM>(m_pAxis));
}

void CRubberTracker::OnEndTrack(CPoint, BOOL, BOOL) { m_pAxis->SetRubberMode(static_cast<int>(RubberMode::None)); }
