// The wish to end an exchange: raised by any thread, seen at once by the one that waits. Outlives whoever looks at it.
#pragma once

#include <atomic>

#include "platform/win32.h"

namespace orvik::detail {

class AbortSignal {
public:
    AbortSignal() : m_event(::CreateEventA(nullptr, TRUE, FALSE, nullptr)) {}
    ~AbortSignal() { ::CloseHandle(m_event); }
    AbortSignal(const AbortSignal&) = delete;
    AbortSignal& operator=(const AbortSignal&) = delete;

    void Raise() {
        m_raised = true;
        ::SetEvent(m_event);
    }
    void TakeBack() {
        ::ResetEvent(m_event);
        m_raised = false;
    }
    bool IsRaised() const { return m_raised; }
    HANDLE Event() const { return m_event; }  // signalled while raised

private:
    const HANDLE m_event;
    std::atomic<bool> m_raised{false};
};

}  // namespace orvik::detail
