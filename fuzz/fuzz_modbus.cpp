// Modbus answers that come damaged, cut, late, not at all or, on a network, twice: what a reading gives was
// sent in that reading, for that channel. And any bytes, as answers of both kinds.
#include "fuzz/fuzz_line.h"
#include "plugins/modbus/modbus_logger.h"
#include "plugins/modbus/modbus_mbap.h"
#include "plugins/modbus/modbus_simulator.h"

namespace {
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

class Line : public fuzz::DamagedLine {
public:
    // Up to three bits that are wrong are always found by the CRC; a network has none, and its head and lengths are what counts. Its
    // transaction number stays: with another one that is still open, the answer is that one's, and nothing could tell.
    // A serial line is relied on to say everything once.
    Line(fuzz::Input& input, bool network)
        : DamagedLine(input, {.firstFlippable = network ? 2u : 0u, .flippable = network ? 7u : 0u, .stray = !network, .twice = network}),
          m_network(network),
          m_simulator(Device()),
          m_device(Device()) {
        m_simulator.SetLine(network ? "tcp://x" : "COM1");
    }

private:
    std::vector<BYTE> AnswerTo(std::span<const BYTE> asked, std::multimap<size_t, double>& sent) override {
        CByteArray reply;
        m_simulator.Receive(asked.data(), asked.size(), reply);
        std::vector<BYTE> answer(reply.GetData(), reply.GetData() + reply.GetSize());
        Note(asked, answer, sent);
        return answer;
    }
    void Note(std::span<const BYTE> asked, std::span<const BYTE> given, std::multimap<size_t, double>& sent) const {
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
            sent.emplace(i, Decode(channel, answer.data.data(), static_cast<WORD>(channel.first - request.first)));
        }
    }

    const bool m_network;
    modbus::Simulator m_simulator;
    const modbus::Description m_device;
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
    fuzz::Input input(data, std::min<size_t>(size, 512));
    const bool network = input.Next() % 2 != 0;
    auto* const line = new Line(input, network);
    modbus::Logger logger(Device(), std::unique_ptr<ITransport>(line));
    fuzz::ReadDamaged(logger, *line, network ? "tcp://x" : "COM1", input);
    return 0;
}
