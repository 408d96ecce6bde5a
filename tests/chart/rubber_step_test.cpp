// What moves of a rubber drag come to, worked out by hand, mostly for an axis from pixel 100 (origin) to 300.
#include "chart/rubber_step_internal.h"

#include <gtest/gtest.h>

#include <limits>

using namespace orvik::detail;

namespace {

constexpr LONG kMin = std::numeric_limits<LONG>::min();
constexpr LONG kMax = std::numeric_limits<LONG>::max();

struct Case {
    const char* what;
    RubberMode mode;
    LONG anchor, pointer;
    RubberAxis axis;
    RubberMove expected;
};

TEST(RubberStep, FollowsItsRules) {
    using enum RubberMode;
    const Case cases[] = {
        {"no mode", None, 300, 350, {100, 300, 5, 5}, {false, 300, 0, 0, 100, 300}},
        {"a tick on the end holds for 3 pixels", MoveExtent, 300, 303, {100, 300, 5, 0}, {false, 300, 0, 0, 100, 300}},
        {"it holds the other way too", MoveExtent, 300, 297, {100, 300, 5, 0}, {false, 300, 0, 0, 100, 300}},
        {"200 * 1 / 204 is nothing, yet the anchor moved", MoveExtent, 300, 304, {100, 300, 5, 0}, {false, 303, 0, 0, 100, 300}},
        {"200 * 7 / 210", MoveExtent, 300, 310, {100, 300, 5, 0}, {true, 310, 0, 6, 100, 294}},
        {"200 * -7 / 190", MoveExtent, 300, 290, {100, 300, 5, 0}, {true, 290, 0, -7, 100, 307}},
        {"the origin's tick does not hold the extent", MoveExtent, 300, 303, {100, 300, 0, 9}, {true, 303, 0, 2, 100, 298}},
        {"200 * 10 / 220 is 9, the next tick is 5 away", MoveExtent, 310, 320, {100, 300, 0, 5}, {true, 320, 0, 5, 100, 295}},
        {"-10, the next tick is 3 away", MoveExtent, 310, 300, {100, 300, 0, -3}, {true, 300, 0, -3, 100, 303}},
        {"the limit is for its own direction", MoveExtent, 310, 300, {100, 300, 0, 5}, {true, 300, 0, -10, 100, 310}},
        {"on the fixed end there is no lever", MoveExtent, 150, 100, {100, 300, 0, 5}, {false, 150, 0, 0, 100, 300}},
        {"200 * 7 / 190", MoveOrigin, 100, 110, {100, 300, 0, 5}, {true, 110, 7, 0, 93, 300}},
        {"200 * -10 / 160 is -12, the next tick is 4 away",
         MoveOrigin,
         150,
         140,
         {100, 300, -4, 0},
         {true, 140, -4, 0, 104, 300}},
        {"on the fixed end, held by a tick as well", MoveOrigin, 200, 300, {100, 300, 0, 5}, {false, 203, 0, 0, 100, 300}},
        {"either end's tick holds a pan", Pan, 200, 197, {100, 300, 6, 0}, {false, 200, 0, 0, 100, 300}},
        {"a pan moves both ends", Pan, 200, 196, {100, 300, 6, 0}, {true, 196, -1, -1, 101, 301}},
        {"the origin's tick stops a pan", Pan, 200, 220, {100, 300, 6, 2}, {true, 220, 6, 6, 94, 294}},
        {"no distance, no pan", Pan, 200, 200, {100, 300, 6, 6}, {false, 200, 0, 0, 100, 300}},
        {"upright: -200 * -7 / -210", MoveExtent, 100, 90, {300, 100, 5, 0}, {true, 90, 0, -6, 300, 106}},
        {"upright: -200 * -7 / -190", MoveOrigin, 300, 290, {300, 100, 0, 5}, {true, 290, -7, 0, 307, 100}},
        {"an axis without length", Pan, 100, 150, {100, 100, 6, 6}, {false, 100, 0, 0, 100, 100}},
        {"the farthest of all", Pan, kMin, kMax, {kMax, kMin, -1, 9}, {true, kMax, kMax, kMax, 0, kMin}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const RubberMove move = RubberStep(c.mode, c.anchor, c.pointer, c.axis);
        EXPECT_EQ(move.changes, c.expected.changes);
        EXPECT_EQ(move.anchor, c.expected.anchor);
        EXPECT_EQ(move.originShift, c.expected.originShift);
        EXPECT_EQ(move.extentShift, c.expected.extentShift);
        EXPECT_EQ(move.zoomOrigin, c.expected.zoomOrigin);
        EXPECT_EQ(move.zoomExtent, c.expected.zoomExtent);
    }
}

TEST(RubberStep, ShiftWinsOverControl) {
    EXPECT_EQ(RubberModeOf(false, false), RubberMode::MoveExtent);
    EXPECT_EQ(RubberModeOf(true, false), RubberMode::MoveOrigin);
    EXPECT_EQ(RubberModeOf(false, true), RubberMode::Pan);
    EXPECT_EQ(RubberModeOf(true, true), RubberMode::MoveOrigin);
}

}  // namespace
