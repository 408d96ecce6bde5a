#include "platform/posix/kernel/threads.h"

#include <pthread.h>
#include <sched.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <exception>

#include "platform/posix/kernel/thread_internal.h"

using namespace orvik::detail;

namespace {
thread_local Thread* t_thread = nullptr;

// Signals the thread's end. Made first of the thread's own objects and so destroyed last: who waits for the thread finds them
// gone.
class EndOfThread {
public:
    void Arm(std::shared_ptr<Thread> thread) { m_thread = std::move(thread); }
    ~EndOfThread() {
        if (!m_thread) return;
        const std::lock_guard kernel(KernelLock());
        m_thread->m_ended = true;
        m_thread->WakeWaiters();
    }

private:
    std::shared_ptr<Thread> m_thread;
};
thread_local EndOfThread t_end;

struct Start {
    std::shared_ptr<Thread> thread;
    LPTHREAD_START_ROUTINE routine;
    LPVOID parameter;
};

void* ThreadEntry(void* argument) {
    std::unique_ptr<Start> start(static_cast<Start*>(argument));
    Thread& thread = *start->thread;
    t_end.Arm(start->thread);
    t_thread = &thread;
    {
        const std::lock_guard kernel(KernelLock());
        thread.m_id = GetCurrentThreadId();
        thread.m_waiter = &Waiter::Current();
        thread.WakeWaiters();
    }
    DWORD code = 0;
    bool finished = false;
    try {
        code = start->routine(start->parameter);
        finished = true;
    } catch (const ThreadEnd&) {
        // The exit code is the one that TerminateThread gave.
    }
    const std::lock_guard kernel(KernelLock());
    if (finished && !thread.m_terminate) thread.m_exitCode = code;
    thread.m_waiter = nullptr;
    return nullptr;
}

// The thread that a handle names, the pseudo handle included; null for a bad handle.
std::shared_ptr<Thread> ThreadOf(HANDLE handle) {
    if (handle == GetCurrentThread())
        return t_thread == nullptr ? nullptr : std::shared_ptr<Thread>(std::shared_ptr<void>(), t_thread);
    const Pinned<Thread> pinned(handle);
    return pinned ? pinned.Shared() : nullptr;
}
}  // namespace

namespace orvik::detail {

void EndIfTerminated(std::unique_lock<std::mutex>& kernel) {
    // Destructors of the stack that unwinds may wait in peace.
    if (t_thread == nullptr || !t_thread->m_terminate || std::uncaught_exceptions() != 0) return;
    kernel.unlock();
    CancelOperationsOfThisThread();
    kernel.lock();
    throw ThreadEnd{};
}
}  // namespace orvik::detail

HANDLE CreateThread(LPSECURITY_ATTRIBUTES, SIZE_T stackSize, LPTHREAD_START_ROUTINE start, LPVOID parameter, DWORD flags,
                    LPDWORD threadId) {
    if (start == nullptr || (flags & ~STACK_SIZE_PARAM_IS_A_RESERVATION) != 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    auto thread = std::make_shared<Thread>();
    const HANDLE handle = NewHandle(thread);
    if (handle == nullptr) return nullptr;
    auto begin = std::make_unique<Start>(Start{thread, start, parameter});

    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    // Whole pages, and room for the C library's own start-up.
    constexpr SIZE_T kSmallest = 256 * 1024, kPage = 4096;
    if (stackSize != 0) pthread_attr_setstacksize(&attributes, (std::max(stackSize, kSmallest) + kPage - 1) / kPage * kPage);
    pthread_t id;
    const int error = pthread_create(&id, &attributes, ThreadEntry, begin.get());
    pthread_attr_destroy(&attributes);
    if (error != 0) {
        RemoveHandle(handle);
        SetLastError(error == EAGAIN ? ERROR_NOT_ENOUGH_MEMORY : ErrorFromErrno(error));
        return nullptr;
    }
    begin.release();
    if (threadId != nullptr) *threadId = GetThreadId(handle);
    return handle;
}

DWORD GetCurrentThreadId() {
    thread_local const auto id = static_cast<DWORD>(syscall(SYS_gettid));
    return id;
}

HANDLE GetCurrentThread() { return reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(-2)); }

DWORD GetThreadId(HANDLE thread) {
    if (thread == GetCurrentThread()) return GetCurrentThreadId();
    const std::shared_ptr<Thread> object = ThreadOf(thread);
    if (!object) {
        SetLastError(ERROR_INVALID_HANDLE);
        return 0;
    }
    // The thread itself tells its number, as its first act.
    std::unique_lock kernel(KernelLock());
    Waitable* const waited[] = {object.get()};
    WaitUntil(kernel, waited, kNever, [&] { return object->m_id != 0; });
    return object->m_id;
}

BOOL GetExitCodeThread(HANDLE thread, LPDWORD exitCode) {
    if (exitCode == nullptr) return Finish(ERROR_INVALID_PARAMETER);
    if (thread == GetCurrentThread()) {
        *exitCode = STILL_ACTIVE;
        return TRUE;
    }
    const std::shared_ptr<Thread> object = ThreadOf(thread);
    if (!object) return Finish(ERROR_INVALID_HANDLE);
    const std::lock_guard kernel(KernelLock());
    *exitCode = object->m_ended ? object->m_exitCode : STILL_ACTIVE;
    return TRUE;
}

BOOL TerminateThread(HANDLE thread, DWORD exitCode) {
    const std::shared_ptr<Thread> object = ThreadOf(thread);
    if (!object) return Finish(ERROR_INVALID_HANDLE);
    std::unique_lock kernel(KernelLock());
    if (object->m_ended) return Finish(ERROR_ACCESS_DENIED);
    object->m_terminate = true;
    object->m_exitCode = exitCode;
    if (object.get() == t_thread) EndIfTerminated(kernel);
    if (object->m_waiter != nullptr) object->m_waiter->Wake();
    Waitable* const waited[] = {object.get()};
    const bool ended = WaitUntil(kernel, waited, DeadlineIn(100), [&] { return object->m_ended; });
    return ended ? TRUE : Finish(ERROR_TIMEOUT);
}

void Sleep(DWORD milliseconds) {
    if (milliseconds == 0) sched_yield();
    std::unique_lock kernel(KernelLock());
    WaitUntil(kernel, {}, DeadlineIn(milliseconds), [] { return false; });
}

DWORD GetTickCount() { return static_cast<DWORD>(GetTickCount64()); }
ULONGLONG GetTickCount64() { return static_cast<ULONGLONG>(NowNs() / kMillisecond); }

BOOL QueryPerformanceCounter(LARGE_INTEGER* count) {
    timespec now;
    clock_gettime(CLOCK_BOOTTIME, &now);
    count->QuadPart = now.tv_sec * 1'000'000'000LL + now.tv_nsec;
    return TRUE;
}
BOOL QueryPerformanceFrequency(LARGE_INTEGER* frequency) {
    frequency->QuadPart = 1'000'000'000;
    return TRUE;
}
