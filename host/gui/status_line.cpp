#include "host/gui/status_line.h"

#include <algorithm>
#include <cmath>

#include "host/gui/pane_font.h"
#include "platform/dpi.h"
#include "platform/picture.h"

namespace {
// Pixels at 96 dots an inch.
constexpr LONG kMargin = 8, kGap = 16, kMark = 9, kMarkGap = 6, kLeastTold = 150;
constexpr COLORREF kComing = RGB(0, 140, 60), kLost = RGB(200, 100, 0);

// The letters of a window's line, in a DC.
class Letters {
public:
    Letters(CDC& dc, HWND window) : m_dc(dc) {
        const LOGFONTA description = DesktopFont(window);
        m_font.CreateFontIndirect(&description);
        m_before = dc.SelectObject(&m_font);
    }
    ~Letters() { m_dc.SelectObject(m_before); }
    Letters(const Letters&) = delete;
    Letters& operator=(const Letters&) = delete;

private:
    CDC& m_dc;
    CFont m_font;
    CFont* m_before;
};

StatusLine::Parts PlaceIn(CDC& dc, HWND window, const CRect& line, const StatusLine& what, const std::string& told) {
    const UINT dpi = OrvikDpiOf(window);
    const auto scaled = [&](int pixels) { return LONG{OrvikScale(pixels, dpi)}; };
    const auto width = [&](const std::string& text) {
        return text.empty() ? 0 : static_cast<LONG>(dc.GetTextExtent(text.c_str(), static_cast<int>(text.size())).cx) + 1;
    };
    CRect room = line;
    room.DeflateRect(scaled(kMargin), 0);
    room.right = std::max(room.right, room.left);
    StatusLine::Parts parts{{&what.hint, room, false}, {&told, room, false}, {&what.live, room, false}, {}};
    if (!what.live.empty()) {
        const LONG mark = scaled(kMark) + scaled(kMarkGap), wanted = width(what.live);
        parts.live.place.left = std::max(room.right - wanted, std::min(room.left + mark, room.right));
        parts.live.cut = parts.live.place.Width() < wanted;
        parts.mark = parts.live.place;
        parts.mark.left = std::max(parts.live.place.left - mark, room.left);
        parts.mark.right = std::min(parts.mark.left + scaled(kMark), parts.live.place.left);
        room.right = std::max(parts.mark.left - scaled(kGap), room.left);
    }
    // What has happened keeps a part of the room, so that it is seen that something has; the time that is pointed at all it needs.
    const LONG hint = width(what.hint), sentence = width(told);
    const LONG wanted = what.pointed.empty() ? std::min(sentence, scaled(kLeastTold)) : sentence;
    const LONG kept = told.empty() ? 0 : wanted + scaled(kGap);
    parts.hint.place.right = std::clamp(room.right - kept, room.left, std::min(room.left + hint, room.right));
    parts.hint.cut = parts.hint.place.Width() < hint;
    const LONG behind = hint == 0 ? room.left : std::min(parts.hint.place.right + scaled(kGap), room.right);
    parts.told.place = CRect(std::max(behind, room.right - sentence), line.top, room.right, line.bottom);
    parts.told.cut = parts.told.place.Width() < sentence;
    return parts;
}

// A ring, a dot or a cross, so that nobody needs the colour.
void DrawMark(CDC& dc, const CRect& place, StatusLine::Mark mark) {
    const auto size = static_cast<float>(place.Width());
    const float x = static_cast<float>(place.left) + size / 2, y = static_cast<float>(place.top + place.bottom) / 2;
    if (size < 1) return;
    if (mark == StatusLine::Mark::Coming) {
        const ORVIK_CURVE_POINT dot = {x, y};
        ::OrvikSmoothPolyline(dc.m_hDC, &dot, 1, kComing, size);
    } else if (mark == StatusLine::Mark::Waiting) {
        constexpr int kCorners = 24;
        constexpr double kTurn = 6.283185307179586;
        const float line = size / 6, radius = (size - line) / 2;
        ORVIK_CURVE_POINT ring[kCorners + 1];
        for (int i = 0; i <= kCorners; ++i)
            ring[i] = {x + radius * static_cast<float>(std::cos(kTurn * i / kCorners)),
                       y + radius * static_cast<float>(std::sin(kTurn * i / kCorners))};
        ::OrvikSmoothPolyline(dc.m_hDC, ring, kCorners + 1, ::GetSysColor(COLOR_BTNTEXT), line);
    } else {
        const float line = size / 4, reach = (size - line) / 2;
        const ORVIK_CURVE_POINT falling[] = {{x - reach, y - reach}, {x + reach, y + reach}};
        const ORVIK_CURVE_POINT rising[] = {{x - reach, y + reach}, {x + reach, y - reach}};
        ::OrvikSmoothPolyline(dc.m_hDC, falling, 2, kLost, line);
        ::OrvikSmoothPolyline(dc.m_hDC, rising, 2, kLost, line);
    }
}
}  // namespace

StatusLine::Parts StatusLine::Place(HWND window, const CRect& place) const {
    const HDC screen = ::GetDC(window);
    CDC dc;
    dc.Attach(screen);
    Parts parts;
    {
        const Letters letters(dc, window);
        parts = PlaceIn(dc, window, place, *this, Told());
    }
    dc.Detach();
    ::ReleaseDC(window, screen);
    return parts;
}

StatusLine::Parts StatusLine::Paint(CDC& dc, HWND window, const CRect& place) const {
    const Letters letters(dc, window);
    const Parts parts = PlaceIn(dc, window, place, *this, Told());
    dc.SetTextColor(::GetSysColor(COLOR_BTNTEXT));
    dc.SetBkMode(TRANSPARENT);
    for (const Part* const part : {&parts.hint, &parts.told, &parts.live}) {
        CRect at = part->place;
        dc.DrawText(part->text->c_str(), static_cast<int>(part->text->size()), at,
                    DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
    }
    if (!live.empty()) DrawMark(dc, parts.mark, mark);
    return parts;
}

std::string StatusLine::Said() const {
    std::string said;
    for (const std::string* const part : {&hint, &Told(), &live}) {
        if (!part->empty()) said += (said.empty() ? "" : " ") + *part;
    }
    return said;
}
