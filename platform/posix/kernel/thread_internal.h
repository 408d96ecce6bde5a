// The object behind a thread's handle, and what ends with a thread.
#pragma once

#include "platform/posix/kernel/threads.h"
#include "platform/posix/kernel/wait_internal.h"

namespace orvik::detail {

class Thread final : public Waitable {
public:
    static constexpr Kind kKind = kThread;
    Thread() : Waitable(kThread) {}
    bool IsSignalled() const override { return m_ended; }

    // Under the kernel lock.
    bool m_ended = false;
    bool m_terminate = false;
    DWORD m_exitCode = STILL_ACTIVE;
    DWORD m_id = 0;
    Waiter* m_waiter = nullptr;
};

// Thrown in a thread that TerminateThread ends; only the thread's entry catches it.
struct ThreadEnd {};

}  // namespace orvik::detail
