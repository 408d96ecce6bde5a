// One axis without drawing: the division search, and the choice and writing of its labels, beside the least that a hand-written
// search for a 1-2-5 step needs.
#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "bench/bench_support.h"
#include "chart/axis_layout.h"
#include "chart/unit_axis.h"
#include "time/locale_cache.h"
#include "time/number_text.h"

using namespace orvik;

namespace {

struct Range {
    double low, high;
};
constexpr std::array<Range, 10> kRanges = {{{0, 100},
                                            {0.001, 12345},
                                            {-5, 5},
                                            {1e-9, 3e-9},
                                            {1.7e9, 1.7e9 + 86400},
                                            {-273.15, 1200},
                                            {4, 20},
                                            {0, 1},
                                            {98.6, 98.9},
                                            {-1e6, 1e9}}};
constexpr LONG kPixels = 1000;
constexpr LONG kCharacter = 7;  // a font's width

// The requests of axes that have taken these ranges.
struct Axes {
    Axes() {
        NlsToolsRegister();
        for (const Range& range : kRanges) {
            CUnitAxis axis(1);
            axis.SetPosition(0, 0, kPixels);
            axis.SetRange(range.low, range.high);
            formats.push_back(axis.GetFormat());
            requests.push_back({axis.GetMapping(), kCharacter * axis.GetFormat().GetLength(), {}, NlsGetDecimalSep()});
        }
        for (size_t i = 0; i < requests.size(); ++i) requests[i].format = formats[i].GetView();
    }
    std::vector<CString> formats;
    std::vector<AxisDivisionRequest> requests;
};

void Divide(benchmark::State& state) {
    const Axes axes;
    for (const AxisDivisionRequest& request : axes.requests) BENCH_REQUIRE(DivideAxis(request).count >= 1);
    for (auto _ : state)
        for (const AxisDivisionRequest& request : axes.requests) benchmark::DoNotOptimize(DivideAxis(request));
    bench::PerItem(state, kRanges.size());
}
BENCHMARK(Divide)->Name("axis/divide");

void DivideAndLayOut(benchmark::State& state) {
    const Axes axes;
    AxisLayout layout;
    size_t labels = 0;
    const auto run = [&] {
        labels = 0;
        for (size_t i = 0; i < axes.requests.size(); ++i) {
            const char* const format = axes.formats[i];
            LayOutAxis(
                layout, axes.requests[i], DivideAxis(axes.requests[i]), 5,
                [format](double value, CString& text) { _NlsSetReal(text, value, format); },
                [](const CString& text) { return kCharacter * text.GetLength(); });
            labels += layout.labels.size();
        }
    };
    run();
    BENCH_REQUIRE(labels >= 5 * kRanges.size());
    for (auto _ : state) {
        run();
        benchmark::ClobberMemory();
    }
    bench::PerItem(state, kRanges.size());
    state.counters["labels"] = static_cast<double>(labels) / static_cast<double>(kRanges.size());
}
BENCHMARK(DivideAndLayOut)->Name("axis/divide_and_lay_out");

// The smallest 1-2-5 step with at most so many intervals, and its large and small ticks. No labels, no snapping, no limits.
struct HandWritten {
    std::vector<double> large, small;
    double Divide(const Range& range, int most) {
        const double raw = (range.high - range.low) / most, decade = std::pow(10.0, std::floor(std::log10(raw) - 1e-12));
        const double mantissa = raw / decade;
        const double step = decade * (mantissa <= 1.0000001 ? 1 : mantissa <= 2.0000001 ? 2 : mantissa <= 5.0000001 ? 5 : 10);
        const double first = std::ceil(range.low / step - 1e-9), last = std::floor(range.high / step + 1e-9);
        large.clear();
        small.clear();
        for (double i = first - 1; i <= last; ++i) {
            if (i >= first) large.push_back(i == 0 ? 0.0 : i * step);
            for (int part = 1; part < 5; ++part) {
                const double value = (i + part / 5.0) * step;
                if (value >= range.low && value <= range.high) small.push_back(value);
            }
        }
        return step;
    }
};

void DivideByHand(benchmark::State& state) {
    HandWritten divider;
    for (const Range& range : kRanges) BENCH_REQUIRE(divider.Divide(range, 8) > 0 && divider.large.size() >= 2);
    for (auto _ : state)
        for (const Range& range : kRanges) benchmark::DoNotOptimize(divider.Divide(range, 8));
    bench::PerItem(state, kRanges.size());
}
BENCHMARK(DivideByHand)->Name("axis/divide/hand_written");

}  // namespace

BENCHMARK_MAIN();
