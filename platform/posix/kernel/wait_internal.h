// How threads sleep and are woken.
// One lock, the kernel lock, guards every signal state, every list of waiters and every message queue. It is held for moments,
// never in a system call that blocks, and never while a caller's code runs. Lock order: a port's lock before the kernel lock.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <span>
#include <vector>

#include "platform/posix/kernel/clock_internal.h"
#include "platform/posix/kernel/handle_table_internal.h"

namespace orvik::detail {

std::mutex& KernelLock();

// Something with a descriptor that the waiting thread itself serves: a port with pending operations.
class IoSource {
public:
    struct Interest {
        int fd = -1;
        short events = 0;      // as for poll; none is allowed, hang-ups show anyway
        int64_t due = kNever;  // when to serve at the latest: a time-out, or a look at what nobody is woken for
    };
    virtual ~IoSource() = default;
    // Both are called without the kernel lock, by any number of waiting threads. Asking for the interest changes nothing.
    virtual Interest GetInterest() = 0;
    virtual void Serve(short readyEvents) = 0;
};

// While it lives, threads that sleep on a futex and that this thread wakes are started only at its end. Made before the kernel
// lock is taken, it lets them run into a lock that is free: a thread that must wait for it at once pays for a second sleep.
class WakeAfterwards {
public:
    WakeAfterwards();
    ~WakeAfterwards();
    WakeAfterwards(const WakeAfterwards&) = delete;
    WakeAfterwards& operator=(const WakeAfterwards&) = delete;

    // The scope of the calling thread, null outside any.
    static WakeAfterwards* Current();
    // False when there is no room for another one.
    bool Add(std::atomic<uint32_t>& futex);

private:
    static constexpr size_t kMost = 4;
    std::atomic<uint32_t>* m_futexes[kMost];
    size_t m_count = 0;
};

// A thread's place to sleep. It sleeps on a futex, or in poll when it has sources to serve.
class Waiter {
public:
    static Waiter& Current();
    ~Waiter();

    // Wakes the thread if it sleeps. Under the kernel lock.
    void Wake();
    // Unlocks, sleeps until woken or until the deadline, locks again. May return early.
    void Sleep(std::unique_lock<std::mutex>& kernel, int64_t deadline);
    // The same; serves the sources as they become ready.
    void SleepServing(std::unique_lock<std::mutex>& kernel, std::span<const std::shared_ptr<IoSource>> sources, int64_t deadline);

private:
    std::atomic<uint32_t> m_signal{0};  // the futex
    int m_eventFd = -1;                 // made at the first poll
    bool m_asleep = false;              // these three under the kernel lock
    bool m_polling = false;
    bool m_written = false;
};

// An object to wait for. Members are used under the kernel lock.
class Waitable : public KernelObject {
public:
    static constexpr Kind kKind = kWaitable;
    explicit Waitable(Kind kind) : KernelObject(static_cast<unsigned>(kWaitable) | kind) {}

    virtual bool IsSignalled() const = 0;
    virtual void Consume() {}  // what a successful wait does to it
    void WakeWaiters();

    std::vector<Waiter*> m_waiters;
    std::vector<std::shared_ptr<IoSource>> m_sources;  // whose progress may signal it
};

class Event final : public Waitable {
public:
    static constexpr Kind kKind = kEvent;
    Event(bool manualReset, bool signalled) : Waitable(kEvent), m_manualReset(manualReset), m_signalled(signalled) {}

    // Without the kernel lock; a call that changes nothing takes no lock.
    void Set();
    void Reset();
    // A pending operation of the source will signal this event, until that is its end.
    void Attach(std::shared_ptr<IoSource> source);
    void SetAndDetach(const IoSource& source);
    // Makes waiters look anew at what the source wants of them.
    void Nudge();

    bool IsSignalled() const override { return m_signalled.load(std::memory_order_acquire); }
    void Consume() override {
        if (!m_manualReset) m_signalled.store(false, std::memory_order_release);
    }

private:
    const bool m_manualReset;
    std::atomic<bool> m_signalled;
};

// The event of a handle, empty for a bad one. Each thread keeps hold of the event it named last, so that naming it again costs no
// shared counting: with one event a port, that is every call of a reading thread. Valid until the thread names another.
class NamedEvent {
public:
    explicit NamedEvent(HANDLE handle);
    explicit operator bool() const { return m_event != nullptr; }
    Event* operator->() const { return m_event->get(); }
    const std::shared_ptr<Event>& Shared() const { return *m_event; }

private:
    const std::shared_ptr<Event>* m_event = nullptr;
};

// Puts the waiter into the objects' lists for as long as it lives. Made and destroyed under the kernel lock.
class WaitRegistration {
public:
    WaitRegistration(Waiter& waiter, std::span<Waitable* const> objects);
    ~WaitRegistration();
    WaitRegistration(const WaitRegistration&) = delete;
    WaitRegistration& operator=(const WaitRegistration&) = delete;

private:
    Waiter& m_waiter;
    std::span<Waitable* const> m_objects;
};

// Ends the calling thread here if TerminateThread wants that: aborts what it has pending on ports, and throws, to be caught by
// the thread's entry. Under the kernel lock.
void EndIfTerminated(std::unique_lock<std::mutex>& kernel);
void CancelOperationsOfThisThread();  // without it
// Sleeps once for the objects' waiters or sources. Under the kernel lock, which is free meanwhile.
void SleepOnce(std::unique_lock<std::mutex>& kernel, std::span<Waitable* const> objects, int64_t deadline);

// Waits until `ready` (called under the kernel lock) is true, and gives true; or, after at least one look at the objects'
// sources, until the deadline, and gives false.
template <class Ready>
bool WaitUntil(std::unique_lock<std::mutex>& kernel, std::span<Waitable* const> objects, int64_t deadline, Ready ready) {
    const WaitRegistration registration(Waiter::Current(), objects);
    for (bool looked = false;; looked = true) {
        EndIfTerminated(kernel);
        if (ready()) return true;
        if (looked && NowNs() >= deadline) return false;
        SleepOnce(kernel, objects, deadline);
    }
}

}  // namespace orvik::detail
