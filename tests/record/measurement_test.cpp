// Measurements of a logger that does what a script says, by a clock that only moves when it is told to.
#include "host/measurement/measurement.h"

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>

#include "afx/exception.h"
#include "comm/comm_exception.h"
#include "host/measurement/recording_writer.h"
#include "record/recording_reader.h"
#include "tests/record/faulty_disk.h"
#include "tests/support/time_limit.h"

namespace {
constexpr __int64 kMinute = 60 * kSecond, kHour = 60 * kMinute;
constexpr __int64 kBegun = 1'795'000'000 * kSecond;

class Clock : public IMeasurementClock {
public:
    __int64 Steady() override { return now; }
    __int64 Calendar() override { return kBegun + now + set; }
    __int64 now = 0, set = 0;
};

// Reading n is what `read` makes of it; connection n may fail.
class ScriptedLogger : public ILogger {
public:
    COrvikConnection& Connection() override { throw std::logic_error("not asked for"); }
    CSerialOrvik& Port() override { return m_port; }
    void Connect(const char*, DWORD) override {
        connects.push_back(clock.now);
        if (connect) connect(static_cast<int>(connects.size()));
    }
    void ReadSample(CDoubleArray& values) override {
        reads.push_back(clock.now);
        values.SetAt(0, static_cast<double>(reads.size()));
        values.SetAt(1, 0.5);
        try {
            if (read) read(static_cast<int>(reads.size()), values);
        } catch (...) {
            for (INT_PTR i = 0; i < values.GetSize(); ++i) values.SetAt(i, std::nan(""));
            throw;
        }
    }
    void Disconnect() override {}
    void Select(const CByteArray& due) override { selected.push_back({clock.now, due.GetAt(0) != 0, due.GetAt(1) != 0}); }
    void Watch(IReadingWatch* who) override { watch = who; }
    bool Follow() override { return follows; }
    void Abort() override {}

    explicit ScriptedLogger(Clock& time) : clock(time) {}
    Clock& clock;
    std::function<void(int)> connect;
    std::function<void(int, CDoubleArray&)> read;
    std::vector<__int64> connects, reads;
    struct Selected {
        __int64 at;
        bool first, second;
        bool operator==(const Selected&) const = default;
    };
    std::vector<Selected> selected;
    IReadingWatch* watch = nullptr;
    bool follows = false;

private:
    CSerialOrvik m_port;
};

class Sink : public IMeasurementSink {
public:
    struct Row {
        __int64 time;
        std::vector<double> values;
        std::vector<BYTE> flags;
    };
    Begin OnBegin(__int64) override { return begin; }
    void OnReading(__int64 time, const std::vector<double>& values, const std::vector<BYTE>& flags) override {
        rows.push_back({time, values, flags});
    }
    void OnGap(const CRecordedGap& gap) override {
        if (gaps.empty() || gaps.back().number != gap.number) gaps.push_back({});
        gaps.back() = gap;
    }
    void OnEvent(const CRecordedEvent& event) override { events.push_back(event); }
    // Rows with values, and what they have in the first channel.
    std::vector<double> Values() const {
        std::vector<double> values;
        for (const Row& row : rows) {
            if (row.flags[0] == RF_GOOD || row.flags[1] == RF_GOOD) values.push_back(row.values[0]);
        }
        return values;
    }
    std::vector<WORD> Kinds() const {
        std::vector<WORD> kinds;
        for (const CRecordedEvent& event : events) kinds.push_back(event.kind);
        return kinds;
    }
    void Clear() { rows.clear(), gaps.clear(), events.clear(); }
    Begin begin;
    std::vector<Row> rows;
    std::vector<CRecordedGap> gaps;
    std::vector<CRecordedEvent> events;
};

class MeasurementTest : public testing::Test {
protected:
    Clock clock;
    ScriptedLogger logger{clock};
    Sink sink;
    MeasurementPlan plan;
    std::unique_ptr<Measurement> measurement;

