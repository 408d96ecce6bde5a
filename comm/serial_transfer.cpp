// The part of CSerial that waits: one discipline for reads, writes and line events.
#include <cstring>

#include "comm/held_bytes_internal.h"
#include "comm/serial.h"

// `start` begins the operation with the OVERLAPPED it is given and tells whether it is done already.
// `unlinked`: a port without overlapped mode hands `start` an OVERLAPPED with no event, rather than none.
template <class Start>
LONG CSerial::Perform(OVERLAPPED* ov, DWORD timeout, DWORD* count, bool unlinked, Start start) {
    Result(ERROR_SUCCESS);
    CheckRequirements(ov, timeout);
    if (!m_hFile) return Result(ERROR_INVALID_HANDLE);
    const bool overlapped = m_hevtOverlapped != nullptr;
    if (!overlapped && (ov || timeout != INFINITE)) return Result(ERROR_INVALID_FUNCTION);

    OVERLAPPED own{};
    own.hEvent = m_hevtOverlapped;
    OVERLAPPED* const used = ov ? ov : overlapped || unlinked ? &own : nullptr;
    if (start(used)) {
        // Whoever waits for the caller's event is released as well.
        if (used && used->hEvent) ::SetEvent(used->hEvent);
        return Result(ERROR_SUCCESS);
    }
    if (::GetLastError() != ERROR_IO_PENDING) return Failed();
    // The caller's own: the caller waits and collects.
    return ov ? Result(ERROR_SUCCESS) : Complete(own, timeout, count);
}

// Waits for an operation under way on the port's own event. `count` is null for a line event, which counts nothing.
LONG CSerial::Complete(OVERLAPPED& ov, DWORD timeout, DWORD* count) {
    switch (::WaitForSingleObject(ov.hEvent, timeout)) {
        case WAIT_OBJECT_0:
            if (count && !::GetOverlappedResult(m_hFile, &ov, count, FALSE)) return Failed();
            return Result(ERROR_SUCCESS);
        case WAIT_TIMEOUT:
            return Abandon(ov, count);
        default: {
            const DWORD error = ::GetLastError();
            Abandon(ov, count);
            return Result(error);
        }
    }
}

// Cancels an operation and waits until the system has let go of `ov`, which lives on the caller's stack.
// One that was completed in the very moment counts as what it is, a success: its bytes have left the queue. `count` becomes what
// was moved in any case.
LONG CSerial::Abandon(OVERLAPPED& ov, DWORD* count) {
    CancelCommIo();
    // A wait for line events ends for certain when the mask is set anew, whatever a driver does about cancelling.
    if (!count) ::SetCommMask(m_hFile, m_dwEventMask);
    // The event last of all: one that came late would end the next operation on it.
    ::WaitForSingleObject(ov.hEvent, INFINITE);
    DWORD done = 0;
    const bool completed = ::GetOverlappedResult(m_hFile, &ov, &done, TRUE) != FALSE;
    if (count) *count = done;
    return Result(completed && (count || m_eEvent) ? ERROR_SUCCESS : ERROR_TIMEOUT);
}

LONG CSerial::WaitEvent(OVERLAPPED* ov, DWORD timeout) {
    return Perform(ov, timeout, nullptr, false,
                   [this](OVERLAPPED* used) { return ::WaitCommEvent(m_hFile, reinterpret_cast<DWORD*>(&m_eEvent), used); });
}

LONG CSerial::Write(const char* text, DWORD* written, OVERLAPPED* ov, DWORD timeout) {
    return Write(static_cast<const void*>(text), text ? std::strlen(text) : 0, written, ov, timeout);
}

LONG CSerial::Write(const void* data, size_t len, DWORD* written, OVERLAPPED* ov, DWORD timeout) {
    DWORD own = 0;
    DWORD* const count = written ? written : &own;
    *count = 0;
    if (len > MAXDWORD) return Result(ERROR_INVALID_PARAMETER);
    const LONG result = Perform(ov, timeout, count, false, [=, this](OVERLAPPED* used) {
        return ::WriteFile(m_hFile, data, static_cast<DWORD>(len), count, used);
    });
    if (result != ERROR_SUCCESS) *count = 0;
    return result;
}

LONG CSerial::Read(void* buf, size_t len, DWORD* read, OVERLAPPED* ov, DWORD timeout) {
    DWORD own = 0;
    DWORD* const count = read ? read : &own;
    *count = 0;
    if (len > MAXDWORD) return Result(ERROR_INVALID_PARAMETER);
    // What an earlier read had taken when its time ran out comes first, once the arguments are found right.
    const bool allowed = m_hFile && (m_hevtOverlapped || (!ov && timeout == INFINITE));
    const size_t held = allowed ? orvik::detail::TakeHeldBytes(m_hFile, buf, len) : 0;
    if (held != 0 && (held == len || ov || IsNonBlocking())) {
        // A caller's OVERLAPPED cannot count what did not come by it, so such a read has these bytes alone.
        *count = static_cast<DWORD>(held);
        if (ov) {
            ov->Internal = 0;
            ov->InternalHigh = held;
            if (ov->hEvent) ::SetEvent(ov->hEvent);
        }
        return Result(ERROR_SUCCESS);
    }
    auto* const rest = static_cast<char*>(buf) + held;
    const LONG result = Perform(ov, timeout, count, true, [=, this](OVERLAPPED* used) {
        return ::ReadFile(m_hFile, rest, static_cast<DWORD>(len - held), count, used);
    });
    if (result == ERROR_TIMEOUT) {
        orvik::detail::HoldBytes(m_hFile, buf, held + *count);
        *count = 0;
        return result;
    }
    // A device that went away leaves what came before.
    *count += static_cast<DWORD>(held);
    return held != 0 ? Result(ERROR_SUCCESS) : result;
}

bool CSerial::IsNonBlocking() {
    COMMTIMEOUTS timeouts{};
    return ::GetCommTimeouts(m_hFile, &timeouts) && timeouts.ReadIntervalTimeout == MAXDWORD;
}
