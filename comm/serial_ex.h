// CSerialEx: a port with a listener, one thread that waits for line events and hands each to OnEvent.
//
// Threads: the owner's and the listener. The listener calls OnEvent on its own thread and uses nothing but WaitEvent with
// its own OVERLAPPED and the line error query, so the owner may read and write meanwhile. Do not close the port from inside
// OnEvent: the stop would wait for itself. Every class derived from this one or from an heir below closes the port in its own
// destructor: once that has run, the listener would call into an object that is half gone.
// Ownership: as CSerial; thread and event handle included.
#pragma once

#include "comm/serial.h"

class ORVIK_API CSerialEx : public CSerial {
public:
    // What OnEvent is told when the listener ends by a failure: this pair, exactly once.
    static constexpr EEvent ListenerDiedEvent = EventProvider1;
    static constexpr EError ListenerDiedError = ErrorIo;

    CSerialEx();
    CSerialEx(const CSerialEx& other);
    CSerialEx& operator=(const CSerialEx& other);
    ~CSerialEx() override;

    // Opens in overlapped mode. A port whose listener would not start stays open, with the listener's error as result.
    // If the listener's event cannot be made the port is closed and the result is 0, since closing resets the error; a
    // quirk kept on purpose.
    LONG Open(const char* name, DWORD dwInQueue, DWORD dwOutQueue, bool fStartListener) override;
    // Stops the listener first, however long that takes.
    LONG Close() override;

    // One thread a port: starting a second time changes nothing and succeeds.
    virtual LONG StartListener();
    // Always 0. A thread that cannot be woken is terminated. One that is still in OnEvent after `timeout` ms ends when that
    // returns, calls nothing any more, and nobody waits for it: until then the object must live.
    virtual LONG StopListener(DWORD timeout);
    // Called on the listener's thread, never with an empty event.
    virtual void OnEvent(EEvent event, EError error) = 0;

protected:
    // Both clean-up steps of a port with a listener, without touching the last error.
    bool CreateListenerEvent();
    void CloseListenerEvent();

    std::atomic<bool> m_fStopping{false};
    std::atomic<WORD> m_nStops{0};  // a listener that was there at an earlier count has been stopped
    HANDLE m_hThread = nullptr;
    HANDLE m_hevtOverlappedWorkerThread = nullptr;  // manual reset

private:
    static DWORD WINAPI ListenerEntry(LPVOID start);
    DWORD Listen(WORD number);
};
