// One axis without drawing: the division search with all of its ticks, and the choice and writing of its labels; beside a chart
// toolkit's ticker and the least that a hand-written search for a 1-2-5 step needs.
#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "bench/bench_support.h"
#include "chart/axis_division.h"
#include "chart/axis_layout.h"
#include "chart/unit_axis.h"
#include "time/locale_cache.h"
#include "time/number_text.h"
#ifdef ORVIK_BENCH_QCUSTOMPLOT
#include <qcustomplot.h>
#endif

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
BENCHMARK(DivideAndLayOut)->Name("axis/divide_and_lay_out/ours");

// ---- the division and the values of its ticks, for at most so many large ones; five small divisions in a large one

struct Ticks {
    std::vector<double> large, small;
    void Clear() { large.clear(), small.clear(); }
};

struct Ours {
    Ticks ticks;
    double Divide(const Range& range, int most) {
        // A large division is at least one and a half labels long; decimals enough for each step.
        const AxisDivision division =
            DivideAxis({{range.low, range.high, 0, kPixels}, 2 * kPixels / (3 * most) + 1, "#.############", '.'});
        const auto within = [&](double value) { return value >= range.low && value <= range.high; };
        ticks.Clear();
        for (LONG i = 0; i <= division.count; ++i) {  // the outermost may lie outside
            const double value = division.FromFirst(i);
            if (within(value)) ticks.large.push_back(value);
            for (int part = 1; part < 5 && i < division.count; ++part) {
                const double between = value + division.step * part / 5;
                if (within(between)) ticks.small.push_back(between);
            }
        }
        return division.step;
    }
};

// The smallest 1-2-5 step with at most so many intervals. No labels, no snapping, no limits.
struct HandWritten {
    Ticks ticks;
    double Divide(const Range& range, int most) {
        const double raw = (range.high - range.low) / most, decade = std::pow(10.0, std::floor(std::log10(raw) - 1e-12));
        const double mantissa = raw / decade;
        const double step = decade * (mantissa <= 1.0000001 ? 1 : mantissa <= 2.0000001 ? 2 : mantissa <= 5.0000001 ? 5 : 10);
        const double first = std::ceil(range.low / step - 1e-9), last = std::floor(range.high / step + 1e-9);
        ticks.Clear();
        for (double i = first - 1; i <= last; ++i) {
            if (i >= first) ticks.large.push_back(i == 0 ? 0.0 : i * step);
            for (int part = 1; part < 5; ++part) {
                const double value = (i + part / 5.0) * step;
                if (value >= range.low && value <= range.high) ticks.small.push_back(value);
            }
        }
        return step;
    }
};

#ifdef ORVIK_BENCH_QCUSTOMPLOT
// It takes a wished number of ticks, which it exceeds by up to a half.
struct QCustomPlotTicker {
    struct Both {
        QVector<double> large, small;
    } ticks;
    QCPAxisTicker ticker;
    double Divide(const Range& range, int most) {
        ticker.setTickCount(most * 2 / 3);
        ticker.generate(QCPRange(range.low, range.high), QLocale::c(), 'g', 6, ticks.large, &ticks.small, nullptr);
        return ticks.large.size() > 1 ? ticks.large[1] - ticks.large[0] : 0;
    }
};
#endif

template <class Divider>
void Divide(benchmark::State& state) {
    const int most = static_cast<int>(state.range(0));
    Divider divider;
    for (const Range& range : kRanges) BENCH_REQUIRE(divider.Divide(range, most) > 0 && divider.ticks.large.size() >= 2);
    for (auto _ : state)
        for (const Range& range : kRanges) benchmark::DoNotOptimize(divider.Divide(range, most));
    bench::PerItem(state, kRanges.size());
}
BENCHMARK(Divide<Ours>)->Name("axis/divide/ours")->Arg(8)->Arg(40);
BENCHMARK(Divide<HandWritten>)->Name("axis/divide/by_hand")->Arg(8)->Arg(40);
#ifdef ORVIK_BENCH_QCUSTOMPLOT
BENCHMARK(Divide<QCustomPlotTicker>)->Name("axis/divide/qcustomplot")->Arg(8)->Arg(40);
#endif

}  // namespace

BENCHMARK_MAIN();
