// The range of an axis and what follows from it, and the geometry that every axis has.
#include "chart/unit_axis.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <limits>
#include <tuple>

#include "afx/geometry.h"
#include "time/locale_cache.h"

namespace {

constexpr double kEps = FLT_EPSILON, kMin = FLT_MIN, kMax = FLT_MAX;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

class UnitAxis : public testing::Test {
protected:
    // Before the axis is made, whose first format has the user's separator.
    static void SetUpTestSuite() { NlsToolsRegister(); }
    void Expect(double origin, double extent) {
        EXPECT_EQ(std::tuple(axis.GetOrigin(), axis.GetExtent()), std::tuple(origin, extent));
    }
    // The format with a point for the user's separator.
    std::string Format(double origin, double extent) {
        axis.SetRange(origin, extent);
        std::string format(axis.GetFormat());
        for (char& ch : format)
            if (ch == NlsGetDecimalSep()) ch = '.';
        return format;
    }

    CUnitAxis axis{1};
};

}  // namespace

TEST_F(UnitAxis, WidensARangeThatIsTooNarrow) {
    const double d5 = 5 * kEps;
    axis.SetRange(5, 10);
    axis.SetRange(5, 5);  // the origin stays
    Expect(5, 5 + d5);
    axis.SetRange(5, 5 - 1e-9);
    Expect(5, 5 - d5);
    axis.SetRange(0, 5);
    axis.SetRange(5 - 1e-9, 5);  // the extent stays
    Expect(5 - d5, 5);
    axis.SetRange(0, 5), axis.SetRange(5 + 1e-9, 5);
    Expect(5 + (5 + 1e-9) * kEps, 5);
    axis.SetRange(0, 100);
    axis.SetRange(5, 5);  // neither
    Expect((10 - d5) / 2, (10 - d5) / 2 + d5);
    axis.SetRange(0, 100), axis.SetRange(5 + 1e-9, 5);
    const double d = (5 + 1e-9) * kEps;
    Expect((5 + 1e-9 + 5 + d) / 2, (5 + 1e-9 + 5 + d) / 2 - d);
    axis.SetRange(0, 0);
    Expect(-kMin / 2, -kMin / 2 + kMin);
}

TEST_F(UnitAxis, BelievesNegativeRangesDownToTheLeastNumber) {
    axis.SetRange(-5, 0), axis.SetRange(-5, -5);
    Expect(-5, -5);
    axis.SetRange(-5, -5 + 1e-15);
    Expect(-5, -5 + 1e-15);
}

TEST_F(UnitAxis, ClampsToTheSinglePrecisionRange) {
    axis.SetRange(1e39, 2e39);
    Expect(kMax - kMax * kEps, kMax);
    axis.SetRange(-kInfinity, kInfinity);
    Expect(-kMax, kMax);
    axis.SetRange(kMax, kMax);  // the extent stays
    Expect(kMax - kMax * kEps, kMax);
    axis.SetRange(kMax, 0);
    axis.SetRange(kMax, kMax);  // the origin stays, and would push the extent out of range
    Expect(kMax - kMax * kEps, kMax);
    axis.SetRange(1, 2), axis.SetRange(NAN, 3), axis.SetRange(3, NAN);
    Expect(1, 2);
}

TEST_F(UnitAxis, DerivesItsFormatFromTheRange) {
    using Row = std::tuple<double, double, const char*>;
    for (const auto& [origin, extent, format] :
         {Row{0, 100, "#######"}, Row{0, 10, "#######.#"}, Row{0, 1, "#######.##"}, Row{0, 20, "#######"},
          Row{0, 19.9, "#######.#"}, Row{0, 2e6, "@@"}, Row{0.0001, 0.0002, "@@@"}, Row{0, 1e6, "@@@"}, Row{0, 999999, "#######"},
          Row{999990, 999999, "#######.#"}, Row{-1e6, -1e6 + 1, "@@@@@@@@@"}, Row{0, 0.0009, "@@"}, Row{100, 0, "#######"},
          Row{0, 0.002, "#######.####"}, Row{-0.0005, 0.0005, "@@"}, Row{0.1, 0.3, "#######.##"}})
        EXPECT_EQ(Format(origin, extent), format) << origin << " to " << extent;
    const std::string before = Format(-5, 0);
    EXPECT_EQ(Format(-5, -5), before);  // an empty range keeps it
}

