// Waiting for messages and objects at once.
#include <algorithm>

#include "platform/posix/kernel/thread_internal.h"
#include "platform/posix/kernel/wait_list_internal.h"
#include "platform/posix/window/window_internal.h"

using namespace orvik::detail;

DWORD MsgWaitForMultipleObjects(DWORD count, const HANDLE* handles, BOOL waitAll, DWORD milliseconds, DWORD wakeMask) {
    WaitList list;
    const bool known = count < MAXIMUM_WAIT_OBJECTS && (count == 0 || handles != nullptr);
    if (const DWORD error = known ? list.Take(count, handles) : ERROR_INVALID_PARAMETER) {
        SetLastError(error);
        return WAIT_FAILED;
    }
    MessageQueue& queue = CurrentQueue();
    ShowDrawn();
    DescribeDrawn();
    const int64_t deadline = DeadlineIn(milliseconds);
    std::unique_lock kernel(KernelLock());
    const auto hasMessage = [&] {
        return (queue.changed & wakeMask) != 0 || ((wakeMask & QS_TIMER) != 0 && queue.NextTimer() <= NowNs());
    };
    for (;;) {
        DWORD result = WAIT_TIMEOUT;
        const auto ready = [&] {
            // Waiting for all means all objects and a message, as documented.
            if (waitAll && !hasMessage()) return false;
            if (list.TakeSignal(waitAll != FALSE, result)) return true;
            if (!hasMessage() || (waitAll && count != 0)) return false;
            result = WAIT_OBJECT_0 + count;
            return true;
        };
        // A timer of this thread sets its own limit to the sleep.
        const int64_t timer = (wakeMask & QS_TIMER) != 0 ? queue.NextTimer() : kNever;
        if (WaitUntil(kernel, list.Objects(), std::min(deadline, timer), ready)) return result;
        if (NowNs() >= deadline) return WAIT_TIMEOUT;
    }
}
