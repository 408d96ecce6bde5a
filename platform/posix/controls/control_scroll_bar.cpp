// The scroll bar control, and the part of it that lists and long texts draw at their right edge.
#include "platform/posix/controls/scroll_part_internal.h"

#include <algorithm>

#include "platform/posix/controls/flat_looks_internal.h"

namespace orvik::detail {

int ScrollPart::Most() const { return std::max(least, most - std::max(page - 1, 0)); }
bool ScrollPart::Useful() const { return Most() > least; }

int ScrollPart::Limited(int wanted) const { return std::min(std::max(wanted, least), Most()); }

RECT ScrollPart::Thumb() const {
    const LONG arrow = Arrow(), length = Length() - 2 * arrow;
    const long long range = std::max(1LL, static_cast<long long>(most) - least + 1);
    LONG thumb = page > 0 ? static_cast<LONG>(length * static_cast<long long>(page) / range) : arrow;
    thumb = std::min(std::max<LONG>(thumb, 2 * ArrowLines()), std::max<LONG>(length, 0));
    const long long way = static_cast<long long>(Most()) - least;
    const LONG at =
        arrow + (way > 0 ? static_cast<LONG>((length - thumb) * (static_cast<long long>(position) - least) / way) : 0);
    return vertical ? RECT{place.left, place.top + at, place.right, place.top + at + thumb}
                    : RECT{place.left + at, place.top, place.left + at + thumb, place.bottom};
}

int ScrollPart::CodeAt(POINT point) const {
    if (!PtInRect(&place, point)) return -1;
    const LONG at = vertical ? point.y - place.top : point.x - place.left;
    const RECT thumb = Thumb();
    const LONG from = vertical ? thumb.top - place.top : thumb.left - place.left;
    const LONG to = vertical ? thumb.bottom - place.top : thumb.right - place.left;
    if (at < Arrow()) return SB_LINEUP;
    if (at >= Length() - Arrow()) return SB_LINEDOWN;
    if (at < from) return SB_PAGEUP;
    return at < to ? SB_THUMBTRACK : SB_PAGEDOWN;
}

int ScrollPart::After(int code) const {
    const int step = std::max(page, 1);
    switch (code) {
        case SB_LINEUP:
            return Limited(position - 1);
        case SB_LINEDOWN:
            return Limited(position + 1);
        case SB_PAGEUP:
            return Limited(position - step);
        case SB_PAGEDOWN:
            return Limited(position + step);
        case SB_TOP:
            return least;
        case SB_BOTTOM:
            return Most();
        default:
            return position;
    }
}

int ScrollPart::PositionAt(LONG offset) const {
    const RECT thumb = Thumb();
    const LONG size = vertical ? thumb.bottom - thumb.top : thumb.right - thumb.left;
    const LONG room = Length() - 2 * Arrow() - size;
    if (room <= 0) return position;
    const long long way = static_cast<long long>(Most()) - least;
    return Limited(static_cast<int>(least + ((offset - Arrow()) * way + room / 2) / room));
}

void ScrollPart::Paint(HDC dc) const {
    FillColour(dc, place, GetSysColor(COLOR_SCROLLBAR));
    const LONG arrow = Arrow();
    RECT first = place, last = place;
    vertical ? first.bottom = first.top + arrow : first.right = first.left + arrow;
    vertical ? last.top = last.bottom - arrow : last.left = last.right - arrow;
    const COLORREF ink = GetSysColor(Useful() ? COLOR_BTNTEXT : COLOR_GRAYTEXT);
    // As many dots an inch as the bar's width is for.
    const LONG width = vertical ? place.right - place.left : place.bottom - place.top;
    const UINT dpi = static_cast<UINT>(std::max<LONG>(width, 1) * USER_DEFAULT_SCREEN_DPI / 17);
    PaintChevron(dc, first, vertical ? 0 : -1, vertical ? -1 : 0, ink, dpi);
    PaintChevron(dc, last, vertical ? 0 : 1, vertical ? 1 : 0, ink, dpi);
    if (!Useful()) return;
    RECT thumb = Thumb();
    const LONG inset = width / 4;
    vertical ? InflateRect(&thumb, -static_cast<int>(inset), 0) : InflateRect(&thumb, 0, -static_cast<int>(inset));
    FillRounded(dc, thumb, static_cast<float>(width) / 4, FrameInk());
}

namespace {
class ScrollBar final : public Control {
public:
    using Control::Control;

    LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam) override {
        switch (message) {
            case SBM_SETPOS: {
                const int before = m_part.position;
                m_part.position = m_part.Limited(static_cast<int>(wParam));
                if (lParam != 0) Invalidate();
                return before;
            }
            case SBM_GETPOS:
                return m_part.position;
            case SBM_SETRANGE:
            case SBM_SETRANGEREDRAW: {
                const int before = m_part.position;
                m_part.least = static_cast<int>(wParam);
                m_part.most = static_cast<int>(lParam);
                m_part.position = m_part.Limited(before);
                Invalidate();
                return m_part.position != before ? before : 0;
            }
            case SBM_GETRANGE:
                if (auto* least = reinterpret_cast<int*>(wParam)) *least = m_part.least;
                if (auto* most = reinterpret_cast<int*>(lParam)) *most = m_part.most;
                return TRUE;
            case SBM_SETSCROLLINFO:
                return SetInfo(*reinterpret_cast<const SCROLLINFO*>(lParam), wParam != 0);
            case SBM_GETSCROLLINFO:
                return GetInfo(*reinterpret_cast<SCROLLINFO*>(lParam));
            case WM_GETDLGCODE:
                return DLGC_WANTARROWS;
            case WM_KEYDOWN:
                return Key(wParam);
            case WM_LBUTTONDOWN:
            case WM_LBUTTONDBLCLK:
                return Press({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
            case WM_MOUSEMOVE:
                if (m_dragging) {
                    m_track = m_part.PositionAt(Along(lParam) - m_grip);
                    Send(SB_THUMBTRACK, m_track);
                }
                return 0;
            case WM_LBUTTONUP:
                if (m_dragging) {
                    m_dragging = false;
                    Send(SB_THUMBPOSITION, m_track);
                }
                if (GetCapture() == m_window) {
                    ReleaseCapture();
                    Send(SB_ENDSCROLL, 0);
                }
                return 0;
            default:
                return Control::Handle(message, wParam, lParam);
        }
    }

protected:
    void Paint(HDC dc, const RECT& client) override {
        m_part.place = client;
        m_part.vertical = Vertical();
        m_part.Paint(dc);
    }

    void Describe(OrvikAccessible& out) const override {
        out.role = OrvikRole::ScrollBar;
        out.least = m_part.least;
        out.most = m_part.Most();
        out.now = m_part.position;
    }

private:
    bool Vertical() const { return (Style() & SBS_VERT) != 0; }
    LONG Along(LPARAM at) const { return Vertical() ? GET_Y_LPARAM(at) : GET_X_LPARAM(at); }

    LRESULT SetInfo(const SCROLLINFO& info, bool redraw) {
        if (info.fMask & SIF_RANGE) m_part.least = info.nMin, m_part.most = info.nMax;
        if (info.fMask & SIF_PAGE) {
            const long long range = static_cast<long long>(m_part.most) - m_part.least + 1;
            m_part.page = static_cast<int>(std::max(0LL, std::min<long long>(info.nPage, range)));
        }
        if (info.fMask & SIF_POS) m_part.position = info.nPos;
        m_part.position = m_part.Limited(m_part.position);
        if (redraw) Invalidate();
        return m_part.position;
    }
    LRESULT GetInfo(SCROLLINFO& info) const {
        if (info.fMask & SIF_RANGE) info.nMin = m_part.least, info.nMax = m_part.most;
        if (info.fMask & SIF_PAGE) info.nPage = static_cast<UINT>(m_part.page);
        if (info.fMask & SIF_POS) info.nPos = m_part.position;
        if (info.fMask & SIF_TRACKPOS) info.nTrackPos = m_dragging ? m_track : m_part.position;
        return TRUE;
    }
    void Send(int code, int position) const {
        SendMessageA(Parent(), Vertical() ? WM_VSCROLL : WM_HSCROLL, MAKEWPARAM(code, position),
                     reinterpret_cast<LPARAM>(m_window));
    }
    LRESULT Key(WPARAM key) const {
        int code = -1;
        if (key == VK_UP || key == VK_LEFT) code = SB_LINEUP;
        if (key == VK_DOWN || key == VK_RIGHT) code = SB_LINEDOWN;
        if (key == VK_PRIOR) code = SB_PAGEUP;
        if (key == VK_NEXT) code = SB_PAGEDOWN;
        if (key == VK_HOME) code = SB_TOP;
        if (key == VK_END) code = SB_BOTTOM;
        if (code < 0) return 0;
        Send(code, 0);
        Send(SB_ENDSCROLL, 0);
        return 0;
    }
    LRESULT Press(POINT at) {
        m_part.place = Client();
        m_part.vertical = Vertical();
        if (Style() & WS_TABSTOP) SetFocus(m_window);
        const int code = m_part.CodeAt(at);
        if (code < 0) return 0;
        SetCapture(m_window);
        if (code != SB_THUMBTRACK) {
            Send(code, 0);
            return 0;
        }
        const RECT thumb = m_part.Thumb();
        m_grip = Vertical() ? at.y - thumb.top : at.x - thumb.left;
        m_track = m_part.position;
        m_dragging = true;
        return 0;
    }

    ScrollPart m_part;
    bool m_dragging = false;
    LONG m_grip = 0;
    int m_track = 0;
};
}  // namespace

LRESULT CALLBACK ScrollBarProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return ControlProcedure<ScrollBar>(window, message, wParam, lParam);
}
}  // namespace orvik::detail
