// The movement of bytes: reads, writes, their time-outs, and the serving of what is pending.
#include "platform/posix/serial/serial_port_internal.h"

#include <poll.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "platform/posix/kernel/threads.h"

namespace orvik::detail {

void ReceiveBuffer::SetCapacity(size_t capacity) {
    std::vector<char> bytes(std::max(capacity, m_size));
    const size_t size = Take(bytes.data(), m_size);
    m_bytes = std::move(bytes);
    m_first = 0;
    m_size = size;
}

size_t ReceiveBuffer::Take(void* out, size_t most) {
    const size_t count = std::min(most, m_size);
    const size_t whole = std::min(count, m_bytes.size() - m_first);
    std::memcpy(out, m_bytes.data() + m_first, whole);
    if (whole < count) std::memcpy(static_cast<char*>(out) + whole, m_bytes.data(), count - whole);
    m_size -= count;
    m_first += count;
    if (m_first >= m_bytes.size()) m_first -= m_bytes.size();
    if (m_size == 0) m_first = 0;
    return count;
}

template <class Seen>
ssize_t ReceiveBuffer::Fill(int fd, Seen seen) {
    const size_t end = (m_first + m_size) % m_bytes.size();
    const size_t room = m_bytes.size() - m_size;
    const size_t whole = std::min(room, m_bytes.size() - end);
    const iovec parts[] = {{m_bytes.data() + end, whole}, {m_bytes.data(), room - whole}};
    ssize_t count;
    do {
        count = readv(fd, parts, room > whole ? 2 : 1);
    } while (count < 0 && errno == EINTR);
    if (count > 0) {
        const size_t got = static_cast<size_t>(count);
        m_size += got;
        seen(m_bytes.data() + end, std::min(got, whole));
        if (got > whole) seen(m_bytes.data(), got - whole);
    }
    return count;
}

SerialPort::SerialPort(std::unique_ptr<SerialLine> line, DWORD access, bool overlapped)
    : IoObject(kPort), m_access(access), m_overlapped(overlapped), m_line(std::move(line)) {}

SerialPort::~SerialPort() = default;

DWORD SerialPort::LineResult(DWORD error) {
    if (error == ERROR_NOT_READY) MarkGone();
    return error;
}

bool SerialPort::Receive() {
    if (m_gone || m_received.IsFull() || (m_access & GENERIC_READ) == 0) return false;
    const ssize_t count = m_received.Fill(m_line->Descriptor(), [&](const char* bytes, size_t size) {
        if ((m_mask & EV_RXFLAG) && std::memchr(bytes, m_line->Settings().EvtChar, size) != nullptr) Note(EV_RXFLAG);
    });
    if (count > 0) {
        Note(EV_RXCHAR);
        if (m_received.Size() >= m_received.Capacity() / 10 * 8) Note(EV_RX80FULL);
        // A byte with an error comes like any other; only the counters tell.
        if (m_mask & (EV_BREAK | EV_ERR)) LookAtLines();
        return true;
    }
    if (count == 0 || (errno != EAGAIN && errno != EWOULDBLOCK)) MarkGone();
    return false;
}

DWORD SerialPort::Send(const char* data, DWORD length, DWORD& sent) {
    while (sent < length) {
        const ssize_t count = write(m_line->Descriptor(), data + sent, length - sent);
        if (count > 0) {
            sent += static_cast<DWORD>(count);
            m_sending = true;
        } else if (count == 0 || errno == EAGAIN || errno == EWOULDBLOCK) {
            return ERROR_IO_PENDING;
        } else if (errno != EINTR) {
            MarkGone();
            return ERROR_NOT_READY;
        }
    }
    return ERROR_SUCCESS;
}

bool SerialPort::Feed(PortOperation& read, int64_t now) {
    const size_t taken = m_received.Take(read.data + read.moved, read.length - read.moved);
    if (taken != 0) {
        read.moved += static_cast<DWORD>(taken);
        read.lastByte = now;
    }
    if (read.moved == read.length || (read.firstByteEnds && read.moved != 0) || now >= read.due) return true;
    return read.interval != kNever && read.moved != 0 && now - read.lastByte >= read.interval;
}

DWORD SerialPort::CheckOverlapped(OVERLAPPED* overlapped) const {
    return m_overlapped && overlapped == nullptr ? ERROR_INVALID_PARAMETER : ERROR_SUCCESS;
}

namespace {
// The event that an OVERLAPPED names: none is fine, a bad one is not.
class OperationEvent {
public:
    explicit OperationEvent(const OVERLAPPED* overlapped)
        : m_named(overlapped == nullptr ? nullptr : overlapped->hEvent),
          m_bad(overlapped != nullptr && overlapped->hEvent != nullptr && !m_named) {}
    bool IsBad() const { return m_bad; }
    std::shared_ptr<Event> ForOperation() const {
        std::shared_ptr<Event> event = m_named ? m_named.Shared() : std::make_shared<Event>(true, false);
        event->Reset();
        return event;
    }
    // For an operation that ended within its call.
    DWORD Conclude(OVERLAPPED* overlapped, DWORD moved) const {
        if (overlapped != nullptr) {
            overlapped->Internal = ERROR_SUCCESS;
            overlapped->InternalHigh = moved;
        }
        if (m_named) m_named->Set();
        return ERROR_SUCCESS;
    }

private:
    const NamedEvent m_named;
    const bool m_bad;
};

// The ports on which the calling thread left something pending. What it left is aborted when it ends, for its stack goes then,
// and often the OVERLAPPED with it.
class ThreadOperations {
public:
    static ThreadOperations& Current() {
        thread_local ThreadOperations operations;
        return operations;
    }
    static void Remember(const std::shared_ptr<SerialPort>& port) {
        auto& ports = Current().m_ports;
        const auto same = [&](const auto& known) { return !known.owner_before(port) && !port.owner_before(known); };
        if (std::any_of(ports.begin(), ports.end(), same)) return;
        std::erase_if(ports, [](const auto& known) { return known.expired(); });
        ports.push_back(port);
    }
    void Cancel() {
        for (const auto& known : m_ports) {
            if (const std::shared_ptr<SerialPort> port = known.lock()) port->CancelOf(GetCurrentThreadId());
        }
    }
    ~ThreadOperations() { Cancel(); }

private:
    std::vector<std::weak_ptr<SerialPort>> m_ports;
};

int64_t TotalDue(int64_t now, DWORD multiplier, DWORD constant, DWORD length) {
    if (multiplier == 0 && constant == 0) return kNever;
    return now + (int64_t{multiplier} * length + constant) * kMillisecond;
}
}  // namespace

DWORD SerialPort::Read(void* buffer, DWORD length, DWORD& moved, OVERLAPPED* overlapped) {
    if (const DWORD error = CheckOverlapped(overlapped)) return error;
    if ((m_access & GENERIC_READ) == 0) return ERROR_ACCESS_DENIED;
    const OperationEvent event(overlapped);
    if (event.IsBad()) return ERROR_INVALID_HANDLE;

    std::unique_lock lock(m_lock);
    if (m_closed) return ERROR_INVALID_HANDLE;
    const bool wasFull = m_received.IsFull();
    const COMMTIMEOUTS& t = m_timeouts;
    const bool whatIsThere =
        t.ReadIntervalTimeout == MAXDWORD && t.ReadTotalTimeoutMultiplier == 0 && t.ReadTotalTimeoutConstant == 0;
    if (m_reads.empty()) {
        if (m_received.Size() < length && Receive()) EndWait();
        if (m_gone && m_received.Size() == 0 && length != 0) return ERROR_NOT_READY;
        if (m_received.Size() >= length || m_gone || whatIsThere) {
            moved = static_cast<DWORD>(m_received.Take(buffer, length));
            if (wasFull) NudgeOthers(nullptr);  // there is room again
            return event.Conclude(overlapped, moved);
        }
    }
    auto read = std::make_shared<PortOperation>(PortOperation::kRead);
    const int64_t now = NowNs();
    read->data = static_cast<char*>(buffer);
    read->length = length;
    read->firstByteEnds = t.ReadIntervalTimeout == MAXDWORD && t.ReadTotalTimeoutMultiplier == MAXDWORD &&
                          t.ReadTotalTimeoutConstant != 0 && t.ReadTotalTimeoutConstant != MAXDWORD;
    if (whatIsThere) {
        read->due = now;
    } else {
        read->due = TotalDue(now, read->firstByteEnds ? 0 : t.ReadTotalTimeoutMultiplier, t.ReadTotalTimeoutConstant, length);
        if (t.ReadIntervalTimeout != 0 && t.ReadIntervalTimeout != MAXDWORD)
            read->interval = t.ReadIntervalTimeout * kMillisecond;
    }
    // Reads take their bytes in the order of their calls.
    if (m_reads.empty() && Feed(*read, now)) {
        moved = read->moved;
        if (wasFull) NudgeOthers(nullptr);
        return event.Conclude(overlapped, moved);
    }
    read->event = event.ForOperation();
    const DWORD error = Pend(lock, read, overlapped);
    if (error != ERROR_IO_PENDING) moved = read->moved;
    return error;
}

DWORD SerialPort::Write(const void* buffer, DWORD length, DWORD& moved, OVERLAPPED* overlapped) {
    if (const DWORD error = CheckOverlapped(overlapped)) return error;
    if ((m_access & GENERIC_WRITE) == 0) return ERROR_ACCESS_DENIED;
    const OperationEvent event(overlapped);
    if (event.IsBad()) return ERROR_INVALID_HANDLE;

    std::unique_lock lock(m_lock);
    if (const DWORD error = Usable()) return error;
    DWORD sent = 0;
    if (m_writes.empty()) {
        const DWORD error = Send(static_cast<const char*>(buffer), length, sent);
        if (error == ERROR_SUCCESS) {
            moved = sent;
            if (m_wait && (m_mask & EV_TXEMPTY)) NudgeOthers(nullptr);
            return event.Conclude(overlapped, moved);
        }
        if (error != ERROR_IO_PENDING) return error;
    }
    auto operation = std::make_shared<PortOperation>(PortOperation::kWrite);
    operation->data = const_cast<char*>(static_cast<const char*>(buffer));
    operation->length = length;
    operation->moved = sent;
    operation->due = TotalDue(NowNs(), m_timeouts.WriteTotalTimeoutMultiplier, m_timeouts.WriteTotalTimeoutConstant, length);
    operation->event = event.ForOperation();
    const DWORD error = Pend(lock, operation, overlapped);
    if (error != ERROR_IO_PENDING) moved = operation->moved;
    return error;
}

// Enlists the operation. On a handle without overlapped mode the calling thread waits for its end right here.
DWORD SerialPort::Pend(std::unique_lock<std::mutex>& lock, const Operation& operation, OVERLAPPED* overlapped) {
    operation->overlapped = overlapped;
    operation->thread = GetCurrentThreadId();
    if (overlapped != nullptr) {
        overlapped->Internal = STATUS_PENDING;
        overlapped->InternalHigh = 0;
    }
    operation->event->Attach(shared_from_this());
    const Interest before = InterestNow();
    switch (operation->kind) {
        case PortOperation::kRead:
            m_reads.push_back(operation);
            break;
        case PortOperation::kWrite:
            m_writes.push_back(operation);
            break;
        case PortOperation::kWait:
            m_wait = operation;
            break;
    }
    const Interest after = InterestNow();
    if ((after.events & ~before.events) != 0 || after.due < before.due) NudgeOthers(operation.get());
    if (m_overlapped) {
        ThreadOperations::Remember(shared_from_this());
        return ERROR_IO_PENDING;
    }

    lock.unlock();
    // However this thread leaves, by a termination too, nobody may touch its buffers later.
    struct Leaving {
        SerialPort& port;
        const Operation& operation;
        ~Leaving() {
            const std::lock_guard again(port.m_lock);
            if (!operation->ended) {
                std::erase(port.m_reads, operation);
                std::erase(port.m_writes, operation);
                if (port.m_wait == operation) port.m_wait.reset();
                port.End(*operation, ERROR_OPERATION_ABORTED);
            }
        }
    };
    const Leaving leaving{*this, operation};
    {
        std::unique_lock kernel(KernelLock());
        Waitable* const waited[] = {operation->event.get()};
        WaitUntil(kernel, waited, kNever, [&] { return waited[0]->IsSignalled(); });
    }
    const std::lock_guard again(m_lock);
    return operation->error;
}

void SerialPort::NudgeOthers(const PortOperation* newcomer) {
    const auto nudge = [&](const Operation& operation) {
        if (operation && operation.get() != newcomer) operation->event->Nudge();
    };
    for (const Operation& read : m_reads) nudge(read);
    for (const Operation& write : m_writes) nudge(write);
    nudge(m_wait);
}

void SerialPort::End(PortOperation& operation, DWORD error) {
    operation.ended = true;
    operation.error = error;
    if (operation.overlapped != nullptr) {
        operation.overlapped->InternalHigh = operation.moved;
        operation.overlapped->Internal = error;
    }
    operation.event->SetAndDetach(*this);
}

IoSource::Interest SerialPort::InterestNow() const {
    Interest interest;
    if (m_closed || m_gone) return interest;
    interest.fd = m_line->Descriptor();
    const bool waitsForBytes = m_wait && (m_mask & (EV_RXCHAR | EV_RXFLAG | EV_RX80FULL)) != 0;
    if ((!m_reads.empty() || waitsForBytes) && !m_received.IsFull() && (m_access & GENERIC_READ)) interest.events |= POLLIN;
    if (!m_writes.empty()) interest.events |= POLLOUT;
    for (const Operation& read : m_reads) {
        interest.due = std::min(interest.due, read->due);
        if (read->interval != kNever && read->moved != 0) interest.due = std::min(interest.due, read->lastByte + read->interval);
    }
    for (const Operation& write : m_writes) interest.due = std::min(interest.due, write->due);
    if (LookPeriod() != kNever) interest.due = std::min(interest.due, m_nextLook);
    return interest;
}

IoSource::Interest SerialPort::GetInterest() {
    const std::lock_guard lock(m_lock);
    if (const int64_t period = LookPeriod(); period != kNever) m_nextLook = std::min(m_nextLook, NowNs() + period);
    return InterestNow();
}

void SerialPort::Serve(short ready) {
    const std::lock_guard lock(m_lock);
    if (m_closed || m_gone) return;
    const bool hangUp = (ready & (POLLHUP | POLLERR | POLLNVAL)) != 0;
    if ((ready & POLLIN) != 0 || hangUp) {
        while (Receive() && hangUp) {
        }
    }
    if (hangUp) MarkGone();
    if (!m_gone) Advance((ready & POLLOUT) != 0);
}

void SerialPort::Advance(bool mayWrite) {
    const int64_t now = NowNs();
    while (!m_reads.empty() && Feed(*m_reads.front(), now)) {
        End(*m_reads.front(), ERROR_SUCCESS);  // a time-out is a success with fewer bytes
        m_reads.pop_front();
    }
    while (!m_writes.empty()) {
        PortOperation& write = *m_writes.front();
        DWORD error = ERROR_IO_PENDING;
        if (mayWrite) error = Send(write.data, write.length, write.moved);
        if (m_gone) return;
        if (error != ERROR_SUCCESS && now < write.due) break;
        End(write, ERROR_SUCCESS);
        m_writes.pop_front();
    }
    if (m_wait && m_nextLook != kNever && now >= m_nextLook) {
        LookAtLines();
        if (m_gone) return;
        m_nextLook = kNever;
    }
    EndWait();
}

void SerialPort::MarkGone() {
    if (m_gone) return;
    m_gone = true;
    for (const Operation& read : m_reads) {
        read->moved += static_cast<DWORD>(m_received.Take(read->data + read->moved, read->length - read->moved));
        End(*read, read->moved != 0 ? ERROR_SUCCESS : ERROR_NOT_READY);
    }
    m_reads.clear();
    Abort(m_writes, 0);
    if (m_wait) {
        *m_wait->events = std::exchange(m_history, 0) & m_mask;
        End(*m_wait, ERROR_SUCCESS);
        m_wait.reset();
    }
}

// Ends the thread's operations of the list; with thread 0 all, for that the device is gone or the port closed.
void SerialPort::Abort(std::deque<Operation>& list, DWORD thread) {
    const DWORD error = thread == 0 && m_gone ? ERROR_NOT_READY : ERROR_OPERATION_ABORTED;
    std::erase_if(list, [&](const Operation& operation) {
        if (thread != 0 && operation->thread != thread) return false;
        End(*operation, error);
        return true;
    });
}

DWORD SerialPort::Result(OVERLAPPED& overlapped, DWORD& moved, bool wait) {
    std::unique_lock lock(m_lock);
    const auto find = [&]() -> Operation {
        if (m_wait && m_wait->overlapped == &overlapped) return m_wait;
        for (const auto* list : {&m_reads, &m_writes}) {
            for (const Operation& operation : *list) {
                if (operation->overlapped == &overlapped) return operation;
            }
        }
        return nullptr;
    };
    if (const Operation operation = find()) {
        // Asking moves the operation on, since no other thread may be serving the port.
        lock.unlock();
        {
            std::unique_lock kernel(KernelLock());
            Waitable* const waited[] = {operation->event.get()};
            WaitUntil(kernel, waited, wait ? kNever : 0, [&] { return waited[0]->IsSignalled(); });
        }
        lock.lock();
    }
    if (overlapped.Internal == STATUS_PENDING) return ERROR_IO_INCOMPLETE;
    moved = static_cast<DWORD>(overlapped.InternalHigh);
    return static_cast<DWORD>(overlapped.Internal);
}

DWORD SerialPort::Cancel() {
    CancelOf(GetCurrentThreadId());
    return ERROR_SUCCESS;
}

void SerialPort::CancelOf(DWORD thread) {
    const std::lock_guard lock(m_lock);
    Abort(m_reads, thread);
    Abort(m_writes, thread);
    if (m_wait && m_wait->thread == thread) {
        End(*m_wait, ERROR_OPERATION_ABORTED);
        m_wait.reset();
    }
}

void CancelOperationsOfThisThread() { ThreadOperations::Current().Cancel(); }

void SerialPort::Closing() {
    const std::lock_guard lock(m_lock);
    m_closed = true;
    for (auto* list : {&m_reads, &m_writes}) {
        for (const Operation& operation : *list) End(*operation, ERROR_OPERATION_ABORTED);
        list->clear();
    }
    if (m_wait) {
        *m_wait->events = 0;
        End(*m_wait, ERROR_OPERATION_ABORTED);
        m_wait.reset();
    }
    m_line->Release();
}

}  // namespace orvik::detail
