// Whole readings on a simulated line: whatever the far end does, a cell is right or it is empty.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "plugins/modbus/modbus_logger.h"
#include "tests/modbus/simulated_wire.h"
#include "tests/support/borrowed_line.h"
#include "tests/support/comm_failure.h"
#include "tests/support/time_limit.h"

namespace {
using simulated::Faults;

// Checks what a reading tells against what it leaves.
class Watch : public IReadingWatch {
public:
    void OnAnswer(DWORD) override { ++answers; }
    void OnChannelFailed(int channel, int code, const char*) override {
        failed.push_back(channel);
        codes.push_back(code);
    }
    void OnLateAnswer(DWORD milliseconds) override {
        ++late;
        latest = std::max(latest, milliseconds);
    }
    void Begin() {
        answers = 0;
        failed.clear();
        codes.clear();
    }
    int answers = 0, late = 0;
    DWORD latest = 0;
    std::vector<int> failed, codes;
};

// Three registers that only their order tells apart, and one of another function; or two registers of each of two slaves.
modbus::Description FourChannels(int slaves = 1) {
    modbus::Description description;
    description.slaves[0].address = 7;
    if (slaves == 2) description.slaves.push_back({.address = 9});
    for (const int first : {100, 200, 300, 400}) {
        modbus::Channel channel;
        channel.slave = slaves == 2 && first > 200;
        channel.function = first == 400 ? modbus::kReadInputRegisters : modbus::kReadHoldingRegisters;
        channel.first = static_cast<WORD>(first);
        channel.type = modbus::ValueType::Uint16;
        description.channels.push_back(channel);
    }
    return description;
}

struct Tally {
    int wrong = 0, good = 0, lost = 0;
    double seconds = 0, longest = 0;
};

class Line {
public:
    explicit Line(const Faults& faults, int slaves = 1)
        : m_wire(new simulated::Wire(faults, 1)), m_logger(FourChannels(slaves), std::unique_ptr<ITransport>(m_wire)) {
        m_logger.Watch(&watch);
        Connect();
    }

    void Connect() {
        FailureOf([&] { m_logger.Connect("", 1000); });
    }

    // One reading: the code that it ended with, 0 for none.
    int Read(Tally& tally) {
        watch.Begin();
        const modbus::TimePoint begun = m_wire->Now();
        CDoubleArray values;
        for (int i = 0; i < 4; ++i) values.Add(std::nan(""));
        const int code = FailureOf([&] { m_logger.ReadSample(values); }).code;
        const bool lineLost = code == 6 || code == 7 || code == 9;
        tally.lost += lineLost;
        const double seconds = std::chrono::duration<double>(m_wire->Now() - begun).count();
        tally.seconds += seconds;
        tally.longest = std::max(tally.longest, seconds);
        int good = 0;
        std::vector<int> empty;
        for (int i = 0; i < 4; ++i) {
            const double value = values[i];
            if (std::isnan(value)) {
                empty.push_back(i);
            } else if (m_wire->IsTrue(static_cast<WORD>(value), static_cast<WORD>(100 * (i + 1)), begun)) {
                ++good;
            } else {
                ++tally.wrong;
            }
        }
        tally.good += good;
        if (!lineLost) {
            std::sort(watch.failed.begin(), watch.failed.end());
            EXPECT_EQ(watch.failed, empty);
            EXPECT_EQ(code != 0, empty.size() == 4);
        }
        EXPECT_EQ(watch.answers, empty.size() == 4 ? 0 : 1);
        EXPECT_EQ(m_logger.Connection().IsConnected(), !lineLost);
        if (lineLost) {
            m_logger.Disconnect();
            Connect();
        }
        return code;
    }

    simulated::Wire& Wire() { return *m_wire; }
    modbus::Logger& Logger() { return m_logger; }
    Watch watch;

private:
    simulated::Wire* m_wire;  // the logger's
    modbus::Logger m_logger;
};

// With a pause of up to 3 s after every fourth.
Tally ReadMany(Line& line, int readings) {
    Tally tally;
    std::mt19937 pauses(7);
    for (int i = 0; i < readings; ++i) {
        line.Read(tally);
        if (i % 4 == 0) line.Wire().Idle(std::uniform_real_distribution<double>(0, 3)(pauses));
    }
    return tally;
}
}  // namespace

