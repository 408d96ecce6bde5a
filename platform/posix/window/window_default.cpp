// What a window does by itself about its place, its painting and its user.
#include <algorithm>

#include "platform/posix/dialogs/menu.h"
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

LRESULT ChooseCursor(HWND handle, WPARAM over, LPARAM lParam) {
    if (AskParent(handle, WM_SETCURSOR, over, lParam) != 0) return TRUE;
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
}  // namespace

LRESULT DefaultAnswer(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_NCACTIVATE:
            return TRUE;
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
            if (GetCapture() == handle) ReleaseCapture();
            return 0;
        case WM_SETCURSOR:
            return ChooseCursor(handle, wParam, lParam);
        case WM_NCHITTEST: {
            RECT place{};
            GetWindowRect(handle, &place);
            return HoldsPoint(place, {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)}) ? HTCLIENT : HTNOWHERE;
        }
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
            if (wParam == VK_F4 && GetKeyState(VK_MENU) < 0) {
                HWND root = handle;
                while (const HWND parent = ParentOfChild(root)) root = parent;
                PostMessageA(root, WM_SYSCOMMAND, SC_CLOSE, 0);
            }
            return 0;
        case WM_SYSCOMMAND:
            if ((wParam & 0xFFF0) == SC_CLOSE) SendMessageA(handle, WM_CLOSE, 0, 0);
            return 0;
        default:
            return PaintingAnswer(handle, message, wParam, lParam);
    }
}

}  // namespace orvik::detail
