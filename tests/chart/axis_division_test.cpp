// Steps, divisions, the mapping and the choice of labels, without a drawing context.
#include "chart/axis_division.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <limits>
#include <tuple>
#include <utility>

#include "chart/axis_layout.h"
#include "time/number_text.h"

using namespace orvik;

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

AxisDivisionRequest Request(double origin, double extent, LONG pixels, LONG label, const char* format, bool vertical = false) {
    return {{origin, extent, 0, pixels, vertical}, label, format, '.'};
}

void Write(double value, CString& text, const char* format) { _NlsSetReal(text, value, format, CString("."), CString(",")); }

}  // namespace

TEST(AxisStep, TheDecadeOfAPowerOfTenIsThatPower) {
    for (int exponent = -323; exponent <= 308; ++exponent) {
        const double power = std::stod("1e" + std::to_string(exponent < -307 ? -307 : exponent));
        const int expected = exponent < -307 ? -307 : exponent;
        EXPECT_EQ(PowerOfTen(expected), power);
        EXPECT_EQ(DecadeOf(power), expected);
        EXPECT_EQ(DecadeOf(power * 0.999), expected - 1);
    }
    EXPECT_EQ(DecadeOf((0.3 - 0.1) / 2), -1);  // a hair below 0.1, yet not lowered
    EXPECT_EQ(DecadeOf(DBL_MAX), 308);
    EXPECT_EQ(DecadeOf(std::numeric_limits<double>::denorm_min()), -324);
    EXPECT_EQ(PowerOfTen(309), kInfinity);
    EXPECT_EQ(PowerOfTen(-400), 0);
}

struct DivisionCase {
    double origin, extent;
    LONG pixels, label;
    const char* format;
    double step;
    LONG count;
    double first, last;
};

TEST(AxisDivision, ChoosesTheSmallestStepThatLabelsFit) {
    for (const DivisionCase& c :
         {DivisionCase{0, 100, 500, 40, "#######", 20, 5, 0, 100}, DivisionCase{100, 0, 500, 40, "#######", -20, 5, 100, 0},
          DivisionCase{0, 100, 500, 10, "#######", 5, 20, 0, 100},   // 2 would need 50 * 10 * 3 > 1000
          DivisionCase{0, 3, 2000, 10, "#######", 1, 3, 0, 3},       // no decimals, no smaller step
          DivisionCase{0, 3, 2000, 10, "#######.#", 0.1, 30, 0, 3},  // one decimal
          DivisionCase{0, 1, 500, 400, "#######.##", 2, 1, 0, 2},    // 1 does not fit: 1200 > 1000
          DivisionCase{0, 2e6, 5000, 10, "@@", 1e6, 2, 0, 2e6},      // the decade of the larger end
          DivisionCase{-0.05, 0.05, 3000, 10, "#######.###", 0.001, 100, -0.05, 0.05},
          DivisionCase{0.3, 7.2, 700, 40, "#######.#", 1, 8, 0, 8}, DivisionCase{7.2, 0.3, 700, 40, "#######.#", -1, 8, 8, 0},
          DivisionCase{-7.2, -0.3, 700, 40, "#######.#", 1, 8, -8, 0}}) {
        for (const bool vertical : {false, true}) {
            SCOPED_TRACE(testing::Message() << c.origin << " to " << c.extent << ", " << c.format
                                            << (vertical ? ", vertical" : ""));
            const AxisDivision division = DivideAxis(Request(c.origin, c.extent, c.pixels, c.label, c.format, vertical));
            EXPECT_EQ(std::tuple(division.step, division.count, division.first, division.last),
                      std::tuple(c.step, c.count, c.first, c.last));
            EXPECT_EQ(division.FromFirst(c.count), c.last);
            EXPECT_EQ(division.FromLast(c.count), c.first);
        }
    }
}

