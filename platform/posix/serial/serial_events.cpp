// Line events, errors and settings of an open port.
#include <poll.h>

#include <algorithm>

#include "platform/posix/kernel/threads.h"
#include "platform/posix/serial/serial_port_internal.h"

namespace orvik::detail {
namespace {
constexpr DWORD kKnownEvents = 0x1FFF;
constexpr DWORD kModemEvents = EV_CTS | EV_DSR | EV_RLSD | EV_RING;
// The system reports modem lines by a request that blocks its thread and that nothing but a signal ends, so they are looked at.
// 10 ms is less than any change that a person or a device's firmware makes on purpose. Errors mostly come with a byte, which
// wakes the reader; the slow look finds breaks and overruns, which come without. The transmitter is looked at only while
// something is being sent.
constexpr int64_t kModemPeriod = 10 * kMillisecond;
constexpr int64_t kErrorPeriod = 50 * kMillisecond;
constexpr int64_t kSentPeriod = 5 * kMillisecond;
constexpr DWORD kSmallestBuffer = 4096, kLargestBuffer = 1u << 20;
}  // namespace

int64_t SerialPort::LookPeriod() const {
    if (!m_wait) return kNever;
    if ((m_mask & EV_TXEMPTY) && m_sending) return kSentPeriod;
    if ((m_mask & kModemEvents) && m_line->HasModemLines()) return kModemPeriod;
    if ((m_mask & (EV_BREAK | EV_ERR)) && m_line->HasCounters()) return kErrorPeriod;
    return kNever;
}

void SerialPort::LookAtLines() {
    if ((m_mask & kModemEvents) && m_line->HasModemLines()) {
        DWORD now = 0;
        if (LineResult(m_line->GetModemLines(now)) != ERROR_SUCCESS) return;
        const DWORD changed = now ^ m_modem;
        m_modem = now;
        if (changed & MS_CTS_ON) Note(EV_CTS);
        if (changed & MS_DSR_ON) Note(EV_DSR);
        if (changed & MS_RLSD_ON) Note(EV_RLSD);
        if (changed & now & MS_RING_ON) Note(EV_RING);  // the start of a ring
    }
    DWORD errors = 0;
    if (LineResult(m_line->TakeErrors(errors)) != ERROR_SUCCESS) return;
    m_errors |= errors;
    if (errors & CE_BREAK) Note(EV_BREAK);
    if (errors & ~CE_BREAK) Note(EV_ERR);
    if ((m_mask & EV_TXEMPTY) && m_sending && m_writes.empty() && m_line->IsTransmitterEmpty()) {
        m_sending = false;
        Note(EV_TXEMPTY);
    }
}

void SerialPort::EndWait() {
    if (!m_wait || (m_history & m_mask) == 0) return;
    *m_wait->events = std::exchange(m_history, 0) & m_mask;
    End(*m_wait, ERROR_SUCCESS);
    m_wait.reset();
}

DWORD SerialPort::GetMask(DWORD& mask) {
    const std::lock_guard lock(m_lock);
    mask = m_mask;
    return m_closed ? ERROR_INVALID_HANDLE : ERROR_SUCCESS;
}

DWORD SerialPort::SetMask(DWORD mask) {
    const std::lock_guard lock(m_lock);
    if (m_closed) return ERROR_INVALID_HANDLE;
    if (mask & ~kKnownEvents) return ERROR_INVALID_PARAMETER;
    // What has come until now belongs to the mask that was in force.
    Receive();
    if (!m_gone) LookAtLines();
    if (m_wait) {
        *m_wait->events = 0;
        End(*m_wait, ERROR_SUCCESS);
        m_wait.reset();
    }
    const DWORD added = mask & ~m_mask;
    m_history &= mask;
    m_mask = mask;
    m_nextLook = kNever;
    if ((added & kModemEvents) && m_line->HasModemLines()) m_line->GetModemLines(m_modem);  // changes count from here
    return ERROR_SUCCESS;
}

DWORD SerialPort::WaitEvent(DWORD& events, OVERLAPPED* overlapped) {
    if (const DWORD error = CheckOverlapped(overlapped)) return error;
    const NamedEvent named(overlapped == nullptr ? nullptr : overlapped->hEvent);
    if (overlapped != nullptr && overlapped->hEvent != nullptr && !named) return ERROR_INVALID_HANDLE;

    std::unique_lock lock(m_lock);
    if (const DWORD error = Usable()) return error;
    if (m_mask == 0 || m_wait) return ERROR_INVALID_PARAMETER;
    LookAtLines();
    if (m_gone) return ERROR_NOT_READY;
    if (const DWORD happened = m_history & m_mask) {
        events = happened;
        m_history = 0;
        if (overlapped != nullptr) {
            overlapped->Internal = ERROR_SUCCESS;
            overlapped->InternalHigh = sizeof events;
        }
        if (named) named->Set();
        return ERROR_SUCCESS;
    }
    auto wait = std::make_shared<PortOperation>(PortOperation::kWait);
    wait->events = &events;
    wait->moved = sizeof events;
    wait->event = named ? named.Shared() : std::make_shared<Event>(true, false);
    wait->event->Reset();
    m_nextLook = kNever;
    return Pend(lock, wait, overlapped);
}

DWORD SerialPort::ClearError(DWORD& errors, COMSTAT* status) {
    const std::lock_guard lock(m_lock);
    errors = 0;
    if (const DWORD error = Usable()) return error;
    // Asking for the queue also tells whether the device is still there.
    DWORD waiting = 0, counted = 0;
    if (const DWORD error = LineResult(m_line->BytesWaiting(waiting))) return error;
    if (const DWORD error = LineResult(m_line->TakeErrors(counted))) return error;
    if (counted & CE_BREAK) Note(EV_BREAK);
    if (counted & ~CE_BREAK) Note(EV_ERR);
    errors = m_errors | counted;
    m_errors = 0;
    EndWait();
    if (status != nullptr) {
        *status = {};
        DWORD unsent = 0;
        m_line->BytesToSend(unsent);
        for (const Operation& write : m_writes) unsent += write->length - write->moved;
        status->cbInQue = static_cast<DWORD>(m_received.Size()) + waiting;
        status->cbOutQue = unsent;
    }
    return ERROR_SUCCESS;
}

DWORD SerialPort::Purge(DWORD flags) {
    const std::lock_guard lock(m_lock);
    if (const DWORD error = Usable()) return error;
    if (flags == 0 || (flags & ~(PURGE_TXABORT | PURGE_RXABORT | PURGE_TXCLEAR | PURGE_RXCLEAR))) return ERROR_INVALID_PARAMETER;
    const auto abort = [&](std::deque<Operation>& list) {
        for (const Operation& operation : list) End(*operation, ERROR_OPERATION_ABORTED);
        list.clear();
    };
    if (flags & PURGE_RXABORT) abort(m_reads);
    if (flags & PURGE_TXABORT) abort(m_writes);
    if (flags & PURGE_RXCLEAR) {
        const bool wasFull = m_received.IsFull();
        m_received.Clear();
        if (const DWORD error = LineResult(m_line->DropReceived())) return error;
        if (wasFull) NudgeOthers(nullptr);
    }
    return flags & PURGE_TXCLEAR ? LineResult(m_line->DropUnsent()) : ERROR_SUCCESS;
}

DWORD SerialPort::GetState(DCB& dcb) {
    const std::lock_guard lock(m_lock);
    if (const DWORD error = Usable()) return error;
    if (const DWORD error = LineResult(m_line->Probe())) return error;
    dcb = m_line->Settings();
    return ERROR_SUCCESS;
}

DWORD SerialPort::SetState(const DCB& dcb) {
    const std::lock_guard lock(m_lock);
    if (const DWORD error = Usable()) return error;
    return LineResult(m_line->Apply(dcb));
}

DWORD SerialPort::GetTimeouts(COMMTIMEOUTS& timeouts) {
    const std::lock_guard lock(m_lock);
    timeouts = m_timeouts;
    return m_closed ? ERROR_INVALID_HANDLE : ERROR_SUCCESS;
}

DWORD SerialPort::SetTimeouts(const COMMTIMEOUTS& timeouts) {
    const std::lock_guard lock(m_lock);
    if (m_closed) return ERROR_INVALID_HANDLE;
    m_timeouts = timeouts;
    return ERROR_SUCCESS;
}

DWORD SerialPort::SetQueues(DWORD in) {
    const std::lock_guard lock(m_lock);
    if (m_closed) return ERROR_INVALID_HANDLE;
    m_received.SetCapacity(std::clamp(in, kSmallestBuffer, kLargestBuffer));
    return ERROR_SUCCESS;
}

DWORD SerialPort::Break(bool on) {
    const std::lock_guard lock(m_lock);
    if (const DWORD error = Usable()) return error;
    return LineResult(m_line->Break(on));
}

DWORD SerialPort::GetModemStatus(DWORD& status) {
    const std::lock_guard lock(m_lock);
    if (const DWORD error = Usable()) return error;
    return LineResult(m_line->GetModemLines(status));
}

DWORD SerialPort::Escape(DWORD function) {
    const std::lock_guard lock(m_lock);
    if (const DWORD error = Usable()) return error;
    switch (function) {
        case SETDTR:
        case CLRDTR:
            return LineResult(m_line->SetModemLines(function == SETDTR, true, false));
        case SETRTS:
        case CLRRTS:
            // As documented: not while the handshake owns the line.
            if (m_line->Settings().fRtsControl == RTS_CONTROL_HANDSHAKE) return ERROR_INVALID_PARAMETER;
            return LineResult(m_line->SetModemLines(function == SETRTS, false, true));
        case SETBREAK:
        case CLRBREAK:
            return LineResult(m_line->Break(function == SETBREAK));
        case SETXON:
        case SETXOFF:
            return LineResult(m_line->Hold(function == SETXON));
        default:
            return ERROR_INVALID_PARAMETER;
    }
}

}  // namespace orvik::detail
