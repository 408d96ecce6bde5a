// The serial port of a terminal server as a transport. The trace is that of its user's port.
#pragma once

#include "comm/network_stream_internal.h"
#include "comm/rfc2217_client_internal.h"

namespace orvik::detail {

class Rfc2217Transport : public LineTransport {
public:
    void Open(const char* address, const CLineSettings& line, TimePoint until) override;
    void Close() override { m_stream.Close(); }
    bool IsOpen() const override { return m_stream.IsOpen(); }
    bool IsShared() const override { return true; }
    void SetUp(const CLineSettings& line, TimePoint until) override;
    bool IsLost() const override { return m_stream.IsLost(); }
    bool WasClosedWhileIdle(Duration idle) override { return m_stream.WasClosedWhileIdle(idle); }
    void Send(std::span<const BYTE> bytes, TimePoint until) override;
    bool Receive(std::vector<BYTE>& received, TimePoint until) override;

private:
    void Agree(TimePoint until);
    bool Exchange(std::vector<BYTE>& data, TimePoint until);

    NetworkStream m_stream{m_user};
    Rfc2217Client m_client;
    std::string m_name;
    std::vector<BYTE> m_raw, m_out;  // kept for their room
};

}  // namespace orvik::detail
