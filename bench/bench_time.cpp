// Local calendar fields of times, and times of local fields: ours beside Abseil's and the C library's.
// Workload: a million stamps, one a minute from 2015 with jitter ("increasing"), or anywhere from 1972 to 2034 ("random").
#include <absl/time/time.h>

#include <cstring>
#include <ctime>
#include <vector>

#include "bench/bench_support.h"
#include "time/time_point.h"

namespace {

const std::vector<CVXTTime>& Stamps(bool random) {
    static const auto make = [](bool anywhere) {
        bench::Random sequence(3);
        std::vector<CVXTTime> stamps(1'000'000);
        const __int64 first = CVXTTime::GetMinTime(), range = CVXTTime::GetMaxTime() - first;
        for (size_t i = 0; i < stamps.size(); ++i)
            stamps[i].SetBinaryTime(anywhere ? first + static_cast<__int64>(sequence.Below(static_cast<uint64_t>(range)))
                                             : 1'420'066'800'000'000 + static_cast<__int64>(i) * 60'000'000 +
                                                   static_cast<__int64>(sequence.Below(1'000'000)));
        return stamps;
    };
    static const std::vector<CVXTTime> increasing = make(false), scattered = make(true);
    return random ? scattered : increasing;
}

SYSTEMTIME FromLibrary(const CVXTTime& time) {
    const time_t seconds = static_cast<time_t>(time.GetAnsiTime());
    tm fields{};
    localtime_r(&seconds, &fields);
    const auto word = [](int value) { return static_cast<WORD>(value); };
    return {word(fields.tm_year + 1900), word(fields.tm_mon + 1),
            word(fields.tm_wday),        word(fields.tm_mday),
            word(fields.tm_hour),        word(fields.tm_min),
            word(fields.tm_sec),         static_cast<WORD>(time.GetBinaryTime() % 1'000'000 / 1'000)};
}

void Check(const std::vector<CVXTTime>& stamps) {
    for (size_t i = 0; i < stamps.size(); i += 16) {
        SYSTEMTIME ours;
        stamps[i].GetSystemTime(&ours);
        const SYSTEMTIME library = FromLibrary(stamps[i]);
        BENCH_REQUIRE(std::memcmp(&ours, &library, sizeof ours) == 0);
    }
}

void ToLocal(benchmark::State& state, bool random) {
    const auto& stamps = Stamps(random);
    Check(stamps);
    for (auto _ : state)
        for (const CVXTTime& stamp : stamps) {
            SYSTEMTIME fields;
            stamp.GetSystemTime(&fields);
            benchmark::DoNotOptimize(fields);
        }
    bench::PerItem(state, static_cast<double>(stamps.size()));
}

void ToLocalLibrary(benchmark::State& state, bool random) {
    const auto& stamps = Stamps(random);
    for (auto _ : state)
        for (const CVXTTime& stamp : stamps) {
            SYSTEMTIME fields = FromLibrary(stamp);
            benchmark::DoNotOptimize(fields);
        }
    bench::PerItem(state, static_cast<double>(stamps.size()));
}

void ToLocalAbseil(benchmark::State& state, bool random) {
    const auto& stamps = Stamps(random);
    const absl::TimeZone zone = absl::LocalTimeZone();
    for (size_t i = 0; i < stamps.size(); i += 16) {
        const absl::CivilSecond civil = zone.At(absl::FromUnixMicros(stamps[i].GetBinaryTime())).cs;
        const SYSTEMTIME library = FromLibrary(stamps[i]);
        BENCH_REQUIRE(civil == absl::CivilSecond(library.wYear, library.wMonth, library.wDay, library.wHour, library.wMinute,
                                                 library.wSecond));
    }
    for (auto _ : state)
        for (const CVXTTime& stamp : stamps) {
            auto fields = zone.At(absl::FromUnixMicros(stamp.GetBinaryTime()));
            benchmark::DoNotOptimize(fields);
        }
    bench::PerItem(state, static_cast<double>(stamps.size()));
}

const std::vector<tm>& LocalStamps(bool random) {
    static const auto make = [](bool anywhere) {
        std::vector<tm> fields;
        for (const CVXTTime& stamp : Stamps(anywhere)) {
            const time_t seconds = static_cast<time_t>(stamp.GetAnsiTime());
            localtime_r(&seconds, &fields.emplace_back());
            fields.back().tm_isdst = -1;
        }
        return fields;
    };
    static const std::vector<tm> increasing = make(false), scattered = make(true);
    return random ? scattered : increasing;
}

template <class Convert>
void FromLocal(benchmark::State& state, bool random, Convert convert) {
    const auto& stamps = LocalStamps(random);
    for (size_t i = 0; i < stamps.size(); i += 16) {  // an hour that comes twice may be either
        constexpr __int64 kHour = 3600;
        tm fields = stamps[i];
        const auto apart = static_cast<__int64>(convert(fields)) - Stamps(random)[i].GetAnsiTime();
        BENCH_REQUIRE(apart == 0 || apart == kHour || apart == -kHour);
    }
    for (auto _ : state)
        for (tm fields : stamps) {
            auto seconds = convert(fields);
            benchmark::DoNotOptimize(seconds);
        }
    bench::PerItem(state, static_cast<double>(stamps.size()));
}
void FromLocalOurs(benchmark::State& state, bool random) {
    FromLocal(state, random, [](const tm& f) {
        return CVXTTime(f.tm_year + 1900, f.tm_mon + 1, f.tm_mday, f.tm_hour, f.tm_min, f.tm_sec, -1).GetAnsiTime();
    });
}
void FromLocalLibrary(benchmark::State& state, bool random) {
    FromLocal(state, random, [](tm& fields) { return mktime(&fields); });
}

void FromLocalAbseil(benchmark::State& state, bool random) {
    const absl::TimeZone zone = absl::LocalTimeZone();
    FromLocal(state, random, [&](const tm& f) {
        const absl::CivilSecond civil(f.tm_year + 1900, f.tm_mon + 1, f.tm_mday, f.tm_hour, f.tm_min, f.tm_sec);
        return absl::ToUnixSeconds(zone.At(civil).pre);
    });
}

void Sum(benchmark::State& state) {
    const auto& stamps = Stamps(false);
    const CVXTTimeSpan step(90, TST_SECONDS);
    for (auto _ : state)
        for (const CVXTTime& stamp : stamps) {
            CVXTTime moved = stamp + step;
            benchmark::DoNotOptimize(moved);
        }
    bench::PerItem(state, static_cast<double>(stamps.size()));
}

BENCHMARK_CAPTURE(ToLocal, increasing, false)->Name("time/to_local/ours/increasing")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ToLocalLibrary, increasing, false)->Name("time/to_local/localtime_r/increasing")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ToLocal, random, true)->Name("time/to_local/ours/random")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ToLocalLibrary, random, true)->Name("time/to_local/localtime_r/random")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ToLocalAbseil, increasing, false)->Name("time/to_local/abseil/increasing")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ToLocalAbseil, random, true)->Name("time/to_local/abseil/random")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(FromLocalOurs, increasing, false)->Name("time/from_local/ours/increasing")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(FromLocalLibrary, increasing, false)->Name("time/from_local/mktime/increasing")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(FromLocalOurs, random, true)->Name("time/from_local/ours/random")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(FromLocalLibrary, random, true)->Name("time/from_local/mktime/random")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(FromLocalAbseil, increasing, false)->Name("time/from_local/abseil/increasing")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(FromLocalAbseil, random, true)->Name("time/from_local/abseil/random")->Unit(benchmark::kMillisecond);
BENCHMARK(Sum)->Name("time/add_span/ours")->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
