// What can be asked of a window, and changed: its numbers, its relations, its text.
#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "platform/posix/window/window_internal.h"
#include "platform/posix/window/window_paint.h"

using namespace orvik::detail;

namespace {
// Reads the number at the index into `value`, or writes `value` there and gives what was there.
bool Exchange(Window& window, int index, LONG_PTR& value, bool write) {
    const auto swap = [&](auto& field, auto fromNumber, auto toNumber) {
        const LONG_PTR before = toNumber(field);
        if (write) field = fromNumber(value);
        value = before;
        return true;
    };
    const auto number = [&](LONG_PTR& field) {
        return swap(
            field, [](LONG_PTR v) { return v; }, [](LONG_PTR v) { return v; });
    };
    const auto bits = [&](DWORD& field) {
        return swap(
            field, [](LONG_PTR v) { return static_cast<DWORD>(v); }, [](DWORD v) { return static_cast<LONG_PTR>(v); });
    };
    const auto pointer = [&]<class T>(T& field) {
        return swap(
            field, [](LONG_PTR v) { return reinterpret_cast<T>(v); }, [](T v) { return reinterpret_cast<LONG_PTR>(v); });
    };
    switch (index) {
        case GWLP_WNDPROC:
            return pointer(window.procedure);
        case GWLP_HINSTANCE:
            return pointer(window.instance);
        case GWLP_HWNDPARENT:
            return pointer(window.parent);
        case GWLP_ID:
            return number(window.id);
        case GWLP_USERDATA:
            return number(window.userData);
        case GWL_STYLE:
            return bits(window.style);
        case GWL_EXSTYLE:
            return bits(window.exStyle);
        default:
            break;
    }
    if (index < 0 || static_cast<size_t>(index) + sizeof(LONG_PTR) > window.extra.size()) return false;
    LONG_PTR before;
    std::memcpy(&before, window.extra.data() + index, sizeof before);
    if (write) std::memcpy(window.extra.data() + index, &value, sizeof value);
    value = before;
    return true;
}
}  // namespace

LONG_PTR GetWindowLongPtrA(HWND handle, int index) {
    return With<LONG_PTR>(handle, [&](Window& window) {
        LONG_PTR value = 0;
        if (!Exchange(window, index, value, false)) SetLastError(ERROR_INVALID_INDEX);
        return value;
    });
}

LONG_PTR SetWindowLongPtrA(HWND handle, int index, LONG_PTR value) {
    const bool style = index == GWL_STYLE || index == GWL_EXSTYLE;
    STYLESTRUCT change{};
    if (style) {
        change = {static_cast<DWORD>(GetWindowLongPtrA(handle, index)), static_cast<DWORD>(value)};
        SendMessageA(handle, WM_STYLECHANGING, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&change));
        value = static_cast<LONG_PTR>(change.styleNew);
    }
    const LONG_PTR before = With<LONG_PTR>(handle, [&](Window& window) -> LONG_PTR {
        // A style may make a child of a top-level window, and the other way round; otherwise the window keeps its place.
        const bool moves =
            index == GWLP_HWNDPARENT || (index == GWL_STYLE && ((window.style ^ static_cast<DWORD>(value)) & WS_CHILD));
        if (moves) Unlink(window);
        const bool known = Exchange(window, index, value, true);
        if (moves) Link(window);
        if (!known) {
            SetLastError(ERROR_INVALID_INDEX);
            return 0;
        }
        return value;
    });
    if (style) SendMessageA(handle, WM_STYLECHANGED, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&change));
    return before;
}

DWORD GetWindowThreadProcessId(HWND handle, LPDWORD processId) {
    return With<DWORD>(handle, [&](const Window& window) {
        if (processId != nullptr) *processId = static_cast<DWORD>(getpid());
        return window.thread;
    });
}

HWND GetParent(HWND handle) {
    return With<HWND>(handle,
                      [](const Window& window) { return window.style & (WS_CHILD | WS_POPUP) ? window.parent : nullptr; });
}

HWND SetParent(HWND handle, HWND parent) {
    bool shown = false;
    const HWND before = With<HWND>(handle, [&](Window& window) -> HWND {
        const bool away = parent == HWND_MESSAGE;
        if (away || parent == Desktop().handle) parent = nullptr;
        // A window must not come to stand below itself.
        for (HWND up = parent; up != nullptr;) {
            const Window* above = FindWindowOf(up);
            if (above == nullptr || up == handle) {
                SetLastError(above == nullptr ? ERROR_INVALID_WINDOW_HANDLE : ERROR_INVALID_PARAMETER);
                return nullptr;
            }
            up = above->parent;
        }
        shown = (window.style & WS_VISIBLE) != 0;
        Unlink(window);
        const HWND old = std::exchange(window.parent, parent);
        window.messageOnly = away;
        Link(window);
        return old != nullptr ? old : Desktop().handle;
    });
    if (before == nullptr) return nullptr;
    if (shown) {
        // Hidden where it was, shown where it is: both places are painted anew.
        RedrawWindow(before, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
        RedrawWindow(handle, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
    }
    return before;
}

BOOL IsChild(HWND parent, HWND handle) {
    return With<BOOL>(handle, [&](const Window& window) -> BOOL {
        for (const Window* at = &window; at != nullptr && (at->style & WS_CHILD) != 0; at = FindWindowOf(at->parent)) {
            if (at->parent == parent) return parent != nullptr;
        }
        return FALSE;
    });
}

int GetDlgCtrlID(HWND handle) {
    return With<int>(handle, [](const Window& window) { return static_cast<int>(window.id); });
}

HWND GetDlgItem(HWND handle, int id) {
    return With<HWND>(handle, [&](const Window&) -> HWND {
        for (const HWND child : WindowsBelow(handle, true)) {
            if (static_cast<int>(FindWindowOf(child)->id) == id) return child;
        }
        SetLastError(ERROR_CONTROL_ID_NOT_FOUND);
        return nullptr;
    });
}

int GetClassNameA(HWND handle, LPSTR out, int size) {
    if (out == nullptr || size <= 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    return With<int>(handle, [&](const Window& window) {
        const std::string& name = window.windowClass->name;
        const size_t length = std::min(name.size(), static_cast<size_t>(size) - 1);
        std::copy_n(name.data(), length, out);
        out[length] = 0;
        return static_cast<int>(length);
    });
}

BOOL SetWindowTextA(HWND window, LPCSTR text) {
    if (!IsWindow(window)) return Finish(ERROR_INVALID_WINDOW_HANDLE);
    return SendMessageA(window, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text)) != 0;
}

int GetWindowTextA(HWND window, LPSTR out, int size) {
    if (out == nullptr || size <= 0) return 0;
    *out = 0;
    return static_cast<int>(SendMessageA(window, WM_GETTEXT, static_cast<WPARAM>(size), reinterpret_cast<LPARAM>(out)));
}

int GetWindowTextLengthA(HWND window) { return static_cast<int>(SendMessageA(window, WM_GETTEXTLENGTH, 0, 0)); }

BOOL IsWindowEnabled(HWND handle) {
    return With<BOOL>(handle, [](const Window& window) -> BOOL { return (window.style & WS_DISABLED) == 0; });
}

BOOL IsWindowVisible(HWND handle) {
    return With<BOOL>(handle, [](const Window& window) -> BOOL { return CanBeSeen(window); });
}