// 700 pixels for 7: 100 for each step of 1. The first tick lies 25 pixels outside, the last one 75.
TEST(AxisDivision, AnEndKeepsItsDistanceOrMovesToItsTick) {
    using Row = std::tuple<double, double, LONG, bool, std::tuple<double, double>, std::tuple<LONG, LONG>>;
    for (const auto& [origin, extent, pixels, vertical, range, alignments] :
         {Row{0.25, 7.25, 700, false, {0.25, 7.25}, {25, -75 + 100}}, Row{0.25, 7.25, 700, true, {0.25, 7.25}, {-25, 75 - 100}},
          Row{0.005, 7.996, 690, false, {0, 8}, {0, 0}},  // less than a pixel outside: the range grows to the tick
          // A falling range whose first tick is the nearer one's neighbour: no step is taken off at the origin, kept so.
          Row{7.25, 0.25, 700, false, {7.25, 0.25}, {75, -25}}}) {
        const AxisDivision division = DivideAxis(Request(origin, extent, pixels, 40, "#######.#", vertical));
        EXPECT_EQ(std::tuple(division.origin, division.extent), range) << origin << (vertical ? ", vertical" : "");
        EXPECT_EQ(std::tuple(division.originAlignment, division.extentAlignment), alignments) << origin;
        if (origin == 0.25) {
            EXPECT_EQ(std::tuple(division.firstAt, division.lastAt), vertical ? std::tuple(725, -75) : std::tuple(-25, 775));
        }
    }
}

TEST(AxisDivision, ThereIsNoneWithoutARangeOrPixels) {
    for (const AxisDivisionRequest& request :
         {Request(5, 5, 100, 10, "#"), Request(0, 100, 0, 10, "#"), Request(0, 100, -5, 10, "#"),
          Request(0, kInfinity, 100, 10, "#"), Request(NAN, 1, 100, 10, "#"), Request(-DBL_MAX, DBL_MAX, 100, 10, "@")}) {
        const AxisDivision division = DivideAxis(request);
        EXPECT_EQ(division.count, 0);
        AxisLayout layout;
        LayOutAxis(layout, request, division, 5, nullptr, nullptr);
        EXPECT_TRUE(layout.ticks.empty());
        EXPECT_EQ(layout.offsets.size(), 1u);
    }
}

TEST(AxisDivision, NoStepMakesNeighboursLookEqual) {
    struct Case {
        double origin, extent;
        const char* format;
        char separator;
        double smallest;
    };
    for (const Case& c : {Case{0, 100, "#######.##", '.', 0.01}, Case{0, 100, "#######,##", ',', 0.01},
                          Case{0, 100, "#######,##", '.', 1},  // the separator in force is another one
                          Case{0, 1, "#######'##", '\'', 1},   // which the writer takes for no decimals
                          Case{0, 1, "#######.", '.', 1}, Case{0, 3e7, "@@", '.', 1e7}, Case{0, 100, "", '.', 1},
                          Case{0, 3e7, "", '.', 1e3}, Case{-1, -1 + 0x1p-50, "#.####################", '.', 1e-15}}) {
        AxisDivisionRequest request = Request(c.origin, c.extent, 1000, 1, c.format);
        request.decimalSeparator = c.separator;
        EXPECT_EQ(SmallestAxisStep(request).Value(), c.smallest) << c.format;
    }
}

