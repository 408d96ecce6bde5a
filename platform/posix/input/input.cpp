#include "platform/posix/input/input.h"

#include <algorithm>

#include "platform/posix/window/window_internal.h"
#include "platform/scripted_input_internal.h"

namespace orvik::detail {
namespace {
POINT g_pointer{};  // under the kernel lock

// Which of the thread's hooks is running, counted from the newest.
thread_local size_t t_hookDepth = 0;

// What the key writes on the United States keyboard; 0 for one that does not write.
unsigned char CharacterOf(const MessageQueue& queue, UINT key) {
    const bool shift = (queue.keys[VK_SHIFT] & 0x80) != 0, control = (queue.keys[VK_CONTROL] & 0x80) != 0;
    const bool capital = (queue.keys[VK_CAPITAL] & 1) != 0;
    if (key >= 'A' && key <= 'Z') {
        if (control) return static_cast<unsigned char>(key - 'A' + 1);
        return static_cast<unsigned char>(shift != capital ? key : key + 32);
    }
    if (key == VK_BACK) return control ? 0x7F : 0x08;
    if (key == VK_RETURN) return control ? 0x0A : 0x0D;
    if (control && key != VK_SPACE && key != VK_ESCAPE) return 0;
    if (key >= VK_NUMPAD0 && key <= VK_NUMPAD9) return static_cast<unsigned char>('0' + key - VK_NUMPAD0);
    struct Writes {
        UINT key;
        char plain, shifted;
    };
    static constexpr Writes kKeys[] = {
        {'0', '0', ')'},          {'1', '1', '!'},           {'2', '2', '@'},         {'3', '3', '#'},
        {'4', '4', '$'},          {'5', '5', '%'},           {'6', '6', '^'},         {'7', '7', '&'},
        {'8', '8', '*'},          {'9', '9', '('},           {VK_SPACE, ' ', ' '},    {VK_TAB, '\t', '\t'},
        {VK_ESCAPE, 27, 27},      {VK_OEM_1, ';', ':'},      {VK_OEM_PLUS, '=', '+'}, {VK_OEM_COMMA, ',', '<'},
        {VK_OEM_MINUS, '-', '_'}, {VK_OEM_PERIOD, '.', '>'}, {VK_OEM_2, '/', '?'},    {VK_OEM_3, '`', '~'},
        {VK_OEM_4, '[', '{'},     {VK_OEM_5, '\\', '|'},     {VK_OEM_6, ']', '}'},    {VK_OEM_7, '\'', '"'},
        {VK_MULTIPLY, '*', '*'},  {VK_ADD, '+', '+'},        {VK_SUBTRACT, '-', '-'}, {VK_DECIMAL, '.', '.'},
        {VK_DIVIDE, '/', '/'}};
    for (const Writes& each : kKeys) {
        if (each.key == key) return static_cast<unsigned char>(shift ? each.shifted : each.plain);
    }
    return 0;
}
}  // namespace

bool IsPress(UINT message) {
    return message >= WM_LBUTTONDOWN && message <= WM_MBUTTONDBLCLK && (message - WM_LBUTTONDOWN) % 3 != 1;
}

POINT PointerPlace() { return g_pointer; }

void RunMessageHooks(MSG& message, UINT remove) {
    MessageQueue& queue = CurrentQueue();
    HOOKPROC procedure = nullptr;
    {
        const std::lock_guard kernel(KernelLock());
        queue.lastTime = message.time;
        queue.lastPoint = message.pt;
        if (!queue.hooks.empty()) procedure = queue.hooks.back().procedure;
    }
    if (procedure != nullptr) {
        const size_t depth = std::exchange(t_hookDepth, 0);
        procedure(HC_ACTION, remove, reinterpret_cast<LPARAM>(&message));
        t_hookDepth = depth;
    }
    // Alt that goes with another key or a click is no wish for the menu.
    const bool key = message.message == WM_KEYDOWN || message.message == WM_SYSKEYDOWN;
    const bool other = key ? message.wParam != queue.menuKey : IsPress(message.message);
    if (remove == PM_REMOVE && other) queue.menuKey = 0;
    if (remove == PM_REMOVE && message.message == WM_MOUSEMOVE && message.hwnd != queue.hot) {
        // Controls look otherwise while the pointer is on them.
        const HWND left = std::exchange(queue.hot, message.hwnd);
        if (With<bool>(left, [](const Window& window) { return window.control != nullptr; }))
            PostMessageA(left, WM_MOUSELEAVE, 0, 0);
    }
}

}  // namespace orvik::detail

using namespace orvik::detail;

HWND SetCapture(HWND window) {
    MessageQueue& queue = CurrentQueue();
    HWND before = nullptr;
    {
        const std::lock_guard kernel(KernelLock());
        const Window* taker = FindWindowOf(window);
        if (taker == nullptr || taker->thread != queue.thread) {
            SetLastError(taker == nullptr ? ERROR_INVALID_WINDOW_HANDLE : ERROR_ACCESS_DENIED);
            return nullptr;
        }
        before = std::exchange(queue.capture, window);
    }
    if (before != nullptr) SendMessageA(before, WM_CAPTURECHANGED, 0, reinterpret_cast<LPARAM>(window));
    return before;
}

HWND GetCapture() {
    MessageQueue& queue = CurrentQueue();
    const std::lock_guard kernel(KernelLock());
    return queue.capture;
}

