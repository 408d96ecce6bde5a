#include "plugins/text/text_simulator.h"

#include <cmath>
#include <cstdio>
#include <numbers>

#include "comm/comm_exception.h"
#include "plugins/text/text_fields.h"
#include "plugins/text/text_line_maker.h"

namespace text {
namespace {
constexpr const char* kFaults[] = {"checksum", "garbage", "novalue", "half", "endless"};
}

// Each channel is a sine of its own length and height around 20 of its unit, one step a reading: the same run gives the same
// values.
double Simulator::ValueOf(size_t channel, unsigned reading) {
    const auto number = static_cast<double>(channel);
    const double phase = 2 * std::numbers::pi * reading / (24 + 7 * number);
    return 20 + (1.5 + number) * std::sin(phase + number);
}

Simulator::Simulator(Description description) : m_description(std::move(description)) {
    // Patterns may want a certain number of decimals.
    for (const int decimals : {2, 1, 3, 0}) {
        m_decimals = decimals;
        const std::vector<Outcome> read = ReadFields(m_description, MakeLines(m_description, Fields()));
        std::string why;
        for (size_t i = 0; i < read.size() && why.empty(); ++i) {
            const Channel& channel = m_description.channels[i];
            const double step = std::abs(channel.scale) * std::pow(10, -decimals);
            const bool another = read[i].noValue && !channel.number.others.empty();  // stands in its place
            const bool same =
                another || (read[i].IsValue() && !read[i].noValue && std::abs(read[i].value - ValueOf(i, 0)) <= step);
            if (!same) why = "Channels." + channel.key + ": cannot be simulated: " + read[i].text;
        }
        if (why.empty()) return;
        if (decimals == 0) OrvikThrowCommException(CCommException::BadProtocol, why.c_str());
    }
}

std::vector<std::string> Simulator::Fields() const {
    std::vector<std::string> fields;
    for (size_t i = 0; i < m_description.channels.size(); ++i) {
        const Channel& channel = m_description.channels[i];
        char digits[64];
        std::snprintf(digits, sizeof digits, "%.*f", m_decimals, (ValueOf(i, m_readings) - channel.offset) / channel.scale);
        std::string text = digits;
        if (const size_t point = text.find_first_of(".,"); point != std::string::npos) text[point] = channel.number.decimal;
        fields.push_back(channel.number.prefix + text + channel.number.suffix.value_or(""));
    }
    return fields;
}

bool Simulator::SetFault(const char* name, int percent) {
    for (const char* const fault : kFaults) {
        if (fault != std::string_view(name)) continue;
        if (fault == std::string_view("checksum") && m_description.checksum == Checksum::None) return false;
        m_faults[fault] = percent;
        return true;
    }
    return false;
}

bool Simulator::Happens(const char* fault) {
    const auto found = m_faults.find(fault);
    return found != m_faults.end() && std::uniform_int_distribution<int>(1, 100)(m_random) <= found->second;
}

std::string Simulator::NextReading() {
    const std::string end = m_description.end.empty() ? "\r\n" : m_description.end;
    std::vector<std::string> fields = Fields();
    ++m_readings;
    if (Happens("novalue")) fields.assign(fields.size(), m_description.channels[0].number.noValue.front());
    std::string said;
    for (std::string& line : MakeLines(m_description, fields)) {
        AddChecksum(m_description.checksum, line);
        // A wrong digit is a digit too.
        if (Happens("checksum")) line.back() = line.back() == '0' ? '1' : '0';
        if (Happens("garbage")) {
            for (char& c : line) c = static_cast<char>(std::uniform_int_distribution<int>('!', '~')(m_random));
        }
        if (Happens("endless")) line = std::string(2 * m_description.longest, 'x');
        said += line + end;
    }
    if (Happens("half")) said.resize(said.size() / 2);
    return said;
}

void Simulator::Receive(const BYTE* data, size_t size, CByteArray& reply) {
    reply.RemoveAll();
    if (m_description.ask.empty()) return;
    for (size_t i = 0; i < size; ++i) {
        m_received += static_cast<char>(data[i]);
        if (m_received.size() > m_description.ask.size()) m_received.erase(0, 1);
        if (m_received != m_description.ask) continue;
        m_received.clear();
        for (const char c : NextReading()) reply.Add(static_cast<BYTE>(c));
    }
}

void Simulator::Reset() {
    m_received.clear();
    m_started = false;
}

DWORD Simulator::Speak(CByteArray& out) {
    out.RemoveAll();
    if (!m_description.ask.empty()) return INFINITE;
    std::string said;
    if (!std::exchange(m_started, true)) {
        const std::string end = m_description.end.empty() ? "\r\n" : m_description.end;
        for (size_t i = 0; i < m_description.skip; ++i) said += MakeHeading(m_description) + end;
    }
    said += NextReading();
    for (const char c : said) out.Add(static_cast<BYTE>(c));
    return m_description.every;
}

}  // namespace text
