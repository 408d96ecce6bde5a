#include "plugins/modbus/modbus_logger.h"

#include <limits>

#include "comm/comm_exception.h"

namespace modbus {

Logger::Logger(Description description, std::unique_ptr<ITransport> transport)
    : m_description(std::move(description)),
      m_blocks(PlanBlocks(m_description)),
      m_connection(new CLineConnection),
      m_transport(transport ? std::move(transport) : OrvikMakeTransport(m_port, *m_connection)),
      m_master(*m_transport) {
    m_connection->AddRef();
    for (const Block& block : m_blocks) m_requests.push_back(block.request);
}

Logger::~Logger() {
    Disconnect();
    m_connection->Release();
}

void Logger::Connect(const char* port, DWORD timeout) {
    m_connection->Enter(COrvikConnection::Connecting, port);
    try {
        m_transport->Open(port, m_description.line, m_transport->Now() + std::chrono::milliseconds(timeout));
    } catch (CCommException*) {
        m_connection->Enter(COrvikConnection::Disconnected);
        throw;
    }
    m_master.Configure(m_description.line, timeout);
    m_connection->Enter(COrvikConnection::Connected);
}

void Logger::Watch(IReadingWatch* watch) {
    m_watch = watch;
    m_master.Watch(watch);
}

void Logger::ReadSample(CDoubleArray& values) {
    values.SetSize(static_cast<INT_PTR>(m_description.channels.size()));
    for (INT_PTR i = 0; i < values.GetSize(); ++i) values.SetAt(i, std::numeric_limits<double>::quiet_NaN());
    m_connection->Enter(COrvikConnection::Working);
    std::vector<Master::Outcome> outcomes;
    try {
        m_master.Read(m_requests, outcomes);
    } catch (CCommException*) {
        Deliver(outcomes, values, false);
        m_connection->Enter(COrvikConnection::Disconnected);
        throw;
    }
    m_connection->Enter(COrvikConnection::Connected);
    const Master::Outcome* const failure = Deliver(outcomes, values, true);
    if (failure != nullptr) OrvikThrowCommException(failure->code, failure->text.empty() ? nullptr : failure->text.c_str());
}

const Master::Outcome* Logger::Deliver(const std::vector<Master::Outcome>& outcomes, CDoubleArray& values, bool tell) const {
    const Master::Outcome* failure = nullptr;
    bool any = false;
    for (size_t i = 0; i < m_blocks.size(); ++i) {
        const Master::Outcome& outcome = outcomes[i];
        const bool came = !outcome.registers.empty();
        any |= came;
        if (!came && failure == nullptr) failure = &outcome;
        for (const Block::Part& part : m_blocks[i].parts) {
            const Channel& channel = m_description.channels[part.channel];
            if (came) {
                values.SetAt(static_cast<INT_PTR>(part.channel), Decode(channel, outcome.registers.data() + part.offset));
            } else if (tell && m_watch != nullptr) {
                m_watch->OnChannelFailed(static_cast<int>(part.channel), outcome.code,
                                         outcome.text.empty() ? nullptr : outcome.text.c_str());
            }
        }
    }
    return any ? nullptr : failure;
}

void Logger::Disconnect() {
    if (!m_transport->IsOpen()) return;
    m_connection->Enter(COrvikConnection::Closing);
    m_transport->Close();
    m_connection->Enter(COrvikConnection::Closed);
}

}  // namespace modbus
