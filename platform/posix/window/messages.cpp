#include "platform/posix/window/messages.h"

#include <algorithm>
#include <map>
#include <set>
#include <unordered_map>
#include <utility>

#include "platform/posix/kernel/threads.h"
#include "platform/posix/window/window_internal.h"

namespace orvik::detail {
namespace {
constexpr size_t kMostPosted = 10'000;       // as on Windows: a thread that no longer reads must not eat all memory
constexpr int64_t kSoon = 8 * kMillisecond;  // half a frame of a screen

std::unordered_map<DWORD, MessageQueue*>& Queues() {
    static auto* queues = new std::unordered_map<DWORD, MessageQueue*>;
    return *queues;
}

// What other threads and the timers' dispatch may call; a posted WM_TIMER with a made-up procedure is not followed.
std::set<TIMERPROC>& KnownTimerProcedures() {
    static auto* known = new std::set<TIMERPROC>;
    return *known;
}

void Answer(SentMessage& sent, bool answered, LRESULT result) {
    sent.done = true;
    sent.answered = answered;
    sent.result = result;
    if (sent.sender != nullptr) sent.sender->Wake();
}

// A thread's queue; its end takes the thread's windows along and lets nobody wait for an answer in vain.
class ThreadQueue {
public:
    ThreadQueue() {
        m_queue.waiter = &Waiter::Current();  // made before this object, so destroyed after it
        m_queue.thread = GetCurrentThreadId();
        const std::lock_guard kernel(KernelLock());
        Queues()[m_queue.thread] = &m_queue;
    }
    ~ThreadQueue() {
        const std::lock_guard kernel(KernelLock());
        Queues().erase(m_queue.thread);
        for (const auto& sent : m_queue.sent) Answer(*sent, false, 0);
        RemoveWindowsOfThread(m_queue.thread);
    }
    MessageQueue m_queue;
};

MSG NewMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return {window, message, wParam, lParam, GetTickCount(), PointerPlace()};
}

DWORD Post(MessageQueue* queue, const MSG& message) {
    if (queue == nullptr) return ERROR_INVALID_THREAD_ID;
    if (queue->posted.size() >= kMostPosted) return ERROR_NOT_ENOUGH_QUOTA;
    queue->posted.push_back(message);
    queue->Note(QS_POSTMESSAGE | QS_ALLPOSTMESSAGE);
    return ERROR_SUCCESS;
}

// What a reader asks for.
struct Filter {
    HWND window;
    UINT first, last;
    UINT kinds = PM_QS_INPUT | PM_QS_PAINT | PM_QS_POSTMESSAGE | PM_QS_SENDMESSAGE;

    bool TakesMessage(UINT message) const { return (first == 0 && last == 0) || (message >= first && message <= last); }
    bool TakesWindow(HWND of) const {
        if (window == nullptr) return true;
        if (window == reinterpret_cast<HWND>(static_cast<LONG_PTR>(-1))) return of == nullptr;
        for (HWND up = of; up != nullptr;) {
            if (up == window) return true;
            const Window* found = FindWindowOf(up);
            up = found != nullptr && (found->style & WS_CHILD) ? found->parent : nullptr;
        }
        return false;
    }
};

// The next message for the filter, sent ones aside. Under the kernel lock.
bool TakeMessage(MessageQueue& queue, const Filter& filter, bool remove, MSG& out) {
    const auto fits = [&](const MSG& m) {
        return m.message == WM_QUIT || (filter.TakesMessage(m.message) && filter.TakesWindow(m.hwnd));
    };
    const bool posted = (filter.kinds & PM_QS_POSTMESSAGE) != 0;
    const auto found = posted ? std::find_if(queue.posted.begin(), queue.posted.end(), fits) : queue.posted.end();
    if (found != queue.posted.end()) {
        out = *found;
        if (remove) queue.posted.erase(found);
        return true;
    }
    if (queue.quit && posted) {
        out = NewMessage(nullptr, WM_QUIT, static_cast<WPARAM>(queue.quitCode), 0);
        if (remove) queue.quit = false;
        return true;
    }
    HWND paint = nullptr;
    const auto takes = [](HWND window, const void* given) { return static_cast<const Filter*>(given)->TakesWindow(window); };
    if (queue.mayPaint && (filter.kinds & PM_QS_PAINT) != 0 && filter.TakesMessage(WM_PAINT) &&
        NextPaint(queue, takes, &filter, paint)) {
        out = NewMessage(paint, WM_PAINT, 0, 0);
        return true;
    }
    if (queue.timers.empty() || !posted || !filter.TakesMessage(WM_TIMER)) return false;
    const int64_t now = NowNs();
    Timer* earliest = nullptr;
    for (Timer& timer : queue.timers) {
        if (timer.due <= now && filter.TakesWindow(timer.window) && (earliest == nullptr || timer.due < earliest->due))
            earliest = &timer;
    }
    if (earliest == nullptr) return false;
    out = NewMessage(earliest->window, WM_TIMER, earliest->id, reinterpret_cast<LPARAM>(earliest->procedure));
    if (remove) earliest->due = std::max(earliest->due + earliest->period, now + 1);
    return true;
}

// Error code; 1400 for a window to filter by that is not there.
DWORD CheckFilter(const MSG* message, HWND window) {
    if (message == nullptr) return ERROR_INVALID_PARAMETER;
    if (window == nullptr || window == reinterpret_cast<HWND>(static_cast<LONG_PTR>(-1))) return ERROR_SUCCESS;
    return FindWindowOf(window) == nullptr ? ERROR_INVALID_WINDOW_HANDLE : ERROR_SUCCESS;
}
}  // namespace

