// What a view keeps: comparing, storing, restoring, and the history of it.
#include "host/gui/view_state.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

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

TEST(ViewHistoryTest, LeadsBackToTheBeginningHoweverLongItWas) {
    ViewHistory history(Bare());
    ViewState next = Bare();
    for (int i = 1; i < 400; ++i) {
        next.time = ViewRange{0, i + 0.0};
        ASSERT_TRUE(history.Do(Text::StepZoom, next));
    }
    int count = 0;
    while (history.Undo()) ASSERT_LT(++count, 101);
    EXPECT_EQ(history.State(), Bare());
    EXPECT_EQ(history.RedoName(), Text::StepEarlier);
    while (history.Redo()) --count;
    EXPECT_EQ(count, 0);
    EXPECT_EQ(history.State(), next);
}

// A step keeps the stretch of a list that it changes, wherever that lies and however long it was before.
TEST(ViewHistoryTest, ListsComeBackElementForElement) {
    using Names = std::vector<std::string>;
    const Names lists[] = {{"b"},           {"a", "b"}, {"a", "b", "b"},      {"a", "c", "b", "b"}, {"b", "b"},     {},
                           {"x", "y", "z"}, {"z", "y"}, {"z", "q", "q", "y"}, {"z", "q", "y"},      {"q", "z", "y"}};
    ViewHistory history(Bare());
    std::vector<ViewState> states = {Bare()};
    for (const Names& names : lists) {
        ViewState next = states.back();
        next.hidden = names;
        next.tags.resize(names.size());
        for (size_t i = 0; i < names.size(); ++i) next.tags[i].text = names[i];
        ASSERT_TRUE(history.Do(Text::StepZoom, next));
        states.push_back(next);
    }
    for (size_t i = states.size() - 1; i-- > 0;) {
        ASSERT_TRUE(history.Undo());
        EXPECT_EQ(history.State(), states[i]) << i;
    }
    for (size_t i = 1; i < states.size(); ++i) {
        ASSERT_TRUE(history.Redo());
        EXPECT_EQ(history.State(), states[i]) << i;
    }
}

}  // namespace
