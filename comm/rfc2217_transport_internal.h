// The serial port of a terminal server as a transport. Borrows the port, whose trace it keeps, the connection and the signal. The
// thread of the connection.
#pragma once

#include "comm/network_stream_internal.h"
#include "comm/rfc2217_client_internal.h"
#include "comm/serial_orvik.h"

namespace orvik::detail {

class Rfc2217Transport : public ITransport {
public:
    Rfc2217Transport(CSerialOrvik& port, CLineConnection& connection, const AbortSignal& abort)
        : m_port(port), m_stream(connection, abort) {}

    void Open(const char* address, const CLineSettings& line, TimePoint until) override;
    void Close() override { m_stream.Close(); }
    bool IsOpen() const override { return m_stream.IsOpen(); }
    bool IsShared() const override { return true; }
    TimePoint Now() override { return std::chrono::steady_clock::now(); }
    void Send(std::span<const BYTE> bytes, TimePoint until) override;
    bool Receive(std::vector<BYTE>& received, TimePoint until) override;
    void Abort() override {}  // the signal does it

private:
    void Agree(TimePoint until);
    bool Exchange(std::vector<BYTE>& data, TimePoint until);

    CSerialOrvik& m_port;
    NetworkStream m_stream;
    Rfc2217Client m_client;
    std::string m_name;
    std::vector<BYTE> m_raw, m_out;  // kept for their room
};

}  // namespace orvik::detail