int64_t MessageQueue::NextTimer() const {
    int64_t next = kNever;
    for (const Timer& timer : timers) next = std::min(next, timer.due);
    return next;
}

MessageQueue& CurrentQueue() {
    thread_local ThreadQueue queue;
    return queue.m_queue;
}

MessageQueue* QueueOf(DWORD thread) {
    const auto found = Queues().find(thread);
    return found == Queues().end() ? nullptr : found->second;
}

void RemoveMessagesFor(HWND window, DWORD thread) {
    MessageQueue* queue = QueueOf(thread);
    if (queue == nullptr) return;
    std::erase_if(queue->posted, [&](const MSG& m) { return m.hwnd == window; });
    std::erase_if(queue->timers, [&](const Timer& t) { return t.window == window; });
    for (auto sent = queue->sent.begin(); sent != queue->sent.end();) {
        if ((*sent)->message.hwnd == window) {
            Answer(**sent, false, 0);
            sent = queue->sent.erase(sent);
        } else {
            ++sent;
        }
    }
}

void ServeSentMessages(MessageQueue& queue, std::unique_lock<std::mutex>& kernel) {
    // Answers even when the procedure throws, for the sender waits.
    struct Reply {
        std::unique_lock<std::mutex>& kernel;
        std::shared_ptr<SentMessage> sent;
        bool answered = false;
        LRESULT result = 0;
        ~Reply() {
            kernel.lock();
            Answer(*sent, answered, result);
        }
    };
    while (!queue.sent.empty()) {
        Reply reply{kernel, queue.sent.front()};
        queue.sent.pop_front();
        const MSG& m = reply.sent->message;
        kernel.unlock();
        reply.result = CallProcedureOf(m.hwnd, m.message, m.wParam, m.lParam);
        reply.answered = true;
    }
    queue.changed &= ~QS_SENDMESSAGE;
}
}  // namespace orvik::detail

using namespace orvik::detail;

UINT RegisterWindowMessageA(LPCSTR text) {
    if (text == nullptr || *text == 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    std::string key = text;
    for (char& c : key) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
    static auto* numbers = new std::map<std::string, UINT>;
    const std::lock_guard kernel(KernelLock());
    const auto found = numbers->find(key);
    if (found != numbers->end()) return found->second;
    const UINT number = 0xC000u + static_cast<UINT>(numbers->size());
    if (number > 0xFFFF) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return 0;
    }
    return (*numbers)[key] = number;
}

BOOL PostMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (window == nullptr) return PostThreadMessageA(CurrentQueue().thread, message, wParam, lParam);
    const WakeAfterwards wakes;
    const std::lock_guard kernel(KernelLock());
    const MSG posted = NewMessage(window, message, wParam, lParam);
    const Window* target = FindWindowOf(window);
    return Finish(target == nullptr ? ERROR_INVALID_WINDOW_HANDLE : Post(QueueOf(target->thread), posted));
}

BOOL PostThreadMessageA(DWORD threadId, UINT message, WPARAM wParam, LPARAM lParam) {
    const WakeAfterwards wakes;
    const std::lock_guard kernel(KernelLock());
    const MSG posted = NewMessage(nullptr, message, wParam, lParam);
    return Finish(Post(QueueOf(threadId), posted));
}

void PostQuitMessage(int exitCode) {
    MessageQueue& queue = CurrentQueue();
    const std::lock_guard kernel(KernelLock());
    queue.quit = true;
    queue.quitCode = exitCode;
    queue.Note(QS_POSTMESSAGE | QS_ALLPOSTMESSAGE);
}

LRESULT SendMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    MessageQueue& own = CurrentQueue();
    std::unique_lock kernel(KernelLock());
    const Window* target = FindWindowOf(window);
    MessageQueue* queue = target == nullptr ? nullptr : QueueOf(target->thread);
    if (queue == nullptr) {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        return 0;
    }
    if (queue == &own) {
        kernel.unlock();
        return CallProcedureOf(window, message, wParam, lParam);
    }
    // However this thread leaves, the receiver must not wake it later.
    struct Sending {
        std::shared_ptr<SentMessage> sent = std::make_shared<SentMessage>();
        ~Sending() { sent->sender = nullptr; }
    } sending;
    SentMessage& sent = *sending.sent;
    sent.message = NewMessage(window, message, wParam, lParam);
    sent.sender = own.waiter;
    queue->sent.push_back(sending.sent);
    queue->Note(QS_SENDMESSAGE);
    while (!sent.done) {
        WaitUntil(kernel, {}, kNever, [&] { return sent.done || !own.sent.empty(); });
        if (!sent.done) ServeSentMessages(own, kernel);
    }
    if (!sent.answered) SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return sent.result;
}

