// COrvikConnection: the base of every connection to a logger. It has a state, a text that says what is going on, and
// subscribers that are told of every change on the main thread, whichever thread made it.
//
// Threads: any thread may call StateTransition; subscribers are told, and subscribe, on the main thread alone. That is the
// thread of the application object, or the one that loaded this module where there is no application object.
// Ownership: counted; the last Release deletes it. It belongs to the thread that made it, as every window.
#pragma once

#include <atomic>

#include "afx/array.h"
#include "afx/wnd.h"
#include "comm/delegate.h"
#include "comm/serial.h"
#include "frame/ref_count.h"
#include "time/time_point.h"

// The registered message "ORVIKCONNECTION_STATE_CHANGED", which a connection's view sends to its parent.
extern ORVIK_API const UINT ORVIKCONNECTION_STATE_CHANGED;

class ORVIK_API COrvikConnection : public CWnd, public CRefCount {
    DECLARE_DYNAMIC(COrvikConnection)

public:
    // No order is enforced: any state may follow any other, itself included.
    enum EState : LONG {
        Initial = 0,
        Connecting = 1,
        Connected = 2,
        Disconnected = 3,
        Working = 4,
        Ready = 5,
        Closing = 6,
        Closed = 7,
    };
    using StateChangedDelegate = delegate<void, COrvikConnection*, COrvikConnection::EState>;

    // The registered message "TriggerStateChanged": lParam is the new state.
    static const UINT TriggerStateChangedEvent;

    // Makes the hidden window as well, so that other threads can post to it.
    COrvikConnection();
    ~COrvikConnection() override;

    // Subscribes; a delegate that is listed already is not listed twice.
    void AddStateChangedDelegate(const StateChangedDelegate& subscriber);
    // One that is not listed is ignored. Allowed while subscribers are being told: who is removed is not told any more.
    void RemoveStateChangedDelegate(const StateChangedDelegate& subscriber);

    CString GetStateDescription();
    BOOL ShowWaitIcon();
    // Whether a port is kept for this connection. The port's name is not used.
    void Reserve(const char* port);
    void CancelReserve(const char* port);

    // True in state Connected alone, not in those that follow it.
    virtual BOOL IsConnected();
    // A line event of the connection's port, on the main thread. Nothing here; protocols override it.
    virtual void OnSerialCommEvent(CSerial::EEvent event, CSerial::EError error);
    // The connection's own control, the caller's to destroy with its parent; null here.
    virtual CWnd* CreateControl(CWnd* parent);

protected:
    // Enters a state and tells every subscriber: at once on the main thread, from any other by a posted message that
    // carries the state, so all are told of every state in order. A null description keeps the former text.
    void StateTransition(EState state, const char* description, BOOL showWaitIcon);
    // The English name; empty for a value that is no state.
    CString StateName(EState state);
    // Tells the subscribers, the last one first. Always 0.
    LRESULT OnTriggerstatechangedevent(WPARAM wParam, LPARAM state);

    DECLARE_MESSAGE_MAP()

    std::atomic<EState> m_eState{Initial};
    CString m_strStateDescription;
    std::atomic<BOOL> m_bShowWaitIcon{FALSE};
    CArray<StateChangedDelegate, const StateChangedDelegate&> m_arrStateChangedDelegates;  // in order of subscription
    CVXTTime m_tmStateChanged;  // of the last transition, to the millisecond; of the construction, to the second
    BOOL m_bReserved = FALSE;
    LONG m_nUnused = 0;  // kept for the class's layout

    static CString sWndClass;
};
