// Activation, focus and what disabling does to them.
#include <algorithm>

#include "platform/posix/window/window_internal.h"

namespace orvik::detail {
namespace {
HWND g_foreground = nullptr;  // under the kernel lock

// The window that becomes active when another goes: its owner, else the thread's topmost one that is shown and enabled.
HWND Successor(const Window& leaving) {
    const auto suits = [&](HWND handle) {
        const Window* window = FindWindowOf(handle);
        return window != nullptr && window->handle != leaving.handle && window->thread == leaving.thread && CanBeSeen(*window) &&
               (window->style & (WS_DISABLED | WS_CHILD)) == 0 && !window->popup && !window->destroying;
    };
    if (suits(leaving.parent)) return leaving.parent;
    const auto& order = Desktop().children;
    const auto found = std::find_if(order.begin(), order.end(), suits);
    return found == order.end() ? nullptr : *found;
}
}  // namespace

HWND ForegroundWindow() { return g_foreground; }

void MoveFocus(HWND window) {
    MessageQueue& queue = CurrentQueue();
    HWND before = nullptr;
    {
        const std::lock_guard kernel(KernelLock());
        if (queue.focus == window) return;
        before = std::exchange(queue.focus, window);
    }
    if (before != nullptr) SendMessageA(before, WM_KILLFOCUS, reinterpret_cast<WPARAM>(window), 0);
    // Who lost the focus may have taken it back.
    if (window != nullptr && GetFocus() == window) SendMessageA(window, WM_SETFOCUS, reinterpret_cast<WPARAM>(before), 0);
}

bool Activate(HWND handle, bool byMouse, bool byScreen) {
    MessageQueue& queue = CurrentQueue();
    HWND before = nullptr;
    {
        const std::lock_guard kernel(KernelLock());
        const Window* window = handle == nullptr ? nullptr : FindWindowOf(handle);
        if (handle != nullptr && (window == nullptr || window->thread != queue.thread)) return false;
        if (queue.active == handle) return true;
        before = queue.active;
    }
    if (before != nullptr) {
        SendMessageA(before, WM_NCACTIVATE, FALSE, reinterpret_cast<LPARAM>(handle));
        SendMessageA(before, WM_ACTIVATE, WA_INACTIVE, reinterpret_cast<LPARAM>(handle));
        if (handle == nullptr) SendMessageA(before, WM_ACTIVATEAPP, FALSE, 0);
    }
    {
        const std::lock_guard kernel(KernelLock());
        Window* window = handle == nullptr ? nullptr : FindWindowOf(handle);
        if (handle != nullptr && window == nullptr) return false;
        queue.active = g_foreground = handle;
        if (window != nullptr && !window->messageOnly) {
            Unlink(*window);
            Link(*window);
            if (!byScreen) {
                ++window->raised;
                NoteChanged(*window);
            }
        }
    }
    if (handle != nullptr) {
        if (before == nullptr) SendMessageA(handle, WM_ACTIVATEAPP, TRUE, 0);
        SendMessageA(handle, WM_NCACTIVATE, TRUE, reinterpret_cast<LPARAM>(before));
        SendMessageA(handle, WM_ACTIVATE, byMouse ? WA_CLICKACTIVE : WA_ACTIVE, reinterpret_cast<LPARAM>(before));
    }
    // A window that does not care about the focus has it all the same.
    const HWND focus = GetFocus();
    if (GetActiveWindow() == handle && (focus == nullptr || RootHandle(focus) != handle)) MoveFocus(handle);
    return GetActiveWindow() == handle;
}

void LeaveWindow(HWND handle) {
    MessageQueue& queue = CurrentQueue();
    HWND next = nullptr;
    bool active = false, focus = false;
    {
        const std::lock_guard kernel(KernelLock());
        const Window* window = FindWindowOf(handle);
        if (window == nullptr || window->thread != queue.thread) return;
        active = queue.active == handle;
        const Window* focused = FindWindowOf(queue.focus);
        focus = focused != nullptr && IsBelow(*focused, handle);
        if (active) next = Successor(*window);
        if (!active && focus && (window->style & WS_CHILD) != 0) next = window->parent;
        const Window* captured = FindWindowOf(queue.capture);
        if (window->destroying && captured != nullptr && IsBelow(*captured, handle)) queue.capture = nullptr;
    }
    if (active)
        Activate(next, false);
    else if (focus)
        MoveFocus(next);
}
}  // namespace orvik::detail

