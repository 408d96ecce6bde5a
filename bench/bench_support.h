// Shared by the benchmark programs: checking outside the timed loop, a fixed random sequence, time per item.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

// A benchmark whose work is wrong has no figure: it ends the run.
#define BENCH_REQUIRE(condition)                                                               \
    do {                                                                                       \
        if (!(condition)) {                                                                    \
            std::fprintf(stderr, "%s:%d: wrong result: %s\n", __FILE__, __LINE__, #condition); \
            std::abort();                                                                      \
        }                                                                                      \
    } while (false)

namespace bench {
// The same sequence on every machine (splitmix64).
class Random {
public:
    explicit Random(uint64_t seed) : m_state(seed) {}
    uint64_t Next() {
        uint64_t z = (m_state += 0x9e3779b97f4a7c15u);
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9u;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
        return z ^ (z >> 31);
    }
    uint64_t Below(uint64_t limit) { return Next() % limit; }
    double Unit() { return static_cast<double>(Next() >> 11) * 0x1p-53; }

private:
    uint64_t m_state;
};

// "per_item" in the output: seconds for one of the items that each turn of the loop handles.
inline void PerItem(benchmark::State& state, double items) {
    state.counters["per_item"] =
        benchmark::Counter(items, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
}  // namespace bench
