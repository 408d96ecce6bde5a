#include "plugins/modbus/modbus_logger.h"

#include <algorithm>
#include <limits>

#include "afx/string.h"
#include "comm/comm_exception.h"
#include "comm/line_address.h"
#include "plugins/modbus/modbus_network_master.h"
#include "plugins/modbus/modbus_number.h"
#include "plugins/modbus/modbus_serial_master.h"

namespace modbus {
namespace {
constexpr UINT kNoSerialSlaveText = 8332, kNotWritableText = 8340, kCannotHoldText = 8341;
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

CString TextOf(UINT id) {
    CString text;
    text.LoadString(id);
    return text;
}

void Refuse(const Master::Outcome& outcome) {
    OrvikThrowCommException(outcome.code, outcome.text.empty() ? nullptr : outcome.text.c_str());
}

// What was read of a channel; the other coils of the byte are nobody's.
std::vector<WORD> WordsOf(const Channel& channel, const std::vector<BYTE>& data) {
    if (ReadsCoils(channel.function)) return {static_cast<WORD>(data[0] & 1)};
    std::vector<WORD> words;
    for (size_t i = 0; i + 1 < data.size(); i += 2) words.push_back(WordAt(&data[i]));
    return words;
}

// The request that sets a channel's registers.
Request Setting(const Channel& channel, BYTE slave, const std::vector<WORD>& registers) {
    Request request{slave, channel.write, channel.first, static_cast<WORD>(registers.size())};
    if (ReadsCoils(channel.function)) {
        request.data = {static_cast<BYTE>(registers[0])};
    } else {
        for (const WORD word : registers) AppendWord(request.data, word);
    }
    return request;
}
}  // namespace

Logger::Logger(Description description, std::unique_ptr<ITransport> transport)
    : m_description(std::move(description)),
      m_blocks(PlanBlocks(m_description)),
      m_connection(new CLineConnection),
      m_transport(transport ? std::move(transport) : OrvikMakeTransport(m_port, *m_connection)) {
    m_connection->AddRef();
    ChooseMaster(false);
    Select({});
}

Logger::~Logger() {
    Disconnect();
    m_connection->Release();
}

// One master stays for all connections of its kind: it knows what is still owed.
void Logger::ChooseMaster(bool network) {
    if (m_master != nullptr && m_network == network) return;
    m_network = network;
    if (network) {
        m_master = std::make_unique<NetworkMaster>(*m_transport, m_description);
    } else {
        m_master = std::make_unique<SerialMaster>(*m_transport, m_description);
    }
    m_master->Watch(m_watch);
}

void Logger::Connect(const char* port, DWORD timeout) {
    m_connection->Enter(COrvikConnection::Connecting, port);
    try {
        const bool network = CLineAddress::Parse(port).scheme == CLineAddress::Tcp;
        for (const Slave& slave : m_description.slaves) {
            constexpr BYTE kLastOfLine = 247;
            if (network || (slave.address >= 1 && slave.address <= kLastOfLine)) continue;
            CString text;
            text.Format(TextOf(kNoSerialSlaveText), static_cast<unsigned>(slave.address));
            OrvikThrowCommException(CCommException::BadProtocol, text);
        }
        ChooseMaster(network);
        m_transport->Open(port, m_description.line, m_transport->Now() + std::chrono::milliseconds(timeout));
    } catch (CCommException*) {
        m_connection->Enter(COrvikConnection::Disconnected);
        throw;
    }
    m_master->Configure(port, m_description.line, timeout);
    m_connection->Enter(COrvikConnection::Connected);
}

void Logger::Watch(IReadingWatch* watch) {
    m_watch = watch;
    m_master->Watch(watch);
}

void Logger::Select(const CByteArray& due) {
    m_due.assign(due.GetData(), due.GetData() + due.GetSize());
    m_due.resize(due.GetSize() == 0 ? 0 : m_description.channels.size());
    m_asked.clear();
    m_requests.clear();
    for (size_t i = 0; i < m_blocks.size(); ++i) {
        const auto& parts = m_blocks[i].parts;
        if (std::none_of(parts.begin(), parts.end(), [&](const Block::Part& part) { return IsDue(part.channel); })) continue;
        m_asked.push_back(i);
        m_requests.push_back(m_blocks[i].request);
    }
}

void Logger::ReadSample(CDoubleArray& values) {
    values.SetSize(static_cast<INT_PTR>(m_description.channels.size()));
    for (INT_PTR i = 0; i < values.GetSize(); ++i) values.SetAt(i, kNan);
    std::vector<Master::Outcome> outcomes;
    try {
        Exchange(m_requests, outcomes);
    } catch (CCommException*) {
        Deliver(outcomes, values, false);
        throw;
    }
    Deliver(outcomes, values, true);
}

void Logger::Exchange(std::span<const Request> requests, std::vector<Master::Outcome>& outcomes) {
    m_connection->Enter(COrvikConnection::Working);
    try {
        m_master->Read(requests, outcomes);
    } catch (CCommException*) {
        m_connection->Enter(COrvikConnection::Disconnected);
        throw;
    }
    m_connection->Enter(COrvikConnection::Connected);
}

void Logger::Deliver(const std::vector<Master::Outcome>& outcomes, CDoubleArray& values, bool whole) const {
    const Master::Outcome* failure = nullptr;
    bool any = false;
    for (size_t i = 0; i < outcomes.size(); ++i) {
        const Master::Outcome& outcome = outcomes[i];
        for (const Block::Part& part : m_blocks[m_asked[i]].parts) {
            if (!IsDue(part.channel)) continue;
            // A logger that has no value has answered all the same: nothing is missing.
            if (!outcome.data.empty()) {
                values.SetAt(static_cast<INT_PTR>(part.channel),
                             Decode(m_description.channels[part.channel], outcome.data.data(), part.offset));
                any = true;
                continue;
            }
            if (failure == nullptr) failure = &outcome;
            if (whole && m_watch != nullptr) {
                const char* const text = outcome.text.empty() ? nullptr : outcome.text.c_str();
                m_watch->OnChannelFailed(static_cast<int>(part.channel), outcome.code, text);
            }
        }
    }
    if (whole && !any && failure != nullptr) Refuse(*failure);
}

Written Logger::Write(int index, const char* number) {
    const auto& channels = m_description.channels;
    if (index < 0 || static_cast<size_t>(index) >= channels.size() || channels[static_cast<size_t>(index)].write == 0)
        OrvikThrowCommException(CCommException::AccessDenied, TextOf(kNotWritableText));
    const Channel& channel = channels[static_cast<size_t>(index)];
    const std::vector<WORD> registers = RegistersFor(channel, number);
    if (registers.empty()) {
        CString text;
        text.Format(TextOf(kCannotHoldText), number);
        OrvikThrowCommException(CCommException::AccessDenied, text);
    }
    const BYTE slave = m_description.slaves[channel.slave].address;
    std::vector<Master::Outcome> outcomes;
    const Request steps[] = {Setting(channel, slave, registers), {slave, channel.function, channel.first, channel.Count()}};
    for (const Request& step : steps) {
        Exchange({&step, 1}, outcomes);
        if (outcomes[0].data.empty()) Refuse(outcomes[0]);
    }
    const std::string sent = DigitsOf(channel, registers), held = DigitsOf(channel, WordsOf(channel, outcomes[0].data));
    return {sent.c_str(), held.c_str(), Decimal(sent) == Decimal(number)};
}

void Logger::Disconnect() {
    if (!m_transport->IsOpen()) return;
    m_connection->Enter(COrvikConnection::Closing);
    m_transport->Close();
    m_connection->Enter(COrvikConnection::Closed);
}

}  // namespace modbus