    // From the beginning.
    void Run(__int64 until = 100 * kHour) {
        measurement.reset();
        clock = {}, sink.Clear();
        logger.reads.clear(), logger.connects.clear(), logger.selected.clear();
        measurement = std::make_unique<Measurement>(logger, 2, sink, clock, plan);
        while (!measurement->IsOver() && clock.now < until) {
            measurement->Run();
            clock.now = std::max(clock.now, std::min(measurement->NextDue(), until));
        }
    }
    [[noreturn]] static void Silent() { OrvikThrowCommException(CCommException::ReceiveTimeout, "silent"); }
};
}  // namespace

TEST_F(MeasurementTest, ReadsAtEvenTimes) {
    plan.count = 4;
    Run();
    EXPECT_EQ(logger.reads, (std::vector<__int64>{0, kSecond, 2 * kSecond, 3 * kSecond}));
    EXPECT_EQ(sink.Values(), (std::vector<double>{1, 2, 3, 4}));
    EXPECT_EQ(sink.rows[2].time, kBegun + 2 * kSecond);
    EXPECT_TRUE(sink.gaps.empty());
    EXPECT_EQ(sink.Kinds(), (std::vector<WORD>{RE_CONNECTED, RE_ENDED}));
    plan.count = 1;
    logger.read = [&](int, CDoubleArray&) {
        clock.now += 2 * kSecond;
        logger.watch->OnAnswer();
        clock.now += kSecond;
        logger.watch->OnAnswer();
    };
    Run();
    EXPECT_EQ(sink.rows[0].time, kBegun + 2 * kSecond);
}

// Whatever comes out of a plug-in is that reading's failure, with its text; the others are there.
TEST_F(MeasurementTest, SurvivesItsPlugin) {
    const struct {
        std::function<void(CDoubleArray&)> fault;
        const char* text;
        WORD cause;
    } rows[] = {{[](CDoubleArray&) { Silent(); }, "silent", 8},
                {[](CDoubleArray&) { throw std::invalid_argument("stod"); }, "stod", GC_PLUGIN},
                {[](CDoubleArray&) { throw 42; }, "plug-in", GC_PLUGIN},
                {[](CDoubleArray&) { throw std::string("text"); }, "plug-in", GC_PLUGIN},
                {[](CDoubleArray&) { AfxThrowInvalidArgException(); }, "", GC_PLUGIN},
                {[](CDoubleArray& values) { values.SetSize(1); }, "1 values for 2", GC_PLUGIN},
                {[](CDoubleArray& values) { values.SetSize(5); }, "5 values for 2", GC_PLUGIN},
                {[](CDoubleArray& values) { values.RemoveAll(); }, "0 values for 2", GC_PLUGIN}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        plan.count = 4;
        logger.read = [&](int, CDoubleArray& values) {
            if (clock.now >= kSecond && clock.now < 2 * kSecond) row.fault(values);
        };
        Run();
        ASSERT_EQ(sink.gaps.size(), 1u);
        EXPECT_NE(sink.gaps[0].text.find(row.text), std::string::npos) << sink.gaps[0].text;
        EXPECT_EQ(sink.gaps[0].cause, row.cause);
        EXPECT_EQ(sink.gaps[0].missed, 1u);
        EXPECT_EQ(sink.Values().size(), 3u);
        EXPECT_EQ(sink.rows.size(), 4u) << "one marks the hole";
        EXPECT_EQ(measurement->Missing(), 1u);
    }
}

TEST_F(MeasurementTest, KeepsTheOtherChannelsOfAReading) {
    plan.count = 3;
    logger.read = [&](int number, CDoubleArray& values) {
        if (number != 2) return;
        values.SetAt(1, std::nan(""));
        logger.watch->OnChannelFailed(1, 4, nullptr);
    };
    Run();
    EXPECT_EQ(sink.Values(), (std::vector<double>{1, 2, 3}));
    EXPECT_EQ(sink.rows[1].flags, (std::vector<BYTE>{RF_GOOD, RF_MISSING}));
    ASSERT_EQ(sink.gaps.size(), 1u);
    EXPECT_EQ(sink.gaps[0].channels, std::vector<WORD>{1});
    EXPECT_EQ(sink.gaps[0].cause, 4);
    EXPECT_FALSE(sink.gaps[0].text.empty());
    // A NaN that the logger means is a value.
    logger.read = [&](int, CDoubleArray& values) { values.SetAt(0, std::nan("")); };
    Run();
    EXPECT_EQ(sink.rows[0].flags, (std::vector<BYTE>{RF_NO_VALUE, RF_GOOD}));
    EXPECT_TRUE(sink.gaps.empty());
}