TEST(AxisMapping, GoesThereAndBackAndClampsWhatIsFar) {
    constexpr LONG kFar = 268435456;
    const AxisMapping rising{0, 100, 0, 500, false}, falling{10, -10, 100, 200, true}, empty{5, 5, 0, 100, false};
    using Row = std::tuple<const AxisMapping*, double, LONG>;
    for (const auto& [mapping, value, at] :
         {Row{&rising, 50, 250}, Row{&rising, -0.19, 0},  // truncated toward zero
          Row{&rising, 1e300, kFar}, Row{&rising, kInfinity, kFar}, Row{&rising, 3e9, kFar}, Row{&rising, -1e300, -kFar},
          Row{&rising, -kInfinity, -kFar}, Row{&rising, -3e9, -kFar}, Row{&rising, NAN, -kFar}, Row{&empty, 6, kFar},
          Row{&falling, 0, 150}, Row{&falling, 5, 175}})  // falling, and growing upwards all the same
        EXPECT_EQ(mapping->ToCoordinate(value), at) << value;
    EXPECT_EQ(std::tuple(rising.ToValue(250), falling.ToValue(200), falling.ToValue(100)), std::tuple(50, 10, -10));
    EXPECT_TRUE(std::isnan(AxisMapping({0, 1, 7, 7, false}).ToValue(7)));
}

TEST(AxisLayout, DistancesAreParted) {
    constexpr long long kHuge = 1ll << 60;
    using Row = std::tuple<long long, int, int, long long>;
    for (const auto& [distance, part, parts, expected] :
         {Row{10, 1, 4, 3},  // 2.5 away from zero
          Row{-10, 1, 4, -3}, Row{-10, 1, 3, -3}, Row{10, 2, 3, 7}, Row{kHuge, 999, 1000, kHuge / 1000 * 999 + 975},
          Row{kHuge, 7, 7, kHuge}})
        EXPECT_EQ(PartOfDistance(distance, part, parts), expected) << distance;
}

// Six pixels a character.
TEST(AxisLayout, LabelsThatWouldOverlapAreLeftOutAndTicksAreNot) {
    const AxisDivisionRequest request = Request(0, 10, 100, 6, "#######");
    const AxisDivision division = DivideAxis(request);
    ASSERT_EQ(division.step, 1);
    AxisLayout layout;
    const auto write = [](double value, CString& text) { Write(value * 100, text, "#"); };
    LayOutAxis(layout, request, division, 2, write, [](const CString& text) { return LONG{6} * text.GetLength(); });
    ASSERT_EQ(layout.ticks.size(), 21u);
    for (size_t i = 0; i < layout.ticks.size(); ++i) {
        EXPECT_EQ(layout.ticks[i].at, static_cast<LONG>(5 * i));
        EXPECT_EQ(layout.ticks[i].large, i % 2 == 0);
    }
    // 0 ends at 3 + 2, and a label of three digits needs 9 pixels on either side: 100 would begin at 1, 400 at 31.
    const std::pair<LONG, const char*> labels[] = {{0, "0"}, {20, "200"}, {50, "500"}, {80, "800"}};
    ASSERT_EQ(layout.labels.size(), std::size(labels));
    for (size_t i = 0; i < std::size(labels); ++i) {
        EXPECT_EQ(layout.labels[i].at, labels[i].first);
        EXPECT_STREQ(layout.labels[i].text, labels[i].second);
    }
    EXPECT_EQ(layout.labelEnd, 80 + 9 + 2);
    ASSERT_EQ(layout.offsets.size(), 11u);
    EXPECT_EQ(layout.offsets[3], 30);
}

TEST(AxisLayout, HugeNumbersOfStepsStayBounded) {
    const AxisDivisionRequest request = Request(0, 999999, 2000000000, 0, "#######");
    const AxisDivision division = DivideAxis(request);
    EXPECT_LE(division.count, kMostAxisDivisions);
    AxisLayout layout;
    const auto write = [](double value, CString& text) { Write(value, text, "#######"); };
    LayOutAxis(layout, request, division, 2000000000, write, [](const CString&) { return LONG{1}; });
    EXPECT_LE(layout.ticks.size(), (1u << 20) + 1);
    const AxisDivisionRequest tiny = Request(0, 10, 10, 1, "#######");
    LayOutAxis(layout, tiny, DivideAxis(tiny), 1000, write, [](const CString&) { return LONG{1}; });
    EXPECT_EQ(layout.ticks.size(), 11u);  // one for each pixel
}
