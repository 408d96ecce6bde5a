// What a reading of 100 channels costs beside its line: decoding alone, and from the first request to the last value over a line
// that answers at once. Goal: 5 us for decoding and handing over.
#include <benchmark/benchmark.h>

#include <cmath>
#include <map>

#include "bench/bench_support.h"
#include "plugins/modbus/modbus_logger.h"
#include "plugins/modbus/modbus_simulator.h"

namespace {
constexpr size_t kChannels = 100;

// Every type in turn, each in one of its orders.
modbus::Description Mixed() {
    using enum modbus::ValueType;
    constexpr modbus::ValueType kTypes[] = {Float32, Int16, Uint64, Uint16, Float64, Int32, Bool, Bcd32, Uint32, Int64};
    modbus::Description description;
    WORD next = 0;
    for (size_t i = 0; i < kChannels; ++i) {
        modbus::Channel& channel = description.channels.emplace_back();
        channel.type = kTypes[i % std::size(kTypes)];
        channel.order = static_cast<modbus::ByteOrder>(i % 8);
        channel.scale = i % 3 == 0 ? 0.1 : 1;
        channel.first = next;
        if (i % 4 == 0) channel.none = {0xFFFF};
        next = static_cast<WORD>(next + channel.Count());
    }
    return description;
}

std::vector<std::vector<BYTE>> Answers(const modbus::Description& description, const std::vector<modbus::Block>& blocks) {
    modbus::Simulator simulator(description);
    std::vector<std::vector<BYTE>> answers;
    for (const modbus::Block& block : blocks) {
        CByteArray reply;
        const std::vector<BYTE> request = modbus::Encode(block.request);
        simulator.Receive(request.data(), request.size(), reply);
        size_t begin = 0, end = 0;
        answers.push_back(modbus::FindAnswer({reply.GetData(), static_cast<size_t>(reply.GetSize())}, begin, end)->data);
    }
    return answers;
}

void DecodeChannels(benchmark::State& state) {
    const modbus::Description description = Mixed();
    const std::vector<modbus::Block> blocks = modbus::PlanBlocks(description);
    const auto answers = Answers(description, blocks);
    CDoubleArray values;
    values.SetSize(kChannels);
    for (auto _ : state) {
        for (size_t i = 0; i < blocks.size(); ++i) {
            for (const modbus::Block::Part& part : blocks[i].parts)
                values.SetAt(static_cast<INT_PTR>(part.channel),
                             Decode(description.channels[part.channel], answers[i].data(), part.offset));
        }
        benchmark::DoNotOptimize(values.GetData());
    }
    for (INT_PTR i = 0; i < values.GetSize(); ++i) BENCH_REQUIRE(!std::isnan(values.GetAt(i)));
    bench::PerItem(state, kChannels);
}
BENCHMARK(DecodeChannels)->Name("modbus/decode/100_channels");

// A network whose far end has answered before anybody waits.
class Instant : public ITransport {
public:
    explicit Instant(const modbus::Description& description) : m_simulator(description) { m_simulator.SetLine("tcp://x"); }
    void Open(const char*, const CLineSettings&, TimePoint) override { m_open = true; }
    void Close() override { m_open = false; }
    bool IsOpen() const override { return m_open; }
    TimePoint Now() override { return m_now; }
    void Send(std::span<const BYTE> bytes, TimePoint) override {
        // The same answers each time, under the number of the request.
        std::vector<BYTE>& answer = m_answers[{bytes.begin() + 6, bytes.end()}];
        if (answer.empty()) {
            CByteArray reply;
            m_simulator.Receive(bytes.data(), bytes.size(), reply);
            answer.assign(reply.GetData(), reply.GetData() + reply.GetSize());
        }
        std::copy_n(bytes.begin(), 2, answer.begin());
        m_coming = &answer;
    }
    bool Receive(std::vector<BYTE>& received, TimePoint) override {
        if (m_coming == nullptr) return false;
        received.insert(received.end(), m_coming->begin(), m_coming->end());
        m_coming = nullptr;
        return true;
    }
    void Abort() override {}

private:
    modbus::Simulator m_simulator;
    std::map<std::vector<BYTE>, std::vector<BYTE>> m_answers;
    std::vector<BYTE>* m_coming = nullptr;
    TimePoint m_now{std::chrono::hours(1)};
    bool m_open = false;
};

void ReadSample(benchmark::State& state) {
    const modbus::Description description = Mixed();
    modbus::Logger logger(description, std::make_unique<Instant>(description));
    logger.Connect("tcp://x", 1000);
    CDoubleArray values;
    for (auto _ : state) logger.ReadSample(values);
    for (INT_PTR i = 0; i < values.GetSize(); ++i) BENCH_REQUIRE(!std::isnan(values.GetAt(i)));
    bench::PerItem(state, kChannels);
}
BENCHMARK(ReadSample)->Name("modbus/read/100_channels");
}  // namespace

BENCHMARK_MAIN();
