#include "xml/number_text.h"
#include "tests/support/table.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <tuple>

using namespace orvik::detail;

namespace {
std::string General(double value) { return std::string(GeneralText(value).View()); }
}  // namespace

TEST(NumberText, GeneralFormat) {
    using Row = std::tuple<double, const char*>;
    for (const auto& [value, text] :
         {Row{-0.0, "-0"}, Row{1000000, "1E+06"}, Row{999999.5, "1E+06"}, Row{4.9e-324, "4.94066E-324"}, Row{INFINITY, "INF"},
          Row{-INFINITY, "-INF"}, Row{NAN, "NAN"}})
        EXPECT_EQ(General(value), text);
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
    using Row = std::tuple<const char*, double>;
    for (const auto& [text, value] : Table(
             Row{"", 0}, Row{"abc", 0}, Row{"1.5", 1.5}, Row{" \t\n+2.5x", 2.5}, Row{"-3;4", -3}, Row{"1E+06", 1e6}, Row{"1e", 1},
             Row{".5", 0.5}, Row{"5.", 5}, Row{"-.5e1", -5}, Row{"--1", 0}, Row{"+-1", 0}, Row{"1,5", 1}, Row{"0x10", 16},
             Row{"-0x1.8p1", -3}, Row{"0x", 0}, Row{"0xg", 0}, Row{"1e400", INFINITY}, Row{"-1e400", -INFINITY}, Row{"1e-400", 0},
             Row{"0.000000000000000000000000000001e-400", 0}, Row{"100000000000000000000e300", INFINITY}, Row{"INF", INFINITY},
             Row{"-inf", -INFINITY}, Row{"infinity", INFINITY}))
        EXPECT_EQ(ParseReal(text), value) << text;
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
    using Row = std::tuple<const char*, int64_t>;
    for (const auto& [text, value] :
         {Row{"", 0}, Row{"x1", 0}, Row{" 12", 12}, Row{"-12abc", -12}, Row{"+7", 7}, Row{"--7", 0}, Row{"007", 7},
          Row{"4294967295", 4294967295}, Row{"-9223372036854775808", std::numeric_limits<int64_t>::min()}, Row{"1.9", 1}})
        EXPECT_EQ(ParseInteger(text), value) << text;
}
