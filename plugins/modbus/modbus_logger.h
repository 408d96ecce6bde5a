// A Modbus logger on a serial port: the connection that the host sees, its port, and the reading of all channels. Line and clock
// may be others' (modbus_wire.h); its port then stays closed.
#pragma once

#include <memory>

#include "host/logger_family.h"
#include "plugins/modbus/modbus_connection.h"
#include "plugins/modbus/modbus_master.h"

namespace modbus {

class Logger : public ILogger {
public:
    // Without a wire: on its serial port.
    explicit Logger(Description description, std::unique_ptr<IWire> wire = nullptr);
    ~Logger() override;

    COrvikConnection& Connection() override { return *m_connection; }
    CSerialOrvik& Port() override { return m_port; }
    void Connect(const char* port, DWORD timeout) override;
    void ReadSample(CDoubleArray& values) override;
    void Watch(IReadingWatch* watch) override;
    void Disconnect() override;
    void Abort() override { m_wire->Abort(); }

private:
    // The values that came, and to the watch those that did not. The first failure if there is no value at all, else null.
    const Master::Outcome* Deliver(const std::vector<Master::Outcome>& outcomes, CDoubleArray& values, bool tell) const;

    const Description m_description;
    const std::vector<Block> m_blocks;
    std::vector<Request> m_requests;  // those of the blocks
    CSerialOrvik m_port;
    modbus::Connection* const m_connection;  // one reference held
    const std::unique_ptr<IWire> m_wire;
    Master m_master;
    IReadingWatch* m_watch = nullptr;
};

}  // namespace modbus
