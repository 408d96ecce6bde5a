// Charts of recordings that are read where they are, beside those of the sessions that are made of them.
#include "host/session/recorded_series.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <cstdio>
#include <random>
#include <thread>

#include "comm/comm_exception.h"
#include "host/chart/chart_file.h"
#include "host/session/column_format.h"
#include "host/session/database_file.h"
#include "host/session/recording_files.h"
#include "host/session/session_file.h"
#include "host/session/time_stamp.h"
#include "record/recorder.h"
#include "tests/support/test_folder.h"
#include "time/locale_cache.h"

namespace {
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr __int64 kBegin = 1'780'000'000'000'000;

class Recorded : public testing::Test, protected TestFolder {
protected:
    const std::string recording = Path("r.rec"), session = Path("s.odb");
    CRecorder recorder;

    void SetUp() override { NlsToolsRegister(); }
    void Begin(size_t channels) {
        CPropertyDB facts;
        facts.SetValue("Session.sLogger", "Inlet");
        for (size_t i = 0; i < channels; ++i) {
            const std::string at = "Channels.c" + std::to_string(i);
            facts.SetValue((at + ".sName").c_str(), ("channel " + std::to_string(i)).c_str());
            facts.SetValue((at + ".sUnit").c_str(), i == 0 ? "" : "u");
        }
        ASSERT_EQ(recorder.Create(recording, facts), 0u);
    }
    // Waves with noise, values that are no numbers one by one and in long stretches, times at uneven distances.
    void Add(unsigned count) {
        std::mt19937 random(3);
        __int64 time = kBegin;
        std::vector<double> values(recorder.ChannelCount());
        for (unsigned n = 0; n < count; ++n) {
            time += 1 + random() % 2'000'000 + (n % 40'000 == 0 ? 10'000'000'000 : 0);
            for (size_t k = 0; k < values.size(); ++k) {
                values[k] = std::sin(n * 1e-4 * static_cast<double>(k + 1)) * 20 + static_cast<double>(random() % 1000) / 200;
                if (random() % 30 == 0) values[k] = kNan;
                if (k == 1 && n % 30'000 > 22'000) values[k] = kNan;
                if (k == 2) values[k] = std::floor(n / 5'000.0);
                if (random() % 5'000 == 0) values[k] = HUGE_VAL;
            }
            ASSERT_EQ(recorder.AddReading(time, values.data()), 0u);
        }
    }
};
}  // namespace

// A channel that is read with every thousandth reading has one line, which parts where it was asked for in vain; in every form.
TEST_F(Recorded, ALineGoesOnOverReadingsThatWereNotDue) {
    constexpr unsigned kCount = 60'000, kStep = 1000, kMissed = 30'000;
    CPropertyDB facts;
    facts.SetValue("Session.sLogger", "Inlet");
    for (const char* const at : {"Channels.a", "Channels.b", "Logger.Channels.a"})
        facts.SetValue((std::string(at) + ".sName").c_str(), at);
    facts.SetValue("Logger.Channels.b.rInterval", 1000.0);
    ASSERT_EQ(recorder.Create(recording, facts), 0u);
    for (unsigned n = 0; n < kCount; ++n) {
        const bool due = n % kStep == 0, missed = n == kMissed;
        const double values[] = {1.0 * n, due && !missed ? 0.5 * n : kNan};
        const BYTE flags[] = {RF_GOOD, static_cast<BYTE>(missed ? RF_MISSING : due ? RF_GOOD : RF_NOT_DUE)};
        ASSERT_EQ(recorder.AddReading(kBegin + n * 1'000'000ll, values, flags), 0u);
    }
    CRecordedGap gap;
    gap.number = 1, gap.from = gap.until = kBegin + kMissed * 1'000'000ll, gap.missed = 1, gap.channels = {1};
    recorder.AddGap(gap);
    recorder.Close();
    const std::string xml = Path("s.xml");
    FoldRecording(recording, session);
    FoldRecording(recording, xml);
    for (const std::string& path : {recording, session, xml}) {
        SCOPED_TRACE(path);
        const SessionFile file = OpenSession(path);
        EXPECT_EQ(file.session->LastValue(1), 0.5 * (kCount - kStep));
        const ChartModel model(*file.session, {});
        for (const auto& [from, to] :
             {std::pair(0u, kCount), std::pair(1'000u, 29'500u), std::pair(2'100u, 2'900u), std::pair(29'000u, 31'000u)}) {
            const PlotMapping mapping = {kBegin + from * 1e6, kBegin + to * 1e6, 0, 500, 0, kCount, 400, 0};
            const ReducedSeries line = model.Reduce({mapping, mapping})[1];
            EXPECT_GE(line.points.size(), 2u) << from;
            const auto parts =
                std::count_if(line.points.begin(), line.points.end(), [](const auto& point) { return std::isnan(point.x); });
            EXPECT_EQ(parts, from <= kMissed && kMissed <= to ? 1 : 0) << from;
        }
    }
}

TEST_F(Recorded, ThePictureIsTheSame) {
    Begin(3);
    Add(40'000);
    CRecordedGap gap;  // behind the last reading
    gap.number = 1, gap.missed = 60, gap.attempts = 3, gap.cause = CCommException::DeviceNotOpen;
    gap.from = recorder.LastTime() + 1'000'000, gap.until = gap.from + 90'000'000'000, gap.text = "it was unplugged";
    recorder.AddGap(gap);
    recorder.Close();
    SessionFile file = OpenSession(recording);
    ChartModel tagged(*file.session, {});
    tagged.AddTag(tagged.First() + 1'000'000, 1, "here");
    ASSERT_TRUE(tagged.Store(*file.db));
    SaveSession(recording, *file.session, *file.db);
    FoldRecording(recording, session);
    std::vector<std::string> pictures;
    for (const std::string& path : {recording, session}) {
        const SessionFile one = OpenSession(path);
        EXPECT_EQ(one.session->Channels()[2].key, "c2");
        for (const char* kind : {"a.png", "a.svg"}) {
            ChartModel model(*one.session, {});
            model.Load(*one.db);
            EXPECT_EQ(model.Tags(), tagged.Tags());
            EXPECT_EQ(model.Last(), gap.until);
            EXPECT_EQ(model.To(), gap.until);
            WriteChart(model, Path(kind), {900, 500});
            pictures.push_back(Read(kind));
        }
        EXPECT_TRUE(std::isnan(one.session->LastValue(1)) || one.session->LastValue(1) < 30);
    }
    EXPECT_EQ(pictures[0], pictures[2]);
    EXPECT_EQ(pictures[1], pictures[3]);
    EXPECT_NE(pictures[1].find(gap.text), std::string::npos);
    EXPECT_THROW(SaveSession(recording, *OpenSession(session).session, *file.db), Failure);  // no archive in its place
    std::unique_ptr<IRecordingFile> held;
    ASSERT_EQ(CRecordingFile::OpenToWrite(recording, 2000, held), 0u);
    EXPECT_THROW(SaveSession(recording, *file.session, *file.db), Failure);
}

// Whoever asks whether a recording is free is in nobody's way, and meets one who writes.
TEST_F(Recorded, ChecksKeepNobodyFromWriting) {
    const std::string path = Path("asked.rec");
    Write("asked.rec", "bytes");
    EXPECT_EQ(CRecordingFile::CheckFree(Path("none.rec")), DWORD{ERROR_FILE_NOT_FOUND});
    std::atomic<bool> over = false;
    std::thread asking([&] {
        while (!over) CRecordingFile::CheckFree(path);
    });
    for (int i = 0; i < 20; ++i) {
        std::unique_ptr<IRecordingFile> written;
        ASSERT_EQ(CRecordingFile::OpenToWrite(path, 2000, written), 0u);
        EXPECT_EQ(CRecordingFile::CheckFree(path), DWORD{ERROR_SHARING_VIOLATION});
    }
    over = true;
    asking.join();
    EXPECT_EQ(CRecordingFile::CheckFree(path), 0u);
}

// Any bytes changed: what is drawn ends, and what cannot be read is told.
TEST_F(Recorded, DamageLeavesTheRest) {
    Begin(2);
    Add(20'000);
    recorder.Close();
    const std::string whole = BytesOf(recording);
    std::mt19937 random(6);
    for (int round = 0; round < 12; ++round) {
        std::string bytes = whole;
        for (int i = 0; i < 3; ++i) bytes[200 + random() % (bytes.size() - 200)] ^= 0x40;
        if (round > 8) bytes.resize(bytes.size() / 2);
        if (round == 5) bytes.erase(bytes.size() / 2, 7);
        Write("r.rec", bytes);
        const FoldedRecording folded = FoldRecording(recording, session);
        EXPECT_GE(folded.readings, round > 8 || round == 5 ? 9'000u : 19'990u);
        EXPECT_GT(folded.damaged + folded.torn, 0u);
        // Every reading is there, or in a gap.
        unsigned __int64 missed = 0;
        RecordedNotes notes;
        const SessionFile made = OpenSession(session);
        notes.Load(*made.db, ChannelKeys(*made.db));
        for (const CRecordedGap& gap : notes.Gaps()) missed += gap.cause == GC_DAMAGED ? gap.missed : 0;
        if (round <= 8) {
            EXPECT_NEAR(static_cast<double>(folded.readings + missed), 20'000.0, round == 5 ? 500.0 : 3.0) << round;
        }
        const SessionFile file = OpenSession(recording);
        ChartModel model(*file.session, {});
        WriteChart(model, Path("a.svg"), {900, 500});
    }
    // Without its first block a recording has lost its names, and nothing else.
    std::string bytes = whole;
    bytes[60] ^= 1;
    Write("r.rec", bytes);
    const SessionFile file = OpenSession(recording);
    EXPECT_EQ(file.session->Count(), 20'000u);
    EXPECT_EQ(file.session->Channels()[1].name, "#2");
}

// The example of docs/formats.md.
TEST_F(Recorded, TheLayoutIsAsDescribed) {
    const unsigned char bytes[] = {0x4F, 0x52, 0x56, 0x49, 0x4B, 0x52, 0x45, 0x43, 0x01, 0,    0x01, 0, 0x07, 0,
                                   0,    0,    0xD3, 0x7E, 0xC5, 0x39, 0xD7, 0x4F, 0x02, 0,    0x11, 0, 0,    0,
                                   0x09, 0x28, 0xCB, 0xC7, 0xAE, 0x06, 0x3E, 0x0B, 0x01, 0,    0,    0, 0,    0,
                                   0,    0,    0,    0,    0,    0,    0,    0,    0xF8, 0x3F, 0};
    std::ofstream(recording, std::ios::binary).write(reinterpret_cast<const char*>(bytes), sizeof bytes);
    CRecordingReader reader;
    ASSERT_EQ(reader.Open(recording), 0u);
    ASSERT_EQ(reader.Next(), RI_READING);
    EXPECT_TRUE(reader.Time() == 1 && reader.Values()[0] == 1.5 && reader.Flags()[0] == RF_GOOD);
    EXPECT_EQ(reader.Next(), RI_END);
}

TEST(ColumnFormat, OneNotationForAColumn) {
    const struct {
        double low, high, value;
        const char* text;
    } cases[] = {{0, 100, 20.5, "20.500"},
                 {-3, 21.25, 1, "1.0000"},
                 {1000.001, 1000.0035, 1000.002, "1000.00200"},
                 {0, 0, 0, "0.00000"},
                 {0, 1e6, 12, "12"},
                 {1e20, 2e20, 1.5e20, "1.50000e+20"},
                 {1e-9, 5e-8, 1e-9, "1.00000e-09"},
                 {-1, 1, -0.0000001, "0.00000"},
                 {0, 100, kNan, ""},
                 {0, 100, -HUGE_VAL, "-inf"},
                 {5, 5, 5, "5.00000"},
                 {0, 123456789, 1, "1"}};
    for (const auto& one : cases)
        EXPECT_EQ(ColumnFormat(one.low, one.high).Text(one.value), one.text) << one.low << " " << one.high;
}

TEST(TimeStamp, BothWays) {
    const auto utc = [](__int64 time) {
        std::string text;
        AppendUtcStamp(text, time);
        return text;
    };
    EXPECT_EQ(utc(0), "1970-01-01T00:00:00.000000Z");
    EXPECT_EQ(utc(-1), "1969-12-31T23:59:59.999999Z");
    EXPECT_EQ(utc(951'782'400'123'456), "2000-02-29T00:00:00.123456Z");
    EXPECT_EQ(utc(std::numeric_limits<__int64>::min()), "1601-01-01T00:00:00.000000Z");
    EXPECT_EQ(utc(std::numeric_limits<__int64>::max()), "9999-12-31T23:59:59.999999Z");
    __int64 nearlyOne = 0;
    ASSERT_EQ(FromLocalStamp("2026-07-01 12:00:00.9996", nearlyOne), LocalStamp::Read);
    std::string rounded;
    AppendLocalStamp(rounded, nearlyOne, ",");
    EXPECT_EQ(rounded, "2026-07-01 12:00:01,000") << "not cut";
    // The zone's summer time ends on the first Sunday of November at two.
    const struct {
        const char* text;
        LocalStamp result;
    } cases[] = {{"2026-07-01 12:00:00,250", LocalStamp::Read},  {"2026-11-01 01:30:00.000", LocalStamp::Ambiguous},
                 {"2026-11-01 03:30:00.000", LocalStamp::Read},  {"2026-03-08 02:30:00.000", LocalStamp::Wrong},
                 {"2026-02-30 12:00:00.000", LocalStamp::Wrong}, {"2026-07-01T12:00:00.000", LocalStamp::Wrong},
                 {"2026-07-01 12:00:00.", LocalStamp::Wrong},    {"", LocalStamp::Wrong}};
    for (const auto& one : cases) {
        __int64 time = 0;
        ASSERT_EQ(FromLocalStamp(one.text, time), one.result) << one.text;
        std::string again;
        AppendLocalStamp(again, time, ".");
        EXPECT_EQ(one.result == LocalStamp::Read ? again.substr(0, 19) : "",
                  one.result == LocalStamp::Read ? std::string(one.text).substr(0, 19) : "");
    }
}
