// Events of a screen become what a user's steps become anyway (platform/scripted_input.h), or are acted on when the window's
// thread reads them.
#include "platform/posix/screen/screen_events_internal.h"

#include <algorithm>

#include "platform/house_text_internal.h"
#include "platform/posix/dialogs/menu.h"
#include "platform/posix/exchange/dropped_files_internal.h"
#include "platform/posix/screen/screen_accessible_internal.h"
#include "platform/posix/screen/screen_loading_internal.h"
#include "platform/posix/window/dpi.h"
#include "platform/posix/window/window_internal.h"
#include "platform/scripted_input_internal.h"

namespace orvik::detail {
namespace {

// wParam: the kind, and the event's code above it; lParam: x and y as two 32-bit numbers.
UINT EventMessage() {
    static const UINT s_message = RegisterWindowMessageA("OrvikScreenEvent");
    return s_message;
}

LPARAM Pair(int x, int y) {
    return static_cast<LPARAM>(static_cast<uint64_t>(static_cast<uint32_t>(y)) << 32 | static_cast<uint32_t>(x));
}

// Posts, or replaces what was posted last and is overtaken by it.
void PostLatest(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
    {
        const std::lock_guard kernel(KernelLock());
        const Window* const window = FindWindowOf(handle);
        MessageQueue* const queue = window != nullptr ? QueueOf(window->thread) : nullptr;
        if (queue == nullptr) return;
        if (!queue->posted.empty()) {
            MSG& last = queue->posted.back();
            if (last.hwnd == handle && last.message == message && last.wParam == wParam) {
                last.lParam = lParam;
                return;
            }
        }
    }
    PostMessageA(handle, message, wParam, lParam);
}

// Units of UTF-16 as WM_CHAR carries them: bytes in a Windows-1252 process.
std::u16string Typed(const std::u16string& letters) {
    if (HouseIsUtf8()) return letters;
    std::u16string bytes;
    for (const char16_t each : letters)
        if (const int byte = ByteFromUnicode(each); byte >= 0) bytes += static_cast<char16_t>(byte);
    return bytes;
}

// A key with what it writes. What is longer than a message holds comes as further keys, which are there for that alone.
void PostKey(HWND window, const ScreenEvent& event) {
    constexpr size_t kMost = 2;
    const std::u16string letters = Typed(event.letters);
    UINT key = event.code;
    for (size_t at = 0; at == 0 || at < letters.size(); at += kMost, key = VK_PACKET) {
        uint64_t writes = 0;
        for (size_t i = std::min(letters.size(), at + kMost); i-- > at;) writes = writes << 16 | letters[i];
        if (writes == 0) writes = event.untyped || !event.letters.empty() ? kWritesNothing : kWritesUsual;
        PostMessageA(window, KeyStep(), key, static_cast<LPARAM>(event.down ? writes << 32 | 1 : 0));
    }
    for (size_t at = 0; at + kMost < letters.size(); at += kMost) PostMessageA(window, KeyStep(), VK_PACKET, 0);
}

void Resize(HWND handle, SIZE size) {
    {
        const std::lock_guard kernel(KernelLock());
        const Window* const window = FindWindowOf(handle);
        if (window == nullptr || (window->Width() == size.cx && window->Height() == size.cy)) return;
    }
    SetWindowPos(handle, nullptr, 0, 0, size.cx, size.cy, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    const std::lock_guard kernel(KernelLock());
    Window* const window = FindWindowOf(handle);
    if (window != nullptr && window->Width() == size.cx && window->Height() == size.cy) window->sizedByScreen = true;
}

void SetState(HWND handle, ShownWindow::State state) {
    SIZE size{};
    {
        const std::lock_guard kernel(KernelLock());
        Window* const window = FindWindowOf(handle);
        if (window == nullptr || window->state == state) return;
        window->state = state;
        size = {window->Width(), window->Height()};
    }
    SendMessageA(handle, WM_SIZE, static_cast<WPARAM>(state), MAKELPARAM(size.cx, size.cy));
}

LONG BarOf(HWND handle) {
    const std::lock_guard kernel(KernelLock());
    const Window* const window = FindWindowOf(handle);
    return window != nullptr ? window->bar : 0;
}

// Where the desktop has put a popup, in its owner's picture: other places than ours would make its pointer point elsewhere.
void Place(HWND handle, POINT inOwner) {
    RECT owner{};
    const HWND of = With<HWND>(handle, [](const Window& window) { return window.popup ? window.popup->owner : nullptr; });
    if (!GetWindowRect(of, &owner)) return;
    SetWindowPos(handle, nullptr, static_cast<int>(owner.left + inOwner.x), static_cast<int>(owner.top + inOwner.y), 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

// Where the desktop's key for it has Alt, that key has done its work: it opens no menu, and one that it did open makes way.
void Close(HWND handle) {
    if (!IsWindowEnabled(handle)) return;
    MessageQueue& queue = CurrentQueue();
    {
        const std::lock_guard kernel(KernelLock());
        queue.menuKey = 0;
    }
    EndMenu();
    PostMessageA(handle, WM_SYSCOMMAND, SC_CLOSE, 0);
}

// As if the user had pressed beside it.
void Dismiss(HWND handle) {
    if (!IsWindow(handle)) return;
    EndMenu();
    if (GetCapture() == handle) ReleaseCapture();
}

// The owner of a dialog that waits for an answer is disabled: the dialog comes forward in its place.
HWND EnabledFor(HWND handle) {
    if (IsWindowEnabled(handle)) return handle;
    for (const HWND owned : [&] {
             const std::lock_guard kernel(KernelLock());
             return WindowsBelow(handle, false);
         }())
        if (IsWindowVisible(owned) && GetParent(owned) == handle)
            if (const HWND taker = EnabledFor(owned)) return taker;  // a tool tip is none
    return nullptr;
}

void Focus(HWND handle, bool has) {
    if (has) {
        if (const HWND taker = EnabledFor(handle); taker != nullptr) Activate(taker, false, taker == handle);
    } else if (GetActiveWindow() != nullptr) {
        Activate(nullptr, false, true);
    }
}

// As a program is told of a change of the desktop's scheme or letters.
void LooksChanged(HWND handle) {
    SendMessageA(handle, WM_SYSCOLORCHANGE, 0, 0);
    constexpr WPARAM kMetrics = 0x2A;  // SPI_SETNONCLIENTMETRICS
    SendMessageA(handle, WM_SETTINGCHANGE, kMetrics, 0);
    DrawMenuBar(handle);
    RedrawWindow(handle, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN);
}

void Act(const MSG& read) {
    const auto kind = static_cast<ScreenEvent::Kind>(read.wParam & 0xFF);
    const auto code = static_cast<UINT>(read.wParam >> 8);
    const int x = static_cast<int>(static_cast<uint32_t>(read.lParam)),
              y = static_cast<int>(static_cast<uint64_t>(read.lParam) >> 32);
    switch (kind) {
        case ScreenEvent::Kind::Resized:
            Resize(read.hwnd, {x, y});
            break;
        case ScreenEvent::Kind::State:
            SetState(read.hwnd, static_cast<ShownWindow::State>(code));
            break;
        case ScreenEvent::Kind::Focused:
            Focus(read.hwnd, true);
            break;
        case ScreenEvent::Kind::Left:
            Focus(read.hwnd, false);
            break;
        case ScreenEvent::Kind::DotsChanged: {
            RECT place{};
            GetWindowRect(read.hwnd, &place);
            place.right = place.left + x;
            place.bottom = place.top + y;
            OrvikSetWindowDpi(read.hwnd, code, &place);
            Resize(read.hwnd, {x, y});
            break;
        }
        case ScreenEvent::Kind::CloseWished:
            Close(read.hwnd);
            break;
        case ScreenEvent::Kind::Placed:
            Place(read.hwnd, {x, y});
            break;
        case ScreenEvent::Kind::Dismissed:
            Dismiss(read.hwnd);
            break;
        case ScreenEvent::Kind::LooksChanged:
            LooksChanged(read.hwnd);
            break;
        case ScreenEvent::Kind::Described:
            DescribeNow(read.hwnd);
            break;
        case ScreenEvent::Kind::Asked:
            ActOnAsked(read.hwnd, code);
            break;
        default:
            break;
    }
}

// The thread's hook, taken away at the thread's end.
class EventHook {
public:
    EventHook() : m_hook(SetWindowsHookExA(WH_GETMESSAGE, &Read, nullptr, GetCurrentThreadId())) {}
    ~EventHook() { UnhookWindowsHookEx(m_hook); }
    EventHook(const EventHook&) = delete;
    EventHook& operator=(const EventHook&) = delete;

private:
    static LRESULT CALLBACK Read(int code, WPARAM remove, LPARAM given) {
        MSG& read = *reinterpret_cast<MSG*>(given);
        if (code == HC_ACTION && read.message == EventMessage() && remove == PM_REMOVE) {
            Act(read);
            read = MSG{nullptr, WM_NULL, 0, 0, read.time, read.pt};
        }
        return CallNextHookEx(nullptr, code, remove, given);
    }
    HHOOK m_hook;
};

}  // namespace

void ListenToScreen() {
    thread_local EventHook t_hook;
    ReadSteps();
}

void PostScreenEvent(HWND window, const ScreenEvent& event) {
    using Kind = ScreenEvent::Kind;
    const WPARAM kind = static_cast<WPARAM>(event.kind) | static_cast<WPARAM>(event.code) << 8;
    switch (event.kind) {
        case Kind::Pointer: {
            const LPARAM at = MAKELPARAM(event.x, event.y - BarOf(window));
            if (event.code == WM_MOUSEMOVE)
                PostLatest(window, PointerStep(), WM_MOUSEMOVE, at);
            else
                PostMessageA(window, PointerStep(), MAKEWPARAM(event.code, event.wheel), at);
            break;
        }
        case Kind::Key:
            PostKey(window, event);
            break;
        case Kind::Text: {
            ScreenEvent packet = event;
            packet.code = VK_PACKET;
            packet.down = true;
            PostKey(window, packet);
            PostMessageA(window, KeyStep(), VK_PACKET, 0);
            break;
        }
        case Kind::Dropped:
            PostDrop(window, event.paths, {event.x, event.y - BarOf(window)});
            break;
        case Kind::Resized:
        case Kind::DotsChanged:
            PostLatest(window, EventMessage(), kind, Pair(event.x, event.y));
            break;
        default:
            PostMessageA(window, EventMessage(), kind, Pair(event.x, event.y));
    }
}

}  // namespace orvik::detail