// The second channel is read with every third reading; its cell is empty between, whatever the logger gives, and nothing is
// missing.
TEST_F(MeasurementTest, ReadsAChannelAtAnIntervalOfItsOwn) {
    plan.count = 7;
    plan.steps = {1, 3};
    Run();
    EXPECT_EQ(logger.selected,
              (std::vector<ScriptedLogger::Selected>{
                  {kSecond, true, false}, {3 * kSecond, true, true}, {4 * kSecond, true, false}, {6 * kSecond, true, true}}));
    for (size_t i = 0; i < 7; ++i) {
        EXPECT_EQ(sink.rows[i].flags[1], i % 3 == 0 ? RF_GOOD : RF_NOT_DUE) << i;
        EXPECT_EQ(std::isnan(sink.rows[i].values[1]), i % 3 != 0) << i;
    }
    EXPECT_EQ(measurement->Made(), 7u);
    EXPECT_TRUE(measurement->Missing() == 0 && sink.gaps.empty());
}

TEST_F(MeasurementTest, AChannelThatWasDueAndMissedIsMissing) {
    plan.count = 10;
    plan.steps = {1, 3};
    // It fails alone, time after time: one gap, though the readings between did not ask for it.
    logger.read = [&](int number, CDoubleArray&) {
        if (number > 3) logger.watch->OnChannelFailed(1, 4, "no such register");
    };
    Run();
    EXPECT_EQ(sink.rows[3].flags, (std::vector<BYTE>{RF_GOOD, RF_MISSING}));
    EXPECT_EQ(sink.rows[4].flags, (std::vector<BYTE>{RF_GOOD, RF_NOT_DUE}));
    ASSERT_EQ(sink.gaps.size(), 1u);
    EXPECT_EQ(sink.gaps[0].missed, 3u);
    EXPECT_EQ(measurement->Missing(), 3u);
    // The whole logger was silent when it was due: it is asked for with the next reading that is made.
    logger.read = [&](int, CDoubleArray&) {
        if (clock.now >= 3 * kSecond && clock.now < 4 * kSecond) Silent();
    };
    Run();
    EXPECT_EQ(sink.rows[3].flags, (std::vector<BYTE>{RF_MISSING, RF_MISSING}));
    EXPECT_EQ(sink.rows[4].flags, (std::vector<BYTE>{RF_GOOD, RF_GOOD}));
    EXPECT_EQ(sink.rows[5].flags, (std::vector<BYTE>{RF_GOOD, RF_NOT_DUE}));
    EXPECT_EQ(measurement->Missing(), 1u);
}

// Readings for which nothing is due are none: neither made nor missed.
TEST_F(MeasurementTest, PassesOverReadingsForWhichNoChannelIsDue) {
    plan.count = 13;
    plan.steps = {4, 6};
    Run();
    EXPECT_EQ(logger.reads, (std::vector<__int64>{0, 4 * kSecond, 6 * kSecond, 8 * kSecond, 12 * kSecond}));
    logger.read = [&](int, CDoubleArray&) {
        if (clock.now >= 4 * kSecond && clock.now < 8 * kSecond) Silent();
    };
    Run();
    EXPECT_EQ(measurement->Missing(), 3u) << "those of 4, 6 and 8 s";
    EXPECT_EQ(sink.rows.back().flags, (std::vector<BYTE>{RF_GOOD, RF_GOOD}));
}

TEST_F(MeasurementTest, APatientOneWaitsForItsPort) {
    plan.count = 5;
    plan.patient = true;
    logger.connect = [&](int number) {
        if (number <= 2) OrvikThrowCommException(CCommException::DeviceNotOpen, "away");
    };
    Run();
    EXPECT_EQ(measurement->End(), Measurement::Ended::AsPlanned);
    EXPECT_EQ(sink.Values().size(), 3u);
    ASSERT_EQ(sink.gaps.size(), 1u);
    EXPECT_EQ(sink.gaps[0].missed, 2u);
}

