// What moves of a rubber drag come to, worked out by hand, mostly for an axis from pixel 100 (origin) to 300.
#include "chart/rubber_step_internal.h"
#include "tests/support/table.h"

#include <gtest/gtest.h>

#include <limits>
#include <tuple>

using namespace orvik::detail;

namespace {

constexpr LONG kMin = std::numeric_limits<LONG>::min();
constexpr LONG kMax = std::numeric_limits<LONG>::max();

struct Case {
    const char* what;
    RubberMode mode;
    LONG anchor, pointer;
    RubberAxis axis;
    struct {
        LONG anchor, originShift, extentShift, zoomOrigin, zoomExtent;
    } expected;
};

TEST(RubberStep, FollowsItsRules) {
    using enum RubberMode;
    for (const Case& c : Table(
             Case{"no mode", None, 300, 350, {100, 300, 5, 5}, {300, 0, 0, 100, 300}},
             Case{"a tick on the end holds for 3 pixels", MoveExtent, 300, 303, {100, 300, 5, 0}, {300, 0, 0, 100, 300}},
             Case{"it holds the other way too", MoveExtent, 300, 297, {100, 300, 5, 0}, {300, 0, 0, 100, 300}},
             Case{
                 "200 * 1 / 204 is nothing, yet the anchor moved", MoveExtent, 300, 304, {100, 300, 5, 0}, {303, 0, 0, 100, 300}},
             Case{"200 * 7 / 210", MoveExtent, 300, 310, {100, 300, 5, 0}, {310, 0, 6, 100, 294}},
             Case{"200 * -7 / 190", MoveExtent, 300, 290, {100, 300, 5, 0}, {290, 0, -7, 100, 307}},
             Case{"the origin's tick does not hold the extent", MoveExtent, 300, 303, {100, 300, 0, 9}, {303, 0, 2, 100, 298}},
             Case{"200 * 10 / 220 is 9, the next tick is 5 away", MoveExtent, 310, 320, {100, 300, 0, 5}, {320, 0, 5, 100, 295}},
             Case{"-10, the next tick is 3 away", MoveExtent, 310, 300, {100, 300, 0, -3}, {300, 0, -3, 100, 303}},
             Case{"the limit is for its own direction", MoveExtent, 310, 300, {100, 300, 0, 5}, {300, 0, -10, 100, 310}},
             Case{"on the fixed end there is no lever", MoveExtent, 150, 100, {100, 300, 0, 5}, {150, 0, 0, 100, 300}},
             Case{"200 * 7 / 190", MoveOrigin, 100, 110, {100, 300, 0, 5}, {110, 7, 0, 93, 300}},
             Case{"200 * -10 / 160 is -12, the next tick is 4 away",
                  MoveOrigin,
                  150,
                  140,
                  {100, 300, -4, 0},
                  {140, -4, 0, 104, 300}},
             Case{"on the fixed end, held by a tick as well", MoveOrigin, 200, 300, {100, 300, 0, 5}, {203, 0, 0, 100, 300}},
             Case{"either end's tick holds a pan", Pan, 200, 197, {100, 300, 6, 0}, {200, 0, 0, 100, 300}},
             Case{"a pan moves both ends", Pan, 200, 196, {100, 300, 6, 0}, {196, -1, -1, 101, 301}},
             Case{"the origin's tick stops a pan", Pan, 200, 220, {100, 300, 6, 2}, {220, 6, 6, 94, 294}},
             Case{"no distance, no pan", Pan, 200, 200, {100, 300, 6, 6}, {200, 0, 0, 100, 300}},
             Case{"upright: -200 * -7 / -210", MoveExtent, 100, 90, {300, 100, 5, 0}, {90, 0, -6, 300, 106}},
             Case{"upright: -200 * -7 / -190", MoveOrigin, 300, 290, {300, 100, 0, 5}, {290, -7, 0, 307, 100}},
             Case{"an axis without length", Pan, 100, 150, {100, 100, 6, 6}, {100, 0, 0, 100, 100}},
             Case{"the farthest of all", Pan, kMin, kMax, {kMax, kMin, -1, 9}, {kMax, kMax, kMax, 0, kMin}})) {
        SCOPED_TRACE(c.what);
        const RubberMove move = RubberStep(c.mode, c.anchor, c.pointer, c.axis);
        const auto& [anchor, originShift, extentShift, zoomOrigin, zoomExtent] = c.expected;
        EXPECT_EQ(move.changes, originShift != 0 || extentShift != 0);
        EXPECT_EQ(std::tuple(move.anchor, move.originShift, move.extentShift), std::tuple(anchor, originShift, extentShift));
        EXPECT_EQ(std::tuple(move.zoomOrigin, move.zoomExtent), std::tuple(zoomOrigin, zoomExtent));
    }
}

TEST(RubberStep, ShiftWinsOverControl) {
    EXPECT_EQ(RubberModeOf(false, false), RubberMode::MoveExtent);
    EXPECT_EQ(RubberModeOf(true, false), RubberMode::MoveOrigin);
    EXPECT_EQ(RubberModeOf(false, true), RubberMode::Pan);
    EXPECT_EQ(RubberModeOf(true, true), RubberMode::MoveOrigin);
}

}  // namespace
