// What a view keeps: comparing, storing, restoring, and the history of it.
#include "host/gui/view_state.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "afx/file.h"
#include "frame/numeric_arrays.h"
#include "host/gui/view_history.h"
#include "propdb/property_db.h"

namespace {
constexpr double kInf = std::numeric_limits<double>::infinity(), kNan = std::numeric_limits<double>::quiet_NaN();

ViewState Sample() {
    ViewState state;
    state.axes = {{"°C", ViewRange{-5.25, 31.125}}, {"%", std::nullopt}, {"", ViewRange{9, 1}}};
    state.time = ViewRange{0.5, 86400.001};
    state.selection = ViewState::Selection{0.125, 0.25, 0.5, 0.75};
    state.hidden = {"2", "wind"};
    state.pane = 333;
    state.columns = {100, 50, 25};
    return state;
}
ViewState Bare() {
    ViewState state;
    state.axes = {{"%", std::nullopt}, {"", std::nullopt}, {"°C", std::nullopt}};
    state.columns = {140, 80, 60};
    return state;
}

TEST(ViewStateTest, ComesBackFromASessionWhole) {
    CPropertyDB db;
    Sample().Store(db);
    CMemFile file;
    ASSERT_TRUE(db.StoreToFile(&file, FALSE, FALSE));
    file.SeekToBegin();
    CPropertyDB read;
    ASSERT_TRUE(read.LoadFromFile(&file, FALSE));
    ViewState state = Bare();
    state.Load(read);
    EXPECT_EQ(state, Sample());
    // Storing replaces: nothing of an earlier view is left behind.
    Bare().Store(read);
    state = Sample();
    state.selection.reset();
    state.hidden.clear();
    state.Load(read);
    EXPECT_EQ(state.axes, Bare().axes);
    EXPECT_EQ(state.time, std::nullopt);
    EXPECT_EQ(state.selection, std::nullopt);
    EXPECT_TRUE(state.hidden.empty());
}

TEST(ViewStateTest, TakesOfADamagedFolderWhatIsSound) {
    CPropertyDB db;
    ViewState odd = Sample();
    odd.axes[0].range = ViewRange{1, 1};
    odd.axes[1].range = ViewRange{kNan, 5};
    odd.axes[2].range = ViewRange{-kInf, kInf};
    odd.time = ViewRange{1e300, 1e301};
    odd.selection = ViewState::Selection{0.5, 0.5, 0.25, 2};
    odd.pane = -7;
    odd.columns = {-1, 1 << 30, 77, 5, 5};
    odd.Store(db);
    ViewState state = Bare();
    state.Load(db);
    for (const auto& axis : state.axes) EXPECT_EQ(axis.range, std::nullopt) << axis.unit;
    EXPECT_EQ(state.axes[0].unit, "°C");
    EXPECT_EQ(state.time, std::nullopt);
    EXPECT_EQ(state.selection, std::nullopt);
    EXPECT_EQ(state.pane, Bare().pane);
    EXPECT_EQ(state.columns, (std::vector<LONG>{140, 80, 77}));

    // Another session's axes: known ones come first in the stored order, the rest keep theirs.
    ViewState other;
    other.axes = {{"mm", std::nullopt}, {"", std::nullopt}, {"°C", std::nullopt}};
    CPropertyDB stored;
    Sample().Store(stored);
    other.Load(stored);
    EXPECT_EQ(other.axes[0], Sample().axes[0]);
    EXPECT_EQ(other.axes[1], Sample().axes[2]);
    EXPECT_EQ(other.axes[2].unit, "mm");

    // Values of other kinds, and fewer ranges than units.
    CPropertyDB wrong;
    wrong.SetValue("View.sUnits", 5);
    wrong.SetValue("View.rTime", "soon");
    wrong.SetValue("View.nPane", "wide");
    ViewState unchanged = Bare();
    unchanged.Load(wrong);
    EXPECT_EQ(unchanged, Bare());
}

TEST(ViewHistoryTest, NamesItsStepsAndForgetsWhatWasUndone) {
    ViewHistory history(Bare());
    EXPECT_FALSE(history.Do(Text::StepPan, Bare()));  // nothing changes: no step
    EXPECT_FALSE(history.CanUndo() || history.CanRedo() || history.Undo() || history.Redo());
    ViewState zoomed = Bare();
    zoomed.time = ViewRange{1, 2};
    zoomed.axes[1].range = ViewRange{3, 4};  // two things, one step
    ASSERT_TRUE(history.Do(Text::StepZoom, zoomed));
    ViewState swapped = zoomed;
    std::swap(swapped.axes[0], swapped.axes[1]);
    ASSERT_TRUE(history.Do(Text::StepSwapAxes, swapped));
    EXPECT_EQ(history.UndoName(), Text::StepSwapAxes);
    ASSERT_TRUE(history.Undo());
    EXPECT_EQ(history.State(), zoomed);
    EXPECT_EQ(history.RedoName(), Text::StepSwapAxes);
    ASSERT_TRUE(history.Undo());
    EXPECT_EQ(history.State(), Bare());
    EXPECT_FALSE(history.CanUndo());
    ASSERT_TRUE(history.Redo());
    EXPECT_EQ(history.State(), zoomed);
    ViewState other = zoomed;
    other.pane = 100;
    ASSERT_TRUE(history.Do(Text::StepPane, other));
    EXPECT_FALSE(history.CanRedo());
}

// Against a plain list of states, over hundreds of steps of one to several commands: the history never loses the way back.
TEST(ViewHistoryTest, LeadsBackToTheBeginningHoweverLongItWas) {
    std::mt19937 random(7);
    const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    for (int round = 0; round < 60; ++round) {
        ViewHistory history(Bare());
        std::vector<ViewState> states{Bare()};
        size_t at = 0;
        const int steps = 1 + below(400);
        for (int i = 0; i < steps; ++i) {
            if (below(4) == 0) {
                // Back a few and forward again; where steps were let go, one step leads over all of them.
                const int back = below(6);
                for (int k = 0; k < back && history.Undo(); ++k) {
                    --at;
                    if (history.State() == states[at]) continue;
                    ASSERT_EQ(history.State(), states[0]);
                    ASSERT_EQ(history.RedoName(), Text::StepEarlier);
                    at = 0;
                }
                if (below(2) == 0) {
                    while (history.Redo()) {
                    }
                    at = states.size() - 1;
                    ASSERT_EQ(history.State(), states[at]);
                }
            }
            ViewState next = history.State();
            const double value = i + round * 1000.0 + 1;
            if (below(3) != 0) next.time = ViewRange{0, value};
            for (auto& axis : next.axes) {
                if (below(2) == 0) axis.range = ViewRange{0, value};
            }
            if (below(5) == 0) std::swap(next.axes[0], next.axes[2]);
            if (below(5) == 0) next.tags.push_back({"tag", 500, value, "1"});
            if (!history.Do(Text::StepZoom, next)) continue;
            states.resize(at + 1);
            states.push_back(next);
            ++at;
        }
        const ViewState last = history.State();
        int count = 0;
        while (history.Undo()) ASSERT_LT(++count, 101);
        ASSERT_EQ(history.State(), Bare());
        while (history.Redo()) {
        }
        ASSERT_EQ(history.State(), last);
    }
}
}  // namespace
