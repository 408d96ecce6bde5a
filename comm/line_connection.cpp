#include "comm/line_connection.h"

#include "comm/serial_ex.h"

void CLineConnection::Enter(EState state, const char* description) {
    StateTransition(state, description, state == Connecting || state == Working);
}

void CLineConnection::OnSerialCommEvent(CSerial::EEvent event, CSerial::EError error) {
    if (!m_online || event != CSerialEx::ListenerDiedEvent || error != CSerialEx::ListenerDiedError) return;
    m_lost = true;
    Enter(Disconnected);
}

void CLineConnection::SetOnline(bool online) {
    m_online = online;
    m_lost = false;
}
