#include "xml/number_text.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>

using namespace orvik::detail;

namespace {
std::string General(double value) { return std::string(GeneralText(value).View()); }
}  // namespace

TEST(NumberText, GeneralFormat) {
    const struct {
        double value;
        const char* text;
    } cases[] = {
        {-0.0, "-0"},      {1000000, "1E+06"},  {999999.5, "1E+06"}, {4.9e-324, "4.94066E-324"},
        {INFINITY, "INF"}, {-INFINITY, "-INF"}, {NAN, "NAN"},
    };
    for (const auto& c : cases) EXPECT_EQ(General(c.value), c.text);
}

TEST(NumberText, GeneralFormatIsThatOfTheCLibraryInItsPlainLocale) {
    std::mt19937_64 random(1);
    for (int i = 0; i < 20000; ++i) {
        const uint64_t bits = random();
        double value;
        std::memcpy(&value, &bits, sizeof value);
        if (!std::isfinite(value)) continue;
        char expected[64];
        std::snprintf(expected, sizeof expected, "%G", value);
        ASSERT_EQ(General(value), expected);
    }
}

TEST(NumberText, Integers) {
    EXPECT_EQ(IntegerText(0).View(), "0");
    EXPECT_EQ(IntegerText(std::numeric_limits<int64_t>::min()).View(), "-9223372036854775808");
    EXPECT_EQ(UnsignedText(std::numeric_limits<uint64_t>::max()).View(), "18446744073709551615");
    EXPECT_STREQ(UnsignedText(70).CStr(), "70");
}

TEST(NumberText, ParseRealTable) {
    const struct {
        const char* text;
        double value;
    } cases[] = {
        {"", 0},
        {"abc", 0},
        {"1.5", 1.5},
        {" \t\n+2.5x", 2.5},
        {"-3;4", -3},
        {"1E+06", 1e6},
        {"1e", 1},
        {".5", 0.5},
        {"5.", 5},
        {"-.5e1", -5},
        {"--1", 0},
        {"+-1", 0},
        {"1,5", 1},
        {"0x10", 16},
        {"-0x1.8p1", -3},
        {"0x", 0},
        {"0xg", 0},
        {"1e400", INFINITY},
        {"-1e400", -INFINITY},
        {"1e-400", 0},
        {"0.000000000000000000000000000001e-400", 0},
        {"100000000000000000000e300", INFINITY},
        {"INF", INFINITY},
        {"-inf", -INFINITY},
        {"infinity", INFINITY},
    };
    for (const auto& c : cases) EXPECT_EQ(ParseReal(c.text), c.value) << c.text;
    EXPECT_TRUE(std::isnan(ParseReal("NAN")));
    EXPECT_TRUE(std::signbit(ParseReal("-0")));
    EXPECT_FALSE(std::signbit(ParseReal("-x"))) << "a sign alone is no number";
}

TEST(NumberText, ParseRealReadsWhatTheCLibraryReads) {
    std::mt19937_64 random(2);
    for (int i = 0; i < 20000; ++i) {
        const uint64_t bits = random();
        double value;
        std::memcpy(&value, &bits, sizeof value);
        if (!std::isfinite(value)) continue;
        char text[64];
        std::snprintf(text, sizeof text, i % 2 ? "%.17g" : "%G", value);
        ASSERT_EQ(ParseReal(text), std::strtod(text, nullptr)) << text;
    }
}

TEST(NumberText, ParseIntegerTable) {
    const struct {
        const char* text;
        int64_t value;
    } cases[] = {
        {"", 0},
        {"x1", 0},
        {" 12", 12},
        {"-12abc", -12},
        {"+7", 7},
        {"--7", 0},
        {"007", 7},
        {"4294967295", 4294967295},
        {"-9223372036854775808", std::numeric_limits<int64_t>::min()},
        {"1.9", 1},
    };
    for (const auto& c : cases) EXPECT_EQ(ParseInteger(c.text), c.value) << c.text;
}
