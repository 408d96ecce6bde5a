#include "comm/tcp_transport_internal.h"

namespace orvik::detail {

void TcpTransport::Open(const char* address, const CLineSettings&, TimePoint until) {
    const CLineAddress parsed = CLineAddress::Parse(address);
    m_name = address;
    m_bus = parsed.scheme == CLineAddress::Rtu;
    m_stream.Open(parsed, until);
}

void TcpTransport::Send(std::span<const BYTE> bytes, TimePoint until) {
    m_stream.Send(bytes, until);
    m_user->port.TraceTransfer(m_name.c_str(), TRUE, bytes.data(), bytes.size());
}

bool TcpTransport::Receive(std::vector<BYTE>& received, TimePoint until) {
    const size_t before = received.size();
    if (!m_stream.Receive(received, until)) return false;
    m_user->port.TraceTransfer(m_name.c_str(), FALSE, received.data() + before, received.size() - before);
    return true;
}

}  // namespace orvik::detail
