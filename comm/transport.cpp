#include "comm/transport.h"

#include "comm/comm_exception.h"
#include "comm/rfc2217_transport_internal.h"
#include "comm/serial_transport_internal.h"
#include "comm/tcp_transport_internal.h"

using namespace orvik::detail;

namespace {
// The transport of whatever address was opened last.
class AddressedTransport : public ITransport {
public:
    AddressedTransport(CSerialOrvik& port, CLineConnection& connection) : m_port(port), m_connection(connection) {}
    ~AddressedTransport() override { Close(); }

    void Open(const char* address, const CLineSettings& line, TimePoint until) override {
        CloseLine();
        try {
            const CLineAddress parsed = CLineAddress::Parse(address);
            if (parsed.scheme == CLineAddress::Serial) {
                m_line = std::make_shared<SerialTransport>(m_port, m_connection, m_abort);
            } else if (parsed.scheme == CLineAddress::Rfc2217) {
                m_line = std::make_shared<Rfc2217Transport>(m_port, m_connection, m_abort);
            } else {
                m_line = std::make_shared<TcpTransport>(m_port, m_connection, m_abort);
            }
            m_line->Open(address, line, until);
        } catch (CCommException* failure) {
            m_line.reset();
            if (failure->m_nError == CCommException::SessionAborted) m_abort.TakeBack();  // it has done what it was to do
            throw;
        }
    }
    void Close() override {
        CloseLine();
        m_abort.TakeBack();
    }
    bool IsOpen() const override { return m_line && m_line->IsOpen(); }
    bool IsShared() const override { return m_line && m_line->IsShared(); }
    TimePoint Now() override { return std::chrono::steady_clock::now(); }
    void Send(std::span<const BYTE> bytes, TimePoint until) override { Line()->Send(bytes, until); }
    bool Receive(std::vector<BYTE>& received, TimePoint until) override { return Line()->Receive(received, until); }
    void Abort() override { m_abort.Raise(); }

private:
    void CloseLine() {
        if (m_line) m_line->Close();
        m_line.reset();
    }
    // Shared, for a message that is handled during a wait may close the line, or open another.
    std::shared_ptr<ITransport> Line() {
        if (m_line) return m_line;
        OrvikThrowCommException(m_abort.IsRaised() ? CCommException::SessionAborted : CCommException::DeviceNotOpen, nullptr);
    }

    CSerialOrvik& m_port;
    CLineConnection& m_connection;
    AbortSignal m_abort;
    std::shared_ptr<ITransport> m_line;
};
}  // namespace

double CLineSettings::BitsPerCharacter() const {
    const double stop = static_cast<int>(stopBits) == 0 ? 1 : static_cast<int>(stopBits) == 1 ? 1.5 : 2;
    return 1 + static_cast<int>(dataBits) + (static_cast<int>(parity) != 0 ? 1 : 0) + stop;
}

std::unique_ptr<ITransport> OrvikMakeTransport(CSerialOrvik& port, CLineConnection& connection) {
    return std::make_unique<AddressedTransport>(port, connection);
}
