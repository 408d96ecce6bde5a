// Modbus answers that come damaged, cut, late, not at all or, on a network, twice: what a reading gives was
// sent in that reading, for that channel. And any bytes, as answers of both kinds.
#include <cmath>
#include <map>

#include "comm/comm_exception.h"
#include "fuzz/fuzz_support.h"
#include "plugins/modbus/modbus_logger.h"
#include "plugins/modbus/modbus_mbap.h"
#include "plugins/modbus/modbus_simulator.h"

namespace {
class Input {
public:
    Input(const uint8_t* data, size_t size) : m_data(data, size) {}
    BYTE Next() {
        if (m_at == m_data.size()) return 0;
        return m_data[m_at++];
    }
    bool IsOver() const { return m_at == m_data.size(); }

private:
    std::span<const uint8_t> m_data;
    size_t m_at = 0;
};

// Registers, coils and 64 bits of two slaves.
modbus::Description Device() {
    modbus::Description description;
    description.slaves = {{.address = 5}, {.address = 6}};
    for (size_t slave = 0; slave < 2; ++slave) {
        for (const auto& [function, first, type] :
             {std::tuple(3, 0, modbus::ValueType::Int16), std::tuple(3, 1, modbus::ValueType::Float32),
              std::tuple(3, 10, modbus::ValueType::Int16), std::tuple(4, 0, modbus::ValueType::Float64),
              std::tuple(1, 3, modbus::ValueType::Bool), std::tuple(1, 40, modbus::ValueType::Bool)}) {
            modbus::Channel channel;
            channel.slave = slave;
            channel.function = static_cast<BYTE>(function);
            channel.first = static_cast<WORD>(first);
            channel.type = type;
            description.channels.push_back(channel);
        }
    }
    return description;
}

class Line : public ITransport {
public:
    Line(Input& input, bool network) : m_input(input), m_network(network), m_simulator(Device()), m_device(Device()) {
        m_simulator.SetLine(network ? "tcp://x" : "COM1");
    }
    // What was sent since the last call, by channel.
    std::multimap<size_t, double> TakeSent() { return std::exchange(m_sent, {}); }

    void Open(const char*, const CLineSettings&, TimePoint) override {
        m_open = true;
        m_coming.clear();
    }
    void Close() override { m_open = false; }
    bool IsOpen() const override { return m_open; }
    bool IsShared() const override { return true; }
    TimePoint Now() override { return m_now; }
    void Abort() override {}

    void Send(std::span<const BYTE> bytes, TimePoint) override {
        Check();
        CByteArray reply;
        m_simulator.Receive(bytes.data(), bytes.size(), reply);
        std::vector<BYTE> answer(reply.GetData(), reply.GetData() + reply.GetSize());
        Note(bytes, answer);
        Damage(answer);
    }
    bool Receive(std::vector<BYTE>& received, TimePoint until) override {
        Check();
        if (m_coming.empty() || m_coming.begin()->first > until) {
            m_now = std::max(m_now, until);
            return false;
        }
        m_now = std::max(m_now, m_coming.begin()->first);
        const auto& bytes = m_coming.begin()->second;
        received.insert(received.end(), bytes.begin(), bytes.end());
        m_coming.erase(m_coming.begin());
        return true;
    }

private:
    void Check() {
        if (!m_open) OrvikThrowCommException(CCommException::DeviceNotOpen, nullptr);
    }
    void Note(std::span<const BYTE> asked, std::span<const BYTE> given) {
        modbus::Request request;
        modbus::Answer answer;
        WORD transaction = 0;
        size_t used = 0, begin = 0;
        if (m_network) {
            modbus::FirstRequest(asked, transaction, request, used);
            FUZZ_REQUIRE(modbus::FirstAnswer(given, transaction, answer, used) == modbus::NetworkEnd::Whole);
        } else {
            modbus::FindRequest(asked, request, used);
            const auto found = modbus::FindAnswer(given, begin, used);
            FUZZ_REQUIRE(found && begin == 0 && used == given.size());
            answer = *found;
        }
        if (answer.exception != 0) return;
        for (size_t i = 0; i < m_device.channels.size(); ++i) {
            const modbus::Channel& channel = m_device.channels[i];
            const DWORD last = DWORD{request.first} + request.count;
            if (m_device.slaves[channel.slave].address != request.slave || channel.function != request.function ||
                channel.first < request.first || DWORD{channel.first} + channel.Count() > last)
                continue;
            m_sent.emplace(i, Decode(channel, answer.data.data(), static_cast<WORD>(channel.first - request.first)));
        }
    }
    // Up to three bits that are wrong are always found by the CRC; a network has none, and its head and lengths are what counts.
    void Damage(std::vector<BYTE> answer) {
        TimePoint when = m_now + std::chrono::milliseconds(20);
        switch (m_input.Next() % 8) {
            case 1:
                for (int flips = 1 + m_input.Next() % 3; flips > 0; --flips) {
                    const size_t bit = (m_input.Next() * 256u + m_input.Next()) % (8 * (m_network ? 9 : answer.size()));
                    answer[bit / 8] ^= static_cast<BYTE>(1 << bit % 8);
                }
                break;
            case 2:
                answer.resize(m_input.Next() % answer.size());
                break;
            case 3:
                if (!m_network) answer.insert(answer.begin(), m_input.Next() % 5, m_input.Next());
                break;
            case 4:
                // A serial line is relied on to say everything once.
                if (m_network) m_coming.emplace(when, answer);
                break;
            case 5:
                when += std::chrono::milliseconds(100 * m_input.Next());
                break;
            case 6:
                m_coming.emplace(when, std::vector<BYTE>{answer.front()});
                answer.erase(answer.begin());
                when += std::chrono::milliseconds(m_input.Next());
                break;
            case 7:
                return;
            default:
                break;
        }
        // In the order in which it was asked.
        if (!m_coming.empty()) when = std::max(when, m_coming.rbegin()->first);
        m_coming.emplace(when, answer);
    }

