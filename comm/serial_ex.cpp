#include "comm/serial_ex.h"

#include <memory>

static_assert(sizeof(CSerialEx) == (sizeof(void*) == 4 ? 36 : 64), "the layout that modules built apart rely on");

namespace {
struct Start {
    CSerialEx* port;
    WORD number;
};
}  // namespace

CSerialEx::CSerialEx() = default;

CSerialEx::CSerialEx(const CSerialEx& other)
    : CSerial(other),
      m_fStopping(other.m_fStopping.load()),
      m_nStops(other.m_nStops.load()),
      m_hThread(other.m_hThread),
      m_hevtOverlappedWorkerThread(other.m_hevtOverlappedWorkerThread) {}

CSerialEx& CSerialEx::operator=(const CSerialEx& other) {
    CSerial::operator=(other);
    m_fStopping = other.m_fStopping.load();
    m_nStops = other.m_nStops.load();
    m_hThread = other.m_hThread;
    m_hevtOverlappedWorkerThread = other.m_hevtOverlappedWorkerThread;
    return *this;
}

CSerialEx::~CSerialEx() {
    if (m_hThread) CSerialEx::Close();
    CloseListenerEvent();  // of a port that never started its listener
}

LONG CSerialEx::Open(const char* name, DWORD dwInQueue, DWORD dwOutQueue, bool fStartListener) {
    if (const LONG error = CSerial::Open(name, dwInQueue, dwOutQueue, true)) return error;
    if (!CreateListenerEvent()) return CSerial::Close();
    return fStartListener ? StartListener() : ERROR_SUCCESS;
}

LONG CSerialEx::Close() {
    StopListener(INFINITE);
    CloseListenerEvent();
    return CSerial::Close();
}

bool CSerialEx::CreateListenerEvent() {
    m_hevtOverlappedWorkerThread = ::CreateEventA(nullptr, TRUE, FALSE, nullptr);
    return m_hevtOverlappedWorkerThread != nullptr;
}

void CSerialEx::CloseListenerEvent() {
    if (!m_hevtOverlappedWorkerThread) return;
    ::CloseHandle(m_hevtOverlappedWorkerThread);
    m_hevtOverlappedWorkerThread = nullptr;
}

LONG CSerialEx::StartListener() {
    if (m_hThread) return Result(ERROR_SUCCESS);
    DWORD id = 0;
    std::unique_ptr<Start> start(new Start{this, m_nStops.load()});
    m_hThread = ::CreateThread(nullptr, 0, ListenerEntry, start.get(), 0, &id);
    if (!m_hThread) return Result(::GetLastError());
    start.release();  // the thread's
    return Result(ERROR_SUCCESS);
}

LONG CSerialEx::StopListener(DWORD timeout) {
    if (!m_hThread) return Result(ERROR_SUCCESS);
    m_fStopping = true;
    ++m_nStops;
    if (SetMask(GetEventMask()) == ERROR_SUCCESS) {
        ::WaitForSingleObject(m_hThread, timeout);
    } else if (constexpr DWORD grace = 50; ::WaitForSingleObject(m_hThread, grace) != WAIT_OBJECT_0) {
        // A port that refuses its mask is gone, and the listener has mostly noticed by itself: only one that has not is
        // ended by force.
        ::TerminateThread(m_hThread, 0);
    }
    m_fStopping = false;
    ::CloseHandle(m_hThread);
    m_hThread = nullptr;
    return Result(ERROR_SUCCESS);
}

DWORD WINAPI CSerialEx::ListenerEntry(LPVOID start) {
    const std::unique_ptr<Start> mine(static_cast<Start*>(start));
    return mine->port->Listen(mine->number);
}

// The thread's exit code: 0 after a stop, else the error that ended it.
DWORD CSerialEx::Listen(WORD number) {
    const auto stopped = [this, number] { return m_nStops != number; };
    const auto died = [this, stopped](DWORD code) {
        if (!stopped()) OnEvent(ListenerDiedEvent, ListenerDiedError);
        return code;
    };
    for (;;) {
        ::ResetEvent(m_hevtOverlappedWorkerThread);
        OVERLAPPED ov{};
        ov.hEvent = m_hevtOverlappedWorkerThread;
        if (const LONG error = WaitEvent(&ov, INFINITE)) return died(static_cast<DWORD>(error));

        // A stop that came after the last check has set the mask while no wait was under way. Setting it once more ends
        // this one, so no stop is ever missed.
        if (stopped()) ::SetCommMask(m_hFile, m_dwEventMask);

        if (::WaitForSingleObject(m_hevtOverlappedWorkerThread, INFINITE) != WAIT_OBJECT_0) {
            return died(static_cast<DWORD>(Result(::GetLastError())));
        }
        if (stopped()) return 0;

        const DWORD event = m_eEvent & m_dwEventMask;
        m_eEvent = EventNone;
        DWORD errors = 0;
        COMSTAT queues{};
        if (!::ClearCommError(m_hFile, &errors, &queues)) return died(static_cast<DWORD>(Result(::GetLastError())));
        if (event) OnEvent(static_cast<EEvent>(event), static_cast<EError>(errors));
        if (stopped()) return 0;
    }
}
