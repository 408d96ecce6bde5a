// The life of a window: making, destroying, calling.
#include "platform/posix/window/window.h"

#include <unistd.h>

#include <algorithm>
#include <map>

#include "platform/posix/dialogs/menu_internal.h"
#include "platform/posix/kernel/threads.h"
#include "platform/posix/text/letters_internal.h"
#include "platform/posix/window/dpi.h"
#include "platform/posix/window/window_class_internal.h"

namespace orvik::detail {
namespace {
constexpr LONG kDesktopWidth = 1920, kDesktopHeight = 1080;
const auto kDesktop = reinterpret_cast<HWND>(static_cast<uintptr_t>(0x10000));

// In the order of making, since handles grow. The desktop is the first.
std::map<HWND, std::unique_ptr<Window>>& Windows() {
    static auto* windows = [] {
        auto desktop = std::make_unique<Window>();
        desktop->handle = kDesktop;
        desktop->windowClass = std::make_shared<WindowClass>();
        desktop->windowClass->name = "#32769";
        desktop->procedure = DefWindowProcA;
        desktop->style = WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN | WS_CLIPSIBLINGS;
        desktop->rectangle = {0, 0, kDesktopWidth, kDesktopHeight};
        auto* made = new std::map<HWND, std::unique_ptr<Window>>;
        made->emplace(kDesktop, std::move(desktop));
        return made;
    }();
    return *windows;
}

// Handles are small even numbers and not used again, so a stale one is found stale.
HWND NextHandle() {
    static uintptr_t last = 0x10000;
    return reinterpret_cast<HWND>(last += 2);
}

// Takes a window off the desktop before it is told that it goes, so that nothing it leads to finds it there.
void TakeAway(HWND handle) {
    DWORD style = 0, exStyle = 0;
    HWND parent = nullptr;
    LONG_PTR id = 0;
    {
        const std::lock_guard kernel(KernelLock());
        const Window* window = FindWindowOf(handle);
        if (window == nullptr || window->destroying) return;
        style = window->style;
        exStyle = window->exStyle;
        parent = window->parent;
        id = window->id;
    }
    if ((style & WS_CHILD) != 0 && (exStyle & WS_EX_NOPARENTNOTIFY) == 0)
        SendMessageA(parent, WM_PARENTNOTIFY, MAKEWPARAM(WM_DESTROY, id), reinterpret_cast<LPARAM>(handle));
    if ((style & WS_VISIBLE) != 0) {
        if ((style & WS_CHILD) != 0)
            ShowWindow(handle, SW_HIDE);
        else
            SetWindowPos(handle, nullptr, 0, 0, 0, 0, SWP_HIDEWINDOW | SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    }
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
    for (const HWND each : owned) {
        TakeAway(each);
        DestroyTree(each);
    }
    if (own) LeaveWindow(handle);
    if (own) CallProcedureOf(handle, WM_DESTROY, 0, 0);
    kernel.lock();
    const std::vector<HWND> children = WindowsBelow(handle, true);
    kernel.unlock();
    for (const HWND each : children) DestroyTree(each);
    if (own) CallProcedureOf(handle, WM_NCDESTROY, 0, 0);
    kernel.lock();
    HMENU menu = nullptr;
    if (const Window* last = FindWindowOf(handle)) menu = last->menu;
    RemoveWindow(handle);
    kernel.unlock();
    if (menu != nullptr) DestroyMenu(menu);
}

}  // namespace

Window* FindWindowOf(HWND handle) {
    const auto found = Windows().find(handle);
    return found == Windows().end() ? nullptr : found->second.get();
}

Window& Desktop() { return *Windows().begin()->second; }

std::vector<HWND> WindowsBelow(HWND parent, bool children) {
    if (children) {
        const Window* window = FindWindowOf(parent);
        return window != nullptr ? window->children : std::vector<HWND>();
    }
    std::vector<HWND> owned;
    for (const auto& [handle, window] : Windows()) {
        if (window->parent == parent && (window->style & WS_CHILD) == 0) owned.push_back(handle);
    }
    return owned;
}

void RemoveWindow(HWND handle) {
    const auto found = Windows().find(handle);
    if (found == Windows().end()) return;
    Window& window = *found->second;
    --window.windowClass->windows;
    window.style &= ~WS_VISIBLE;
    NoteChanged(window);
    ForgetPicture(handle);
    RemoveMessagesFor(handle, window.thread);
    DropContexts(window);
    Unlink(window);
    // Windows of other threads may still stand below or be owned; they have nobody above them from now on.
    for (const auto& [other, each] : Windows()) {
        if (each->parent == handle) each->parent = nullptr;
    }
    if (MessageQueue* queue = QueueOf(window.thread)) {
        for (HWND* held : {&queue->active, &queue->focus, &queue->capture}) {
            if (*held == handle) *held = nullptr;
        }
    }
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
    const bool overlapped = (style & (WS_CHILD | WS_POPUP)) == 0;
    // Only an overlapped window has a default place: the desktop's corner, and three quarters of the desktop.
    const auto placed = [](int value, int fallback) { return value == CW_USEDEFAULT ? fallback : value; };
    const auto size = [&](int value, LONG whole) { return std::clamp(placed(value, overlapped ? whole * 3 / 4 : 0), 0, 32767); };
    if (parent == kDesktop) parent = nullptr;
    CREATESTRUCTA create{parameter,
                         instance,
                         menu,
                         parent == HWND_MESSAGE ? nullptr : parent,
                         width == CW_USEDEFAULT ? size(width, kDesktopHeight) : size(height, kDesktopHeight),
                         size(width, kDesktopWidth),
                         placed(y, 0),
                         placed(x, 0),
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
        Window* above = FindWindowOf(create.hwndParent);
        made->dpi = above != nullptr ? RootOf(*above).dpi : GetDpiForSystem();
        handle = made->handle = NextHandle();
        made->thread = thread;
        made->procedure = made->windowClass->info.lpfnWndProc;
        made->parent = create.hwndParent;
        made->messageOnly = parent == HWND_MESSAGE;
        made->style = style & ~WS_VISIBLE;  // it is shown at the end
        made->exStyle = exStyle;
        made->rectangle = {create.x, create.y, create.x + create.cx, create.y + create.cy};
        made->instance = instance;
        if ((style & WS_CHILD) != 0)
            made->id = reinterpret_cast<LONG_PTR>(menu);
        else
            made->menu = menu;
        made->extra.resize(static_cast<size_t>(made->windowClass->info.cbWndExtra));
        ++made->windowClass->windows;
        Window& window = *made;
        Windows().emplace(handle, std::move(made));
        Link(window);
    }
    const auto told = reinterpret_cast<LPARAM>(&create);
    if (CallProcedureOf(handle, WM_NCCREATE, 0, told) == 0) {
        const std::lock_guard kernel(KernelLock());
        RemoveWindow(handle);
        return nullptr;
    }
    if (const LONG bar = MenuBarHeight(handle, create.cx); bar > 0) {
        const std::lock_guard kernel(KernelLock());
        if (Window* window = FindWindowOf(handle)) window->bar = bar;
    }
    if (CallProcedureOf(handle, WM_CREATE, 0, told) == -1) {
        DestroyTree(handle);
        return nullptr;
    }
    const auto sizeNow = [&] {
        RECT client{};
        GetClientRect(handle, &client);
        return MAKELPARAM(client.right, client.bottom);
    };
    SendMessageA(handle, WM_SIZE, SIZE_RESTORED, sizeNow());
    SendMessageA(handle, WM_MOVE, 0, MAKELPARAM(create.x, create.y));
    if ((style & WS_CHILD) != 0 && (exStyle & WS_EX_NOPARENTNOTIFY) == 0 && IsWindow(handle)) {
        SendMessageA(create.hwndParent, WM_PARENTNOTIFY, MAKEWPARAM(WM_CREATE, reinterpret_cast<LONG_PTR>(menu)),
                     reinterpret_cast<LPARAM>(handle));
    }
    if ((style & WS_VISIBLE) != 0 && IsWindow(handle)) ShowWindow(handle, SW_SHOW);
    return IsWindow(handle) ? handle : nullptr;
}

BOOL DestroyWindow(HWND window) {
    {
        const std::lock_guard kernel(KernelLock());
        const Window* found = FindWindowOf(window);
        if (found == nullptr) return Finish(ERROR_INVALID_WINDOW_HANDLE);
        if (found->thread != GetCurrentThreadId()) return Finish(ERROR_ACCESS_DENIED);
    }
    TakeAway(window);
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
            NoteChanged(*window);
            return TRUE;
        }
        case WM_GETTEXT: {
            const std::lock_guard kernel(KernelLock());
            const Window* window = FindWindowOf(handle);
            return window == nullptr ? 0
                                     : static_cast<LRESULT>(CopyLetters(window->text, reinterpret_cast<char*>(lParam), wParam));
        }
        case WM_GETTEXTLENGTH: {
            const std::lock_guard kernel(KernelLock());
            const Window* window = FindWindowOf(handle);
            return window == nullptr ? 0 : static_cast<LRESULT>(window->text.size());
        }
        default:
            return DefaultAnswer(handle, message, wParam, lParam);
    }
}

LRESULT CallWindowProcA(WNDPROC procedure, HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return procedure == nullptr ? 0 : procedure(window, message, wParam, lParam);
}
