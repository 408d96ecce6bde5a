// One move of the pointer while an axis is stretched in the window: the gesture, the axis, and the whole chart drawn anew.
#include <chrono>
#include <cmath>
#include <filesystem>

#include "bench/bench_support.h"
#include "host/gui/main_window.h"
#include "host/session/database_file.h"
#include "platform/scripted_input.h"

namespace {
constexpr int kChannels = 4, kReadings = 100'000, kMoves = 40;
constexpr SIZE kChart = {1600, 900};

std::string SessionFile() {
    const std::string path = (std::filesystem::temp_directory_path() / "orvik_bench_drag.odb").string();
    CPropertyDB description, db;
    description.SetValue("sName", "Bench");
    for (int i = 0; i < kChannels; ++i) {
        const std::string at = "Channels." + std::to_string(i);
        description.SetValue((at + ".sName").c_str(), ("Channel " + std::to_string(i)).c_str());
        description.SetValue((at + ".sUnit").c_str(), ("u" + std::to_string(i)).c_str());
    }
    Session session(description, "COM1");
    bench::Random random(5);
    CVXTTime time(2026, 6, 1, 0, 0, 0, -1);
    CDoubleArray values;
    values.SetSize(kChannels);
    for (int i = 0; i < kReadings; ++i) {
        for (int k = 0; k < kChannels; ++k) values.SetAt(k, std::sin(i * 1e-4 * (k + 1)) * 20 + random.Unit() * 5);
        session.Add(time, values);
        time += CVXTTimeSpan(1, TST_SECONDS);
    }
    session.Store(db);
    StoreDatabase(path, db);
    return path;
}

void Pump() {
    MSG message;
    while (::PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        ::TranslateMessage(&message);
        ::DispatchMessageA(&message);
    }
}

// The axis is the time axis or the first value axis. A drag of 40 moves, its press and its release on top, for one move each.
void RubberMove(benchmark::State& state) {
    static CHostApp app;
    MainWindow window(app, MainWindow::Manner::Quiet);
    const std::string path = SessionFile();
    window.CreateWindowOf({kChart.cx + ViewState::kStandardPane + 6, kChart.cy + 24}, SW_SHOWNOACTIVATE);
    window.Open(path);
    std::filesystem::remove(path);
    Pump();
    const ViewParts parts = window.Chart().Parts();
    const RECT& rubber = state.range(0) != 0 ? parts.time.rubber : parts.axes[0].rubber;
    const POINT from = {(rubber.left + rubber.right) / 2, (rubber.top + rubber.bottom) / 2};
    for (auto _ : state) {
        ::OrvikPostPointer(window.m_hWnd, WM_LBUTTONDOWN, from.x, from.y);
        for (int i = 1; i <= kMoves; ++i) {
            const int by = i * 4;
            ::OrvikPostPointer(window.m_hWnd, WM_MOUSEMOVE, from.x + (state.range(0) != 0 ? by : 0),
                               from.y + (state.range(0) != 0 ? 0 : by));
        }
        ::OrvikPostPointer(window.m_hWnd, WM_LBUTTONUP, from.x + kMoves * 4, from.y + kMoves * 4);
        const auto begin = std::chrono::steady_clock::now();
        Pump();
        const std::chrono::duration<double> gone = std::chrono::steady_clock::now() - begin;
        state.SetIterationTime(gone.count() / kMoves);
        BENCH_REQUIRE(window.Command(kCommandUndo));
        Pump();
    }
}
BENCHMARK(RubberMove)->ArgName("time_axis")->Arg(0)->Arg(1)->Iterations(5)->UseManualTime()->Unit(benchmark::kMillisecond);
}  // namespace

BENCHMARK_MAIN();
