// A Modbus logger on a serial port: the connection that the host sees, its port, and the reading of all channels. Line and clock
// may be others' (a transport); its port then stays closed.
#pragma once

#include <memory>

#include "comm/line_connection.h"
#include "host/logger_family.h"
#include "plugins/modbus/modbus_description.h"
#include "plugins/modbus/modbus_master.h"

namespace modbus {

class Logger : public ILogger {
public:
    // Without a transport: on its serial port.
    explicit Logger(Description description, std::unique_ptr<ITransport> transport = nullptr);
    ~Logger() override;

    COrvikConnection& Connection() override { return *m_connection; }
    CSerialOrvik& Port() override { return m_port; }
    void Connect(const char* port, DWORD timeout) override;
    void ReadSample(CDoubleArray& values) override;
    void Watch(IReadingWatch* watch) override;
    void Disconnect() override;
    void Abort() override { m_transport->Abort(); }

private:
    // The values that came, and to the watch those that did not. The first failure if there is no value at all, else null.
    const Master::Outcome* Deliver(const std::vector<Master::Outcome>& outcomes, CDoubleArray& values, bool tell) const;

    const Description m_description;
    const std::vector<Block> m_blocks;
    std::vector<Request> m_requests;  // those of the blocks
    CSerialOrvik m_port;
    CLineConnection* const m_connection;  // one reference held
    const std::unique_ptr<ITransport> m_transport;
    Master m_master;
    IReadingWatch* m_watch = nullptr;
};

}  // namespace modbus
