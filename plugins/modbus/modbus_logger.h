// A Modbus logger on a serial port: the connection that the host sees, its port, and the reading of all channels.
#pragma once

#include "host/logger_family.h"
#include "plugins/modbus/modbus_master.h"

namespace modbus {

// The connection's states: Connecting and Connected while the port is opened, Working during a reading, Connected after it,
// Disconnected after a failure of the line, Closing and Closed at the end.
class Connection : public COrvikConnection {
public:
    explicit Connection(Master& master) : m_master(&master) {}
    void OnSerialCommEvent(CSerial::EEvent event, CSerial::EError error) override;
    void Enter(EState state, const char* description, BOOL wait) { StateTransition(state, description, wait); }
    // The logger is going; whoever else holds the connection keeps it without one.
    void Detach() { m_master = nullptr; }

private:
    Master* m_master;  // the logger's; null once it has gone
};

class Logger : public ILogger {
public:
    explicit Logger(Description description);
    ~Logger() override;

    COrvikConnection& Connection() override { return *m_connection; }
    CSerialOrvik& Port() override { return m_port; }
    void Connect(const char* port, DWORD timeout) override;
    void ReadSample(CDoubleArray& values) override;
    void Disconnect() override;
    void Abort() override { m_master.Abort(); }

private:
    const Description m_description;
    const std::vector<Block> m_blocks;
    CSerialOrvik m_port;
    Master m_master;
    modbus::Connection* m_connection;  // one reference held
};

}  // namespace modbus
