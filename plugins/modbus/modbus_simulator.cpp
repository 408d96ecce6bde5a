#include "plugins/modbus/modbus_simulator.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string_view>

#include "comm/line_address.h"
#include "plugins/modbus/modbus_mbap.h"
#include "plugins/modbus/modbus_plan.h"

namespace modbus {
namespace {
constexpr size_t kLongestFrame = 256;
}  // namespace

Simulator::Simulator(Description description) : m_description(std::move(description)) {
    // What may be read along is there.
    for (const Block& block : PlanBlocks(m_description)) {
        for (WORD i = 0; i < block.request.count; ++i)
            m_held[{block.request.slave, block.request.function, static_cast<WORD>(block.request.first + i)}] = 0;
    }
    Refresh();
}

void Simulator::SetLine(const char* address) {
    m_network = CLineAddress::Parse(address).scheme == CLineAddress::Tcp;
    m_received.clear();
}

bool Simulator::SetFault(const char* name, int percent) {
    static constexpr std::pair<std::string_view, Fault> kNames[] = {{"crc", Fault::Crc},
                                                                    {"exception", Fault::Exception},
                                                                    {"unit", Fault::Unit},
                                                                    {"function", Fault::Function},
                                                                    {"length", Fault::Length}};
    for (const auto& [known, fault] : kNames) {
        if (known != name) continue;
        m_faults[fault] = percent;
        return true;
    }
    return false;
}

void Simulator::Receive(const BYTE* data, size_t size, CByteArray& reply) {
    reply.RemoveAll();
    m_received.insert(m_received.end(), data, data + size);
    Request request;
    WORD transaction = 0;
    while (Next(request, transaction)) {
        const auto& slaves = m_description.slaves;
        // Others on the line answer for themselves.
        if (std::none_of(slaves.begin(), slaves.end(), [&](const Slave& slave) { return slave.address == request.slave; }))
            continue;
        for (const BYTE byte : Frame(request, transaction)) reply.Add(byte);
    }
    // What is left can only be the beginning of a request.
    if (m_received.size() > kLongestFrame)
        m_received.erase(m_received.begin(), m_received.end() - static_cast<std::ptrdiff_t>(kLongestFrame));
}

bool Simulator::Next(Request& request, WORD& transaction) {
    size_t used = 0;
    if (!m_network) {
        if (!FindRequest(m_received, request, used)) return false;
    } else {
        const NetworkEnd end = FirstRequest(m_received, transaction, request, used);
        if (end == NetworkEnd::Broken) m_received.clear();
        if (end != NetworkEnd::Whole) return false;
    }
    m_received.erase(m_received.begin(), m_received.begin() + static_cast<std::ptrdiff_t>(used));
    return true;
}

std::vector<BYTE> Simulator::Frame(const Request& request, WORD transaction) {
    std::vector<BYTE> message = Happens(Fault::Exception) ? ExceptionMessage(request, kBusy) : Answer(request);
    const BYTE slave = Happens(Fault::Unit) ? static_cast<BYTE>(request.slave + 1) : request.slave;
    // Two that are told apart by nothing else.
    if (Happens(Fault::Function)) message[0] ^= ReadsCoils(request.function) ? BYTE{3} : BYTE{7};
    if (Happens(Fault::Length)) message.pop_back();
    std::vector<BYTE> frame = m_network ? NetworkFrame(transaction, slave, message) : SerialFrame(slave, message);
    if (Happens(Fault::Crc)) frame.back() ^= 0xA5;
    return frame;
}

bool Simulator::Happens(Fault fault) {
    const auto found = m_faults.find(fault);
    return found != m_faults.end() && static_cast<int>(m_random() % 100) < found->second;
}

std::vector<BYTE> Simulator::Answer(const Request& request) {
    Refresh();
    if (Writes(request.function)) return Write(request);
    if (ReadsCoils(request.function) || ReadsRegisters(request.function)) return Read(request);
    return ExceptionMessage(request, kIllegalFunction);
}

std::vector<BYTE> Simulator::Read(const Request& request) {
    const bool coils = ReadsCoils(request.function);
    if (request.count == 0 || request.count > (coils ? kMaxCoils : kMaxRegisters))
        return ExceptionMessage(request, kIllegalValue);
    std::vector<BYTE> data(coils ? (request.count + 7u) / 8u : 0);
    for (DWORD i = 0; i < request.count; ++i) {
        const DWORD number = request.first + i;
        const auto found =
            number > 0xFFFF ? m_held.end() : m_held.find({request.slave, request.function, static_cast<WORD>(number)});
        if (found == m_held.end()) return ExceptionMessage(request, kIllegalAddress);
        if (!coils) {
            AppendWord(data, found->second);
        } else if (found->second != 0) {
            data[i / 8] |= static_cast<BYTE>(1u << i % 8);
        }
    }
    return AnswerMessage(request, data);
}

// Whole channels that may be written; anything else is refused, and nothing of it is done.
std::vector<BYTE> Simulator::Write(const Request& request) {
    const bool coils = request.function == kWriteCoil || request.function == kWriteCoils;
    if (request.count == 0 || request.count > (coils ? kMaxWrittenCoils : kMaxWrittenRegisters))
        return ExceptionMessage(request, kIllegalValue);
    const BYTE function = coils ? kReadCoils : kReadHoldingRegisters;
    DWORD left = request.count;
    std::vector<size_t> channels;
    for (size_t i = 0; i < m_description.channels.size(); ++i) {
        const Channel& channel = m_description.channels[i];
        const DWORD end = DWORD{channel.first} + channel.Count();
        if (m_description.slaves[channel.slave].address != request.slave || channel.function != function || channel.write == 0 ||
            channel.first < request.first || end > DWORD{request.first} + request.count)
            continue;
        left -= std::min<DWORD>(left, channel.Count());
        channels.push_back(i);
    }
    if (left != 0) return ExceptionMessage(request, kIllegalAddress);
    for (const size_t i : channels) {
        const Channel& channel = m_description.channels[i];
        m_written.insert(i);
        std::vector<WORD> words;
        for (WORD k = 0; k < channel.Count(); ++k) {
            const size_t at = static_cast<size_t>(channel.first - request.first + k);
            words.push_back(coils ? static_cast<WORD>(request.data[at / 8] >> at % 8 & 1) : WordAt(&request.data[2 * at]));
        }
        Hold(channel, words);
    }
    return AnswerMessage(request, EchoOf(request));
}

void Simulator::Hold(const Channel& channel, const std::vector<WORD>& words) {
    const BYTE slave = m_description.slaves[channel.slave].address;
    for (size_t k = 0; k < words.size(); ++k) {
        WORD& held = m_held[{slave, channel.function, static_cast<WORD>(channel.first + k)}];
        const bool bit = channel.type == ValueType::Bool && !ReadsCoils(channel.function);
        held = bit ? static_cast<WORD>((held & ~(1u << channel.bit)) | words[k]) : words[k];
    }
}

// Each channel is a sine of its own length and height around 20 of its unit, one step an answer: the same run gives the same
// values. One that is on or off is on while the sine is above.
void Simulator::Refresh() {
    for (size_t i = 0; i < m_description.channels.size(); ++i) {
        if (m_written.count(i) != 0) continue;
        const Channel& channel = m_description.channels[i];
        const double phase = 2 * std::numbers::pi * m_answers / (24.0 + 7.0 * static_cast<double>(i));
        const double sine = std::sin(phase + static_cast<double>(i));
        const bool twofold = channel.type == ValueType::Bool;
        Hold(channel, Encode(channel, twofold ? (sine > 0 ? channel.scale : 0) + channel.offset
                                              : 20 + (1.5 + static_cast<double>(i)) * sine));
    }
    ++m_answers;
}

}  // namespace modbus
