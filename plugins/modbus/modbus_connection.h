// The connection that the host sees. States: Connecting and Connected while the port is opened, Working during a reading,
// Connected after it, Disconnected when the line is lost, Closing and Closed at the end. It learns from the port that the line is
// lost. Belongs to the logger's thread. Outlives its logger where others hold it.
#pragma once

#include "comm/orvik_connection.h"
#include "comm/serial_ex.h"

namespace modbus {

class Connection : public COrvikConnection {
public:
    void Enter(EState state, const char* description = nullptr) {
        StateTransition(state, description, state == Connecting || state == Working);
    }
    void OnSerialCommEvent(CSerial::EEvent event, CSerial::EError error) override {
        if (!m_online || event != CSerialEx::ListenerDiedEvent || error != CSerialEx::ListenerDiedError) return;
        m_lost = true;
        Enter(Disconnected);
    }

    // The port was opened, or closed: a farewell of its listener that is still under way after that counts for nothing.
    void SetOnline(bool online) {
        m_online = online;
        m_lost = false;
    }
    bool LineLost() const { return m_lost; }

private:
    bool m_online = false;
    bool m_lost = false;
};

}  // namespace modbus