using namespace orvik::detail;

HWND GetActiveWindow() {
    MessageQueue& queue = CurrentQueue();
    const std::lock_guard kernel(KernelLock());
    return queue.active;
}

HWND SetActiveWindow(HWND window) {
    const HWND before = GetActiveWindow();
    if (window != nullptr) {
        if (!IsWindow(window)) {
            SetLastError(ERROR_INVALID_WINDOW_HANDLE);
            return nullptr;
        }
        if ((GetWindowLongPtrA(window, GWL_STYLE) & WS_CHILD) != 0) return nullptr;
    }
    return Activate(window, false) ? before : nullptr;
}

HWND GetForegroundWindow() {
    const std::lock_guard kernel(KernelLock());
    return ForegroundWindow();
}

BOOL SetForegroundWindow(HWND window) {
    const HWND root = RootHandle(window);
    if (root == nullptr) return Finish(ERROR_INVALID_WINDOW_HANDLE);
    return Activate(root, false);
}

HWND GetFocus() {
    MessageQueue& queue = CurrentQueue();
    const std::lock_guard kernel(KernelLock());
    return queue.focus;
}

HWND SetFocus(HWND handle) {
    MessageQueue& queue = CurrentQueue();
    HWND before = nullptr, root = nullptr;
    {
        const std::lock_guard kernel(KernelLock());
        before = queue.focus;
        if (handle != nullptr) {
            Window* window = FindWindowOf(handle);
            if (window == nullptr || window->thread != queue.thread) {
                SetLastError(window == nullptr ? ERROR_INVALID_WINDOW_HANDLE : ERROR_ACCESS_DENIED);
                return nullptr;
            }
            for (const Window* at = window; at != nullptr; at = at->style & WS_CHILD ? FindWindowOf(at->parent) : nullptr) {
                if ((at->style & WS_DISABLED) != 0) return nullptr;
            }
            if (!RootOf(*window).messageOnly) root = RootOf(*window).handle;
        }
    }
    if (before == handle) return before;
    if (root != nullptr && !Activate(root, false)) return nullptr;
    if (handle != nullptr && !IsWindow(handle)) return nullptr;
    MoveFocus(handle);
    return before;
}

BOOL EnableWindow(HWND handle, BOOL enable) {
    bool disabled = false;
    {
        const std::lock_guard kernel(KernelLock());
        const Window* window = FindWindowOf(handle);
        if (window == nullptr) return Finish(ERROR_INVALID_WINDOW_HANDLE);
        disabled = (window->style & WS_DISABLED) != 0;
    }
    if (disabled != (enable != FALSE)) return disabled;
    if (!enable) SendMessageA(handle, WM_CANCELMODE, 0, 0);
    MessageQueue& queue = CurrentQueue();
    bool hasFocus = false;
    {
        const std::lock_guard kernel(KernelLock());
        Window* window = FindWindowOf(handle);
        if (window == nullptr) return disabled;
        window->style = enable ? window->style & ~WS_DISABLED : window->style | WS_DISABLED;
        NoteChanged(*window);
        const Window* focus = FindWindowOf(queue.focus);
        hasFocus = !enable && focus != nullptr && IsBelow(*focus, handle) && (window->style & WS_CHILD) != 0;
        hasFocus = hasFocus || (!enable && queue.focus == handle);
        if (!enable && queue.capture == handle) queue.capture = nullptr;
    }
    if (hasFocus) MoveFocus(nullptr);
    SendMessageA(handle, WM_ENABLE, enable != FALSE, 0);
    return disabled;
}
