#include "platform/scripted_input.h"

#include "platform/house_text_internal.h"
#include "platform/scripted_input_internal.h"

namespace orvik::detail {
UINT PointerStep() {
    static const UINT s_message = RegisterWindowMessageA("OrvikScriptedPointer");
    return s_message;
}
UINT KeyStep() {
    static const UINT s_message = RegisterWindowMessageA("OrvikScriptedKey");
    return s_message;
}
UINT CharStep() {
    static const UINT s_message = RegisterWindowMessageA("OrvikScriptedChar");
    return s_message;
}
}  // namespace orvik::detail

using namespace orvik::detail;

namespace {
// The low byte of a key's state: its highest bit is "down", its lowest "toggled".
void SetKey(UINT key, bool down) {
    BYTE keys[256];
    GetKeyboardState(keys);
    const auto set = [&](UINT each) { keys[each] = static_cast<BYTE>(down ? (keys[each] ^ 1) | 0x80 : keys[each] & 0x7F); };
    set(key & 0xFF);
    // Of a pair of keys, one is the key that programs ask about.
    if (key == VK_SHIFT) set(VK_LSHIFT);
    if (key == VK_CONTROL) set(VK_LCONTROL);
    if (key == VK_MENU) set(VK_LMENU);
    SetKeyboardState(keys);
}

#ifdef _WIN32
constexpr bool kMenusTakeSteps = false;
#else
constexpr bool kMenusTakeSteps = true;
#endif

bool IsDown(int key) { return GetKeyState(key) < 0; }

// Which button a message is about; 0 for none.
UINT ButtonOf(UINT message) {
    if (message >= WM_LBUTTONDOWN && message <= WM_LBUTTONDBLCLK) return VK_LBUTTON;
    if (message >= WM_RBUTTONDOWN && message <= WM_RBUTTONDBLCLK) return VK_RBUTTON;
    return message >= WM_MBUTTONDOWN && message <= WM_MBUTTONDBLCLK ? VK_MBUTTON : 0;
}
bool IsWheel(UINT message) { return message == WM_MOUSEWHEEL || message == WM_MOUSEHWHEEL; }
bool IsPress(UINT message) { return ButtonOf(message) != 0 && (message - WM_LBUTTONDOWN) % 3 != 1; }
bool IsDoublePress(UINT message) { return ButtonOf(message) != 0 && (message - WM_LBUTTONDOWN) % 3 == 2; }

HWND ParentOfChild(HWND window) { return (GetWindowLongPtrA(window, GWL_STYLE) & WS_CHILD) != 0 ? GetParent(window) : nullptr; }

// The window under the point; null where the top-level window is disabled. Windows that say so let the pointer through to their
// parent.
HWND WindowUnder(HWND window, POINT screen) {
    HWND root = window;
    while (const HWND parent = ParentOfChild(root)) root = parent;
    if (!IsWindowEnabled(root)) return nullptr;
    HWND at = root;
    for (;;) {
        POINT point = screen;
        ScreenToClient(at, &point);
        const HWND below = ChildWindowFromPointEx(at, point, CWP_SKIPINVISIBLE | CWP_SKIPDISABLED);
        if (below == nullptr || below == at) break;
        at = below;
    }
    while (at != root && SendMessageA(at, WM_NCHITTEST, 0, MAKELPARAM(screen.x, screen.y)) == HTTRANSPARENT) at = GetParent(at);
    return at;
}

// Whether the press goes on to the window after it has, perhaps, activated its top-level window. `hit`: which part of it is
// meant.
bool ActivateByPress(HWND target, UINT message, LRESULT hit) {
    HWND root = target;
    for (HWND child = target; const HWND parent = ParentOfChild(child); child = root = parent) {
        if ((GetWindowLongPtrA(child, GWL_EXSTYLE) & WS_EX_NOPARENTNOTIFY) != 0) continue;
        POINT point{};
        GetCursorPos(&point);
        ScreenToClient(parent, &point);
        SendMessageA(parent, WM_PARENTNOTIFY, MAKEWPARAM(message, 0), MAKELPARAM(point.x, point.y));
    }
    if (GetActiveWindow() == root) return true;
    const LRESULT answer = SendMessageA(target, WM_MOUSEACTIVATE, reinterpret_cast<WPARAM>(root), MAKELPARAM(hit, message));
    if (answer != MA_NOACTIVATE && answer != MA_NOACTIVATEANDEAT) SetForegroundWindow(root);
    return answer != MA_ACTIVATEANDEAT && answer != MA_NOACTIVATEANDEAT;
}

void Drop(MSG& read) {
    read.hwnd = nullptr;
    read.message = WM_NULL;
    read.wParam = 0;
    read.lParam = 0;
}

// Makes the mouse message of a step. `act`: the step happens now; else somebody only looks at what comes.
void BecomePointer(MSG& read, bool act) {
    UINT message = LOWORD(read.wParam);
    const auto wheel = static_cast<short>(HIWORD(read.wParam));
    const HWND window = read.hwnd;
    POINT screen{static_cast<short>(LOWORD(read.lParam)), static_cast<short>(HIWORD(read.lParam))};
    ClientToScreen(window, &screen);
    read.pt = screen;
    if (act) {
        SetCursorPos(screen.x, screen.y);
        // A system with a pointer reports its move, which is this one.
        MSG reported;
        while (PeekMessageA(&reported, nullptr, WM_MOUSEFIRST, WM_MOUSELAST, PM_REMOVE | PM_QS_INPUT)) {
        }
        if (const UINT button = ButtonOf(message)) SetKey(button, IsPress(message));
    }
    const HWND capture = GetCapture();
    HWND target = capture != nullptr ? capture : WindowUnder(window, screen);
    if (IsWheel(message) && GetFocus() != nullptr) target = GetFocus();
    // Of the parts beside the client area, only a menu bar of our own is told of; a point anywhere else is the window's. Windows'
    // menus read from the devices alone: one that a step opened would stay for ever.
    LRESULT hit = HTCLIENT;
    if (kMenusTakeSteps && capture == nullptr && !IsWheel(message) && target != nullptr &&
        SendMessageA(target, WM_NCHITTEST, 0, MAKELPARAM(screen.x, screen.y)) == HTMENU)
        hit = HTMENU;
    if (act && capture == nullptr && !IsWheel(message)) {
        if (target == nullptr) {
            SendMessageA(window, WM_SETCURSOR, reinterpret_cast<WPARAM>(window), MAKELPARAM(HTERROR, message));
        } else {
            const bool goesOn = !IsPress(message) || ActivateByPress(target, message, hit);
            SendMessageA(target, WM_SETCURSOR, reinterpret_cast<WPARAM>(target), MAKELPARAM(hit, message));
            if (!goesOn) target = nullptr;
        }
    }
    if (target == nullptr || !IsWindow(target)) return Drop(read);
    if (IsDoublePress(message) && (GetClassLongPtrA(target, GCL_STYLE) & CS_DBLCLKS) == 0) message -= 2;
    read.hwnd = target;
    if (hit == HTMENU) {
        read.message = message - WM_MOUSEMOVE + WM_NCMOUSEMOVE;
        read.wParam = HTMENU;
        read.lParam = MAKELPARAM(screen.x, screen.y);
        return;
    }
    const int held = (IsDown(VK_LBUTTON) ? MK_LBUTTON : 0) | (IsDown(VK_RBUTTON) ? MK_RBUTTON : 0) |
                     (IsDown(VK_MBUTTON) ? MK_MBUTTON : 0) | (IsDown(VK_SHIFT) ? MK_SHIFT : 0) |
                     (IsDown(VK_CONTROL) ? MK_CONTROL : 0);
    if (!IsWheel(message)) ScreenToClient(target, &screen);  // a wheel message has the screen's point
    read.message = message;
    read.wParam = MAKEWPARAM(held, IsWheel(message) ? wheel : 0);
    read.lParam = MAKELPARAM(screen.x, screen.y);
}

void BecomeKey(MSG& read, bool act) {
    const auto key = static_cast<UINT>(read.wParam);
    const bool down = (read.lParam & 1) != 0;
    const uint64_t writes = static_cast<uint64_t>(read.lParam) >> 32 << 32;
    const bool was = IsDown(static_cast<int>(key));
    if (act) SetKey(key, down);
    const HWND focus = GetFocus();
    // With Alt, and for Alt itself, it is the system's key; so it is where nobody has the focus, but a script means a window.
    const bool system = (IsDown(VK_MENU) && !IsDown(VK_CONTROL)) || key == VK_MENU || key == VK_F10;
    if (focus != nullptr) read.hwnd = focus;
    read.message = down ? (system ? WM_SYSKEYDOWN : WM_KEYDOWN) : (system ? WM_SYSKEYUP : WM_KEYUP);
    const DWORD bits = 1u | (system && key != VK_F10 ? 1u << 29 : 0) | (was || !down ? 1u << 30 : 0) | (down ? 0 : 1u << 31);
    // A key that goes up writes nothing; its bits are those of a negative number.
    read.lParam = static_cast<LPARAM>(static_cast<LONG>(bits)) | static_cast<LPARAM>(down ? writes : 0);
}

void BecomeChar(MSG& read) {
    if (const HWND focus = GetFocus()) read.hwnd = focus;
    read.message = WM_CHAR;
}

// The thread's hook, taken away at the thread's end.
class ReadingHook {
public:
    ReadingHook() : m_hook(SetWindowsHookExA(WH_GETMESSAGE, &Read, nullptr, GetCurrentThreadId())) {}
    ~ReadingHook() {
        if (m_hook != nullptr) UnhookWindowsHookEx(m_hook);
    }
    ReadingHook(const ReadingHook&) = delete;
    ReadingHook& operator=(const ReadingHook&) = delete;
    static bool Ready() {
        thread_local ReadingHook t_hook;
        return t_hook.m_hook != nullptr;
    }

private:
    static LRESULT CALLBACK Read(int code, WPARAM remove, LPARAM given) {
        if (code == HC_ACTION) {
            MSG& read = *reinterpret_cast<MSG*>(given);
            if (read.message == PointerStep()) BecomePointer(read, remove == PM_REMOVE);
            if (read.message == KeyStep()) BecomeKey(read, remove == PM_REMOVE);
            if (read.message == CharStep()) BecomeChar(read);
        }
        return CallNextHookEx(nullptr, code, remove, given);
    }
    HHOOK m_hook;
};

BOOL PostStep(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (window == nullptr || !IsWindow(window)) {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        return FALSE;
    }
    if (GetWindowThreadProcessId(window, nullptr) != GetCurrentThreadId()) {
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    }
    return ReadingHook::Ready() && PostMessageA(window, message, wParam, lParam);
}
}  // namespace