BOOL ReleaseCapture() {
    MessageQueue& queue = CurrentQueue();
    HWND before = nullptr;
    {
        const std::lock_guard kernel(KernelLock());
        before = std::exchange(queue.capture, nullptr);
    }
    if (before != nullptr) SendMessageA(before, WM_CAPTURECHANGED, 0, 0);
    return TRUE;
}

SHORT GetKeyState(int key) {
    MessageQueue& queue = CurrentQueue();
    const std::lock_guard kernel(KernelLock());
    return static_cast<SHORT>(static_cast<signed char>(queue.keys[static_cast<size_t>(key & 0xFF)] & 0x81));
}

BOOL GetKeyboardState(BYTE* state) {
    if (state == nullptr) return Finish(ERROR_INVALID_PARAMETER);
    MessageQueue& queue = CurrentQueue();
    const std::lock_guard kernel(KernelLock());
    std::copy(queue.keys.begin(), queue.keys.end(), state);
    return TRUE;
}

BOOL SetKeyboardState(BYTE* state) {
    if (state == nullptr) return Finish(ERROR_INVALID_PARAMETER);
    MessageQueue& queue = CurrentQueue();
    const std::lock_guard kernel(KernelLock());
    std::copy_n(state, queue.keys.size(), queue.keys.begin());
    return TRUE;
}

BOOL GetCursorPos(LPPOINT point) {
    if (point == nullptr) return Finish(ERROR_INVALID_PARAMETER);
    const std::lock_guard kernel(KernelLock());
    *point = g_pointer;
    return TRUE;
}

BOOL SetCursorPos(int x, int y) {
    const std::lock_guard kernel(KernelLock());
    g_pointer = {std::clamp(x, 0, Desktop().Width() - 1), std::clamp(y, 0, Desktop().Height() - 1)};
    return TRUE;
}

HCURSOR SetCursor(HCURSOR cursor) {
    MessageQueue& queue = CurrentQueue();
    const std::lock_guard kernel(KernelLock());
    if (queue.cursor != cursor) NoteCursor(queue.thread);
    return std::exchange(queue.cursor, cursor);
}

HCURSOR GetCursor() {
    MessageQueue& queue = CurrentQueue();
    const std::lock_guard kernel(KernelLock());
    return queue.cursor;
}

HHOOK SetWindowsHookExA(int kind, HOOKPROC procedure, HINSTANCE, DWORD threadId) {
    MessageQueue& queue = CurrentQueue();
    if (kind != WH_GETMESSAGE || procedure == nullptr || threadId != queue.thread) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    static uintptr_t last = 0;
    const std::lock_guard kernel(KernelLock());
    queue.hooks.push_back({reinterpret_cast<HHOOK>(last += 4), procedure});
    return queue.hooks.back().handle;
}

BOOL UnhookWindowsHookEx(HHOOK hook) {
    MessageQueue& queue = CurrentQueue();
    const std::lock_guard kernel(KernelLock());
    const size_t gone = std::erase_if(queue.hooks, [&](const MessageQueue::Hook& each) { return each.handle == hook; });
    return Finish(gone == 0 ? ERROR_INVALID_PARAMETER : ERROR_SUCCESS);
}

LRESULT CallNextHookEx(HHOOK, int code, WPARAM wParam, LPARAM lParam) {
    MessageQueue& queue = CurrentQueue();
    HOOKPROC procedure = nullptr;
    {
        const std::lock_guard kernel(KernelLock());
        if (t_hookDepth + 1 < queue.hooks.size()) procedure = queue.hooks[queue.hooks.size() - 2 - t_hookDepth].procedure;
    }
    if (procedure == nullptr) return 0;
    ++t_hookDepth;
    const LRESULT result = procedure(code, wParam, lParam);
    --t_hookDepth;
    return result;
}

BOOL TranslateMessage(const MSG* message) {
    if (message == nullptr) return FALSE;
    const bool system = message->message == WM_SYSKEYDOWN;
    if (message->message == WM_KEYUP || message->message == WM_SYSKEYUP) return TRUE;
    if (message->message != WM_KEYDOWN && !system) return FALSE;
    MessageQueue& queue = CurrentQueue();
    const std::lock_guard kernel(KernelLock());
    // A real keyboard says what its key writes: scripted_input_internal.h.
    uint64_t units = static_cast<uint64_t>(message->lParam) >> 32;
    const bool real = units != 0;
    if (units == kWritesNothing) return TRUE;
    if (!real || units == kWritesUsual) units = CharacterOf(queue, static_cast<UINT>(message->wParam));
    const Window* window = FindWindowOf(message->hwnd);
    if (units == 0 || window == nullptr || window->thread != queue.thread) return TRUE;
    MSG written = *message;
    written.message = system ? WM_SYSCHAR : WM_CHAR;
    written.lParam = message->lParam & 0xFFFFFFFF;
    // The next key, which may end what is written here, waits in the queue already.
    for (auto at = real ? queue.posted.begin() : queue.posted.end(); units != 0; units >>= 16) {
        written.wParam = units & 0xFFFF;
        at = queue.posted.insert(at, written) + 1;
    }
    queue.Note(QS_POSTMESSAGE | QS_ALLPOSTMESSAGE);
    return TRUE;
}
