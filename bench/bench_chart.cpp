// A chart of four long series as a picture file, beside every reading drawn by cairo itself.
#include <cairo.h>

#include <cmath>
#include <filesystem>
#include <string>

#include "bench/bench_support.h"
#include "host/chart/chart_file.h"
#include "host/session/session.h"
#include "time/locale_cache.h"

namespace {
constexpr int kChannels = 4, kReadings = 1'000'000;
constexpr SIZE kSize = {1600, 900};

const Session& TheSession() {
    static Session* const session = [] {
        CPropertyDB description;
        description.SetValue("sName", "Bench");
        for (int i = 0; i < kChannels; ++i) {
            const std::string at = "Channels." + std::to_string(i);
            description.SetValue((at + ".sName").c_str(), ("Channel " + std::to_string(i)).c_str());
            description.SetValue((at + ".sUnit").c_str(), ("u" + std::to_string(i / 2)).c_str());
        }
        auto* const made = new Session(description, "COM1");
        bench::Random random(5);
        CVXTTime time(2026, 6, 1, 0, 0, 0, -1);
        CDoubleArray values;
        values.SetSize(kChannels);
        for (int i = 0; i < kReadings; ++i) {
            for (int k = 0; k < kChannels; ++k) values.SetAt(k, std::sin(i * 1e-5 * (k + 1)) * 20 + random.Unit() * 5);
            made->Add(time, values);
            time += CVXTTimeSpan(1, TST_SECONDS);
        }
        return made;
    }();
    return *session;
}

std::string OutFile(const char* name) { return (std::filesystem::temp_directory_path() / name).string(); }

void ChartToPng(benchmark::State& state) {
    NlsToolsRegister();
    const Session& session = TheSession();
    const std::string out = OutFile("orvik_bench_chart.png");
    for (auto _ : state) {
        ChartModel model(session, {});
        WriteChart(model, out, kSize);
    }
    BENCH_REQUIRE(std::filesystem::file_size(out) > 10'000);
    std::filesystem::remove(out);
}
BENCHMARK(ChartToPng)->Unit(benchmark::kMillisecond);

// The reduction of all series alone.
void Reduce(benchmark::State& state) {
    const Session& session = TheSession();
    ChartModel model(session, {});
    const PlotMapping mapping = {
        static_cast<double>(model.First()), static_cast<double>(model.Last()), 100, 1500, -30, 30, 800, 50};
    for (auto _ : state) {
        for (const auto& series : model.AllSeries()) {
            const ReducedSeries line = ReduceSeries(model.Data(series), mapping);
            BENCH_REQUIRE(line.points.size() > 2'000);
        }
    }
    bench::PerItem(state, double{kChannels} * kReadings);
}
BENCHMARK(Reduce)->Unit(benchmark::kMillisecond);

// What one writes without a reduction: paths through every reading, and the library's own PNG writer. Pieces of a thousand
// readings: a stroke of all of them at once would not end within minutes.
void CairoPolyline(benchmark::State& state) {
    const Session& session = TheSession();
    const std::string out = OutFile("orvik_bench_cairo.png");
    for (auto _ : state) {
        cairo_surface_t* const surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, kSize.cx, kSize.cy);
        cairo_t* const cr = cairo_create(surface);
        cairo_set_source_rgb(cr, 1, 1, 1);
        cairo_paint(cr);
        cairo_set_line_width(cr, 1.7);
        for (int k = 0; k < kChannels; ++k) {
            const double* const values = session.Channels()[static_cast<size_t>(k)].values.GetData();
            cairo_set_source_rgb(cr, k * 0.2, 0.4, 0.8 - k * 0.2);
            for (int i = 0; i < kReadings; ++i)
                cairo_line_to(cr, 100 + 1400.0 * i / kReadings, 425 - values[i] * 12),
                    i % 1000 == 999 ? cairo_stroke(cr) : void();
            cairo_stroke(cr);
        }
        BENCH_REQUIRE(cairo_surface_write_to_png(surface, out.c_str()) == CAIRO_STATUS_SUCCESS);
        cairo_destroy(cr);
        cairo_surface_destroy(surface);
    }
    std::filesystem::remove(out);
}
BENCHMARK(CairoPolyline)->Unit(benchmark::kMillisecond)->Iterations(1);
}  // namespace

BENCHMARK_MAIN();
