// The loop of an open menu, from its first message to its last.
#include "platform/posix/dialogs/menu_loop_internal.h"

namespace orvik::detail {
namespace {
thread_local MenuLoop* t_current = nullptr;
}

MenuLoop* MenuLoop::Current() { return t_current; }

MenuLoop::MenuLoop(HWND owner, HMENU menu, UINT flags, bool bar) : m_owner(owner), m_menu(menu), m_flags(flags), m_bar(bar) {
    t_current = this;
    GetCursorPos(&m_last);
    SetCapture(owner);
    Tell(WM_ENTERMENULOOP, !bar, 0);
    ShowMenuCursor();
    Tell(WM_INITMENU, reinterpret_cast<WPARAM>(menu), 0);
    if (!bar) return;
    RECT window{};
    GetWindowRect(owner, &window);
    m_levels.emplace_back();
    m_levels.back().face = std::make_unique<MenuFace>(owner, menu, window.right - window.left);
}

MenuLoop::~MenuLoop() {
    Close();
    t_current = nullptr;
}

LRESULT MenuLoop::Tell(UINT message, WPARAM wParam, LPARAM lParam) const {
    return (m_flags & TPM_NONOTIFY) != 0 ? 0 : SendMessageA(m_owner, message, wParam, lParam);
}

void MenuLoop::OpenFirst(const PopupPlace& place) {
    Tell(WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(m_menu), 0);
    if (m_over || !Show(m_menu, -1, place)) m_over = true;
}

void MenuLoop::Run() {
    const HWND active = GetActiveWindow();
    while (!m_over && IsWindow(m_owner) && GetActiveWindow() == active) {
        const HWND capture = GetCapture();
        if (capture == nullptr) SetCapture(m_owner);
        if (capture != nullptr && capture != m_owner) return;  // somebody else works with the pointer now
        // What is not the menu's stays in the queue, for whoever reads on.
        MSG message;
        if (PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_POSTMESSAGE) &&
            (message.message == WM_QUIT || IsPressBeside(message)))
            return;
        if (!PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
            Idle();
        } else if (message.message == WM_QUIT) {
            PostQuitMessage(static_cast<int>(message.wParam));
            return;
        } else {
            m_idleTold = false;
            Handle(message);
        }
    }
}

void MenuLoop::Idle() {
    if (std::exchange(m_idleTold, true)) {
        MsgWaitForMultipleObjects(0, nullptr, FALSE, INFINITE, QS_ALLINPUT);
        return;
    }
    // What the owner does in its idle time may bring messages, so these are looked for once more before waiting.
    const HWND shown = Last() >= 0 && At(Last()).window != nullptr ? At(Last()).window : m_owner;
    Tell(WM_ENTERIDLE, MSGF_MENU, reinterpret_cast<LPARAM>(shown));
}

void MenuLoop::Close() {
    if (m_timer != 0) KillTimer(nullptr, m_timer);
    CloseTo(m_bar ? 0 : -1);
    if (m_bar) {
        m_levels.clear();
        PaintMenuBar(m_owner);
    }
    if (GetCapture() == m_owner) ReleaseCapture();
    Tell(WM_MENUSELECT, MAKEWPARAM(0, 0xFFFF), 0);
    Tell(WM_EXITMENULOOP, !m_bar, 0);
}

void CancelMenuOf(HWND window) {
    MenuLoop* loop = MenuLoop::Current();
    if (loop != nullptr && (loop->Owner() == window || IsChild(window, loop->Owner()))) loop->End();
}

LRESULT CALLBACK MenuProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    MenuLoop* loop = MenuLoop::Current();
    switch (message) {
        case WM_PAINT:
        case WM_PRINTCLIENT: {
            PAINTSTRUCT paint;
            const HDC given = reinterpret_cast<HDC>(wParam), dc = given != nullptr ? given : BeginPaint(window, &paint);
            RECT client{};
            GetClientRect(window, &client);
            if (loop != nullptr && dc != nullptr) loop->PaintPopup(window, dc, client);
            if (given == nullptr) EndPaint(window, &paint);
            return 0;
        }
        case WM_ERASEBKGND:
            return TRUE;
        case WM_MOUSEACTIVATE:
            return MA_NOACTIVATE;
        case MN_GETHMENU:
            return loop != nullptr ? reinterpret_cast<LRESULT>(loop->MenuIn(window)) : 0;
        default:
            break;
    }
    if (loop != nullptr && message == OrvikDescribeMessage()) return loop->Describe(window, OrvikDescribed(lParam)), TRUE;
    if (loop != nullptr && message == OrvikActMessage()) return loop->Act(window, OrvikAsked(lParam));
    return DefWindowProcA(window, message, wParam, lParam);
}
}  // namespace orvik::detail

using namespace orvik::detail;

namespace {
PopupPlace PlaceAt(HWND window, UINT flags, POINT screen) {
    PopupPlace place;
    place.owner = GetAncestor(window, GA_ROOT);
    ScreenToClient(place.owner, &screen);
    place.anchor = {screen.x, screen.y, screen.x, screen.y};
    const bool right = (flags & TPM_RIGHTALIGN) != 0;
    if ((flags & TPM_VCENTERALIGN) != 0) {
        place.side = right ? PopupSide::Left : PopupSide::Right;
        place.edge = PopupEdge::Middle;
    } else {
        place.side = (flags & TPM_BOTTOMALIGN) != 0 ? PopupSide::Above : PopupSide::Below;
        place.edge = right ? PopupEdge::Far : (flags & TPM_CENTERALIGN) != 0 ? PopupEdge::Middle : PopupEdge::Near;
    }
    return place;
}
}  // namespace

BOOL TrackPopupMenu(HMENU menu, UINT flags, int x, int y, int, HWND window, LPCRECT) {
    if (!IsMenu(menu)) return Finish(ERROR_INVALID_MENU_HANDLE);
    if (!IsWindow(window)) return Finish(ERROR_INVALID_WINDOW_HANDLE);
    if (GetWindowThreadProcessId(window, nullptr) != GetCurrentThreadId()) return Finish(ERROR_ACCESS_DENIED);
    if (MenuLoop::Current() != nullptr) return Finish(ERROR_POPUP_ALREADY_ACTIVE);
    UINT chosen = 0;
    {
        MenuLoop loop(window, menu, flags, false);
        loop.OpenFirst(PlaceAt(window, flags, {x, y}));
        loop.Run();
        chosen = loop.Chosen();
    }
    if ((flags & TPM_RETURNCMD) != 0) return static_cast<BOOL>(chosen);
    if (chosen != 0 && (flags & TPM_NONOTIFY) == 0 && IsWindow(window)) PostMessageA(window, WM_COMMAND, chosen, 0);
    return TRUE;
}

BOOL EndMenu() {
    MenuLoop* loop = MenuLoop::Current();
    if (loop != nullptr) loop->End();
    return loop != nullptr;
}