// One that talks by itself is not let go for a line that is damaged, nor for its silence: the next one follows it.
TEST_F(MeasurementTest, FollowsALogger) {
    logger.follows = true;
    logger.read = [&](int number, CDoubleArray&) {
        clock.now += kSecond;
        if (number == 4 || number == 5) Silent();
        logger.watch->OnAnswer(static_cast<DWORD>(kSecond / 4));
        if (number == 2) OrvikThrowCommException(CCommException::BadProtocol, "checksum of \"a\"");
        if (number == 3) OrvikThrowCommException(CCommException::BadProtocol, "checksum of \"b\"");
    };
    plan.interval = 0;
    plan.count = 5;
    plan.follow = true;
    Run();
    EXPECT_EQ(logger.connects.size(), 1u);
    EXPECT_EQ(sink.Values(), (std::vector<double>{1, 6}));
    EXPECT_EQ(sink.rows[0].time, kBegun + kSecond * 3 / 4);
    ASSERT_EQ(sink.gaps.size(), 3u);
    EXPECT_EQ(sink.gaps[0].text, "checksum of \"a\"");
    EXPECT_EQ(sink.gaps[0].until, kBegun + 2 * kSecond - kSecond / 4);
    EXPECT_EQ(sink.gaps[2].missed, 1u);
    EXPECT_EQ(sink.gaps[2].until, kBegun + 5 * kSecond);
    EXPECT_EQ(sink.Kinds(), (std::vector<WORD>{RE_CONNECTED, RE_LOST, RE_CONNECTED, RE_ENDED}));
    EXPECT_EQ(measurement->Missing(), 3u);
    EXPECT_EQ(measurement->Gaps()->Counts().size(), 2u);  // what differs in quotes alone is one cause
}

// What is too late because something damaged came has that for its cause.
TEST_F(MeasurementTest, DamageIsTheCauseOfWhatIsLate) {
    plan.count = 4;
    logger.read = [&](int number, CDoubleArray&) {
        if (number != 2) return;
        clock.now += kSecond * 5 / 2;
        logger.watch->OnDamaged(CCommException::BadProtocol, "checksum");
    };
    Run();
    ASSERT_EQ(sink.gaps.size(), 1u);
    EXPECT_EQ(sink.gaps[0].text, "checksum");
    EXPECT_EQ(sink.gaps[0].cause, CCommException::BadProtocol);
}

TEST_F(MeasurementTest, WhatWasMissedIsLeftOut) {
    plan.count = 10;
    logger.read = [&](int number, CDoubleArray&) {
        if (number == 2) clock.now += 5 * kSecond + kSecond / 2;
    };
    Run();
    // The one of 6 s is late by half an interval and made at once; those of 2 to 5 s are not made up.
    EXPECT_EQ(logger.reads, (std::vector<__int64>{0, kSecond, 6'500'000, 7 * kSecond, 8 * kSecond, 9 * kSecond}));
    ASSERT_EQ(sink.gaps.size(), 1u);
    EXPECT_EQ(sink.gaps[0].cause, GC_STALLED);
    EXPECT_EQ(sink.gaps[0].missed, 4u);
    EXPECT_EQ(sink.gaps[0].from, kBegun + 2 * kSecond);
    EXPECT_EQ(sink.gaps[0].until, kBegun + 5 * kSecond);
    // Or, for who wants that, put off.
    plan.shifts = true;
    Run();
    EXPECT_EQ(logger.reads.size(), 10u);
    EXPECT_EQ(logger.reads[2] - logger.reads[1], 5'500'000);
    EXPECT_EQ(logger.reads[3] - logger.reads[2], kSecond);
    EXPECT_TRUE(sink.gaps.empty());
}

