#include "platform/posix/kernel/wait_internal.h"

#include <linux/futex.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <climits>

namespace orvik::detail {

std::mutex& KernelLock() {
    static auto* lock = new std::mutex;  // never destroyed: threads may outlive main
    return *lock;
}

namespace {
void FutexWait(std::atomic<uint32_t>& word, int64_t deadline) {
    const timespec until = ToTimespec(deadline);
    syscall(SYS_futex, &word, FUTEX_WAIT_BITSET_PRIVATE, 0, deadline == kNever ? nullptr : &until, nullptr,
            FUTEX_BITSET_MATCH_ANY);
}

// A thread that has ended meanwhile leaves an address without sleepers, or none at all: either is harmless.
void FutexWake(std::atomic<uint32_t>& word) { syscall(SYS_futex, &word, FUTEX_WAKE_PRIVATE, 1, nullptr, nullptr, 0); }

thread_local WakeAfterwards* t_afterwards = nullptr;
}  // namespace

WakeAfterwards::WakeAfterwards() {
    if (t_afterwards == nullptr) t_afterwards = this;
}

WakeAfterwards::~WakeAfterwards() {
    if (t_afterwards != this) return;  // within another scope, which holds them
    t_afterwards = nullptr;
    for (size_t i = 0; i < m_count; ++i) FutexWake(*m_futexes[i]);
}

WakeAfterwards* WakeAfterwards::Current() { return t_afterwards; }

bool WakeAfterwards::Add(std::atomic<uint32_t>& futex) {
    if (m_count == kMost) return false;
    m_futexes[m_count++] = &futex;
    return true;
}

Waiter& Waiter::Current() {
    thread_local Waiter waiter;
    return waiter;
}

Waiter::~Waiter() {
    if (m_eventFd >= 0) close(m_eventFd);
}

void Waiter::Wake() {
    // The calling thread is awake, and looks again before it sleeps.
    if (!m_asleep || this == &Current()) return;
    if (m_polling) {
        const uint64_t one = 1;
        if (!m_written && m_eventFd >= 0) m_written = write(m_eventFd, &one, sizeof one) == sizeof one;
    } else if (m_signal.exchange(1, std::memory_order_release) == 0) {
        WakeAfterwards* const scope = WakeAfterwards::Current();
        if (scope == nullptr || !scope->Add(m_signal)) FutexWake(m_signal);
    }
}

void Waiter::Sleep(std::unique_lock<std::mutex>& kernel, int64_t deadline) {
    if (deadline <= 0 || (deadline != kNever && NowNs() >= deadline)) return;
    m_signal.store(0, std::memory_order_relaxed);
    m_asleep = true;
    m_polling = false;
    kernel.unlock();
    FutexWait(m_signal, deadline);
    kernel.lock();
    m_asleep = false;
}

void Waiter::SleepServing(std::unique_lock<std::mutex>& kernel, std::span<const std::shared_ptr<IoSource>> sources,
                          int64_t deadline) {
    if (m_eventFd < 0) m_eventFd = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    m_asleep = true;
    m_polling = true;
    m_written = false;
    kernel.unlock();

    constexpr size_t kMost = 64;  // MAXIMUM_WAIT_OBJECTS
    pollfd polled[kMost + 1];
    int64_t due[kMost];
    const size_t count = std::min(sources.size(), kMost);
    int64_t until = deadline;
    // Without a descriptor to be woken by (the process has too many open), look again soon.
    if (m_eventFd < 0) until = std::min(until, NowNs() + 20 * kMillisecond);
    for (size_t i = 0; i < count; ++i) {
        const IoSource::Interest interest = sources[i]->GetInterest();
        polled[i] = {interest.fd, interest.events, 0};
        due[i] = interest.due;
        until = std::min(until, interest.due);
    }
    polled[count] = {m_eventFd, POLLIN, 0};
    timespec timeout{};
    if (until != kNever) timeout = ToTimespec(std::max<int64_t>(0, until - NowNs()));
    if (ppoll(polled, count + 1, until == kNever ? nullptr : &timeout, nullptr) < 0) {
        for (pollfd& p : polled) p.revents = 0;  // interrupted by a signal: look at the times only
    }
    for (size_t i = 0; i < count; ++i) {
        if (polled[i].revents != 0 || (due[i] != kNever && NowNs() >= due[i])) sources[i]->Serve(polled[i].revents);
    }

    kernel.lock();
    m_asleep = false;
    uint64_t drained;
    if (m_written && read(m_eventFd, &drained, sizeof drained) < 0) m_written = false;
}

void Waitable::WakeWaiters() {
    for (Waiter* waiter : m_waiters) waiter->Wake();
}

void Event::Set() {
    if (IsSignalled()) return;
    const WakeAfterwards wakes;
    const std::lock_guard kernel(KernelLock());
    m_signalled.store(true, std::memory_order_release);
    WakeWaiters();
}

void Event::Reset() {
    if (!IsSignalled()) return;
    const std::lock_guard kernel(KernelLock());
    m_signalled.store(false, std::memory_order_release);
}

void Event::Attach(std::shared_ptr<IoSource> source) {
    const std::lock_guard kernel(KernelLock());
    m_sources.push_back(std::move(source));
    WakeWaiters();  // a thread that waits already has one more source to serve
}

void Event::SetAndDetach(const IoSource& source) {
    std::shared_ptr<IoSource> kept;  // outlives the lock
    const std::lock_guard kernel(KernelLock());
    m_signalled.store(true, std::memory_order_release);
    WakeWaiters();
    const auto found = std::find_if(m_sources.begin(), m_sources.end(), [&](const auto& s) { return s.get() == &source; });
    if (found == m_sources.end()) return;
    kept = std::move(*found);
    m_sources.erase(found);
}

void Event::Nudge() {
    const std::lock_guard kernel(KernelLock());
    WakeWaiters();
}

NamedEvent::NamedEvent(HANDLE handle) {
    struct Kept {
        HANDLE handle = nullptr;
        std::shared_ptr<Event> event;
    };
    thread_local Kept kept;
    if (handle == nullptr) return;
    if (handle != kept.handle || !IsOpenHandle(handle)) {
        const Pinned<Event> pinned(handle);
        if (!pinned) return;
        kept.event = pinned.Shared();
        kept.handle = handle;
    }
    m_event = &kept.event;
}

WaitRegistration::WaitRegistration(Waiter& waiter, std::span<Waitable* const> objects) : m_waiter(waiter), m_objects(objects) {
    for (Waitable* object : m_objects) object->m_waiters.push_back(&m_waiter);
}

WaitRegistration::~WaitRegistration() {
    for (Waitable* object : m_objects) {
        auto& list = object->m_waiters;
        const auto found = std::find(list.begin(), list.end(), &m_waiter);
        if (found != list.end()) list.erase(found);
    }
}

void SleepOnce(std::unique_lock<std::mutex>& kernel, std::span<Waitable* const> objects, int64_t deadline) {
    std::vector<std::shared_ptr<IoSource>> sources;
    for (const Waitable* object : objects) {
        for (const auto& source : object->m_sources) {
            if (std::find(sources.begin(), sources.end(), source) == sources.end()) sources.push_back(source);
        }
    }
    if (sources.empty()) {
        Waiter::Current().Sleep(kernel, deadline);
        return;
    }
    Waiter::Current().SleepServing(kernel, sources, deadline);
    // The last reference to a closed port may be ours, and closing a device can take a moment: not under the lock.
    kernel.unlock();
    sources.clear();
    kernel.lock();
}

}  // namespace orvik::detail
