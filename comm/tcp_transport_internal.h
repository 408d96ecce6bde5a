// A network connection as a transport: a protocol's own network form (tcp), or what would be on a serial line (rtu), which to it
// is the same. The trace is the port's. Borrows the port, the connection and the signal. The thread of the connection.
#pragma once

#include "comm/network_stream_internal.h"

namespace orvik::detail {

class TcpTransport : public LineTransport {
public:
    void Open(const char* address, const CLineSettings& line, TimePoint until) override;
    void Close() override { m_stream.Close(); }
    bool IsOpen() const override { return m_stream.IsOpen(); }
    // Behind a gateway there is a bus, which may still owe an answer to somebody; a connection's own answers are its own.
    bool IsShared() const override { return m_bus; }
    void SetUp(const CLineSettings&, TimePoint) override {}
    bool IsLost() const override { return m_stream.IsLost(); }
    bool WasClosedWhileIdle(Duration idle) override { return m_stream.WasClosedWhileIdle(idle); }
    void Send(std::span<const BYTE> bytes, TimePoint until) override;
    bool Receive(std::vector<BYTE>& received, TimePoint until) override;

private:
    NetworkStream m_stream{m_user};
    std::string m_name;
    bool m_bus = false;
};

}  // namespace orvik::detail
