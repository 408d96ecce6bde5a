// What pointer and keys do in an open menu.
#include "platform/posix/dialogs/menu_loop_internal.h"

namespace orvik::detail {
namespace {
constexpr UINT kScrollPace = 60;  // ms from item to item while the pointer rests on a strip that scrolls

bool OfFrame(UINT message) { return message >= WM_NCMOUSEMOVE && message <= WM_NCMBUTTONDBLCLK; }

POINT ScreenOf(const MSG& message) {
    POINT point{GET_X_LPARAM(message.lParam), GET_Y_LPARAM(message.lParam)};
    if (!OfFrame(message.message)) ClientToScreen(message.hwnd, &point);
    return point;
}

// The message about the client area that is like one about the frame.
UINT Plain(UINT message) { return OfFrame(message) ? message - WM_NCMOUSEMOVE + WM_MOUSEMOVE : message; }
}  // namespace

bool MenuLoop::IsPressBeside(const MSG& message) const {
    return IsPress(Plain(message.message)) && HitAt(ScreenOf(message)).level < 0;
}

void MenuLoop::Handle(MSG& message) {
    switch (Plain(message.message)) {
        case WM_MOUSEMOVE:
            return Move(ScreenOf(message));
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
        case WM_RBUTTONDOWN:
        case WM_RBUTTONDBLCLK:
        case WM_MBUTTONDOWN:
        case WM_MBUTTONDBLCLK:
            return Press(ScreenOf(message), Plain(message.message));
        case WM_LBUTTONUP:
        case WM_RBUTTONUP:
            return Release(ScreenOf(message), Plain(message.message));
        case WM_MOUSEWHEEL:
            if (!IsBar(Last())) Scroll(At(Last()), -GET_WHEEL_DELTA_WPARAM(message.wParam) / 2);
            return;
        case WM_MBUTTONUP:
        case WM_KEYUP:
        case WM_SYSKEYUP:
            return;
        case WM_KEYDOWN:
        case WM_SYSKEYDOWN:
            return Key(message);
        case WM_CHAR:
        case WM_SYSCHAR:
            return Character(message.wParam);
        default:
            if (message.message == WM_TIMER && message.hwnd == nullptr && message.wParam == m_timer && m_timer != 0)
                OnTimer();
            else
                DispatchMessageA(&message);
    }
}

// --- Pointer ---

void MenuLoop::Press(POINT screen, UINT message) {
    const Hit hit = HitAt(screen);
    if (hit.level < 0) return End();
    const bool right = message == WM_RBUTTONDOWN || message == WM_RBUTTONDBLCLK;
    if (message >= WM_MBUTTONDOWN || (right && (m_flags & TPM_RIGHTBUTTON) == 0)) return;
    m_pressed = true;
    m_last = screen;
    if (hit.scroll != 0) return Scroll(At(hit.level), hit.scroll * 3 * At(hit.level).face->Looks().scroll);
    if (hit.item < 0) return;
    // A second press on the open menu's place in the bar closes it.
    if (IsBar(hit.level) && Last() > 0 && At(0).hot == hit.item) return End();
    const bool open = Last() > hit.level && At(hit.level + 1).from == hit.item;
    if (!open) CloseTo(hit.level);
    Select(hit.level, hit.item, true);
    if (!open && (*At(hit.level).face)[hit.item].submenu != nullptr) Open(hit.level, hit.item, false);
}

void MenuLoop::Move(POINT screen) {
    if (screen.x == m_last.x && screen.y == m_last.y) return;
    m_last = screen;
    m_moved = true;
    const Hit hit = HitAt(screen);
    // In a submenu, what it was opened from is marked, whatever the pointer passed on its way.
    for (int i = hit.level; i > 0; --i) Select(i - 1, At(i).from, true);
    if (hit.scroll != 0) {
        Select(hit.level, -1, true);
        return Wait(hit.scroll < 0 ? Task::ScrollUp : Task::ScrollDown, hit.level, kScrollPace);
    }
    Wait(Task::Open, -1, 0);
    if (hit.item < 0) {
        if (Last() >= 0 && !IsBar(Last())) Select(Last(), -1, true);
        return;
    }
    if (IsBar(hit.level)) {
        // Once one is open, the others open as the pointer comes to them.
        if (Last() == 0 || At(0).hot == hit.item) return;
        CloseTo(0);
        Select(0, hit.item, true);
        if ((*At(0).face)[hit.item].submenu != nullptr) Open(0, hit.item, false);
        return;
    }
    Select(hit.level, hit.item, true);
    const bool other = Last() > hit.level && At(hit.level + 1).from != hit.item;
    const bool opens = Last() == hit.level && (*At(hit.level).face)[hit.item].submenu != nullptr;
    if (!other && !opens) return;
    UINT delay = 0;
    SystemParametersInfoA(SPI_GETMENUSHOWDELAY, 0, &delay, 0);
    Wait(Task::Open, hit.level, delay);
}

void MenuLoop::Release(POINT screen, UINT message) {
    if (message == WM_RBUTTONUP && (m_flags & TPM_RIGHTBUTTON) == 0) return;
    const Hit hit = HitAt(screen);
    // The release of the press that opened a menu at the pointer chooses nothing and ends nothing.
    if (!m_pressed && !m_moved) return;
    if (hit.level < 0) {
        if (m_pressed) End();
        return;
    }
    m_pressed = false;
    if (hit.item < 0 || hit.item != At(hit.level).hot) return;
    const MenuItem& item = (*At(hit.level).face)[hit.item];
    if (item.submenu == nullptr || (!IsBar(hit.level) && Last() == hit.level)) Enter(hit.level, hit.item);
}

void MenuLoop::Wait(Task task, int level, UINT milliseconds) {
    if (m_timer != 0) KillTimer(nullptr, std::exchange(m_timer, 0u));
    m_task = task;
    m_timed = level;
    if (level < 0) return;
    if (milliseconds == 0)
        OnTimer();
    else
        m_timer = SetTimer(nullptr, 0, milliseconds, nullptr);
}

void MenuLoop::OnTimer() {
    if (m_timed < 0 || m_timed > Last()) return Wait(Task::Open, -1, 0);
    Level& level = At(m_timed);
    if (m_task != Task::Open) return Scroll(level, (m_task == Task::ScrollUp ? -1 : 1) * level.face->Looks().scroll);
    const int at = m_timed;
    Wait(Task::Open, -1, 0);
    if (Last() > at && At(at + 1).from == level.hot) return;
    CloseTo(at);
    if (level.hot >= 0 && (*level.face)[level.hot].submenu != nullptr) Open(at, level.hot, false);
}

// --- Keys ---

void MenuLoop::Enter(int level, int item) {
    if (item < 0 || !(*At(level).face)[item].Usable()) return;
    // It may have been disabled since the menu opened.
    const UINT state = GetMenuState(At(level).face->Menu(), static_cast<UINT>(item), MF_BYPOSITION);
    const MenuItem& entered = (*At(level).face)[item];
    if (entered.submenu != nullptr) return Open(level, item, true);
    if (state == 0xFFFFFFFFu || (state & (MF_GRAYED | MF_DISABLED)) != 0) return;
    m_chosen = static_cast<UINT>(entered.id);
    End();
}

// Out of a submenu, to the item that it was opened from.
void MenuLoop::Back() {
    CloseTo(Last() - 1);
    TellSelected(At(Last()), false);
}

bool MenuLoop::MoveInBar(int by) {
    if (!m_bar) return false;
    const bool open = Last() > 0;
    CloseTo(0);
    const int to = At(0).face->Step(At(0).hot, by);
    Select(0, to, false);
    if (open && to >= 0 && (*At(0).face)[to].submenu != nullptr) Open(0, to, true);
    return true;
}

void MenuLoop::Key(const MSG& message) {
    const int last = Last();
    if (last < 0) return;
    const MenuFace& face = *At(last).face;
    const int hot = At(last).hot;
    const bool bar = IsBar(last), first = last == (m_bar ? 1 : 0);
    const auto select = [&](int item) {
        if (item >= 0) Select(last, item, false);
    };
    switch (message.wParam) {
        case VK_UP:
        case VK_DOWN:
            return bar ? Enter(last, hot) : select(face.Step(hot, message.wParam == VK_UP ? -1 : 1));
        case VK_HOME:
            return select(face.Step(-1, 1));
        case VK_END:
            return select(face.Step(-1, -1));
        case VK_RETURN:
            return Enter(last, hot);
        case VK_ESCAPE:
            return bar || (first && !m_bar) ? End() : Back();
        case VK_RIGHT:
            if (!bar && hot >= 0 && face[hot].submenu != nullptr && face[hot].Usable()) return Open(last, hot, true);
            if (const int beside = face.Beside(hot, 1); beside >= 0) return select(beside);
            MoveInBar(1);
            return;
        case VK_LEFT:
            if (const int beside = face.Beside(hot, -1); beside >= 0) return select(beside);
            if (!bar && !first) return Back();
            MoveInBar(-1);
            return;
        case VK_MENU:
        case VK_F10:
            if ((HIWORD(message.lParam) & KF_REPEAT) == 0) End();
            return;
        default:
            TranslateMessage(&message);
    }
}

void MenuLoop::Character(WPARAM typed) {
    const std::string letter = m_typed.Take(typed);
    const int last = Last();
    if (letter.empty() || last < 0 || typed < VK_SPACE) return;
    const std::vector<int> found = At(last).face->ItemsFor(letter);
    if (found.size() == 1) {
        Select(last, found.front(), false);
        return Enter(last, found.front());
    }
    // Several with the same letter take turns.
    for (const int item : found) {
        if (item > At(last).hot) return Select(last, item, false);
    }
    if (!found.empty()) return Select(last, found.front(), false);
    const LRESULT answer =
        Tell(WM_MENUCHAR, MAKEWPARAM(typed, IsBar(last) ? 0 : MF_POPUP), reinterpret_cast<LPARAM>(At(last).face->Menu()));
    const int item = static_cast<short>(LOWORD(answer));
    if (HIWORD(answer) == MNC_CLOSE) End();
    if (HIWORD(answer) < MNC_EXECUTE || item < 0 || item >= At(last).face->Count()) return;
    Select(last, item, false);
    if (HIWORD(answer) == MNC_EXECUTE) Enter(last, item);
}
}  // namespace orvik::detail
