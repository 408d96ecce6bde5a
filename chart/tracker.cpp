#include "chart/tracker.h"

#include <algorithm>

#include "afx/dc.h"
#include "afx/wnd.h"
#include "chart/tracker_input_internal.h"

using namespace orvik::detail;

const int CTracker::iMinSelection = 5;

// What one call of TrackCursor holds. It gives the DC and the capture back however the call ends.
struct CTracker::Session {
    Session(HWND window, HDC dc) : m_window(window) {
        ::SetCapture(window);
        m_dc.Attach(dc);
        m_saved = m_dc.SaveDC();
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session() {
        if (::IsWindow(m_window)) m_dc.RestoreDC(m_saved);
        ::ReleaseDC(m_window, m_dc.Detach());
        if (HasCapture()) ::ReleaseCapture();
    }
    bool HasCapture() const { return ::GetCapture() == m_window; }

    const HWND m_window;
    CDC m_dc;
    int m_saved = 0;
    bool m_moved = false;
    bool m_cancelled = false;
    bool m_done = false;
};

namespace {

UINT SystemSetting(UINT action, UINT otherwise) {
    UINT value = otherwise;
    return ::SystemParametersInfoA(action, 0, &value, 0) ? value : otherwise;
}

// Both in ticks, which wrap.
DWORD MillisecondsUntil(DWORD deadline) {
    const auto left = static_cast<LONG>(deadline - ::GetTickCount());
    return left > 0 ? static_cast<DWORD>(left) : 0;
}

}  // namespace

CTracker::~CTracker() = default;

BOOL CTracker::HitTest(CPoint point) { return ::PtInRect(&m_rectHot, point); }

void CTracker::OnConstrainTrack(CPoint& point) {
    point.y = std::min(std::max(point.y, m_rectConstrain.top), m_rectConstrain.bottom);
    point.x = std::min(std::max(point.x, m_rectConstrain.left), m_rectConstrain.right);
}

void CTracker::OnEndTrack(CPoint, BOOL, BOOL) {}

void CTracker::SetMode() {}

void CTracker::Update(CDC* pDC) { OnTrack(pDC, TRACK_DRAW, m_point); }

int CTracker::TrackCursor(CWnd* pWnd, CPoint point) {
    const HWND window = pWnd != nullptr ? pWnd->GetSafeHwnd() : nullptr;
    if (::GetCapture() != nullptr || !::IsWindow(window)) return 0;
    const HDC dc = ::GetDC(window);
    if (dc == nullptr) return 0;
    Session session(window, dc);

    SetDelta(0, 0);
    if (::IsRectEmpty(&m_rectClip)) ::GetClientRect(window, &m_rectClip);
    m_point = point;
    OnBeginTrack(point);
    m_point.Offset(m_delta);
    session.m_dc.IntersectClipRect(&m_rectClip);
    OnConstrainTrack(m_point);
    Show(session, TRACK_DRAW, m_point);

    Run(session);

    if (!::IsWindow(window)) session.m_cancelled = true;
    OnEndTrack(m_point, session.m_moved, session.m_cancelled);
    if (session.m_cancelled) return 0;
    return session.m_moved ? 2 : 1;
}

// A hook or a handler may have destroyed the window; its DC is nobody's then, or another window's.
void CTracker::Show(Session& session, UINT code, CPoint point) {
    if (::IsWindow(session.m_window)) OnTrack(&session.m_dc, code, point);
}

void CTracker::Run(Session& session) {
    const TrackRhythm rhythm = RhythmOf(SystemSetting(SPI_GETKEYBOARDDELAY, 1), SystemSetting(SPI_GETKEYBOARDSPEED, 31));
    DWORD deadline = ::GetTickCount() + rhythm.first;
    while (!session.m_done) {
        // Looking without taking serves messages that other threads sent, and those may cost the capture: then what waits in the
        // queue is left to whoever comes next.
        MSG message;
        const bool waiting = ::PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE);
        if (!session.HasCapture()) {
            Show(session, TRACK_ERASE, m_point);
            return;
        }
        if (waiting) {
            if (::PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) Take(session, message);
        } else if (m_bRepeat && MillisecondsUntil(deadline) == 0) {
            Show(session, TRACK_REPEAT, m_point);
            deadline = ::GetTickCount() + rhythm.interval;
        } else {
            ::MsgWaitForMultipleObjects(0, nullptr, FALSE, m_bRepeat ? MillisecondsUntil(deadline) : INFINITE, QS_ALLINPUT);
        }
    }
}

void CTracker::Take(Session& session, const MSG& message) {
    switch (InputOf(message, session.m_window)) {
        case TrackInput::Move:
            MoveTo(session, PointOf(message.lParam));
            break;
        case TrackInput::Release:
            MoveTo(session, PointOf(message.lParam));
            Show(session, TRACK_ERASE, m_point);
            session.m_done = true;
            break;
        case TrackInput::Cancel:
            Cancel(session);
            break;
        case TrackInput::Mode:
            SetMode();
            break;
        case TrackInput::Swallow:
            break;
        case TrackInput::Paint:
            Repaint(session, message);
            break;
        case TrackInput::Quit:
            ::PostQuitMessage(static_cast<int>(message.wParam));
            Cancel(session);
            break;
        case TrackInput::Dispatch:
            ::DispatchMessageA(&message);
            break;
    }
}

void CTracker::MoveTo(Session& session, CPoint point) {
    point.Offset(m_delta);
    OnConstrainTrack(point);
    const bool counts = ((m_nFlags & TRACK_HORIZONTAL) != 0 && point.x != m_point.x) ||
                        ((m_nFlags & TRACK_VERTICAL) != 0 && point.y != m_point.y);
    if (!counts) return;
    Show(session, TRACK_MOVE | TRACK_ERASE, m_point);
    Show(session, TRACK_MOVE | TRACK_DRAW, point);
    m_point = point;
    session.m_moved = true;
}

void CTracker::Cancel(Session& session) {
    Show(session, TRACK_CANCEL | TRACK_ERASE, m_point);
    session.m_cancelled = true;
    session.m_done = true;
}

// The window paints over the figure where it is invalid and nowhere else, so the figure is drawn again there alone: elsewhere it
// still stands, and drawing would take it away.
void CTracker::Repaint(Session& session, const MSG& message) {
    CRgn invalid;
    invalid.CreateRectRgn(0, 0, 0, 0);
    ::GetUpdateRgn(session.m_window, invalid, FALSE);
    ::DispatchMessageA(&message);
    if (!::IsWindow(session.m_window)) return;
    CDC& dc = session.m_dc;
    const int saved = dc.SaveDC();
    dc.SelectClipRgn(&invalid, RGN_AND);
    OnTrack(&dc, TRACK_REPAINT, m_point);
    dc.RestoreDC(saved);
}