bool orvik::detail::ReadSteps() { return ReadingHook::Ready(); }

BOOL OrvikPostPointer(HWND window, UINT message, int x, int y, int wheel) {
    const bool known = message == WM_MOUSEMOVE || IsWheel(message) || ButtonOf(message) != 0;
    const auto fits = [](int value) { return value >= -32768 && value <= 32767; };
    if (!known || !fits(x) || !fits(y) || !fits(wheel)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    return PostStep(window, PointerStep(), MAKEWPARAM(message, wheel), MAKELPARAM(x, y));
}

BOOL OrvikPostKey(HWND window, UINT key, BOOL down) {
    if (key == 0 || key > 0xFE) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    return PostStep(window, KeyStep(), key, down != FALSE);
}

BOOL OrvikPostText(HWND window, LPCSTR text) {
    const auto post = [window](WPARAM typed) { return PostStep(window, CharStep(), typed, 1); };
    std::string_view rest = text != nullptr ? text : "";
    while (!rest.empty()) {
        const char first = rest.front();
        const char32_t character = orvik::detail::TakeHouse(rest);
        if (!orvik::detail::HouseIsUtf8()) {
            if (!post(static_cast<unsigned char>(first))) return FALSE;
        } else if (character < 0x10000) {
            if (!post(character)) return FALSE;
        } else if (!post(0xD800 + ((character - 0x10000) >> 10)) || !post(0xDC00 + ((character - 0x10000) & 0x3FF))) {
            return FALSE;
        }
    }
    return TRUE;
}