int GetMessageA(LPMSG message, HWND window, UINT first, UINT last) {
    MessageQueue& queue = CurrentQueue();
    std::unique_lock kernel(KernelLock());
    if (const DWORD error = CheckFilter(message, window)) {
        SetLastError(error);
        return -1;
    }
    const Filter filter{window, first, last};
    const auto show = [&kernel] {
        kernel.unlock();
        ShowDrawn();
        DescribeDrawn();
        kernel.lock();
    };
    for (bool shown = false;;) {
        // Where messages never run dry, as while the pointer moves.
        if (queue.drawnSince != 0 && !queue.mayPaint && NowNs() - queue.drawnSince > kSoon) show();
        ServeSentMessages(queue, kernel);
        queue.changed = 0;
        if (TakeMessage(queue, filter, true, *message)) {
            kernel.unlock();
            RunMessageHooks(*message, PM_REMOVE);
            return message->message == WM_QUIT ? 0 : 1;
        }
        if (queue.MayHaveDrawn() && !std::exchange(shown, true)) {
            show();
            continue;
        }
        WaitUntil(kernel, {}, queue.NextTimer(), [&] { return queue.changed != 0; });
    }
}

BOOL PeekMessageA(LPMSG message, HWND window, UINT first, UINT last, UINT remove) {
    MessageQueue& queue = CurrentQueue();
    std::unique_lock kernel(KernelLock());
    if (const DWORD error = CheckFilter(message, window)) return Finish(error);
    EndIfTerminated(kernel);
    ServeSentMessages(queue, kernel);
    queue.changed = 0;
    Filter filter{window, first, last};
    if ((remove >> 16) != 0) filter.kinds = remove & 0xFFFF0000u;
    const bool taken = TakeMessage(queue, filter, (remove & PM_REMOVE) != 0, *message);
    const bool showDrawn = !taken && queue.MayHaveDrawn() && !queue.mayPaint;
    kernel.unlock();
    if (showDrawn) {
        ShowDrawn();
        DescribeDrawn();
    }
    if (!taken) return FALSE;
    RunMessageHooks(*message, remove & PM_REMOVE);
    return TRUE;
}

LRESULT DispatchMessageA(const MSG* message) {
    if (message == nullptr) return 0;
    if (message->message == WM_TIMER && message->lParam != 0) {
        const auto procedure = reinterpret_cast<TIMERPROC>(message->lParam);
        {
            const std::lock_guard kernel(KernelLock());
            if (KnownTimerProcedures().count(procedure) == 0) return 0;
        }
        procedure(message->hwnd, WM_TIMER, message->wParam, GetTickCount());
        return 0;
    }
    if (message->hwnd == nullptr) return 0;
    {
        const std::lock_guard kernel(KernelLock());
        const Window* target = FindWindowOf(message->hwnd);
        if (target == nullptr || target->thread != GetCurrentThreadId()) {
            SetLastError(ERROR_INVALID_WINDOW_HANDLE);
            return 0;
        }
    }
    return CallProcedureOf(message->hwnd, message->message, message->wParam, message->lParam);
}

UINT_PTR SetTimer(HWND window, UINT_PTR id, UINT milliseconds, TIMERPROC procedure) {
    MessageQueue& queue = CurrentQueue();
    const int64_t period = std::clamp(milliseconds, USER_TIMER_MINIMUM, USER_TIMER_MAXIMUM) * kMillisecond;
    const std::lock_guard kernel(KernelLock());
    if (window != nullptr) {
        const Window* target = FindWindowOf(window);
        if (target == nullptr || target->thread != queue.thread) {
            SetLastError(target == nullptr ? ERROR_INVALID_WINDOW_HANDLE : ERROR_ACCESS_DENIED);
            return 0;
        }
    }
    if (procedure != nullptr) KnownTimerProcedures().insert(procedure);
    const auto found =
        std::find_if(queue.timers.begin(), queue.timers.end(), [&](const Timer& t) { return t.window == window && t.id == id; });
    Timer timer{window, id, period, NowNs() + period, procedure};
    if (found != queue.timers.end()) {
        *found = timer;
    } else {
        if (window == nullptr) timer.id = ++queue.lastTimerId;
        queue.timers.push_back(timer);
    }
    return timer.id == 0 ? 1 : timer.id;
}

BOOL KillTimer(HWND window, UINT_PTR id) {
    MessageQueue& queue = CurrentQueue();
    const std::lock_guard kernel(KernelLock());
    const size_t killed = std::erase_if(queue.timers, [&](const Timer& t) { return t.window == window && t.id == id; });
    return Finish(killed == 0 ? ERROR_INVALID_PARAMETER : ERROR_SUCCESS);
}
