// What a window does by itself about its place, its painting and its user.
#include <algorithm>
#include <utility>

#include "platform/posix/dialogs/menu_internal.h"
#include "platform/posix/window/window_internal.h"
#include "platform/posix/window/window_paint.h"

namespace orvik::detail {
namespace {
HWND ParentOfChild(HWND handle) {
    const std::lock_guard kernel(KernelLock());
    const Window* window = FindWindowOf(handle);
    return window != nullptr && (window->style & WS_CHILD) != 0 ? window->parent : nullptr;
}

LRESULT AskParent(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
    const HWND parent = ParentOfChild(handle);
    return parent == nullptr ? 0 : SendMessageA(parent, message, wParam, lParam);
}

void TellPlace(HWND handle, const WINDOWPOS& pos) {
    RECT client{};
    POINT corner{};
    WPARAM kind = SIZE_RESTORED;  // the three are numbered alike
    {
        const std::lock_guard kernel(KernelLock());
        const Window* window = FindWindowOf(handle);
        if (window == nullptr) return;
        client = window->Client();
        corner = {window->rectangle.left, window->rectangle.top};
        kind = static_cast<WPARAM>(window->state);
    }
    if ((pos.flags & SWP_NOMOVE) == 0) SendMessageA(handle, WM_MOVE, 0, MAKELPARAM(corner.x, corner.y));
    if ((pos.flags & SWP_NOSIZE) == 0) SendMessageA(handle, WM_SIZE, kind, MAKELPARAM(client.right, client.bottom));
}

LRESULT HitTest(HWND handle, POINT screen) {
    RECT place{};
    GetWindowRect(handle, &place);
    if (!HoldsPoint(place, screen)) return HTNOWHERE;
    const std::lock_guard kernel(KernelLock());
    const Window* window = FindWindowOf(handle);
    return window != nullptr && screen.y < place.top + window->bar ? HTMENU : HTCLIENT;
}

// Alt and F10, pressed and let go of with nothing between, open the menu bar.
void NoteMenuKey(UINT key) {
    MessageQueue& queue = CurrentQueue();
    const std::lock_guard kernel(KernelLock());
    queue.menuKey = key;
}
bool TakeMenuKey(WPARAM key) {
    MessageQueue& queue = CurrentQueue();
    const std::lock_guard kernel(KernelLock());
    return std::exchange(queue.menuKey, 0u) == key && key != 0;
}

LRESULT ChooseCursor(HWND handle, WPARAM over, LPARAM lParam) {
    if (AskParent(handle, WM_SETCURSOR, over, lParam) != 0) return TRUE;
    if (GET_X_LPARAM(lParam) == HTMENU) return ShowMenuCursor(), TRUE;
    if (GET_X_LPARAM(lParam) != HTCLIENT) return FALSE;
    HCURSOR cursor = nullptr;
    {
        const std::lock_guard kernel(KernelLock());
        const Window* window = FindWindowOf(reinterpret_cast<HWND>(over));
        if (window != nullptr) cursor = window->windowClass->info.hCursor;
    }
    if (cursor == nullptr) return FALSE;
    SetCursor(cursor);
    return TRUE;
}

// The icon that the window has, or had.
LRESULT KeepIcon(HWND handle, bool set, WPARAM which, HICON icon) {
    const std::lock_guard kernel(KernelLock());
    Window* const window = FindWindowOf(handle);
    if (window == nullptr || which >= window->icons.size()) return 0;
    HICON& kept = window->icons[which];
    const HICON before = kept;
    if (set) {
        kept = icon;
        NoteChanged(*window);
    }
    return reinterpret_cast<LRESULT>(before);
}
}  // namespace

LRESULT DefaultAnswer(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_NCACTIVATE:
            return TRUE;
        case WM_GETICON:
        case WM_SETICON:
            return KeepIcon(handle, message == WM_SETICON, wParam, reinterpret_cast<HICON>(lParam));
        case WM_WINDOWPOSCHANGED:
            TellPlace(handle, *reinterpret_cast<const WINDOWPOS*>(lParam));
            return 0;
        case WM_ACTIVATE:
            if (LOWORD(wParam) != WA_INACTIVE) SetFocus(handle);
            return 0;
        case WM_MOUSEACTIVATE: {
            const LRESULT answer = AskParent(handle, message, wParam, lParam);
            return answer != 0 ? answer : MA_ACTIVATE;
        }
        case WM_CANCELMODE:
            CancelMenuOf(handle);
            if (GetCapture() == handle) ReleaseCapture();
            return 0;
        case WM_SETCURSOR:
            return ChooseCursor(handle, wParam, lParam);
        case WM_NCHITTEST:
            return HitTest(handle, {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
        case WM_NCPAINT:
            PaintMenuBar(handle);
            return 0;
        case WM_NCLBUTTONDOWN:
        case WM_NCLBUTTONDBLCLK:
            if (wParam == HTMENU) SendMessageA(handle, WM_SYSCOMMAND, SC_MOUSEMENU | HTMENU, lParam);
            return 0;
        case WM_SETREDRAW: {
            const std::lock_guard kernel(KernelLock());
            if (Window* window = FindWindowOf(handle)) {
                window->style = wParam != 0 ? window->style | WS_VISIBLE : window->style & ~WS_VISIBLE;
                RefreshContexts(RootOf(*window));
            }
            return 0;
        }
        case WM_MOUSEWHEEL:
        case WM_MOUSEHWHEEL:
        case WM_CONTEXTMENU:
        case WM_HELP:
            return AskParent(handle, message, wParam, lParam);
        case WM_RBUTTONUP: {
            POINT point{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
            ClientToScreen(handle, &point);
            SendMessageA(handle, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(handle), MAKELPARAM(point.x, point.y));
            return 0;
        }
        case WM_KEYUP:
            if (wParam == VK_APPS) SendMessageA(handle, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(handle), -1);
            return 0;
        case WM_SYSKEYDOWN:
            if (wParam == VK_F4 && GetKeyState(VK_MENU) < 0) PostMessageA(RootHandle(handle), WM_SYSCOMMAND, SC_CLOSE, 0);
            if (wParam == VK_F10 && GetKeyState(VK_SHIFT) < 0)
                SendMessageA(handle, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(handle), -1);
            else if ((wParam == VK_MENU && (HIWORD(lParam) & KF_REPEAT) == 0) || wParam == VK_F10)
                NoteMenuKey(static_cast<UINT>(wParam));
            return 0;
        case WM_SYSKEYUP:
            if (TakeMenuKey(wParam)) SendMessageA(RootHandle(handle), WM_SYSCOMMAND, SC_KEYMENU, 0);
            return 0;
        case WM_SYSCHAR:
            if (wParam > VK_SPACE && GetKeyState(VK_MENU) < 0)
                SendMessageA(RootHandle(handle), WM_SYSCOMMAND, SC_KEYMENU, static_cast<LPARAM>(wParam));
            return 0;
        case WM_SYSCOMMAND:
            if ((wParam & 0xFFF0) == SC_CLOSE) SendMessageA(handle, WM_CLOSE, 0, 0);
            if ((wParam & 0xFFF0) == SC_KEYMENU) TrackMenuBarByKey(handle, static_cast<WPARAM>(lParam));
            if ((wParam & 0xFFF0) == SC_MOUSEMENU) TrackMenuBarByMouse(handle, {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
            return 0;
        default:
            return PaintingAnswer(handle, message, wParam, lParam);
    }
}

}  // namespace orvik::detail
