// Which dots an inch a window has, and the messages of a change.
#include "platform/posix/window/dpi.h"

#include <unistd.h>
#include <algorithm>

#include "platform/dpi.h"
#include "platform/posix/drawing/display_dots_internal.h"
#include "platform/posix/kernel/threads.h"
#include "platform/posix/window/window_internal.h"
#include "platform/posix/window/window_paint.h"

using namespace orvik::detail;

namespace {
bool IsScreen(UINT dpi) { return dpi >= USER_DEFAULT_SCREEN_DPI / 2 && dpi <= 10 * USER_DEFAULT_SCREEN_DPI; }

// All windows below `root`, each behind its parent.
std::vector<HWND> TreeOf(HWND root) {
    std::vector<HWND> list;
    EnumChildWindows(
        root,
        [](HWND each, LPARAM to) -> BOOL {
            reinterpret_cast<std::vector<HWND>*>(to)->push_back(each);
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&list));
    return list;
}

void TellEach(const std::vector<HWND>& windows, UINT message) {
    for (const HWND each : windows) {
        if (IsWindow(each)) SendMessageA(each, message, 0, 0);
    }
}
}  // namespace

UINT GetDpiForSystem() { return static_cast<UINT>(DisplayDots().load()); }

UINT GetDpiForWindow(HWND handle) {
    return With<UINT>(handle, [](Window& window) { return window.thread == 0 ? GetDpiForSystem() : RootOf(window).dpi; });
}

BOOL AdjustWindowRectExForDpi(LPRECT rectangle, DWORD style, BOOL menu, DWORD exStyle, UINT) {
    return AdjustWindowRectEx(rectangle, style, menu, exStyle);
}

BOOL OrvikSetSystemDpi(UINT dpi) {
    if (!IsScreen(dpi)) return Finish(ERROR_INVALID_PARAMETER);
    DisplayDots() = static_cast<int>(dpi);
    return TRUE;
}

BOOL OrvikSetWindowDpi(HWND root, UINT dpi, const RECT* suggested) {
    RECT place{};
    {
        const std::lock_guard kernel(KernelLock());
        Window* window = FindWindowOf(root);
        if (window == nullptr || window->thread == 0) return Finish(ERROR_INVALID_WINDOW_HANDLE);
        if (window->thread != GetCurrentThreadId()) return Finish(ERROR_ACCESS_DENIED);
        if ((window->style & WS_CHILD) != 0 || !IsScreen(dpi)) return Finish(ERROR_INVALID_PARAMETER);
        const UINT before = std::exchange(window->dpi, dpi);
        if (before == dpi) return TRUE;
        const auto scaled = [&](LONG pixels) { return MulDiv(pixels, static_cast<int>(dpi), static_cast<int>(before)); };
        place = window->rectangle;
        place = suggested != nullptr
                    ? *suggested
                    : RECT{place.left, place.top, place.left + scaled(window->Width()), place.top + scaled(window->Height())};
    }
    SIZE size{place.right - place.left, place.bottom - place.top};
    if (SendMessageA(root, WM_GETDPISCALEDSIZE, dpi, reinterpret_cast<LPARAM>(&size)) != 0)
        place = {place.left, place.top, place.left + size.cx, place.top + size.cy};
    std::vector<HWND> below = TreeOf(root);
    std::reverse(below.begin(), below.end());
    TellEach(below, WM_DPICHANGED_BEFOREPARENT);
    SendMessageA(root, WM_DPICHANGED, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(&place));
    TellEach(TreeOf(root), WM_DPICHANGED_AFTERPARENT);
    if (IsWindow(root)) RedrawWindow(root, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
    return TRUE;
}

UINT OrvikDpiOf(HWND window) {
    const UINT dpi = window != nullptr ? GetDpiForWindow(window) : 0;
    return dpi != 0 ? dpi : GetDpiForSystem();
}
