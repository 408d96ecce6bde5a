// Work that grows with what a session holds, each at two sizes: what a piece costs must not depend on how many there are.
#include <string>
#include <utility>
#include <vector>

#include "bench/bench_support.h"
#include "chart/floating_tag.h"
#include "comm/task.h"
#include "propdb/property_db.h"

namespace {
constexpr RECT kPlot = {0, 0, 1600, 900};

// ---- comments on a chart

void AddComments(CFloatingTagManager& comments, int64_t count) {
    bench::Random random(2);
    for (int64_t i = 0; i < count; ++i) {
        const LONG x = static_cast<LONG>(random.Below(1500)), y = static_cast<LONG>(random.Below(880));
        comments.CreateTag(kPlot, {x, y, x + 80, y + 16})->SetText("A comment on the plot");
    }
}

void LoadComments(benchmark::State& state) {
    CFloatingTagManager comments;
    AddComments(comments, state.range(0));
    CPropertyDB db;
    comments.OnDBSet(&db);
    for (auto _ : state) comments.OnDBGet(&db);
    BENCH_REQUIRE(comments.GetTagCount() == state.range(0));
    bench::PerItem(state, static_cast<double>(state.range(0)));
}
BENCHMARK(LoadComments)->Name("comments/load/ours")->Arg(1'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

void RemoveComments(benchmark::State& state) {
    CFloatingTagManager comments;
    for (auto _ : state) {
        state.PauseTiming();
        AddComments(comments, state.range(0));
        state.ResumeTiming();
        while (comments.GetTagCount() > 0) comments.RemoveTag(comments.GetTag(comments.GetTagCount() / 2));
    }
    bench::PerItem(state, static_cast<double>(state.range(0)));
}
BENCHMARK(RemoveComments)->Name("comments/remove_each/ours")->Arg(1'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

// ---- scheduled tasks

struct Task : CVXTTask {
    int runs = 0;
    BOOL OnShedule() override {
        ++runs;
        return FALSE;
    }
};

void RunTasks(benchmark::State& state) {
    const auto count = static_cast<size_t>(state.range(0));
    for (auto _ : state) {
        std::vector<Task> tasks(count);
        for (Task& task : tasks) task.Start(DWORD{0});
        for (size_t i = 0; i <= count; ++i) OrvikShedule();
        for (const Task& task : tasks) BENCH_REQUIRE(task.runs == 1);
    }
    bench::PerItem(state, static_cast<double>(count));
}
BENCHMARK(RunTasks)->Name("tasks/run_each/ours")->Arg(1'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

// ---- keys of a database in random order

std::string KeyOf(uint64_t i) { return "Units" + std::to_string(i / 1000) + '.' + std::to_string(i / 100) + ".rOrg" + std::to_string(i); }

void GetKeys(benchmark::State& state) {
    const auto count = static_cast<uint64_t>(state.range(0));
    bench::Random random(3);
    CPropertyDB db;
    std::vector<std::string> keys;
    for (uint64_t i = 0; i < count; ++i) {
        keys.push_back(KeyOf(i));
        db.SetValue(keys.back().c_str(), static_cast<double>(i));
    }
    for (uint64_t i = count; i > 1; --i) std::swap(keys[i - 1], keys[random.Below(i)]);
    const auto sum = [&] {
        double all = 0, value = 0;
        for (const std::string& key : keys) all += db.GetValue(key.c_str(), value) ? value : 0;
        return all;
    };
    BENCH_REQUIRE(sum() == static_cast<double>(count) * static_cast<double>(count - 1) / 2);
    for (auto _ : state) benchmark::DoNotOptimize(sum());
    bench::PerItem(state, static_cast<double>(count));
}
BENCHMARK(GetKeys)->Name("keys/get_random/ours")->Arg(1'000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