TEST(ModbusLateAnswers, LoggersThatShareALineKeepTheirOwn) {
    simulated::Wire wire({.spread = 0.9, .lateBy = 4, .lateChance = 0.02, .silent = 0.1}, 1);
    const auto make = [&](WORD first) {
        modbus::Description two = FourChannels(2);
        two.channels = {two.channels[1], two.channels[2]};  // one of each slave
        for (modbus::Channel& channel : two.channels) channel.first = first;
        return std::make_unique<modbus::Logger>(two, std::make_unique<BorrowedLine>(wire));
    };
    const std::unique_ptr<modbus::Logger> loggers[] = {make(100), make(200), make(300)};
    for (const auto& logger : loggers) logger->Connect("COM1", 1000);
    int good = 0;
    for (int round = 0; round < 2000; ++round) {
        const modbus::TimePoint begun = wire.Now();
        CDoubleArray values;
        FailureOf([&] { loggers[round % 3]->ReadSample(values); });
        for (INT_PTR i = 0; i < values.GetSize(); ++i) {
            if (std::isnan(values[i])) continue;
            ++good;
            EXPECT_TRUE(wire.IsTrue(static_cast<WORD>(values[i]), static_cast<WORD>(100 * (round % 3 + 1)), begun)) << round;
        }
    }
    EXPECT_GT(good, 500);
}

namespace {
// A line and what is expected of it: good ones of all cells, at least; seconds for a reading on average, and for any, at most.
struct Case {
    const char* what;
    Faults faults;
    double good, seconds, longest = 1e9;
};

void ExpectNoWrongCell(std::span<const Case> rows, int slaves, int readings) {
    LimitTest(240);
    for (const Case& row : rows) {
        SCOPED_TRACE(row.what);
        Line line(row.faults, slaves);
        const Tally tally = ReadMany(line, readings);
        EXPECT_EQ(tally.wrong, 0);
        EXPECT_GE(tally.good, 4 * readings * row.good);
        EXPECT_LE(tally.seconds, readings * row.seconds);
        EXPECT_LE(tally.longest, row.longest);
    }
}

constexpr Faults kNearlyLate = {
    .late = 0.4, .spread = 0.55, .oneByOne = true, .lateBy = 1.3, .lateChance = 0.01, .silent = 0.04, .noise = 0.07};
constexpr Faults kEverything = {.late = 0.01,
                                .spread = 1.5,
                                .oneByOne = true,
                                .silent = 0.05,
                                .noise = 0.05,
                                .damaged = 0.05,
                                .split = 0.05,
                                .pause = 1.5,
                                .foreign = 0.05,
                                .refused = 0.05,
                                .unplugged = 0.005};
}  // namespace

