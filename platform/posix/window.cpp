// The life of a window: making, destroying, calling.
#include "platform/posix/window.h"

#include <unistd.h>

#include <algorithm>
#include <map>

#include "platform/posix/threads.h"
#include "platform/posix/window_class_internal.h"

namespace orvik::detail {
namespace {
// In the order of making, since handles grow.
std::map<HWND, std::unique_ptr<Window>>& Windows() {
    static auto* windows = new std::map<HWND, std::unique_ptr<Window>>;
    return *windows;
}

// Handles are small even numbers and not used again, so a stale one is found stale.
HWND NextHandle() {
    static uintptr_t last = 0x10000;
    return reinterpret_cast<HWND>(last += 2);
}

// Tells the window and all below it that they go; the windows it owns have gone before.
void DestroyTree(HWND handle) {
    std::unique_lock kernel(KernelLock());
    Window* window = FindWindowOf(handle);
    if (window == nullptr || window->destroying) return;
    window->destroying = true;
    const bool own = window->thread == GetCurrentThreadId();
    const std::vector<HWND> owned = WindowsBelow(handle, false);
    kernel.unlock();
    for (const HWND each : owned) DestroyTree(each);
    if (own) CallProcedureOf(handle, WM_DESTROY, 0, 0);
    kernel.lock();
    const std::vector<HWND> children = WindowsBelow(handle, true);
    kernel.unlock();
    for (const HWND each : children) DestroyTree(each);
    if (own) CallProcedureOf(handle, WM_NCDESTROY, 0, 0);
    kernel.lock();
    RemoveWindow(handle);
}
}  // namespace

Window* FindWindowOf(HWND handle) {
    const auto found = Windows().find(handle);
    return found == Windows().end() ? nullptr : found->second.get();
}

std::vector<HWND> WindowsBelow(HWND parent, bool children) {
    std::vector<HWND> below;
    for (const auto& [handle, window] : Windows()) {
        if (window->parent == parent && ((window->style & WS_CHILD) != 0) == children) below.push_back(handle);
    }
    return below;
}

void RemoveWindow(HWND handle) {
    const auto found = Windows().find(handle);
    if (found == Windows().end()) return;
    --found->second->windowClass->windows;
    RemoveMessagesFor(handle, found->second->thread);
    Windows().erase(found);
}

void RemoveWindowsOfThread(DWORD thread) {
    std::vector<HWND> gone;
    for (const auto& [handle, window] : Windows()) {
        if (window->thread == thread) gone.push_back(handle);
    }
    for (const HWND handle : gone) RemoveWindow(handle);
}

LRESULT CallProcedureOf(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
    WNDPROC procedure = nullptr;
    {
        const std::lock_guard kernel(KernelLock());
        if (const Window* window = FindWindowOf(handle)) procedure = window->procedure;
    }
    if (procedure != nullptr) return procedure(handle, message, wParam, lParam);
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return 0;
}
}  // namespace orvik::detail

using namespace orvik::detail;

HWND CreateWindowExA(DWORD exStyle, LPCSTR className, LPCSTR text, DWORD style, int x, int y, int width, int height, HWND parent,
                     HMENU menu, HINSTANCE instance, LPVOID parameter) {
    const auto fail = [](DWORD error) {
        SetLastError(error);
        return static_cast<HWND>(nullptr);
    };
    const DWORD thread = CurrentQueue().thread;
    const auto placed = [](int value) { return value == CW_USEDEFAULT ? 0 : value; };
    CREATESTRUCTA create{parameter,
                         instance,
                         menu,
                         parent == HWND_MESSAGE ? nullptr : parent,
                         placed(height),
                         placed(width),
                         placed(y),
                         placed(x),
                         static_cast<LONG>(style),
                         text,
                         className,
                         exStyle};
    HWND handle = nullptr;
    {
        const std::lock_guard kernel(KernelLock());
        auto made = std::make_unique<Window>();
        made->windowClass = FindClass(instance, className);
        if (!made->windowClass) return fail(ERROR_CANNOT_FIND_WND_CLASS);
        if (create.hwndParent != nullptr && FindWindowOf(create.hwndParent) == nullptr) return fail(ERROR_INVALID_WINDOW_HANDLE);
        if ((style & WS_CHILD) != 0 && parent == nullptr) return fail(ERROR_TLW_WITH_WSCHILD);
        handle = made->handle = NextHandle();
        made->thread = thread;
        made->procedure = made->windowClass->info.lpfnWndProc;
        made->parent = create.hwndParent;
        made->style = style;
        made->exStyle = exStyle;
        made->rectangle = {create.x, create.y, create.x + create.cx, create.y + create.cy};
        made->instance = instance;
        made->id = (style & WS_CHILD) != 0 ? reinterpret_cast<LONG_PTR>(menu) : 0;
        made->extra.resize(static_cast<size_t>(made->windowClass->info.cbWndExtra));
        ++made->windowClass->windows;
        Windows().emplace(handle, std::move(made));
    }
    const auto told = reinterpret_cast<LPARAM>(&create);
    if (CallProcedureOf(handle, WM_NCCREATE, 0, told) == 0) {
        const std::lock_guard kernel(KernelLock());
        RemoveWindow(handle);
        return nullptr;
    }
    if (CallProcedureOf(handle, WM_CREATE, 0, told) == -1) {
        DestroyTree(handle);
        return nullptr;
    }
    return IsWindow(handle) ? handle : nullptr;
}

BOOL DestroyWindow(HWND window) {
    {
        const std::lock_guard kernel(KernelLock());
        const Window* found = FindWindowOf(window);
        if (found == nullptr) return Finish(ERROR_INVALID_WINDOW_HANDLE);
        if (found->thread != GetCurrentThreadId()) return Finish(ERROR_ACCESS_DENIED);
    }
    DestroyTree(window);
    return TRUE;
}

BOOL IsWindow(HWND window) {
    const std::lock_guard kernel(KernelLock());
    return FindWindowOf(window) != nullptr;
}

LRESULT DefWindowProcA(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_CLOSE:
            DestroyWindow(handle);
            return 0;
        case WM_NCCREATE:
        case WM_SETTEXT: {
            const char* text = reinterpret_cast<const char*>(lParam);
            if (message == WM_NCCREATE) text = lParam == 0 ? nullptr : reinterpret_cast<const CREATESTRUCTA*>(lParam)->lpszName;
            const std::lock_guard kernel(KernelLock());
            Window* window = FindWindowOf(handle);
            if (window == nullptr) return 0;
            window->text = text == nullptr ? "" : text;
            return TRUE;
        }
        case WM_GETTEXT: {
            const std::lock_guard kernel(KernelLock());
            const Window* window = FindWindowOf(handle);
            if (window == nullptr || wParam == 0 || lParam == 0) return 0;
            char* out = reinterpret_cast<char*>(lParam);
            const size_t length = std::min<size_t>(window->text.size(), wParam - 1);
            std::copy_n(window->text.data(), length, out);
            out[length] = 0;
            return static_cast<LRESULT>(length);
        }
        case WM_GETTEXTLENGTH: {
            const std::lock_guard kernel(KernelLock());
            const Window* window = FindWindowOf(handle);
            return window == nullptr ? 0 : static_cast<LRESULT>(window->text.size());
        }
        default:
            return 0;
    }
}

LRESULT CallWindowProcA(WNDPROC procedure, HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return procedure == nullptr ? 0 : procedure(window, message, wParam, lParam);
}