    Input& m_input;
    const bool m_network;
    modbus::Simulator m_simulator;
    const modbus::Description m_device;
    TimePoint m_now{std::chrono::hours(1)};
    std::multimap<TimePoint, std::vector<BYTE>> m_coming;
    std::multimap<size_t, double> m_sent;
    bool m_open = false;
};

// What is found in any bytes is in them, to the last one.
void Parse(std::span<const uint8_t> bytes) {
    modbus::Request request;
    modbus::Answer answer;
    WORD transaction = 0;
    size_t begin = 0, end = 0;
    if (const auto found = modbus::FindAnswer(bytes, begin, end)) {
        modbus::Request asked{found->slave, found->function};
        const auto message =
            found->exception != 0 ? modbus::ExceptionMessage(asked, found->exception) : modbus::AnswerMessage(asked, found->data);
        const auto frame = modbus::SerialFrame(found->slave, message);
        FUZZ_REQUIRE(end <= bytes.size() &&
                     std::equal(frame.begin(), frame.end(), bytes.begin() + static_cast<std::ptrdiff_t>(begin),
                                bytes.begin() + static_cast<std::ptrdiff_t>(end)));
    }
    if (modbus::FirstAnswer(bytes, transaction, answer, end) == modbus::NetworkEnd::Whole) {
        modbus::Request asked{answer.slave, answer.function};
        const auto message =
            answer.exception != 0 ? modbus::ExceptionMessage(asked, answer.exception) : modbus::AnswerMessage(asked, answer.data);
        const auto frame = modbus::NetworkFrame(transaction, answer.slave, message);
        FUZZ_REQUIRE(end <= bytes.size() &&
                     std::equal(frame.begin(), frame.end(), bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(end)));
    }
    if (modbus::FindRequest(bytes, request, end)) FUZZ_REQUIRE(end <= bytes.size());
    if (modbus::FirstRequest(bytes, transaction, request, end) == modbus::NetworkEnd::Whole) FUZZ_REQUIRE(end <= bytes.size());
    for (const char* address : {"COM1", "tcp://x"}) {
        modbus::Simulator simulator(Device());
        simulator.SetLine(address);
        CByteArray reply;
        simulator.Receive(bytes.data(), bytes.size(), reply);
    }
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Parse({data, std::min<size_t>(size, 2048)});
    Input input(data, std::min<size_t>(size, 512));
    const bool network = input.Next() % 2 != 0;
    auto* const line = new Line(input, network);
    modbus::Logger logger(Device(), std::unique_ptr<ITransport>(line));
    const char* const address = network ? "tcp://x" : "COM1";
    logger.Connect(address, 1000);
    for (int reading = 0; reading < 20 && !input.IsOver(); ++reading) {
        CDoubleArray values;
        try {
            logger.ReadSample(values);
        } catch (CCommException* failure) {
            failure->Delete();
        }
        const auto sent = line->TakeSent();
        for (INT_PTR i = 0; i < values.GetSize(); ++i) {
            const double value = values.GetAt(i);
            const auto [from, to] = sent.equal_range(static_cast<size_t>(i));
            FUZZ_REQUIRE(std::isnan(value) || std::any_of(from, to, [value](const auto& each) { return each.second == value; }));
        }
        if (!line->IsOpen()) {
            logger.Disconnect();
            logger.Connect(address, 1000);
        }
    }
    return 0;
}
