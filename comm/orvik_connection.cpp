#include "comm/orvik_connection.h"

#include <mutex>

#include "afx/app.h"

const UINT ORVIKCONNECTION_STATE_CHANGED = ::RegisterWindowMessageA("ORVIKCONNECTION_STATE_CHANGED");
const UINT COrvikConnection::TriggerStateChangedEvent = ::RegisterWindowMessageA("TriggerStateChanged");
CString COrvikConnection::sWndClass;

IMPLEMENT_DYNAMIC(COrvikConnection, CWnd)

BEGIN_MESSAGE_MAP(COrvikConnection, CWnd)
ON_REGISTERED_MESSAGE(TriggerStateChangedEvent, OnTriggerstatechangedevent)
END_MESSAGE_MAP()

namespace {
// A worker may describe what it does while the main thread shows it; a text cannot change under a reader's hands.
std::mutex g_descriptions;

// Connections whose subscribers are being told on this thread, innermost first: a subscriber may drop the last reference.
struct Telling {
    const COrvikConnection* connection;
    Telling* outer;
};
thread_local Telling* t_telling = nullptr;
}  // namespace

COrvikConnection::COrvikConnection() {
    // Connections may be made on several threads at once; the class is told once.
    static const bool registered = (sWndClass = AfxRegisterWndClass(CS_PARENTDC | CS_SAVEBITS), true);
    static_cast<void>(registered);
    CreateEx(0, sWndClass, "COrvikConnection", WS_POPUP, 0, 0, 0, 0, HWND_MESSAGE, nullptr);
}

COrvikConnection::~COrvikConnection() {
    for (Telling* told = t_telling; told; told = told->outer) {
        if (told->connection == this) told->connection = nullptr;
    }
    DestroyWindow();
}

void COrvikConnection::AddStateChangedDelegate(const StateChangedDelegate& subscriber) {
    for (INT_PTR i = 0; i < m_arrStateChangedDelegates.GetSize(); ++i) {
        if (m_arrStateChangedDelegates[i] == subscriber) return;
    }
    m_arrStateChangedDelegates.Add(subscriber);
}

void COrvikConnection::RemoveStateChangedDelegate(const StateChangedDelegate& subscriber) {
    for (INT_PTR i = 0; i < m_arrStateChangedDelegates.GetSize(); ++i) {
        if (m_arrStateChangedDelegates[i] == subscriber) {
            m_arrStateChangedDelegates.RemoveAt(i);
            return;
        }
    }
}

void COrvikConnection::StateTransition(EState state, const char* description, BOOL showWaitIcon) {
    {
        const std::lock_guard lock(g_descriptions);
        if (description) m_strStateDescription = description;
        m_bShowWaitIcon = showWaitIcon;
        m_tmStateChanged = CVXTTime::Now();
        m_eState = state;
    }
    if (::GetCurrentThreadId() == AfxGetMainThreadID()) {
        OnTriggerstatechangedevent(0, state);
    } else {
        ::PostMessageA(m_hWnd, TriggerStateChangedEvent, 0, state);
    }
}

LRESULT COrvikConnection::OnTriggerstatechangedevent(WPARAM, LPARAM state) {
    CArray<StateChangedDelegate, const StateChangedDelegate&> subscribers;
    subscribers.Copy(m_arrStateChangedDelegates);
    Telling telling{this, t_telling};
    t_telling = &telling;
    for (INT_PTR i = subscribers.GetSize(); i-- > 0 && telling.connection;) {
        // Someone told before may have removed this one.
        for (INT_PTR k = 0; k < m_arrStateChangedDelegates.GetSize(); ++k) {
            if (m_arrStateChangedDelegates[k] == subscribers[i]) {
                subscribers[i](this, static_cast<EState>(state));
                break;
            }
        }
    }
    t_telling = telling.outer;
    return 0;
}

CString COrvikConnection::StateName(EState state) {
    static constexpr const char* names[] = {"Initial", "Connecting", "Connected", "Disconnected",
                                            "Working", "Ready",      "Closing",   "Closed"};
    return state >= 0 && state < static_cast<LONG>(std::size(names)) ? names[state] : "";
}

CString COrvikConnection::GetStateDescription() {
    const std::lock_guard lock(g_descriptions);
    return m_strStateDescription;
}

BOOL COrvikConnection::ShowWaitIcon() { return m_bShowWaitIcon; }
BOOL COrvikConnection::IsConnected() { return m_eState == Connected; }
void COrvikConnection::Reserve(const char*) { m_bReserved = TRUE; }
void COrvikConnection::CancelReserve(const char*) { m_bReserved = FALSE; }
CWnd* COrvikConnection::CreateControl(CWnd*) { return nullptr; }
void COrvikConnection::OnSerialCommEvent(CSerial::EEvent, CSerial::EError) {}
