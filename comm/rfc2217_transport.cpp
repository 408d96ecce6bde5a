#include "comm/rfc2217_transport_internal.h"

#include "comm/comm_exception.h"

namespace orvik::detail {
namespace {
constexpr UINT kNoSerialPort = 8220, kNotConfirmed = 8221, kOtherSettings = 8222;  // texts, which take the address
}

void Rfc2217Transport::Open(const char* address, const CLineSettings& line, TimePoint until) {
    m_name = address;
    m_stream.Open(CLineAddress::Parse(address), until);
    try {
        m_client = Rfc2217Client();
        m_out.clear();
        m_client.Start(line, m_out);
        m_stream.Send(m_out, until);
        Agree(until);
    } catch (CCommException*) {
        Close();
        throw;
    }
}

void Rfc2217Transport::SetUp(const CLineSettings& line, TimePoint until) {
    m_out.clear();
    m_client.SetUp(line, m_out);
    m_stream.Send(m_out, until);
    Agree(until);
}

void Rfc2217Transport::Agree(TimePoint until) {
    std::vector<BYTE> early;  // from before the line was set up: nobody can have sent it so
    for (;;) {
        switch (m_client.State()) {
            case Rfc2217Client::Ready:
                return;
            case Rfc2217Client::Refused:
                m_stream.Fail(CCommException::DeviceNotOpen, kNoSerialPort);
            case Rfc2217Client::OtherLine:
                m_stream.Fail(CCommException::HardwareError, kOtherSettings);
            default:
                break;
        }
        early.clear();
        if (Now() < until && Exchange(early, until)) continue;
        const bool offered = m_client.State() == Rfc2217Client::Offered;
        m_stream.Fail(offered ? CCommException::DeviceNotOpen : CCommException::HardwareError,
                      offered ? kNoSerialPort : kNotConfirmed);
    }
}

// One piece from the server, answered as it wants; false when none came.
bool Rfc2217Transport::Exchange(std::vector<BYTE>& data, TimePoint until) {
    m_raw.clear();
    m_out.clear();
    if (!m_stream.Receive(m_raw, until)) return false;
    m_client.Feed(m_raw, data, m_out);
    if (!m_out.empty()) m_stream.Send(m_out, Now() + std::chrono::seconds(1));
    return true;
}

void Rfc2217Transport::Send(std::span<const BYTE> bytes, TimePoint until) {
    m_out.clear();
    TelnetEnd::Escape(bytes, m_out);
    m_stream.Send(m_out, until);
    m_user->port.TraceTransfer(m_name.c_str(), TRUE, bytes.data(), bytes.size());
}

bool Rfc2217Transport::Receive(std::vector<BYTE>& received, TimePoint until) {
    const size_t before = received.size();
    do {
        // A server that talks of nothing but itself is no answer either.
        if (!Exchange(received, until)) return false;
        if (received.size() == before && Now() >= until) return false;
    } while (received.size() == before);
    m_user->port.TraceTransfer(m_name.c_str(), FALSE, received.data() + before, received.size() - before);
    return true;
}

}  // namespace orvik::detail