TEST_F(UnitAxis, ScalesToData) {
    axis.AutoScale(0, 100);
    Expect(-2, 102);
    axis.AutoScale(100, 0);
    Expect(102, -2);
    axis.AutoScale(10, 10);
    EXPECT_NEAR(axis.GetOrigin(), 10, 10 * kEps);
    EXPECT_GT(axis.GetExtent() - axis.GetOrigin(), 0.9 * 10 * kEps);
    EXPECT_LT(axis.GetExtent() - axis.GetOrigin(), 2 * 10 * kEps);
    axis.AutoScale(-10, -10);  // by magnitude here, then by SetRange's own measure
    EXPECT_GT(axis.GetExtent(), axis.GetOrigin());
    for (const double bad : {kInfinity, -kInfinity}) {
        axis.AutoScale(bad, bad);
        EXPECT_TRUE(std::isfinite(axis.GetOrigin()) && std::isfinite(axis.GetExtent()));
        axis.AutoScale(0, bad);
        EXPECT_EQ(axis.GetExtent(), bad > 0 ? kMax : -kMax);
    }
    axis.AutoScale(1e300, kInfinity);
    EXPECT_GT(axis.GetExtent(), axis.GetOrigin());
    axis.AutoScale(1, 2), axis.AutoScale(NAN, 5);
    Expect(0.98, 2.02);
}

TEST_F(UnitAxis, KnowsWhetherItWasZoomed) {
    axis.SetPosition(50, 0, 100), axis.SaveRange();
    EXPECT_FALSE(axis.IsRangeModified());
    axis.Zoom(80, 20);  // the direction is that of the drag
    Expect(80, 20);
    EXPECT_TRUE(axis.IsRangeModified());
    EXPECT_EQ(axis.GetOldExt(), 100);
    axis.RestoreRange();
    Expect(0, 100);
    EXPECT_FALSE(axis.IsRangeModified());

    axis.Zoom(CPoint(90, 25), 0.5);  // about the value 25, which the point's y has
    Expect(12.5, 62.5);
    axis.RestoreRange(), axis.Zoom(CPoint(90, 25), -0.5);
    Expect(-12.5, 137.5);
    axis.Zoom(CPoint(0, 0), -1), axis.Zoom(CPoint(0, 0), NAN);
    Expect(-12.5, 137.5);

    CUnitAxis vertical(0);
    vertical.SetPosition(50, 0, 100), vertical.Zoom(CPoint(0, 25), 0.5);
    EXPECT_EQ(vertical.GetOrigin(), 37.5);
    EXPECT_EQ(vertical.GetExtent(), 87.5);
    double value = 0;
    LONG coordinate = 0;
    EXPECT_TRUE(vertical.Coord2Value(50, value));
    EXPECT_EQ(value, 62.5);
    EXPECT_TRUE(vertical.Value2Coord(1e300, coordinate));
    EXPECT_EQ(coordinate, 100 - 268435456);
}

TEST_F(UnitAxis, ItsRectanglesAreHitInTheirOrder) {
    axis.SetZoomRect(CRect(0, 0, 10, 10)), axis.SetRubberRect(CRect(5, 0, 20, 10)), axis.SetDragRect(CRect(5, 5, 30, 15));
    axis.SetAreaRect(CRect(-5, 8, 10, 40));
    const std::pair<CPoint, CAxis::HITCODE> points[] = {{{6, 6}, CAxis::HIT_ZOOM},  {{10, 6}, CAxis::HIT_RUBBER},
                                                        {{20, 6}, CAxis::HIT_DRAG}, {{30, 6}, CAxis::HIT_NONE},
                                                        {{6, 14}, CAxis::HIT_DRAG}, {{6, 15}, CAxis::HIT_NONE}};
    for (const auto& [point, code] : points) EXPECT_EQ(axis.HitTest(point), code) << point.x << ", " << point.y;
    EXPECT_EQ(CRect(axis.GetBoundRect()), CRect(-5, 5, 30, 40));
    axis.SetDragRect(CRect());
    EXPECT_EQ(CRect(axis.GetBoundRect()), CRect(-5, 8, 10, 40));
    LONG start = -1;
    axis.SetPosition(7, 8, 9), axis.GetPosition(nullptr, &start, nullptr);
    EXPECT_EQ(start, 8);
}
