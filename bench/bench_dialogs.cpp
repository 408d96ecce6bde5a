// The property grid with few and with many rows: a step of scrolling with its drawing, and the filling; beside a list in report
// view of as many rows, the control that one would take otherwise. And a step of the progress dialog, waiting messages handled.
#include <memory>

#include "afx/app.h"
#include "afx/common_controls.h"
#include "afx/controls.h"
#include "bench/bench_support.h"
#include "toolkit/prop_list.h"
#include "ui/progress_dialog.h"

namespace {

constexpr int kWidth = 300, kHeight = 400, kColumn = 140;

// A visible window on an application's screen.
struct Screen {
    Screen() : app("bench") {
        BENCH_REQUIRE(
            window.CreateEx(0, AfxRegisterWndClass(0), "", WS_POPUP | WS_VISIBLE, 0, 0, kWidth, kHeight, nullptr, nullptr));
    }
    ~Screen() { window.DestroyWindow(); }
    CWinApp app;
    CWnd window;
};

struct Grid : Screen {
    Grid() {
        BENCH_REQUIRE(control.Create(WS_CHILD | WS_VISIBLE, CRect(0, 0, kWidth, kHeight), &window, 1));
        control.EnableHeaderCtrl();
        control.SetVSDotNetLook();
    }
    void Fill(int rows) {
        for (int i = 0; i < rows; ++i) control.AddProperty(new CBCGPProp("Property", i));
    }
    int Top() { return control.GetTopRow(); }
    CBCGPPropList control;
};

struct List : Screen {
    List() {
        BENCH_REQUIRE(control.Create(WS_CHILD | WS_VISIBLE | LVS_REPORT, CRect(0, 0, kWidth, kHeight), &window, 1));
        control.InsertColumn(0, "Property", LVCFMT_LEFT, kColumn);
        control.InsertColumn(1, "Value", LVCFMT_LEFT, kColumn);
    }
    void Fill(int rows) {
        CString text;
        for (int i = 0; i < rows; ++i) {
            control.InsertItem(i, "Property");
            text.Format("%d", i);
            control.SetItemText(i, 1, text);
        }
    }
    int Top() { return static_cast<int>(control.SendMessage(LVM_GETTOPINDEX)); }
    CListCtrl control;
};

template <class Control>
void ScrollARow(benchmark::State& state) {
    Control shown;
    shown.Fill(static_cast<int>(state.range(0)));
    shown.control.UpdateWindow();
    // Up and down in the middle, so that every step moves.
    for (int64_t i = 0; i < state.range(0) / 2; ++i) shown.control.SendMessage(WM_VSCROLL, SB_LINEDOWN);
    const int middle = shown.Top();
    bool down = true;
    for (auto step : state) {
        shown.control.SendMessage(WM_VSCROLL, down ? SB_LINEDOWN : SB_LINEUP);
        shown.control.UpdateWindow();
        down = !down;
    }
    BENCH_REQUIRE(middle > 0 && shown.Top() - middle == (down ? 0 : 1));
    bench::PerItem(state, 1);
}
BENCHMARK(ScrollARow<Grid>)->Name("dialogs/scroll_a_row/ours")->Arg(50)->Arg(5'000)->Arg(500'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(ScrollARow<List>)->Name("dialogs/scroll_a_row/report_list")->Arg(50)->Arg(5'000)->Unit(benchmark::kMicrosecond);

template <class Control>
void Fill(benchmark::State& state) {
    const int rows = static_cast<int>(state.range(0));
    for (auto step : state) {
        state.PauseTiming();
        auto shown = std::make_unique<Control>();
        state.ResumeTiming();
        shown->Fill(rows);
        shown->control.UpdateWindow();
        state.PauseTiming();
        shown.reset();
        state.ResumeTiming();
    }
    bench::PerItem(state, rows);
}
BENCHMARK(Fill<Grid>)->Name("dialogs/fill/ours")->Arg(5'000)->Unit(benchmark::kMillisecond);
BENCHMARK(Fill<List>)->Name("dialogs/fill/report_list")->Arg(5'000)->Unit(benchmark::kMillisecond);

void ProgressStep(benchmark::State& state) {
    Screen screen;
    CProgressDlgParams params;
    params.m_nRangeMax = 1'000'000, params.m_bPumpMessages = TRUE;
    CProgressDialog dialog(&screen.window);
    BENCH_REQUIRE(dialog.Create(params, &screen.window));
    LONG at = 0;
    for (auto step : state) dialog.SetPos(at = (at + 1) % 1'000'000);
    BENCH_REQUIRE(dialog.GetPos() == at);
    bench::PerItem(state, 1);
}
BENCHMARK(ProgressStep)->Name("dialogs/progress_step/ours");

}  // namespace

BENCHMARK_MAIN();
