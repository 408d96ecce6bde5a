// The tree of windows as it lies on the desktop: order, relations, points.
#include <algorithm>
#include <cstring>

#include "platform/posix/window/window_internal.h"

namespace orvik::detail {

Window* ContainerOf(const Window& window) {
    if ((window.style & WS_CHILD) != 0 && window.parent != nullptr) return FindWindowOf(window.parent);
    return window.messageOnly || window.thread == 0 ? nullptr : &Desktop();
}

void Unlink(Window& window) {
    if (Window* container = ContainerOf(window)) std::erase(container->children, window.handle);
}

void Link(Window& window) {
    Window* container = ContainerOf(window);
    if (container == nullptr) return;
    auto& order = container->children;
    std::erase(order, window.handle);
    order.insert(window.style & WS_CHILD ? order.end() : order.begin(), window.handle);
}

Window& RootOf(Window& window) {
    Window* at = &window;
    while ((at->style & WS_CHILD) != 0) {
        Window* up = FindWindowOf(at->parent);
        if (up == nullptr) break;
        at = up;
    }
    return *at;
}

HWND RootHandle(HWND handle) {
    const std::lock_guard kernel(KernelLock());
    Window* window = FindWindowOf(handle);
    return window == nullptr ? nullptr : RootOf(*window).handle;
}

bool CanBeSeen(const Window& window) {
    for (const Window* at = &window;; at = FindWindowOf(at->parent)) {
        if (at == nullptr || (at->style & WS_VISIBLE) == 0 || at->messageOnly) return false;
        if ((at->style & WS_CHILD) == 0) return true;
    }
}

POINT OriginOf(const Window& window) {
    POINT origin{};
    for (const Window* at = &window; at != nullptr; at = at->style & WS_CHILD ? FindWindowOf(at->parent) : nullptr) {
        origin.x += at->rectangle.left;
        origin.y += at->rectangle.top + at->bar;
    }
    return origin;
}

bool IsBelow(const Window& window, HWND above) {
    for (const Window* at = &window; at != nullptr; at = at->style & WS_CHILD ? FindWindowOf(at->parent) : nullptr) {
        if (at->handle == above) return true;
    }
    return false;
}

PixelRegion VisibleRegion(const Window& window, bool clipChildren, bool clipSiblings) {
    PixelRegion area;
    if (!CanBeSeen(window)) return area;
    area.Combine(window.Client(), RGN_OR);
    if (clipChildren) {
        for (const HWND child : window.children) {
            const Window* each = FindWindowOf(child);
            if (each != nullptr && (each->style & WS_VISIBLE) != 0) area.Combine(each->rectangle, RGN_DIFF);
        }
    }
    for (const Window* at = &window; (at->style & WS_CHILD) != 0; at = FindWindowOf(at->parent), clipSiblings = true) {
        const Window* parent = FindWindowOf(at->parent);
        area.Offset(at->rectangle.left, at->rectangle.top);
        area.Combine(parent->Client(), RGN_AND);
        if (!clipSiblings || (at != &window && (at->style & WS_CLIPSIBLINGS) == 0)) continue;
        for (const HWND sibling : parent->children) {
            if (sibling == at->handle) break;
            const Window* above = FindWindowOf(sibling);
            if (above != nullptr && (above->style & WS_VISIBLE) != 0) area.Combine(above->rectangle, RGN_DIFF);
        }
    }
    return area;
}
}  // namespace orvik::detail

using namespace orvik::detail;

namespace {
bool Skipped(const Window& window, UINT flags) {
    return ((flags & CWP_SKIPINVISIBLE) != 0 && (window.style & WS_VISIBLE) == 0) ||
           ((flags & CWP_SKIPDISABLED) != 0 && (window.style & WS_DISABLED) != 0) ||
           ((flags & CWP_SKIPTRANSPARENT) != 0 && (window.exStyle & WS_EX_TRANSPARENT) != 0);
}

HWND ChildAt(const Window& parent, POINT client, UINT flags) {
    for (const HWND child : parent.children) {
        const Window* each = FindWindowOf(child);
        if (each != nullptr && !Skipped(*each, flags) && HoldsPoint(each->rectangle, client)) return child;
    }
    return nullptr;
}

// Calls the procedure for windows listed beforehand, as long as they are there.
BOOL EnumerateAll(const std::vector<HWND>& windows, WNDENUMPROC procedure, LPARAM parameter) {
    for (const HWND each : windows) {
        if (IsWindow(each) && !procedure(each, parameter)) return FALSE;
    }
    return TRUE;
}

void ListBelow(const Window& window, std::vector<HWND>& list) {
    // Without recursion: windows may be nested deeply.
    std::vector<HWND> waiting(window.children.rbegin(), window.children.rend());
    while (!waiting.empty()) {
        const HWND next = waiting.back();
        waiting.pop_back();
        const Window* each = FindWindowOf(next);
        if (each == nullptr) continue;
        list.push_back(next);
        waiting.insert(waiting.end(), each->children.rbegin(), each->children.rend());
    }
}
}  // namespace

HWND GetDesktopWindow() {
    const std::lock_guard kernel(KernelLock());
    return Desktop().handle;
}

