// A serial port as a transport. While it waits it handles its thread's messages, which is how the port tells that the line is
// lost. Borrows the port, the connection and the signal. The thread of the connection.
#pragma once

#include "comm/abort_signal_internal.h"
#include "comm/line_connection.h"
#include "comm/serial_orvik.h"
#include "comm/transport.h"

namespace orvik::detail {

class SerialTransport : public ITransport {
public:
    SerialTransport(CSerialOrvik& port, CLineConnection& connection, const AbortSignal& abort)
        : m_port(port), m_connection(connection), m_abort(abort) {}

    void Open(const char* port, const CLineSettings& line, TimePoint until) override;
    void Close() override;
    bool IsShared() const override { return true; }
    bool IsOpen() const override { return m_port.IsOpen(); }
    TimePoint Now() override { return std::chrono::steady_clock::now(); }
    void Send(std::span<const BYTE> bytes, TimePoint until) override;
    bool Receive(std::vector<BYTE>& received, TimePoint until) override;
    void Abort() override {}  // the signal does it

private:
    bool ReadAvailable(std::vector<BYTE>& received);
    void PumpMessages(TimePoint until);
    void CheckLine();

    CSerialOrvik& m_port;
    CLineConnection& m_connection;
    const AbortSignal& m_abort;
};

}  // namespace orvik::detail
