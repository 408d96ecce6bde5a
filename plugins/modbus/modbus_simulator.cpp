#include "plugins/modbus/modbus_simulator.h"

#include <cmath>
#include <numbers>

namespace modbus {

Simulator::Simulator(Description description) : m_description(std::move(description)) { Refresh(); }

void Simulator::Receive(const BYTE* data, size_t size, CByteArray& reply) {
    reply.RemoveAll();
    m_received.insert(m_received.end(), data, data + size);
    Request request;
    size_t used = 0;
    while (FindRequest(m_received, request, used)) {
        m_received.erase(m_received.begin(), m_received.begin() + static_cast<std::ptrdiff_t>(used));
        if (request.slave != m_description.slave) continue;
        for (const BYTE byte : Answer(request)) reply.Add(byte);
    }
    // What is left can only be the beginning of a request.
    if (m_received.size() > 7) m_received.erase(m_received.begin(), m_received.end() - 7);
}

std::vector<BYTE> Simulator::Answer(const Request& request) {
    if (request.function != kReadHoldingRegisters && request.function != kReadInputRegisters)
        return EncodeException(request, kIllegalFunction);
    if (request.count == 0 || request.count > kMaxRegisters) return EncodeException(request, kIllegalValue);
    Refresh();
    std::vector<WORD> values;
    for (DWORD number = request.first; number < DWORD{request.first} + request.count; ++number) {
        const auto found = number > 0xFFFF ? m_registers.end() : m_registers.find({request.function, static_cast<WORD>(number)});
        if (found == m_registers.end()) return EncodeException(request, kIllegalAddress);
        values.push_back(found->second);
    }
    return EncodeReply(request, values);
}

// Each channel is a sine of its own length and height around 20 of its unit, one step an answer: the same run gives the same
// values.
void Simulator::Refresh() {
    for (size_t i = 0; i < m_description.channels.size(); ++i) {
        const Channel& channel = m_description.channels[i];
        const double phase = 2 * std::numbers::pi * m_answers / (24.0 + 7.0 * static_cast<double>(i));
        WORD words[2] = {};
        Encode(channel, 20 + (1.5 + static_cast<double>(i)) * std::sin(phase + static_cast<double>(i)), words);
        for (WORD k = 0; k < channel.RegisterCount(); ++k)
            m_registers[{channel.function, static_cast<WORD>(channel.first + k)}] = words[k];
    }
    ++m_answers;
}

}  // namespace modbus