HWND GetTopWindow(HWND handle) { return GetWindow(handle != nullptr ? handle : GetDesktopWindow(), GW_CHILD); }

HWND GetWindow(HWND handle, UINT command) {
    return With<HWND>(handle, [&](const Window& window) -> HWND {
        if (command == GW_OWNER) return window.style & WS_CHILD ? nullptr : window.parent;
        if (command == GW_CHILD) return window.children.empty() ? nullptr : window.children.front();
        const Window* container = ContainerOf(window);
        if (command > GW_CHILD) SetLastError(ERROR_INVALID_PARAMETER);
        if (command > GW_CHILD || container == nullptr) return nullptr;
        const auto& order = container->children;
        if (command == GW_HWNDFIRST) return order.front();
        if (command == GW_HWNDLAST) return order.back();
        const auto at = std::find(order.begin(), order.end(), handle);
        if (command == GW_HWNDPREV) return at == order.begin() ? nullptr : *(at - 1);
        return at == order.end() || at + 1 == order.end() ? nullptr : *(at + 1);
    });
}

HWND GetAncestor(HWND handle, UINT flags) {
    return With<HWND>(handle, [&](Window& window) -> HWND {
        if (window.thread == 0) return nullptr;
        if (flags == GA_PARENT) {
            const Window* container = ContainerOf(window);
            return container == nullptr ? nullptr : container->handle;
        }
        Window* at = &RootOf(window);
        while (flags == GA_ROOTOWNER && at->parent != nullptr) {
            Window* owner = FindWindowOf(at->parent);
            if (owner == nullptr) break;
            at = &RootOf(*owner);
        }
        return at->handle;
    });
}

BOOL EnumChildWindows(HWND parent, WNDENUMPROC procedure, LPARAM parameter) {
    std::vector<HWND> list;
    if (parent == nullptr) parent = GetDesktopWindow();
    const bool there = With<bool>(parent, [&](const Window& window) {
        ListBelow(window, list);
        return true;
    });
    return there && EnumerateAll(list, procedure, parameter);
}

BOOL EnumThreadWindows(DWORD thread, WNDENUMPROC procedure, LPARAM parameter) {
    std::vector<HWND> list;
    {
        const std::lock_guard kernel(KernelLock());
        for (const HWND each : Desktop().children) {
            const Window* window = FindWindowOf(each);
            if (window != nullptr && window->thread == thread) list.push_back(each);
        }
    }
    return !list.empty() && EnumerateAll(list, procedure, parameter);
}

HWND WindowFromPoint(POINT screen) {
    const std::lock_guard kernel(KernelLock());
    const Window* at = &Desktop();
    for (;;) {
        const HWND child = ChildAt(*at, screen, CWP_SKIPINVISIBLE | (at->thread != 0 ? CWP_SKIPDISABLED : 0));
        if (child == nullptr) return at->handle;
        at = FindWindowOf(child);
        screen.x -= at->rectangle.left;
        screen.y -= at->rectangle.top + at->bar;
    }
}

HWND ChildWindowFromPoint(HWND parent, POINT client) { return ChildWindowFromPointEx(parent, client, CWP_ALL); }

HWND ChildWindowFromPointEx(HWND parent, POINT client, UINT flags) {
    return With<HWND>(parent, [&](const Window& window) -> HWND {
        if (!HoldsPoint(window.Client(), client)) return nullptr;
        const HWND child = ChildAt(window, client, flags);
        return child != nullptr ? child : parent;
    });
}

BOOL GetClientRect(HWND handle, LPRECT rectangle) {
    if (rectangle == nullptr) return Finish(ERROR_INVALID_PARAMETER);
    return With<BOOL>(handle, [&](const Window& window) {
        *rectangle = window.Client();
        return TRUE;
    });
}

BOOL GetWindowRect(HWND handle, LPRECT rectangle) {
    if (rectangle == nullptr) return Finish(ERROR_INVALID_PARAMETER);
    return With<BOOL>(handle, [&](const Window& window) {
        const POINT origin = OriginOf(window);
        *rectangle = Moved(window.Client(), origin.x, origin.y);
        rectangle->top -= window.bar;
        return TRUE;
    });
}

BOOL ClientToScreen(HWND handle, LPPOINT point) {
    if (point == nullptr) return Finish(ERROR_INVALID_PARAMETER);
    return With<BOOL>(handle, [&](const Window& window) {
        const POINT origin = OriginOf(window);
        *point = {point->x + origin.x, point->y + origin.y};
        return TRUE;
    });
}

BOOL ScreenToClient(HWND handle, LPPOINT point) {
    if (point == nullptr) return Finish(ERROR_INVALID_PARAMETER);
    return With<BOOL>(handle, [&](const Window& window) {
        const POINT origin = OriginOf(window);
        *point = {point->x - origin.x, point->y - origin.y};
        return TRUE;
    });
}

int MapWindowPoints(HWND from, HWND to, LPPOINT points, UINT count) {
    POINT shift{};
    if ((from != nullptr && !ClientToScreen(from, &shift)) || (to != nullptr && !ScreenToClient(to, &shift))) return 0;
    for (UINT i = 0; i < count; ++i) points[i] = {points[i].x + shift.x, points[i].y + shift.y};
    return MAKELONG(shift.x, shift.y);
}
