// Moving, sizing, ordering and showing windows.
#include "platform/posix/window/window_place.h"

#include <algorithm>
#include <utility>

#include "platform/posix/dialogs/menu_internal.h"
#include "platform/posix/window/window_internal.h"
#include "platform/posix/window/window_paint.h"

namespace orvik::detail {
namespace {
constexpr UINT kNothing = SWP_NOSIZE | SWP_NOMOVE | SWP_NOZORDER;

// Moves the window in its order. False when it stands there already.
bool Reorder(Window& window, HWND after) {
    Window* container = ContainerOf(window);
    if (container == nullptr) return false;
    auto& order = container->children;
    const std::vector<HWND> before = order;
    if (after == HWND_TOPMOST || after == HWND_NOTOPMOST) {
        window.exStyle = after == HWND_TOPMOST ? window.exStyle | WS_EX_TOPMOST : window.exStyle & ~WS_EX_TOPMOST;
        after = HWND_TOP;
    }
    std::erase(order, window.handle);
    auto at = order.begin();
    if (after == HWND_BOTTOM)
        at = order.end();
    else if (after != HWND_TOP)
        at = std::find(order.begin(), order.end(), after) + 1;
    order.insert(at, window.handle);
    return order != before;
}

// What lies around a window that changed is painted anew: `uncovered` in the parent's coordinates, without the siblings above.
void InvalidateAround(const Window& window, const PixelRegion& uncovered, bool erase) {
    if ((window.style & WS_CHILD) == 0) return;
    Window* parent = FindWindowOf(window.parent);
    if (parent == nullptr) return;
    InvalidateRegion(*parent, uncovered, RDW_INVALIDATE | (erase ? RDW_ERASE : 0) | RDW_ALLCHILDREN);
}

// Carries out what `pos` says, with a menu bar of that height, and tells in its flags what came of it.
bool ApplyPlace(Window& window, WINDOWPOS& pos, LONG bar) {
    const bool wasSeen = CanBeSeen(window);
    const RECT before = window.rectangle, oldClient = window.Client();
    const bool framed = std::exchange(window.bar, bar) != bar;
    const RECT after{pos.x, pos.y, pos.x + pos.cx, pos.y + pos.cy};
    const bool moved = after.left != before.left || after.top != before.top;
    const bool sized = pos.cx != window.Width() || pos.cy != window.Height();
    const bool shown = (window.style & WS_VISIBLE) != 0;
    if (!moved) pos.flags |= SWP_NOMOVE;
    // A bar that comes, goes or wraps changes the client area.
    pos.flags = sized || framed ? pos.flags & ~SWP_NOSIZE : pos.flags | SWP_NOSIZE;
    if (shown) pos.flags &= ~SWP_SHOWWINDOW;
    if (!shown) pos.flags &= ~SWP_HIDEWINDOW;
    const bool ordered = (pos.flags & SWP_NOZORDER) == 0 && Reorder(window, pos.hwndInsertAfter);
    if (!ordered) pos.flags |= SWP_NOZORDER;
    window.rectangle = after;
    if ((pos.flags & SWP_SHOWWINDOW) != 0) window.style |= WS_VISIBLE;
    if ((pos.flags & SWP_HIDEWINDOW) != 0) window.style &= ~WS_VISIBLE;
    const bool changed = (pos.flags & kNothing) != kNothing || (pos.flags & (SWP_SHOWWINDOW | SWP_HIDEWINDOW | SWP_FRAMECHANGED));
    if (!changed) return false;

    const bool child = (window.style & WS_CHILD) != 0;
    if (!child && sized) ResizeCanvas(window);
    if (!child) {
        if (sized) window.sizedByScreen = false;
        NoteChanged(window);
    }
    RefreshContexts(RootOf(window));
    const bool isSeen = CanBeSeen(window);
    if ((pos.flags & SWP_NOREDRAW) == 0) {
        if (wasSeen && (!isSeen || moved || sized)) {
            PixelRegion left(before);
            if (isSeen) left.Combine(after, RGN_DIFF);
            InvalidateAround(window, left, true);
        }
        const UINT anew = window.windowClass->info.style;
        PixelRegion todo;
        const RECT client = window.Client();
        if (isSeen &&
            (!wasSeen || framed || (child && moved) || ordered || (pos.flags & (SWP_NOCOPYBITS | SWP_FRAMECHANGED)) != 0 ||
             (client.right != oldClient.right && (anew & CS_HREDRAW) != 0) ||
             (client.bottom != oldClient.bottom && (anew & CS_VREDRAW) != 0))) {
            todo = client;
        } else if (isSeen && sized) {
            todo = client;
            todo.Combine(oldClient, RGN_DIFF);
        }
        if (child || sized || framed || !wasSeen) InvalidateRegion(window, todo, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
    }
    if (sized || framed) window.update.Combine(window.Client(), RGN_AND);
    if (!isSeen) window.update = {};
    return true;
}

// On a screen a window can be minimised and maximised; in memory there is nothing to fill.
void AskForState(HWND handle, int command) {
    using State = ShownWindow::State;
    const std::lock_guard kernel(KernelLock());
    Window* const window = FindWindowOf(handle);
    if (window == nullptr || !HasScreen() || command == SW_HIDE || command == SW_SHOW || command == SW_SHOWNA) return;
    const State asked = command == SW_SHOWMAXIMIZED ? State::Maximised
                        : command == SW_MINIMIZE || command == SW_SHOWMINIMIZED || command == SW_SHOWMINNOACTIVE
                            ? State::Minimised
                            : State::Normal;
    if (asked == window->state) return;
    window->state = asked;
    ++window->stateAsked;
    NoteChanged(*window);
}
}  // namespace

}  // namespace orvik::detail

using namespace orvik::detail;

BOOL SetWindowPos(HWND handle, HWND insertAfter, int x, int y, int width, int height, UINT flags) {
    WINDOWPOS pos{handle, insertAfter, x, y, width, height, flags};
    bool child = false;
    {
        const std::lock_guard kernel(KernelLock());
        const Window* window = FindWindowOf(handle);
        if (window == nullptr || window->thread == 0) return Finish(ERROR_INVALID_WINDOW_HANDLE);
        child = (window->style & WS_CHILD) != 0;
        if ((flags & SWP_NOMOVE) != 0) {
            pos.x = window->rectangle.left;
            pos.y = window->rectangle.top;
        }
        if ((flags & SWP_NOSIZE) != 0) {
            pos.cx = window->Width();
            pos.cy = window->Height();
        }
        if (insertAfter == handle) pos.flags |= SWP_NOZORDER;
        const bool place =
            insertAfter == HWND_TOP || insertAfter == HWND_BOTTOM || insertAfter == HWND_TOPMOST || insertAfter == HWND_NOTOPMOST;
        if ((pos.flags & SWP_NOZORDER) == 0 && !place) {
            const Window* above = FindWindowOf(insertAfter);
            if (above == nullptr) return Finish(ERROR_INVALID_WINDOW_HANDLE);
            if (ContainerOf(*above) != ContainerOf(*window)) return Finish(ERROR_INVALID_PARAMETER);
        }
    }
    const auto bound = [&] {
        pos.cx = std::clamp(pos.cx, 0, 32767);
        pos.cy = std::clamp(pos.cy, 0, 32767);
        pos.x = std::clamp(pos.x, -32768, 32767);
        pos.y = std::clamp(pos.y, -32768, 32767);
    };
    bound();
    if (!child && (flags & SWP_SHOWWINDOW) != 0) JoinScreen(handle);
    if ((flags & SWP_NOSENDCHANGING) == 0) {
        SendMessageA(handle, WM_WINDOWPOSCHANGING, 0, reinterpret_cast<LPARAM>(&pos));
        bound();
    }
    bool changed = false;
    const LONG bar = MenuBarHeight(handle, pos.cx);
    {
        const std::lock_guard kernel(KernelLock());
        Window* window = FindWindowOf(handle);
        if (window == nullptr) return Finish(ERROR_INVALID_WINDOW_HANDLE);
        changed = ApplyPlace(*window, pos, bar);
    }
    if ((pos.flags & (SWP_NOACTIVATE | SWP_HIDEWINDOW)) == 0 && !child && IsWindowVisible(handle)) Activate(handle, false);
    if ((pos.flags & SWP_NOREDRAW) == 0 && changed && bar > 0) SendMessageA(handle, WM_NCPAINT, 1, 0);
    if ((pos.flags & (SWP_NOREDRAW | SWP_DEFERERASE)) == 0 && changed) EraseNow(handle);
    if (changed && IsWindow(handle)) SendMessageA(handle, WM_WINDOWPOSCHANGED, 0, reinterpret_cast<LPARAM>(&pos));
    if ((pos.flags & SWP_HIDEWINDOW) != 0) LeaveWindow(handle);
    return TRUE;
}

BOOL MoveWindow(HWND window, int x, int y, int width, int height, BOOL repaint) {
    return SetWindowPos(window, nullptr, x, y, width, height, SWP_NOZORDER | SWP_NOACTIVATE | (repaint ? 0 : SWP_NOREDRAW));
}

BOOL BringWindowToTop(HWND window) { return SetWindowPos(window, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE); }

BOOL ShowWindow(HWND handle, int command) {
    bool was = false, child = false, parentSeen = true;
    {
        const std::lock_guard kernel(KernelLock());
        const Window* window = FindWindowOf(handle);
        if (window == nullptr) return Finish(ERROR_INVALID_WINDOW_HANDLE);
        was = (window->style & WS_VISIBLE) != 0;
        child = (window->style & WS_CHILD) != 0;
        if (const Window* parent = child ? FindWindowOf(window->parent) : nullptr) parentSeen = CanBeSeen(*parent);
    }
    const bool show = command != SW_HIDE;
    if (!child) AskForState(handle, command);
    if (show == was) return was;
    SendMessageA(handle, WM_SHOWWINDOW, show, 0);
    if (child && !parentSeen) {
        const std::lock_guard kernel(KernelLock());
        if (Window* window = FindWindowOf(handle))
            window->style = show ? window->style | WS_VISIBLE : window->style & ~WS_VISIBLE;
        return was;
    }
    UINT flags = SWP_NOMOVE | SWP_NOSIZE | (show ? SWP_SHOWWINDOW : SWP_HIDEWINDOW);
    const bool quiet =
        command == SW_SHOWNA || command == SW_SHOWNOACTIVATE || command == SW_SHOWMINNOACTIVE || command == SW_MINIMIZE;
    if (child || quiet || !show) flags |= SWP_NOACTIVATE | SWP_NOZORDER;
    SetWindowPos(handle, HWND_TOP, 0, 0, 0, 0, flags);
    return was;
}

BOOL IsIconic(HWND handle) {
    return With<BOOL>(handle, [](const Window& window) { return window.state == ShownWindow::State::Minimised; });
}
BOOL IsZoomed(HWND handle) {
    return With<BOOL>(handle, [](const Window& window) { return window.state == ShownWindow::State::Maximised; });
}

BOOL AdjustWindowRectEx(LPRECT rectangle, DWORD, BOOL menu, DWORD) {
    if (rectangle == nullptr) return Finish(ERROR_INVALID_PARAMETER);
    if (menu) rectangle->top -= GetSystemMetrics(SM_CYMENU);
    return TRUE;
}
