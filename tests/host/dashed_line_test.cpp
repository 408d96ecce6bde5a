#include "host/chart/dashed_line.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace {
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr RECT kClip = {0, 0, 100, 50};
using Points = std::vector<ORVIK_CURVE_POINT>;

// "0-6 9.5-15.5 19": the ends of its pieces along x, rounded to tenths; a dot has but one.
std::string PiecesOf(const Points& line) {
    std::string text;
    for (size_t i = 0; i < line.size();) {
        size_t last = i;
        while (last + 1 < line.size() && !std::isnan(line[last + 1].x)) ++last;
        const auto at = [&](size_t k) {
            std::string number = std::to_string(std::lround(static_cast<double>(line[k].x) * 10));
            if (number.size() < 2) number.insert(0, "0");
            number.insert(number.size() - 1, ".");
            return number.ends_with(".0") ? number.substr(0, number.size() - 2) : number;
        };
        text += (text.empty() ? "" : " ") + at(i) + (last > i ? "-" + at(last) : "");
        i = last + 2;
    }
    return text;
}
}  // namespace

TEST(DashedLine, PatternsAreDashesAndDots) {
    const struct {
        size_t pattern;
        Points line;
        const char* pieces;
    } cases[] = {
        {0, {{0, 5}, {30, 5}}, "0-30"},
        {1, {{0, 5}, {30, 5}}, "0-6 9.5-15.5 19-25 28.5-30"},
        {1, {{0, 5}, {4, 5}, {4, 5}, {30, 5}}, "0-6 9.5-15.5 19-25 28.5-30"},  // a bend does not part a dash
        {2, {{0, 5}, {10, 5}}, "0 3.5 7"},
        {3, {{0, 5}, {22, 5}}, "0-6 9.5 13-19"},
        {4, {{0, 5}, {24, 5}}, "0-6 9.5 13 16.5-22.5"},
        {1, {{0, 5}, {3, 5}, {kNan, kNan}, {20, 5}, {24, 5}}, "0-3 20-24"},  // each piece begins with a dash
        {1, {{7, 5}, {kNan, kNan}, {9, 5}}, "7 9"},                          // and a reading alone is a dot
        {1, {{5, -1000}, {6, -2000}, {1e6f, -3000}}, ""},
        // A million pixels before the plot: 105,263 patterns and 1.5 pixels of the next. A line is drawn to 2 pixels outside.
        {1, {{-1'000'000, 5}, {10, 5}}, "-1.5-4.5 8-10"},
        {1, {{90, 5}, {1'000'000, 5}, {1'000'000, 6}, {95, 6}}, "90-96 99.5-102 102-98"}};
    for (const auto& c : cases) EXPECT_EQ(PiecesOf(DashedLine(c.line, c.pattern, 1, kClip)), c.pieces) << c.pattern;
}

TEST(DashedLine, ALineThatFillsAnAreaIsCrowded) {
    Points line;
    for (int x = 0; x < 100; ++x) line.push_back({static_cast<float>(x), x % 2 == 0 ? -1e6f : 1e6f});
    EXPECT_NEAR(CrowdingOf(line, kClip), 99 * 50.0 / 2000, 0.1);
    EXPECT_LT(CrowdingOf({{0, 0}, {100, 50}}, kClip), 0.1);
    EXPECT_EQ(CrowdingOf({}, kClip), 0);
}
