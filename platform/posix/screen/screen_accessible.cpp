#include "platform/posix/screen/screen_accessible_internal.h"

#include <atomic>
#include <map>
#include <mutex>
#include <set>
#include <utility>

#include "platform/house_text_internal.h"
#include "platform/posix/accessible/accessible_tree_internal.h"
#include "platform/posix/dialogs/menu_internal.h"
#include "platform/posix/screen/screen_events_internal.h"
#include "platform/posix/screen/screen_loading_internal.h"
#include "platform/posix/text/letters_internal.h"
#include "platform/posix/window/window_internal.h"

namespace orvik::detail {
namespace {
std::atomic<bool> g_listening{false};
thread_local std::set<HWND> t_undescribed;

// What was asked and has not come to the window's thread yet. Of a window that goes meanwhile, it stays until the program ends:
// a user does not ask that often.
struct Asked {
    HWND window;
    OrvikAccessibleAct act;
};
struct Waiting {
    std::mutex lock;
    UINT last = 0;
    std::map<UINT, Asked> asked;
};
Waiting& TheWaiting() {
    static Waiting* waiting = new Waiting;
    return *waiting;
}

// Where a character begins, in bytes of this house's text.
size_t ByteOf(const std::string& text, size_t character) {
    std::string_view rest = text;
    for (; character > 0 && !rest.empty(); --character) TakeHouse(rest);
    return text.size() - rest.size();
}

std::string TextOf(HWND window) {
    std::string text(static_cast<size_t>(std::max(0, GetWindowTextLengthA(window))) + 1, '\0');
    text.resize(static_cast<size_t>(std::max(0, GetWindowTextA(window, text.data(), static_cast<int>(text.size())))));
    return text;
}
}  // namespace

void ListenToWindows() {
    if (g_listening.exchange(true)) return;
    std::vector<HWND> roots;
    {
        const std::lock_guard kernel(KernelLock());
        for (const HWND each : Desktop().children) {
            const Window* const window = FindWindowOf(each);
            if (window != nullptr && (window->style & WS_VISIBLE) != 0 && !window->messageOnly) roots.push_back(each);
        }
    }
    for (const HWND each : roots) PostScreenEvent(each, ScreenEvent{ScreenEvent::Kind::Described});
}

void AskOfWindow(HWND root, HWND window, OrvikAccessibleAct act) {
    ScreenEvent event{ScreenEvent::Kind::Asked};
    {
        Waiting& waiting = TheWaiting();
        const std::lock_guard lock(waiting.lock);
        event.code = waiting.last = (waiting.last + 1) & 0xFFFFFF;
        waiting.asked[event.code] = {window, std::move(act)};
    }
    PostScreenEvent(root, event);
}

void ActOnAsked(HWND root, UINT ticket) {
    Asked asked;
    {
        Waiting& waiting = TheWaiting();
        const std::lock_guard lock(waiting.lock);
        const auto found = waiting.asked.find(ticket);
        if (found == waiting.asked.end()) return;
        asked = std::move(found->second);
        waiting.asked.erase(found);
    }
    const HWND window = asked.window;
    OrvikAccessibleAct& act = asked.act;
    // A dialog above it has its window disabled, as for the pointer.
    if (!IsWindowEnabled(window) || !IsWindowEnabled(root) || !IsWindowVisible(window)) return;
    if (act.part >= kMenuParts) {
        if (act.kind == OrvikAccessibleAct::Kind::Press) ActOnMenuBar(root, act.part);
        return;
    }
    act.text = HouseFromUtf8(act.text);
    if (act.kind == OrvikAccessibleAct::Kind::Caret) {
        const std::string text = TextOf(window);
        act.from = ByteOf(text, act.from);
        act.to = ByteOf(text, act.to);
    }
    const bool done = SendMessageA(window, OrvikActMessage(), 0, reinterpret_cast<LPARAM>(&act)) != 0;
    if (!done && act.kind == OrvikAccessibleAct::Kind::Focus && act.part == 0) SetFocus(window);
}

void NoteUndescribed(HWND root) {
    if (g_listening) t_undescribed.insert(root);
}

void DescribeDrawn() {
    for (const HWND each : std::exchange(t_undescribed, {})) DescribeNow(each);
}

void DescribeNow(HWND root) {
    Screen* const screen = TheScreen();
    if (screen == nullptr || !g_listening || !IsWindowVisible(root)) return;
    screen->Described(root, std::make_shared<const OrvikAccessible>(DescribeWindow(root)));
}

}  // namespace orvik::detail
