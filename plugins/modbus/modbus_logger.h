// Modbus loggers on one line: the connection that the host sees, its port, and the reading and writing of channels. The line's
// address says how messages travel on it. Line and clock may be others' (a transport); its port then stays closed.
#pragma once

#include <memory>

#include "comm/line_connection.h"
#include "host/logger_family.h"
#include "plugins/modbus/modbus_master.h"
#include "plugins/modbus/modbus_plan.h"

namespace modbus {

class Logger : public ILogger {
public:
    // Without a transport: on its own port.
    explicit Logger(Description description, std::unique_ptr<ITransport> transport = nullptr);
    ~Logger() override;

    COrvikConnection& Connection() override { return *m_connection; }
    CSerialOrvik& Port() override { return m_port; }
    void Connect(const char* port, DWORD timeout) override;
    void ReadSample(CDoubleArray& values) override;
    void Select(const CByteArray& due) override;
    Written Write(int channel, const char* number) override;
    void Watch(IReadingWatch* watch) override;
    void Disconnect() override;
    void Abort() override { m_transport->Abort(); }

private:
    void ChooseMaster(bool network);
    void Exchange(std::span<const Request> requests, std::vector<Master::Outcome>& outcomes);
    bool IsDue(size_t channel) const { return m_due.empty() || m_due[channel] != 0; }
    // The values that came, and to the watch those that did not. Throws the first failure if there is no value at all.
    void Deliver(const std::vector<Master::Outcome>& outcomes, CDoubleArray& values, bool whole) const;

    const Description m_description;
    const std::vector<Block> m_blocks;
    std::vector<size_t> m_asked;      // the blocks with a channel that is due
    std::vector<Request> m_requests;  // those of these
    std::vector<BYTE> m_due;          // by channel; empty: all
    CSerialOrvik m_port;
    CLineConnection* const m_connection;  // one reference held
    const std::unique_ptr<ITransport> m_transport;
    std::unique_ptr<Master> m_master;
    bool m_network = false;
    IReadingWatch* m_watch = nullptr;
};

}  // namespace modbus
