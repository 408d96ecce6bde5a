#include "plugins/modbus/modbus_logger.h"

#include "comm/comm_exception.h"

namespace modbus {
namespace {
// Room for several of the longest frames in either direction.
constexpr DWORD kQueue = 4096;
}  // namespace

void Connection::OnSerialCommEvent(CSerial::EEvent event, CSerial::EError error) {
    if (m_master != nullptr && m_master->OnLineEvent(event, error)) Enter(Disconnected, nullptr, FALSE);
}

Logger::Logger(Description description)
    : m_description(std::move(description)),
      m_blocks(PlanBlocks(m_description)),
      m_master(m_port),
      m_connection(new modbus::Connection(m_master)) {
    m_connection->AddRef();
}

Logger::~Logger() {
    Disconnect();
    m_connection->Detach();
    m_connection->Release();
}

void Logger::Connect(const char* port, DWORD timeout) {
    m_connection->Enter(COrvikConnection::Connecting, port, TRUE);
    m_master.Configure(m_description.line, timeout);
    const LONG error = m_port.Open(port, m_connection, kQueue, kQueue);
    if (error != 0) {
        m_connection->Enter(COrvikConnection::Disconnected, nullptr, FALSE);
        OrvikThrowCommException(
            error == static_cast<LONG>(ERROR_ACCESS_DENIED) ? CCommException::AccessDenied : CCommException::DeviceNotOpen,
            nullptr);
    }
    const Line& line = m_description.line;
    if (m_port.Setup(static_cast<CSerial::EBaudrate>(line.baud), line.dataBits, line.parity, line.stopBits) != 0 ||
        m_port.SetupHandshaking(CSerial::HandshakeOff) != 0) {
        m_port.Close();
        m_connection->Enter(COrvikConnection::Disconnected, nullptr, FALSE);
        OrvikThrowCommException(CCommException::HardwareError, nullptr);
    }
    m_connection->Enter(COrvikConnection::Connected, nullptr, FALSE);
}

void Logger::ReadSample(CDoubleArray& values) {
    values.SetSize(static_cast<INT_PTR>(m_description.channels.size()));
    m_connection->Enter(COrvikConnection::Working, nullptr, TRUE);
    try {
        for (const Block& block : m_blocks) {
            const std::vector<WORD> registers = m_master.Read(block.request);
            for (const Block::Part& part : block.parts) {
                values.SetAt(static_cast<INT_PTR>(part.channel),
                             Decode(m_description.channels[part.channel], registers.data() + part.offset));
            }
        }
    } catch (CCommException*) {
        m_connection->Enter(COrvikConnection::Disconnected, nullptr, FALSE);
        throw;
    }
    m_connection->Enter(COrvikConnection::Connected, nullptr, FALSE);
}

void Logger::Disconnect() {
    if (!m_port.IsOpen()) return;
    m_connection->Enter(COrvikConnection::Closing, nullptr, FALSE);
    m_port.Close();
    m_master.ClearAbort();
    m_connection->Enter(COrvikConnection::Closed, nullptr, FALSE);
}

}  // namespace modbus
