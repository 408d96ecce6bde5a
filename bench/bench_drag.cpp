// What one move of the pointer, one key and one notch of the wheel cost in the window: the gesture, the axis, and the whole chart
// drawn anew. CPU time of the process, as a machine in use has no other that says anything.
#include <cmath>
#include <ctime>
#include <filesystem>

#include "bench/bench_support.h"
#include "host/gui/main_window.h"
#include "host/session/database_file.h"
#include "platform/scripted_input.h"

namespace {
constexpr int kChannels = 4, kMoves = 40;
constexpr SIZE kChart = {1600, 900};

std::string SessionFile(int readings) {
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
    for (int i = 0; i < readings; ++i) {
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

// The window over a session of so many readings, which is read anew for other numbers only: that takes longer than all that is
// measured.
MainWindow& WindowOf(int readings) {
    static CHostApp app;
    static MainWindow window(app, MainWindow::Manner::Quiet);
    static int open = 0;
    if (window.m_hWnd == nullptr)
        window.CreateWindowOf({kChart.cx + ViewState::kStandardPane + 6, kChart.cy + 24}, SW_SHOWNOACTIVATE);
    if (open != readings) {
        const std::string path = SessionFile(readings);
        window.Open(path);
        std::filesystem::remove(path);
        Pump();
        open = readings;
    }
    return window;
}

// Posts what one iteration does, which changes the view by one step, and handles it; seconds for one of its `parts`.
template <class Post>
void Measure(benchmark::State& state, MainWindow& window, int parts, Post post) {
    for (auto _ : state) {
        post();
        const std::clock_t begin = std::clock();
        Pump();
        state.SetIterationTime(static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC / parts);
        BENCH_REQUIRE(window.Command(kCommandResetAll));
        Pump();
    }
}

// The axis is the time axis or the first value axis. A drag of 40 moves, its press and its release on top, for one move each.
void RubberMove(benchmark::State& state) {
    MainWindow& window = WindowOf(static_cast<int>(state.range(0)));
    const bool time = state.range(1) != 0;
    const ViewParts parts = window.Chart().Parts();
    const RECT& rubber = time ? parts.time.rubber : parts.axes[0].rubber;
    const POINT from = {(rubber.left + rubber.right) / 2, (rubber.top + rubber.bottom) / 2};
    Measure(state, window, kMoves, [&] {
        ::OrvikPostPointer(window.m_hWnd, WM_LBUTTONDOWN, from.x, from.y);
        for (int i = 1; i <= kMoves; ++i)
            ::OrvikPostPointer(window.m_hWnd, WM_MOUSEMOVE, from.x + (time ? i * 4 : 0), from.y + (time ? 0 : i * 4));
        ::OrvikPostPointer(window.m_hWnd, WM_LBUTTONUP, from.x + kMoves * 4, from.y + kMoves * 4);
    });
}

// One notch of the wheel over the plot: of the values, or with Ctrl of the times.
void WheelZoom(benchmark::State& state) {
    MainWindow& window = WindowOf(static_cast<int>(state.range(0)));
    const bool time = state.range(1) != 0;
    const RECT plot = window.Chart().Parts().plot;
    const int x = static_cast<int>(plot.left + plot.right) / 2, y = static_cast<int>(plot.top + plot.bottom) / 2;
    Measure(state, window, 1, [&] {
        if (time) ::OrvikPostKey(window.m_hWnd, VK_CONTROL, TRUE);
        ::OrvikPostPointer(window.m_hWnd, WM_MOUSEWHEEL, x, y, WHEEL_DELTA);
        if (time) ::OrvikPostKey(window.m_hWnd, VK_CONTROL, FALSE);
    });
}

// One arrow key: the plot moves by a tenth, up or to the side.
void KeyPan(benchmark::State& state) {
    MainWindow& window = WindowOf(static_cast<int>(state.range(0)));
    const UINT key = state.range(1) != 0 ? VK_LEFT : VK_UP;
    ::SetFocus(window.Chart().m_hWnd);
    Measure(state, window, 1, [&] {
        ::OrvikPostKey(window.m_hWnd, key, TRUE);
        ::OrvikPostKey(window.m_hWnd, key, FALSE);
    });
}

void Cases(benchmark::internal::Benchmark* one) {
    one->ArgNames({"readings", "time"});
    for (const int readings : {100'000, 1'000'000}) one->Args({readings, 0})->Args({readings, 1});
    one->Iterations(10)->UseManualTime()->Unit(benchmark::kMillisecond);
}
BENCHMARK(RubberMove)->Apply(Cases);
BENCHMARK(WheelZoom)->Apply(Cases);
BENCHMARK(KeyPan)->Apply(Cases);
}  // namespace

BENCHMARK_MAIN();
