// What places, drags and keys mean on a chart, without one.
#include "host/gui/gesture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>

#include "host/gui/line_edit.h"
#include "host/gui/menu_commands.h"

namespace {
// A plot from (100, 50) to (501, 251): 400 by 200 pixels between its outermost ones, with two axes and the time below.
ViewParts Parts() {
    ViewParts parts;
    parts.plot = {100, 50, 501, 251};
    // Tags of a channel on the first axis, and of one on another, hidden axis, which is zoomed to a tenth of its range.
    const TagFrame frame = {1'000'000, 4'001'000'000, 0, 100};
    parts.channels = {{"one", {0, 100, 50, 250, true}, frame}, {"hidden", {40, 50, 50, 250, true}, frame}};
    parts.axes.resize(2);
    parts.axes[0] = {{90, 50, 101, 251}, {60, 50, 90, 251}, {60, 30, 101, 50}, {0, 100, 50, 250, true}, 1};
    parts.axes[1] = {{500, 50, 511, 251}, {511, 50, 540, 251}, {500, 30, 540, 50}, {20, -20, 50, 250, true}, 0};
    parts.time = {{100, 251, 501, 261}, {100, 261, 501, 290}, {}, {0, 4000, 100, 500, false}, 0};
    parts.tags = {{150, 80, 200, 100}, {180, 90, 240, 110}};
    parts.selection.SetPosition({300, 100, 400, 200});
    parts.selected = true;
    return parts;
}
ViewState State() {
    ViewState state;
    state.axes = {{"%", std::nullopt}, {"C", std::nullopt}};
    state.tags = {{"one", 500'000'000, 85, "one"}, {"two", 800'000'000, 80, "hidden"}};
    return state;
}

TEST(GestureTest, FindsWhatStandsAtAPlace) {
    using enum Spot;
    const std::pair<POINT, Hit> cases[] = {{{110, 60}, {Plot, 0}},
                                           {{160, 85}, {Tag, 0}},
                                           {{190, 95}, {Tag, 1}},
                                           {{350, 150}, {Selection, 0, CZoomSelection::HIT_BODY}},
                                           {{302, 102}, {Selection, 0, CZoomSelection::HIT_NORTHWEST}},
                                           {{397, 150}, {Selection, 0, CZoomSelection::HIT_EAST}},
                                           {{95, 100}, {AxisZoom, 0}},
                                           {{100, 100}, {Plot, 0}},
                                           {{70, 100}, {AxisRubber, 0}},
                                           {{70, 40}, {AxisDrag, 0}},
                                           {{505, 100}, {AxisZoom, 1}},
                                           {{520, 100}, {AxisRubber, 1}},
                                           {{520, 40}, {AxisDrag, 1}},
                                           {{200, 255}, {AxisZoom, kTimeAxis}},
                                           {{200, 270}, {AxisRubber, kTimeAxis}},
                                           {{10, 10}, {Nowhere, 0}},
                                           {{-5, 9999}, {Nowhere, 0}}};
    for (const auto& [point, hit] : cases) EXPECT_EQ(HitTest(Parts(), point), hit) << point.x << "," << point.y;
    EXPECT_EQ(HitTest(ViewParts(), {0, 0}).spot, Spot::Nowhere);
}

TEST(GestureTest, ARegionFillsThePlot) {
    // A quarter of the time, from a half on; the lower half of the values.
    const ViewState both = ZoomedTo(State(), Parts(), {300, 150, 400, 250});
    EXPECT_EQ(both.time, (ViewRange{2000, 3000}));
    EXPECT_EQ(both.axes[1].range, (ViewRange{0, 50}));  // place 1 is the first axis shown
    EXPECT_EQ(both.axes[0].range, (ViewRange{20, 0}));  // a falling one
    const ViewState times = ZoomedTo(State(), Parts(), {300, 50, 400, 251});
    EXPECT_EQ(times.axes, State().axes);
    EXPECT_EQ(times.time, (ViewRange{2000, 3000}));
    const ViewState values = ZoomedTo(State(), Parts(), {100, 150, 501, 250});
    EXPECT_EQ(values.time, std::nullopt);
    EXPECT_EQ(ZoomedTo(State(), Parts(), {300, 150, 300, 150}), State());  // no region
    EXPECT_EQ(AllReset(both), State());
}

TEST(GestureTest, RangesKeepWhatTheyAreHeldAt) {
    const orvik::AxisMapping axis = Parts().axes[0].mapping;
    EXPECT_EQ(RangeAbout(axis, 250, 0.2), (ViewRange{0, 80}));
    EXPECT_EQ(RangeAbout(axis, 50, 0.2), (ViewRange{20, 100}));
    EXPECT_EQ(RangeAbout(axis, 150, -0.25), (ViewRange{-12.5, 112.5}));
    EXPECT_EQ(RangeMoved(axis, 0.1), (ViewRange{10, 110}));
    EXPECT_EQ(RangeStretched(axis, 0.1, false), (ViewRange{0, 110}));
    EXPECT_EQ(RangeStretched(axis, 0.1, true), (ViewRange{10, 100}));
    EXPECT_EQ(RangeStretched(axis, 1, true), std::nullopt);  // the ends would meet
    // A zoom that goes on for ever ends where nothing could be told apart, in both directions.
    for (const double part : {0.2, -0.25}) {
        orvik::AxisMapping zoomed = axis;
        int steps = 0;
        for (; const auto range = RangeAbout(zoomed, 80, part); ++steps) {
            zoomed.origin = range->origin, zoomed.extent = range->extent;
            ASSERT_TRUE(IsShowable(*range));
            ASSERT_LT(steps, 1000);
        }
        EXPECT_GT(steps, 50);
    }
    orvik::AxisMapping flat = axis;
    flat.end = flat.start;  // a plot without height
    EXPECT_EQ(RangeBetween(flat, 50, 60), std::nullopt);
    EXPECT_EQ(RangeAbout(flat, 50, 0.2), std::nullopt);
}

TEST(GestureTest, TagsAndSelectionsStayWithinThePlot) {
    const ViewState moved = TagMoved(State(), Parts(), 0, {300, 150});
    EXPECT_EQ(moved.tags[0], (ChartTag{"one", 2'001'000'000, 50, "one"}));
    for (const POINT away : {POINT{-30000, -30000}, POINT{30000, 30000}}) {
        const ChartTag tag = TagMoved(State(), Parts(), 1, away).tags[1];
        EXPECT_TRUE(tag.time >= 1'000'000 && tag.time < 4'001'000'000 && tag.value > 40 && tag.value <= 50.0001) << tag.value;
    }
    const ChartTag added = TagAdded(State(), Parts(), {300, 150}, "x", "hidden").tags.back();
    EXPECT_NEAR(added.value, 45, 1e-4);
    EXPECT_EQ(added, (ChartTag{"x", 2'001'000'000, added.value, "hidden"}));
    EXPECT_EQ(TagMoved(State(), Parts(), 2, {300, 150}), State());
    EXPECT_EQ(TagRemoved(State(), 2), State());
    EXPECT_EQ(TagAdded(State(), ViewParts(), {1, 1}, "x", "one"), State());  // no plot, no place
    EXPECT_EQ(WithSelection(State(), ViewParts(), {1, 1, 9, 9}), State());
    const ViewState selected = WithSelection(State(), Parts(), {150, 60, 450, 200});
    ASSERT_TRUE(selected.selection);
    const RECT back = SelectionOf(*selected.selection, Parts().plot);
    EXPECT_TRUE(back.left == 150 && back.top == 60 && back.right == 450 && back.bottom == 200);
}

TEST(GestureTest, TheKeyboardReachesEverythingAndComesAround) {
    ViewParts parts = Parts();
    std::vector<Focus> walk{Focus{}};
    do walk.push_back(NextFocus(parts, walk.back(), false));
    while (walk.back() != Focus{} && walk.size() < 20);
    using Kind = Focus::Kind;
    const std::vector<Focus> all{
        {}, {Kind::Axis, kTimeAxis}, {Kind::Axis, 0}, {Kind::Axis, 1}, {Kind::Tag, 0}, {Kind::Tag, 1}, {Kind::Selection, 0}, {}};
    EXPECT_EQ(walk, all);
    for (size_t i = all.size(); i-- > 1;) EXPECT_EQ(NextFocus(parts, all[i], true), all[i - 1]);
    parts.tags.clear();
    EXPECT_EQ(ValidFocus(parts, {Kind::Tag, 1}), Focus{});
    EXPECT_EQ(NextFocus(parts, {Kind::Tag, 1}, false), Focus{});
}

TEST(GestureTest, ALineOfTextIsWritten) {
    LineEdit edit("ab");
    for (const WORD key : std::initializer_list<WORD>{VK_LEFT, VK_LEFT, VK_LEFT, VK_BACK}) EXPECT_TRUE(edit.Key(key));
    edit.Write("x");
    edit.Write("\n");
    edit.Key(VK_DELETE);
    edit.Key(VK_END);
    edit.Key(VK_RIGHT);
    edit.Key(VK_DELETE);
    for (const char* const typed : {"Ω", "e", "\u0301", "\U0001F321"}) edit.Write(typed);
    EXPECT_EQ(edit.text, "xbΩe\u0301\U0001F321");
    for (const WORD key : std::initializer_list<WORD>{VK_LEFT, VK_BACK, VK_DELETE}) edit.Key(key);
    EXPECT_EQ(edit.text, "xbΩ");
    LineEdit pasted;
    pasted.WriteAll("23\te\u0301\u0007");
    EXPECT_EQ(pasted.text, "23 e\u0301");
    EXPECT_FALSE(edit.Key(VK_F6));
    for (int i = 0; i < 2000; ++i) edit.Write("a");
    EXPECT_EQ(edit.text.size(), LineEdit::kLongest);
}

TEST(MenuTest, NamesAndShortcutsAreUnique) {
    for (const MenuCommand& one : kMenuCommands) {
        EXPECT_EQ(CommandNamed(one.name), one.id);
        if (one.key == 0) continue;
        EXPECT_EQ(CommandOfKey(one.key, one.control, one.shift), one.id) << one.name;
    }
    EXPECT_EQ(CommandNamed("nothing"), kCommandNone);
    EXPECT_EQ(CommandOfKey('Z', false, false), kCommandNone);
}

TEST(MenuTest, EveryItemOfAMenuHasALetterOfItsOwn) {
    for (const MenuPlace place : {MenuPlace::File, MenuPlace::Edit, MenuPlace::View, MenuPlace::Help, MenuPlace::None}) {
        std::vector<Text> items;
        if (place == MenuPlace::None) items = {Text::MenuFile, Text::MenuEdit, Text::MenuView, Text::MenuHelp};
        if (place == MenuPlace::File) items = {Text::MenuConnect};
        if (place == MenuPlace::View) items = {Text::MenuChannels};
        for (const MenuCommand& one : kMenuCommands) {
            if (one.place == place) items.push_back(one.text);
        }
        std::set<char> letters;
        for (const Text item : items) {
            std::string text = Say(item);
            const size_t mark = text.find('&');
            ASSERT_NE(mark, std::string::npos) << text;
            EXPECT_TRUE(letters.insert(static_cast<char>(::tolower(static_cast<unsigned char>(text[mark + 1])))).second) << text;
        }
    }
}
}  // namespace