TEST(ModbusLateAnswers, NoCellIsEverAnothers) {
    const Case rows[] = {
        {"sound", {}, 1, 0.2, 0.2},
        {"late once", {.lateOnce = 5, .lateBy = 1.2}, 1, 0.2, 2},
        {"late now and then", {.lateBy = 1.2, .lateChance = 0.02}, 0.99, 0.4, 6},
        {"always 1.05 s late", {.late = 1.05}, 0.999, 5, 8},
        {"always 1.3 s late", {.late = 1.3}, 0.999, 6, 10},
        {"always 2.5 s late", {.late = 2.5}, 0.999, 12, 20},
        {"always 3.5 s late", {.late = 3.5}, 0.999, 16, 25},
        {"always 6 s late", {.late = 6}, 0.99, 28, 50},
        {"always 20 s late", {.late = 20}, 0.99, 90, 150},
        {"now and then 15 s late", {.lateBy = 15, .lateChance = 0.02}, 0.9, 2, 60},
        {"always 1.05 s for each", {.late = 1.05, .oneByOne = true}, 0.999, 5, 10},
        {"0 to 0.9 s", {.late = 0.01, .spread = 0.9}, 1, 2.5, 5},
        {"0 to 4 s for each", {.late = 0.01, .spread = 4, .oneByOne = true}, 0.99, 10, 50},
        {"0 to 4 s side by side", {.late = 0.01, .spread = 4}, 0.99, 10, 25},
        {"noise", {.noise = 0.2}, 0.99, 0.3, 5},
        {"noise and now and then 3.2 s late", {.oneByOne = true, .lateBy = 3.2, .lateChance = 0.02, .noise = 0.07}, 0.98, 1, 25},
        {"flipped bits", {.damaged = 0.2}, 0.98, 0.5, 15},
        {"silences", {.silent = 0.05}, 0.99, 0.6, 15},
        {"silences, and probes are ignored", {.silent = 0.05, .ignores = true}, 0.99, 1.2, 20},
        {"probes ignored, now and then late",
         {.late = 0.5, .spread = 0.4, .oneByOne = true, .lateBy = 2, .lateChance = 0.02, .ignores = true},
         0.97,
         4,
         25},
        {"silences and late once", {.lateOnce = 5, .lateBy = 15, .silent = 0.05}, 0.99, 0.6, 40},
        {"silences, noise and nearly late", kNearlyLate, 0.99, 5, 30},
        // Asked faster than it answers: unless that is seen, what is owed grows without end.
        {"2.5 to 4 s, noise, unplugged",
         {.late = 2.5, .spread = 1.5, .oneByOne = true, .noise = 0.08, .unplugged = 0.002},
         0.95,
         20,
         75},
        {"split", {.split = 0.3, .pause = 0.5}, 0.999, 0.8, 8},
        {"split for long", {.split = 0.1, .pause = 2.5}, 0.99, 1, 15},
        {"other units", {.foreign = 0.3}, 1, 0.2, 0.2},
        {"busy", {.refused = 0.1}, 0.99, 0.2, 0.5},
        {"gateway without its target", {.refused = 0.1, .exception = modbus::kNoTarget}, 0.95, 0.2, 0.5},
        {"unplugged", {.unplugged = 0.02}, 0.85, 0.2, 2},
        {"unplugged and late", {.late = 1.05, .unplugged = 0.02}, 0.8, 5, 15},
        {"noise and 0 to 0.9 s", {.late = 0.01, .spread = 0.9, .noise = 0.1, .damaged = 0.1}, 0.99, 3, 15},
        {"silences and 0 to 2 s", {.late = 0.01, .spread = 2, .silent = 0.1}, 0.99, 8, 50},
        {"everything", kEverything, 0.9, 7, 40}};
    ExpectNoWrongCell(rows, 1, 10'000);
}

// With several slaves nobody waits until all is silent: what is still owed then must be known by the books alone.
TEST(ModbusLateAnswers, NoCellIsEverAnotherSlaves) {
    Faults everything = kEverything;
    everything.foreign = 0;  // its unit would be the other slave's
    const Case rows[] = {{"sound", {}, 0.999, 0.2},
                         {"late now and then", {.lateBy = 1.2, .lateChance = 0.02}, 0.97, 0.4},
                         {"always 1.3 s late", {.late = 1.3}, 0.9, 7},
                         {"always 3.5 s late", {.late = 3.5}, 0.9, 20},
                         {"now and then 15 s late", {.lateBy = 15, .lateChance = 0.02}, 0.8, 2},
                         {"0 to 4 s side by side", {.late = 0.01, .spread = 4}, 0.9, 15},
                         {"silences", {.silent = 0.05}, 0.97, 0.6},
                         {"silences, and probes are ignored", {.silent = 0.05, .ignores = true}, 0.9, 1.2},
                         {"one silent", {.only = 100, .silent = 1}, 0.7, 3.5},
                         {"silences, noise and nearly late", kNearlyLate, 0.9, 5},
                         {"everything", everything, 0.8, 8}};
    ExpectNoWrongCell(rows, 2, 5'000);
}

TEST(ModbusLateAnswers, FailuresAreToldByChannel) {
    const struct {
        const char* what;
        Faults faults;
        int code;  // of the reading
        std::vector<int> failed, codes;
        int requests;
    } rows[] = {
        {"nobody there", {.silent = 1}, 8, {0, 1, 2, 3}, {8, 8, 8, 8}, 3 + 1 + 1 + 1},
        // Three answers may still be owed after that, or after noise, which a probe clears up; after silence once anything came.
        {"one silent", {.only = 200, .silent = 1}, 0, {1}, {8}, 1 + 3 + 1 + 1 + 1 + 1},
        {"one damaged", {.only = 200, .damaged = 1}, 0, {1}, {3}, 1 + 3 + 1 + 1 + 1},
        {"one refused", {.only = 200, .refused = 1, .exception = modbus::kIllegalAddress}, 0, {1}, {4}, 4},
        {"one busy", {.only = 200, .refused = 1}, 0, {1}, {4}, 1 + 3 + 1 + 1},
        {"one behind a gateway", {.only = 200, .refused = 1, .exception = modbus::kNoTarget}, 0, {1}, {4}, 1 + 2 + 1 + 1}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        Line line(row.faults);
        Tally tally;
        EXPECT_EQ(line.Read(tally), row.code);
        EXPECT_EQ(line.watch.failed, row.failed);
        EXPECT_EQ(line.watch.codes, row.codes);
        EXPECT_EQ(line.Wire().Requests(), row.requests);
    }
}

// One that came while nobody listened was not measured; what a silent channel costs must not go by it.
TEST(ModbusLateAnswers, AnAnswerBetweenReadingsTellsNothingOfTime) {
    Line line({.lateOnce = 1, .lateBy = 20, .only = 200, .silent = 1});
    Tally tally;
    line.Read(tally);
    line.Wire().Idle(1000);
    line.Read(tally);
    EXPECT_LT(tally.longest, 20);
}

// In an attempt, and while a late answer is waited for.
TEST(ModbusLateAnswers, AnAbortEndsEveryWaitAtOnce) {
    for (const double after : {0.5, 1.7, 4.2, 6.5}) {
        Line line({.silent = 1});
        const modbus::TimePoint begun = line.Wire().Now(), end = begun + simulated::Seconds(after);
        line.Wire().AbortAt(end);
        Tally tally;
        EXPECT_EQ(line.Read(tally), 9);
        EXPECT_EQ(line.Wire().Now(), end);
        EXPECT_EQ(line.Read(tally), 8) << "works again on a line that was opened again";
    }
}
