// Recordings beside a database: a reading that must survive the program is added, and a long recording is opened, shown and read.
#include <sqlite3.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "bench/bench_support.h"
#include "host/session/reading_source.h"
#include "host/session/reading_writer.h"
#include "record/recorder.h"
#include "time/locale_cache.h"

namespace {
namespace fs = std::filesystem;
constexpr int kChannels = 8, kLongChannels = 4, kLong = 10'000'000;

std::string Place(const char* name) { return (fs::temp_directory_path() / name).string(); }

CPropertyDB& Facts(int channels) {
    static CPropertyDB facts;
    facts.RemoveAll();
    facts.SetValue("Session.sLogger", "Bench");
    for (int i = 0; i < channels; ++i) {
        const std::string at = "Channels.c" + std::to_string(i);
        facts.SetValue((at + ".sName").c_str(), ("Channel " + std::to_string(i)).c_str());
        facts.SetValue((at + ".sUnit").c_str(), "u");
    }
    return facts;
}

void AppendOurs(benchmark::State& state) {
    const std::string path = Place("orvik_bench.rec");
    fs::remove(path);
    CRecorder recorder;
    BENCH_REQUIRE(recorder.Create(path, Facts(kChannels)) == 0);
    __int64 time = 0;
    double values[kChannels] = {1, 2, 3, 4, 5, 6, 7, 8};
    for (auto _ : state) {
        values[0] += 0.5;
        const DWORD error = recorder.AddReading(++time, values);
        if (error != 0) state.SkipWithError("not added");
    }
    BENCH_REQUIRE(recorder.ReadingCount() == static_cast<unsigned __int64>(time));
    BENCH_REQUIRE(recorder.Close() == 0);
    fs::remove(path);
}
BENCHMARK(AppendOurs);

// A table with a row a reading; what survives the program's end, and is forced to the disk now and then, as a recording is.
void AppendSqlite(benchmark::State& state) {
    const std::string path = Place("orvik_bench.sqlite");
    for (const char* end : {"", "-wal", "-shm"}) fs::remove(path + end);
    sqlite3* db = nullptr;
    BENCH_REQUIRE(sqlite3_open(path.c_str(), &db) == SQLITE_OK);
    std::string columns, places;
    for (int i = 0; i < kChannels; ++i) columns += ", c" + std::to_string(i) + " REAL", places += ", ?";
    const std::string setUp =
        "PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL; CREATE TABLE r (t INTEGER PRIMARY KEY" + columns + ")";
    BENCH_REQUIRE(sqlite3_exec(db, setUp.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK);
    sqlite3_stmt* insert = nullptr;
    BENCH_REQUIRE(sqlite3_prepare_v2(db, ("INSERT INTO r VALUES (?" + places + ")").c_str(), -1, &insert, nullptr) == SQLITE_OK);
    sqlite3_int64 time = 0;
    double first = 1;
    for (auto _ : state) {
        sqlite3_bind_int64(insert, 1, ++time);
        sqlite3_bind_double(insert, 2, first += 0.5);
        for (int i = 1; i < kChannels; ++i) sqlite3_bind_double(insert, i + 2, i + 1.0);
        if (sqlite3_step(insert) != SQLITE_DONE) state.SkipWithError("not added");
        sqlite3_reset(insert);
    }
    sqlite3_finalize(insert);
    sqlite3_close(db);
    for (const char* end : {"", "-wal", "-shm"}) fs::remove(path + end);
}
BENCHMARK(AppendSqlite);

// 10,000,000 readings of 4 channels, made once for this run.
class LongRecording {
public:
    LongRecording() {
        NlsToolsRegister();
        fs::remove(path);
        CRecorder recorder;
        BENCH_REQUIRE(recorder.Create(path, Facts(kLongChannels)) == 0);
        bench::Random random(5);
        double values[kLongChannels];
        for (int n = 0; n < kLong; ++n) {
            for (int k = 0; k < kLongChannels; ++k) values[k] = std::sin(n * 1e-6 * (k + 1)) * 20 + random.Unit();
            if (recorder.AddReading(1'780'000'000'000'000 + n * 1'000'000LL, values) != 0) std::abort();
        }
        BENCH_REQUIRE(recorder.Close() == 0);
    }
    ~LongRecording() { fs::remove(path); }
    const std::string path = Place("orvik_bench_long.rec");
};
const std::string& LongPath() {
    static const LongRecording recording;
    return recording.path;
}

void OpenLong(benchmark::State& state) {
    const std::string& path = LongPath();
    for (auto _ : state) {
        const RecordedSeries series(path);
        BENCH_REQUIRE(series.Count() == kLong);
    }
}
BENCHMARK(OpenLong)->Unit(benchmark::kMillisecond);

// Opened, and the heading and the first reading written.
void FirstLineOfLong(benchmark::State& state) {
    const std::string& path = LongPath();
    for (auto _ : state) {
        auto series = std::make_unique<RecordedSeries>(path);
        CPropertyDB& facts = series->Facts();
        const Session session(facts, std::move(series));
        const auto writer = MakeTableWriter(session, ChannelsNamed(session, {}), {});
        std::string text;
        writer->Heading(text);
        const auto readings = ReadingsOf(session);
        BENCH_REQUIRE(readings->Next());
        writer->Row(text, readings->Time(), readings->Values());
        BENCH_REQUIRE(text.size() > 100);
    }
}
BENCHMARK(FirstLineOfLong)->Unit(benchmark::kMillisecond);

void ReadLong(benchmark::State& state) {
    const std::string& path = LongPath();
    for (auto _ : state) {
        CRecordingReader reader;
        BENCH_REQUIRE(reader.Open(path) == 0);
        int readings = 0;
        for (ERecordItem item; (item = reader.Next()) != RI_END;) readings += item == RI_READING;
        BENCH_REQUIRE(readings == kLong);
    }
    bench::PerItem(state, kLong);
}
BENCHMARK(ReadLong)->Unit(benchmark::kMillisecond)->Iterations(1);

void WriteLongAsCsv(benchmark::State& state) {
    const RecordedSeries probe(LongPath());
    for (auto _ : state) {
        auto series = std::make_unique<RecordedSeries>(LongPath());
        CPropertyDB& facts = series->Facts();
        const Session session(facts, std::move(series));
        const auto writer = MakeCsvWriter(session, ChannelsNamed(session, {}), {});
        const auto readings = ReadingsOf(session);
        std::string text;
        while (readings->Next()) {
            writer->Row(text, readings->Time(), readings->Values());
            if (text.size() > 1 << 18) text.clear();
        }
    }
    bench::PerItem(state, double{kLong} * kLongChannels);
}
BENCHMARK(WriteLongAsCsv)->Unit(benchmark::kMillisecond)->Iterations(1);

// The lines of a chart of 1600 pixels, of all readings and of a tenth.
void ReduceLong(benchmark::State& state) {
    const std::string& path = LongPath();
    const double length = kLong * 1e6 / static_cast<double>(state.range(0)), begin = 1.78e15 + (kLong * 1e6 - length) / 2;
    std::vector<PlotMapping> mappings(kLongChannels, {begin, begin + length, 100, 1500, -30, 30, 800, 50});
    for (auto _ : state) {
        RecordedSeries series(path);
        BENCH_REQUIRE(series.Reduce({0, 1, 2, 3}, mappings)[3].points.size() > 2'000);
    }
}
BENCHMARK(ReduceLong)->Arg(1)->Arg(10)->Unit(benchmark::kMillisecond);
}  // namespace

BENCHMARK_MAIN();