TEST_F(MeasurementTest, EndsWhenItsTimeIsOver) {
    const struct {
        __int64 duration, interval, takes;
        size_t readings;
        __int64 latest;
    } rows[] = {{5 * kSecond, kSecond, 0, 5, 5 * kSecond},
                {5 * kSecond, kSecond, 2'700'000, 2, 5'400'000},
                {5 * kSecond, 0, kSecond, 5, 5 * kSecond},
                {kSecond, 10 * kSecond, 0, 1, kSecond}};
    for (const auto& row : rows) {
        plan.duration = row.duration;
        plan.interval = row.interval;
        logger.read = [&](int, CDoubleArray&) { clock.now += row.takes; };
        Run();
        EXPECT_EQ(sink.Values().size(), row.readings);
        EXPECT_LE(clock.now, row.latest);
        EXPECT_EQ(measurement->End(), Measurement::Ended::AsPlanned);
    }
}

// However often it broke off before: what was away and is back is not a silent logger.
TEST_F(MeasurementTest, APortThatWasGoneIsAskedForEverySecond) {
    plan.duration = kMinute;
    plan.interval = kSecond;
    logger.read = [&](int number, CDoubleArray&) {
        if (number > 1 && clock.now < 40 * kSecond) OrvikThrowCommException(CCommException::HardwareError, nullptr);
    };
    Run();
    for (size_t i = 2; i < logger.connects.size(); ++i) EXPECT_EQ(logger.connects[i] - logger.connects[i - 1], kSecond) << i;
    plan.duration = 3 * kHour;
    plan.interval = 100'000;
    logger.read = [&](int number, CDoubleArray&) {
        if (number == 5) OrvikThrowCommException(CCommException::HardwareError, nullptr);
    };
    logger.connect = [&](int number) {
        if (number > 1 && clock.now < 2 * kHour) OrvikThrowCommException(CCommException::DeviceNotOpen, nullptr);
    };
    Run();
    ASSERT_GT(logger.reads.size(), 6u);
    EXPECT_LE(logger.reads[5] - 2 * kHour, kSecond);
    EXPECT_LE(sink.gaps.size(), 2u);
    EXPECT_EQ(sink.Values().size() + measurement->Missing(), 108'000u);
}

TEST_F(MeasurementTest, ASilentLoggerIsAskedLessAndLessOften) {
    plan.duration = 10 * kMinute;
    plan.interval = kSecond;
    logger.read = [&](int number, CDoubleArray&) {
        if (number > 1 && clock.now < 5 * kMinute) Silent();
    };
    Run();
    ASSERT_GT(logger.connects.size(), 8u);
    const __int64 pauses[] = {2, 4, 8, 16, 30, 30, 30};
    for (size_t i = 0; i < std::size(pauses); ++i)
        EXPECT_EQ(logger.connects[i + 2] - logger.connects[i + 1], pauses[i] * kSecond) << i;
    ASSERT_EQ(sink.gaps.size(), 1u);
    EXPECT_GT(sink.gaps[0].attempts, 8u);
    EXPECT_EQ(sink.Values().size() + sink.gaps[0].missed, 600u);
    EXPECT_EQ(sink.Kinds(), (std::vector<WORD>{RE_CONNECTED, RE_LOST, RE_CONNECTED, RE_ENDED}));
    EXPECT_EQ(measurement->Missing(), sink.gaps[0].missed);
}

// One silence of a logger that is read every ten minutes costs nothing.
TEST_F(MeasurementTest, AReadingIsTriedAgainWhileItsTimeLasts) {
    plan.count = 3;
    plan.interval = 10 * kMinute;
    logger.read = [&](int number, CDoubleArray&) {
        if (number == 2 || number == 3) Silent();
    };
    Run();
    EXPECT_EQ(sink.Values(), (std::vector<double>{1, 4, 5}));
    EXPECT_EQ(logger.reads[3], 10 * kMinute + 3 * kSecond);
    EXPECT_EQ(measurement->Missing(), 0u);
    ASSERT_EQ(sink.gaps.size(), 1u);
    EXPECT_TRUE(sink.gaps[0].missed == 0 && sink.gaps[0].attempts == 2);
}

TEST_F(MeasurementTest, GivesUpWhenTold) {
    plan.giveUp = kMinute;
    logger.read = [&](int number, CDoubleArray&) {
        if (number > 2) Silent();
    };
    Run();
    EXPECT_EQ(measurement->End(), Measurement::Ended::GivenUp);
    EXPECT_EQ(measurement->LastFailure(), "silent");
    EXPECT_LT(clock.now, 2 * kMinute);
    logger.connect = [](int) { OrvikThrowCommException(CCommException::AccessDenied, nullptr); };
    Run();
    EXPECT_EQ(measurement->End(), Measurement::Ended::NeverConnected);
    EXPECT_EQ(measurement->LastCode(), 5);
    EXPECT_TRUE(sink.events.empty());
}

TEST_F(MeasurementTest, AClockThatIsSetIsAnEvent) {
    for (const __int64 by : {-kHour, kHour, -2 * kSecond}) {
        plan.count = 40;
        logger.read = [&](int number, CDoubleArray&) {
            if (number == 10) clock.set = by;
            if (number == 30) clock.set = 0;
        };
        Run();
        ASSERT_EQ(sink.rows.size(), 40u);
        for (size_t i = 0; i < 40; ++i) EXPECT_EQ(sink.rows[i].time, kBegun + static_cast<__int64>(i) * kSecond) << i;
        EXPECT_EQ(sink.Kinds(), (std::vector<WORD>{RE_CONNECTED, RE_CLOCK_STEPPED, RE_CLOCK_AGREES, RE_ENDED}));
        EXPECT_EQ(sink.events[1].amount, by);
    }
    // A calendar that is led back gently is followed: a minute later both say the same.
    logger.read = [&](int, CDoubleArray&) { clock.set = 400'000; };
    Run();
    EXPECT_EQ(sink.rows.back().time, kBegun + 39 * kSecond + 400'000);
    for (size_t i = 1; i < sink.rows.size(); ++i) EXPECT_LE(sink.rows[i].time - sink.rows[i - 1].time, 1'100'000);
    // What was recorded before ends later than it is now.
    sink.begin.lastTime = kBegun + kHour;
    Run();
    EXPECT_GT(sink.rows.front().time, sink.begin.lastTime);
    EXPECT_EQ(sink.rows[1].time - sink.rows[0].time, kSecond);
    EXPECT_EQ(sink.events.front().kind, RE_CLOCK_STEPPED);
}

// What is allocated, where somebody counts it.
#if defined(__SANITIZE_ADDRESS__)
extern "C" size_t __sanitizer_get_current_allocated_bytes();
static size_t Allocated() { return __sanitizer_get_current_allocated_bytes(); }
#else
static size_t Allocated() { return 0; }
#endif

// A week with a reading every 0.6 s, a silence now and then, into a real file.
TEST_F(MeasurementTest, MemoryStaysWhatItWas) {
    constexpr __int64 kReadings = 1'000'000;
    LimitTest(240);
    const std::string path = testing::TempDir() + "orvik-week-" + std::to_string(GetCurrentThreadId()) + ".rec";
    class Told : public RecordingWriter::Listener {
        void OnWriting(const std::string&, DWORD error) override { EXPECT_EQ(error, 0u); }
        void OnDropped(CRecordedGap) override { ADD_FAILURE(); }
        void OnFile(const std::string&) override {}
    } told;
    CPropertyDB facts;
    for (const char* key : {"Channels.a.sName", "Channels.b.sName"}) facts.SetValue(key, "x");
    RecordingWriter::Plan record;
    record.path = path;
    RecordingWriter writer(facts, record, told);
    plan.count = kReadings;
    plan.interval = 604'800;
    logger.read = [&](int, CDoubleArray&) {
        if (clock.now % (10'000 * kSecond) >= 9'900 * kSecond) Silent();
    };
    Measurement week(logger, 2, writer, clock, plan);
    size_t early = 0, most = 0;
    while (!week.IsOver()) {
        week.Run();
        clock.now = std::max(clock.now, week.NextDue());
        // What the script remembers is not the measurement's.
        logger.reads = {0}, logger.connects = {0};
        if (week.Slot() % 1024 != 0) continue;
        const size_t now = Allocated();
        if (early == 0 && clock.now > kMinute) early = now;
        most = std::max(most, now);
    }
    EXPECT_EQ(writer.Close(), 0u);
    EXPECT_LT(most - std::min(most, early), 1u << 20);
    EXPECT_EQ(writer.Written() + week.Missing(), static_cast<unsigned __int64>(kReadings));
    EXPECT_GT(week.Missing(), 1000u);
    DeleteFileA(path.c_str());
}

namespace {
class Store : public IRecordingStore {
public:
    bool Exists(const std::string& path) override { return files.count(path) != 0; }
    DWORD Create(const std::string& path, CPropertyDB& facts, CRecorder& recorder) override {
        auto contents = std::make_shared<faulty::Contents>();
        contents->room = room;
        const DWORD error = recorder.Create(std::make_unique<faulty::File>(contents), facts);
        if (error == ERROR_SUCCESS) files[path] = contents;
        return error;
    }
    DWORD Resume(const std::string& path, CRecorder& recorder) override {
        return recorder.Resume(std::make_unique<faulty::File>(files[path]));
    }
    std::map<std::string, std::shared_ptr<faulty::Contents>> files;
    unsigned __int64 room = ~0ull;
};

class WriterTest : public testing::Test, public RecordingWriter::Listener {
protected:
    Store store;
    CPropertyDB facts;
    RecordingWriter::Plan plan;
    std::unique_ptr<RecordingWriter> writer;
    std::vector<DWORD> told;
    CRecordedGap dropped;

    WriterTest() {
        facts.SetValue("Channels.a.sName", "a");
        plan.path = "x.rec";
        plan.interval = kSecond;
    }
    void Begin(__int64 time) {
        writer = std::make_unique<RecordingWriter>(facts, plan, *this, store);
        begun = writer->OnBegin(time);
    }
    void Add(__int64 from, int count) {
        for (int i = 0; i < count; ++i) writer->OnReading(from + i * kSecond, {static_cast<double>(i)}, {RF_GOOD});
    }
    std::vector<__int64> Times(const std::string& path) {
        std::vector<__int64> times;
        CRecordingReader reader;
        EXPECT_EQ(reader.Open(std::make_unique<faulty::File>(store.files.at(path))), 0u) << path;
        for (ERecordItem item; (item = reader.Next()) != RI_END;) {
            if (item == RI_READING) times.push_back(reader.Time());
            if (item == RI_GAP) last = reader.Gap();
            EXPECT_NE(item, RI_DAMAGE);
        }
        return times;
    }
    void OnWriting(const std::string&, DWORD error) override { told.push_back(error); }
    void OnDropped(CRecordedGap gap) override { dropped = gap; }
    void OnFile(const std::string&) override {}
    IMeasurementSink::Begin begun;
    CRecordedGap last;
};
}  // namespace

TEST_F(WriterTest, WhatFindsNoRoomWaitsAndIsWrittenInOrder) {
    Begin(kBegun);
    Add(kBegun, 5);
    const auto disk = store.files["x.rec"];
    disk->room = disk->bytes.size() + 10;
    Add(kBegun + 10 * kSecond, 5);
    EXPECT_EQ(writer->Waiting(), 5u);
    EXPECT_EQ(Times("x.rec").size(), 5u);
    disk->room = ~0ull;
    writer->Tick();
    EXPECT_EQ(writer->Waiting(), 0u);
    Add(kBegun + 20 * kSecond, 1);
    EXPECT_EQ(writer->Close(), 0u);
    const auto times = Times("x.rec");
    EXPECT_EQ(times.size(), 11u);
    EXPECT_EQ(times[7], kBegun + 12 * kSecond);
    EXPECT_EQ(told, (std::vector<DWORD>{ERROR_DISK_FULL, 0}));
    EXPECT_EQ(writer->Written(), 11u);
}

TEST_F(WriterTest, WhatMemoryCannotHoldIsAGap) {
    Begin(kBegun);
    const auto disk = store.files["x.rec"];
    disk->room = disk->bytes.size();
    const int many = static_cast<int>(RecordingWriter::kMostWaiting / 200);
    Add(kBegun, many);
    const size_t waiting = writer->Waiting();
    EXPECT_LT(waiting, static_cast<size_t>(many));
    EXPECT_NE(writer->Close(), 0u);
    EXPECT_EQ(writer->Waiting(), waiting);
    const RecordingWriter::Loss loss = writer->Lost();
    EXPECT_EQ(loss.readings, static_cast<size_t>(many));
    EXPECT_EQ(loss.gap.missed, static_cast<DWORD>(many));
    EXPECT_EQ(loss.gap.from, kBegun);
    EXPECT_EQ(loss.gap.until, kBegun + (many - 1) * kSecond);
    store.files.clear();
    Begin(kBegun);
    const auto again = store.files["x.rec"];
    again->room = again->bytes.size();
    Add(kBegun, many);
    again->room = ~0ull;
    Add(kBegun + many * kSecond, 1);
    EXPECT_EQ(dropped.missed, static_cast<DWORD>(many) - waiting);
    EXPECT_EQ(dropped.cause, GC_DISK);
    EXPECT_EQ(dropped.from, kBegun + static_cast<__int64>(waiting) * kSecond);
}

// What is to be replaced stays until there is something in its place.
TEST_F(WriterTest, ALoggerThatGivesNothingCostsNothing) {
    Begin(kBegun);
    Add(kBegun, 3);
    EXPECT_EQ(writer->Close(), 0u);
    const auto earlier = store.files["x.rec"]->bytes;
    Begin(kBegun + 100 * kSecond);
    writer->OnReading(kBegun + 100 * kSecond, {std::nan(""), std::nan("")}, {RF_MISSING, RF_MISSING});
    writer->Tick();
    EXPECT_EQ(store.files["x.rec"]->bytes, earlier);
    EXPECT_TRUE(writer->Files().empty());
    // Nor does one whose first values find no room.
    store.room = 0;
    Add(kBegun + 101 * kSecond, 1);
    EXPECT_EQ(store.files["x.rec"]->bytes, earlier);
    EXPECT_EQ(writer->Waiting(), 2u);
    store.room = ~0ull;
    Add(kBegun + 102 * kSecond, 1);
    EXPECT_EQ(Times("x.rec"), (std::vector<__int64>{kBegun + 100 * kSecond, kBegun + 101 * kSecond, kBegun + 102 * kSecond}));
    EXPECT_EQ(writer->Files().size(), 1u);
}

TEST_F(WriterTest, GoesOnWithWhatIsThere) {
    Begin(kBegun);
    Add(kBegun, 3);
    writer.reset();  // as a killed program leaves it
    plan.append = true;
    Begin(kBegun + 100 * kSecond);
    EXPECT_GT(begun.lastTime, kBegun + 2 * kSecond);
    Add(kBegun + 100 * kSecond, 2);
    const auto times = Times("x.rec");
    ASSERT_EQ(times.size(), 6u) << "with the mark of the hole";
    EXPECT_EQ(times[5], kBegun + 101 * kSecond);
    EXPECT_EQ(last.cause, GC_NOT_RUNNING);
    EXPECT_EQ(last.missed, 97u);
    EXPECT_EQ(begun.nextGap, last.number + 1);
}

TEST_F(WriterTest, BeginsANewFileByTimeAndBySize) {
    plan.path = "folder.d/x.rec";
    plan.rotateEvery = 10 * kSecond;
    Begin(kBegun);
    Add(kBegun, 25);
    EXPECT_EQ(writer->Close(), 0u);
    std::vector<std::string> names;
    size_t count = 0;
    for (const auto& file : writer->Files()) {
        names.push_back(file.recording);
        count += Times(file.recording).size();
    }
    EXPECT_EQ(names, (std::vector<std::string>{"folder.d/x-20261118T110640Z.rec", "folder.d/x-20261118T110650Z.rec",
                                               "folder.d/x-20261118T110700Z.rec"}));
    EXPECT_EQ(count, 25u);
    plan.rotateEvery = 0;
    plan.rotateSize = 2000;
    plan.path = "y.odb.rec";
    plan.target = "y.odb";
    Begin(kBegun);
    Add(kBegun, 100);
    EXPECT_GE(writer->Files().size(), 2u);
    EXPECT_EQ(writer->Files()[0].recording, "y-20261118T110640Z.odb.rec");
    EXPECT_EQ(writer->Files()[0].target, "y-20261118T110640Z.odb");
}
