#include "platform/posix/kernel/waits.h"

#include <algorithm>

#include "platform/posix/kernel/thread_internal.h"
#include "platform/posix/window/window_internal.h"

using namespace orvik::detail;

namespace {
// One wait's objects: looked up, held, and asked.
class WaitList {
public:
    // 0 or the error code.
    DWORD Take(DWORD count, const HANDLE* handles) {
        m_pins.reserve(count);
        for (DWORD i = 0; i < count; ++i) {
            m_pins.emplace_back(handles[i]);
            if (!m_pins.back()) return ERROR_INVALID_HANDLE;
            m_objects.push_back(&*m_pins.back());
        }
        return ERROR_SUCCESS;
    }

    // Under the kernel lock: whether the wait is over; then takes the signal. The result counts from WAIT_OBJECT_0.
    bool TakeSignal(bool all, DWORD& result) {
        if (all) {
            for (const Waitable* object : m_objects) {
                if (!object->IsSignalled()) return false;
            }
            for (Waitable* object : m_objects) object->Consume();
            result = WAIT_OBJECT_0;
            return !m_objects.empty();
        }
        for (size_t i = 0; i < m_objects.size(); ++i) {
            if (!m_objects[i]->IsSignalled()) continue;
            m_objects[i]->Consume();
            result = WAIT_OBJECT_0 + static_cast<DWORD>(i);
            return true;
        }
        return false;
    }
    std::span<Waitable* const> Objects() const { return m_objects; }

private:
    std::vector<Pinned<Waitable>> m_pins;
    std::vector<Waitable*> m_objects;
};

DWORD Fail(DWORD error) {
    SetLastError(error);
    return WAIT_FAILED;
}
}  // namespace

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
    const Pinned<Waitable> object(handle);
    if (!object) return Fail(ERROR_INVALID_HANDLE);
    std::unique_lock kernel(KernelLock());
    EndIfTerminated(kernel);
    if (object->IsSignalled()) {
        object->Consume();
        return WAIT_OBJECT_0;
    }
    Waitable* const waited[] = {&*object};
    const bool signalled = WaitUntil(kernel, waited, DeadlineIn(milliseconds), [&] { return waited[0]->IsSignalled(); });
    if (!signalled) return WAIT_TIMEOUT;
    object->Consume();
    return WAIT_OBJECT_0;
}

DWORD WaitForMultipleObjects(DWORD count, const HANDLE* handles, BOOL waitAll, DWORD milliseconds) {
    if (count == 0 || count > MAXIMUM_WAIT_OBJECTS || handles == nullptr) return Fail(ERROR_INVALID_PARAMETER);
    WaitList list;
    if (const DWORD error = list.Take(count, handles)) return Fail(error);
    std::unique_lock kernel(KernelLock());
    DWORD result = WAIT_TIMEOUT;
    WaitUntil(kernel, list.Objects(), DeadlineIn(milliseconds), [&] { return list.TakeSignal(waitAll != FALSE, result); });
    return result;
}

DWORD MsgWaitForMultipleObjects(DWORD count, const HANDLE* handles, BOOL waitAll, DWORD milliseconds, DWORD wakeMask) {
    if (count > MAXIMUM_WAIT_OBJECTS - 1 || (count != 0 && handles == nullptr)) return Fail(ERROR_INVALID_PARAMETER);
    WaitList list;
    if (const DWORD error = list.Take(count, handles)) return Fail(error);
    MessageQueue& queue = CurrentQueue();
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
