// An open serial port: its descriptor, its receive buffer, its pending operations.
//
// Bytes go from the descriptor into the receive buffer whenever somebody reads or serves the port, as far as the buffer has room;
// the rest stays with the system. A read takes buffered bytes without a system call. Operations that cannot end at once wait in
// lists here, and are served by whatever threads wait for their events (wait_internal.h); every such thread serves all of them.
//
// Any thread, under the port's own lock. The descriptor is closed with the last reference, so no thread ever polls a closed one;
// closing the handle ends everything else at once.
#pragma once

#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/posix/kernel/io_internal.h"
#include "platform/posix/kernel/wait_internal.h"
#include "platform/posix/serial/serial.h"
#include "platform/posix/serial/serial_line_internal.h"

namespace orvik::detail {

// Received bytes, oldest first.
class ReceiveBuffer {
public:
    ReceiveBuffer() : m_bytes(64 * 1024) {}
    size_t Size() const { return m_size; }
    size_t Capacity() const { return m_bytes.size(); }
    bool IsFull() const { return m_size == m_bytes.size(); }
    void Clear() { m_first = m_size = 0; }
    void SetCapacity(size_t capacity);  // never below what is held
    size_t Take(void* out, size_t most);
    // One read from the descriptor into the free room, as read() reports it; `seen` gets each new byte run.
    template <class Seen>
    ssize_t Fill(int fd, Seen seen);

private:
    std::vector<char> m_bytes;
    size_t m_first = 0, m_size = 0;
};

struct PortOperation {
    enum Kind { kRead, kWrite, kWait };
    explicit PortOperation(Kind k) : kind(k) {}

    const Kind kind;
    OVERLAPPED* overlapped = nullptr;
    std::shared_ptr<Event> event;  // set at the end
    DWORD thread = 0;              // who asked, for CancelIo
    char* data = nullptr;          // a read's or (never written to) a write's bytes
    DWORD length = 0, moved = 0;
    int64_t due = kNever;       // when the total time-out strikes
    int64_t interval = kNever;  // a read's longest gap between bytes, ns
    int64_t lastByte = 0;
    bool firstByteEnds = false;
    LPDWORD events = nullptr;  // a wait's result
    bool ended = false;
    DWORD error = ERROR_SUCCESS;
};

class SerialPort final : public IoObject, public IoSource, public std::enable_shared_from_this<SerialPort> {
public:
    static constexpr Kind kKind = kPort;
    // Takes over a line that is locked and in raw mode.
    SerialPort(std::unique_ptr<SerialLine> line, DWORD access, bool overlapped);
    ~SerialPort() override;

    DWORD Read(void* buffer, DWORD length, DWORD& moved, OVERLAPPED* overlapped) override;
    DWORD Write(const void* buffer, DWORD length, DWORD& moved, OVERLAPPED* overlapped) override;
    DWORD Result(OVERLAPPED& overlapped, DWORD& moved, bool wait) override;
    DWORD Cancel() override;
    void Closing() override;

    Interest GetInterest() override;
    void Serve(short readyEvents) override;

    // The functions of serial.h; each gives its Win32 code.
    DWORD GetState(DCB& dcb);
    DWORD SetState(const DCB& dcb);
    DWORD GetTimeouts(COMMTIMEOUTS& timeouts);
    DWORD SetTimeouts(const COMMTIMEOUTS& timeouts);
    DWORD SetQueues(DWORD in);
    DWORD GetMask(DWORD& mask);
    DWORD SetMask(DWORD mask);
    DWORD WaitEvent(DWORD& events, OVERLAPPED* overlapped);
    DWORD ClearError(DWORD& errors, COMSTAT* status);
    DWORD Purge(DWORD flags);
    DWORD Break(bool on);
    DWORD GetModemStatus(DWORD& status);
    DWORD Escape(DWORD function);

    // Aborts what the thread has pending.
    void CancelOf(DWORD thread);

private:
    using Operation = std::shared_ptr<PortOperation>;

    // All under m_lock.
    DWORD Usable() const { return m_closed ? ERROR_INVALID_HANDLE : m_gone ? ERROR_NOT_READY : ERROR_SUCCESS; }
    DWORD LineResult(DWORD error);  // notes a device that is gone
    bool Receive();                 // whether bytes came
    DWORD Send(const char* data, DWORD length, DWORD& sent);
    bool Feed(PortOperation& read, int64_t now);  // whether the read is over
    void Advance(bool mayWrite);
    void LookAtLines();
    void Note(DWORD events) { m_history |= events & m_mask; }
    void EndWait();
    void MarkGone();
    int64_t LookPeriod() const;  // ns; kNever when nothing must be looked at
    Interest InterestNow() const;

    DWORD CheckOverlapped(OVERLAPPED* overlapped) const;
    void End(PortOperation& operation, DWORD error);
    void Abort(std::deque<Operation>& list, DWORD thread);
    DWORD Pend(std::unique_lock<std::mutex>& lock, const Operation& operation, OVERLAPPED* overlapped);
    void NudgeOthers(const PortOperation* newcomer);

    const DWORD m_access;
    const bool m_overlapped;

    std::mutex m_lock;
    std::unique_ptr<SerialLine> m_line;
    ReceiveBuffer m_received;
    COMMTIMEOUTS m_timeouts{};
    std::deque<Operation> m_reads, m_writes;
    Operation m_wait;
    DWORD m_mask = 0, m_history = 0, m_errors = 0;
    DWORD m_modem = 0;  // as last looked at
    int64_t m_nextLook = kNever;
    bool m_sending = false;  // bytes were written, and the transmitter was not seen empty since
    bool m_gone = false, m_closed = false;
};

}  // namespace orvik::detail
