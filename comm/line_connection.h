// The connection of a logger that talks over a transport. States: Connecting and Connected while the line is opened, Working
// during a reading, Connected after it, Disconnected when the line is lost, Closing and Closed at the end. A serial port tells it
// that the line is lost.
//
// Threads: belongs to the thread that made it, which its port's events come to; the logger may run on another.
// Ownership: as COrvikConnection; it outlives its logger where others hold it.
#pragma once

#include <atomic>

#include "comm/orvik_connection.h"

class ORVIK_API CLineConnection : public COrvikConnection {
public:
    // Any thread. A null description keeps the former text.
    void Enter(EState state, const char* description = nullptr);
    void OnSerialCommEvent(CSerial::EEvent event, CSerial::EError error) override;

    // The line was opened, or closed: a farewell of its listener that is still under way after that counts for nothing.
    void SetOnline(bool online);
    bool LineLost() const { return m_lost; }

private:
    std::atomic<bool> m_online{false};
    std::atomic<bool> m_lost{false};
};
