// The popups of an open menu: opening, closing, marking, scrolling, painting.
#include <algorithm>

#include "platform/posix/dialogs/menu_loop_internal.h"
#include "platform/posix/drawing/draw.h"
#include "platform/posix/drawing/rect.h"
#include "platform/posix/window/window_paint.h"

namespace orvik::detail {

// False when there is nothing to show, or the menu is over.
bool MenuLoop::Show(HMENU menu, int from, const PopupPlace& place) {
    Level level;
    level.face = std::make_unique<MenuFace>(m_owner, menu);
    level.from = from;
    if (m_over || level.face->Count() == 0) return false;
    level.window = CreateWindowExA(WS_EX_TOOLWINDOW | WS_EX_TOPMOST | WS_EX_NOACTIVATE, "#32768", "", WS_POPUP, 0, 0, 0, 0,
                                   m_owner, nullptr, nullptr, nullptr);
    if (level.window == nullptr) return false;
    RECT room{};
    SystemParametersInfoA(SPI_GETWORKAREA, 0, &room, 0);
    SIZE size = level.face->Size();
    size = {std::min(size.cx, room.right - room.left), std::min(size.cy, room.bottom - room.top)};
    const HWND window = level.window;
    m_levels.push_back(std::move(level));
    PutPopup(window, place, size);
    ShowWindow(window, SW_SHOWNA);
    UpdateWindow(window);
    return true;
}

void MenuLoop::Open(int level, int item, bool markFirst) {
    CloseTo(level);
    const HMENU menu = (*At(level).face)[item].submenu;
    if (m_over || !(*At(level).face)[item].Usable() || !IsMenu(menu)) return;
    Tell(WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(menu), MAKELPARAM(item, FALSE));
    if (m_over || !IsWindow(m_owner)) return;
    PopupPlace place;
    place.owner = IsBar(level) ? m_owner : At(level).window;
    place.anchor = Within(At(level), item);
    if (IsBar(level)) {
        OffsetRect(&place.anchor, 0, -static_cast<int>(At(0).face->Size().cy));
    } else {
        // The first item of the submenu stands beside the one that it was opened from.
        place.side = PopupSide::Right;
        OffsetRect(&place.anchor, 0, -At(level).face->Looks().edge);
    }
    if (!Show(menu, item, place))
        Tell(WM_UNINITMENUPOPUP, reinterpret_cast<WPARAM>(menu), 0);
    else if (markFirst)
        Select(Last(), At(Last()).face->Step(-1, 1), false);
}

void MenuLoop::CloseTo(int level) {
    while (Last() > level) {
        const HWND window = At(Last()).window;
        const HMENU menu = At(Last()).face->Menu();
        m_levels.pop_back();
        if (IsWindow(window)) DestroyWindow(window);
        Tell(WM_UNINITMENUPOPUP, reinterpret_cast<WPARAM>(menu), 0);
    }
}

void MenuLoop::Select(int level, int item, bool byMouse) {
    Level& to = At(level);
    if (to.hot == item) return;
    to.hot = item;
    if (item >= 0) Reveal(to, item);
    Refresh(to);
    TellSelected(to, byMouse);
}

void MenuLoop::TellSelected(const Level& level, bool byMouse) {
    if (level.hot < 0) return;
    const MenuItem& item = (*level.face)[level.hot];
    const UINT flags = (item.type & (MF_BITMAP | MF_OWNERDRAW | MF_SEPARATOR)) | (item.state & ~static_cast<UINT>(MF_DEFAULT)) |
                       MF_HILITE | (byMouse ? MF_MOUSESELECT : 0) | (item.submenu != nullptr ? MF_POPUP : 0);
    const WPARAM named = item.submenu != nullptr ? static_cast<WPARAM>(level.hot) : item.id;
    Tell(WM_MENUSELECT, MAKEWPARAM(named, flags), reinterpret_cast<LPARAM>(level.face->Menu()));
}

void MenuLoop::Refresh(const Level& level) const {
    if (level.window == nullptr) return PaintMenuBar(m_owner);
    InvalidateRect(level.window, nullptr, FALSE);
}

RECT MenuLoop::Within(const Level& level, int item) const {
    RECT place = level.face->PlaceOf(item);
    OffsetRect(&place, 0, -static_cast<int>(level.scrolled));
    return place;
}

LONG MenuLoop::Hidden(const Level& level) const {
    RECT client{};
    if (level.window != nullptr) GetClientRect(level.window, &client);
    return level.window == nullptr ? 0 : std::max(level.face->Size().cy - client.bottom, LONG{0});
}

void MenuLoop::Scroll(Level& level, LONG by) {
    const LONG to = std::clamp(level.scrolled + by, LONG{0}, Hidden(level));
    if (std::exchange(level.scrolled, to) != to) Refresh(level);
}

void MenuLoop::Reveal(Level& level, int item) {
    const LONG hidden = Hidden(level), strip = level.face->Looks().scroll;
    if (hidden == 0) return;
    const RECT place = Within(level, item);
    const LONG bottom = level.face->Size().cy - hidden;
    if (place.top < strip) Scroll(level, place.top - strip);
    if (place.bottom > bottom - strip) Scroll(level, place.bottom - (bottom - strip));
}

MenuLoop::Hit MenuLoop::HitAt(POINT screen) const {
    for (int i = Last(); i >= 0; --i) {
        const Level& level = At(i);
        RECT window{};
        GetWindowRect(IsBar(i) ? m_owner : level.window, &window);
        if (IsBar(i)) window.bottom = window.top + level.face->Size().cy;
        if (!PtInRect(&window, screen)) continue;
        Hit hit{i, -1, 0};
        const POINT point{screen.x - window.left, screen.y - window.top};
        const LONG hidden = Hidden(level), strip = level.face->Looks().scroll;
        if (level.scrolled > 0 && point.y < strip) hit.scroll = -1;
        if (level.scrolled < hidden && point.y >= window.bottom - window.top - strip) hit.scroll = 1;
        if (hit.scroll == 0) hit.item = level.face->ItemAt({point.x, point.y + level.scrolled});
        if (hit.item >= 0 && (*level.face)[hit.item].Is(MF_SEPARATOR)) hit.item = -1;
        return hit;
    }
    return {};
}

bool MenuLoop::PlaceOf(HMENU menu, int item, RECT& screen) const {
    for (int i = 0; i <= Last(); ++i) {
        if (At(i).face->Menu() != menu || item < 0 || item >= At(i).face->Count()) continue;
        RECT window{};
        GetWindowRect(IsBar(i) ? m_owner : At(i).window, &window);
        screen = Moved(Within(At(i), item), window.left, window.top);
        return true;
    }
    return false;
}

int MenuLoop::HotInBar(HWND window) const { return m_bar && window == m_owner && !m_levels.empty() ? At(0).hot : -1; }

HMENU MenuLoop::MenuIn(HWND popup) const {
    for (const Level& level : m_levels) {
        if (level.window == popup) return level.face->Menu();
    }
    return nullptr;
}

void MenuLoop::PaintPopup(HWND window, HDC dc, const RECT& client) {
    const auto found = std::find_if(m_levels.begin(), m_levels.end(), [&](const Level& each) { return each.window == window; });
    if (found == m_levels.end()) return;
    const Level& level = *found;
    const MenuLooks& looks = level.face->Looks();
    const HBRUSH ground = CreateSolidBrush(looks.ground), rule = CreateSolidBrush(looks.rule), ink = CreateSolidBrush(looks.text);
    FillRect(dc, &client, ground);
    for (int i = 0; i < level.face->Count(); ++i) {
        const RECT place = Within(level, i);
        if (place.bottom > client.top && place.top < client.bottom) level.face->Paint(dc, i, place, i == level.hot);
    }
    // A strip with a small triangle, where more is to be seen in that direction.
    const auto strip = [&](LONG top, LONG point, LONG away) {
        const RECT area{client.left, top, client.right, top + looks.scroll};
        FillRect(dc, &area, ground);
        for (LONG i = 0; i < looks.Pixels(4); ++i) {
            const LONG x = (client.left + client.right) / 2, y = point + i * away;
            const RECT stroke{x - i, y, x + i + 1, y + 1};
            FillRect(dc, &stroke, ink);
        }
    };
    if (level.scrolled > 0) strip(client.top, client.top + looks.Pixels(6), 1);
    if (level.scrolled < Hidden(level)) strip(client.bottom - looks.scroll, client.bottom - looks.Pixels(7), -1);
    FrameRect(dc, &client, rule);
    for (const HBRUSH each : {ground, rule, ink}) DeleteObject(each);
}
}  // namespace orvik::detail
