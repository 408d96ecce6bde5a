#include "time/number_text.h"

#include <cfloat>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>

#include "tests/time/regional_fixture.h"
#include "time/local_nls_tools.h"

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

class NumberText : public testing::Test {
protected:
    NumberText() { Use(".", ","); }
    void Use(const char* decimal, const char* thousand) {
        m_text.Set(LOCALE_SGROUPING, "3;0"), m_text.Set(LOCALE_SDECIMAL, decimal), m_text.Set(LOCALE_STHOUSAND, thousand);
        m_text.Set(LOCALE_ILZERO, "1");
    }
    static CString Written(double value, const char* picture = nullptr) {
        CString text("before");
        EXPECT_EQ(_NlsSetReal(text, value, picture), 1);
        return text;
    }
    RegionalText m_text;
};

class Reals : public RegionTest {};
FOR_EVERY_REGION(Reals);

}  // namespace

TEST_F(NumberText, ReadsReals) {
    Use(",", ".");
    const struct {
        const char *text, *suffix;
        int result;
        double value;  // what is left in the output, also on failure
    } cases[] = {{"1.234,5", nullptr, 1, 1234.5},
                 {"12.34", nullptr, 0, 1234},
                 {"1.234.567", nullptr, 1, 1234567},
                 {"1234.567", nullptr, 1, 1234567},
                 {"1.2345", nullptr, 0, 12345},
                 {"-12.34", nullptr, 0, 1234},  // the sign had not been applied yet
                 {"-1.234", nullptr, 1, -1234},
                 {"1..234", nullptr, 1, 1234},
                 {"123.", nullptr, 1, 123},
                 {"+.", nullptr, 1, 0},
                 {".5", nullptr, 0, 0},
                 {",5", nullptr, 1, 0.5},
                 {"-,5", nullptr, 1, -0.5},
                 {",", nullptr, 1, 0},
                 {"-", nullptr, 1, 0},
                 {"+", nullptr, 1, 0},
                 {"- ", nullptr, 1, 0},
                 {"- 5", nullptr, 0, 0},
                 {"--5", nullptr, 0, 0},
                 {"", nullptr, 0, 0},
                 {"   ", nullptr, 0, 0},
                 {nullptr, nullptr, 0, 0},
                 {"x", nullptr, 0, 0},
                 {"  7,25  ", nullptr, 1, 7.25},
                 {"\t7", nullptr, 0, 0},
                 {"1e3", nullptr, 1, 1000},
                 {"-2,5E-01", nullptr, 1, -0.25},
                 {"1e+16", nullptr, 1, 1e16},
                 {"1e", nullptr, 0, 1},
                 {"1e+", nullptr, 0, 1},
                 {"1e5,5", nullptr, 0, 1e5},
                 {"1e308", nullptr, 0, 1},
                 {"-3e-308", nullptr, 0, -3},
                 {"3e99999999999999999999", nullptr, 0, 3},
                 {"1e0000307", nullptr, 1, 1e307},
                 {"2,5 V", "V", 1, 2.5},
                 {"2,5V ", "V", 1, 2.5},
                 {"2,5 X", "V", 0, 2.5},
                 {"2,5 m", "mV", 1, 2.5},
                 {"2,5 mVx", "mV", 0, 2.5},
                 {"2,5", "mV", 1, 2.5},
                 {"2,5 V", nullptr, 0, 2.5},
                 {"-V", "V", 1, 0},
                 {"inf", nullptr, 0, 0},
                 {"nan", nullptr, 0, 0},
                 {"0x10", nullptr, 0, 0}};
    for (const auto& c : cases) {
        double value = -77;
        EXPECT_EQ(_NlsGetReal(c.text, value, c.suffix), c.result) << c.text;
        EXPECT_NEAR(value, c.value, std::fabs(c.value) * 1e-13) << c.text;
    }
}

TEST_F(NumberText, LeavesNoCharacterBeyondTheEndUnread) {
    double value = 0;
    const std::string many(10'000, '9');
    EXPECT_EQ(_NlsGetReal(many.c_str(), value), 1);  // as far as a double goes
    EXPECT_EQ(value, kInfinity);
    EXPECT_EQ(_NlsGetReal(("0." + many).c_str(), value), 1);
    EXPECT_NEAR(value, 1, 1e-15);
    EXPECT_EQ(_NlsGetReal(("1e-" + std::string(9'000, '0') + "5").c_str(), value), 1);
    EXPECT_NEAR(value, 1e-5, 1e-18);
    EXPECT_EQ(_NlsGetReal("1e307", value), 1);
    EXPECT_NEAR(value / 1e307, 1, 1e-13);
    EXPECT_EQ(_NlsGetReal("1e-307", value), 1);
    EXPECT_NEAR(value / 1e-307, 1, 1e-13);
}

TEST_F(NumberText, ReadsWithSeparatorsThatAreHardToTellApart) {
    double value = 0;
    Use(".", ".");
    EXPECT_EQ(_NlsGetReal("1.234", value), 1);
    EXPECT_EQ(value, 1234);  // the whole part takes it first
    EXPECT_EQ(_NlsGetReal("1.5", value), 0);
    EXPECT_EQ(_NlsGetReal(".5", value), 1);
    EXPECT_EQ(value, 0.5);
    Use("5", "7");  // a digit is a digit
    EXPECT_EQ(_NlsGetReal("175", value), 1);
    EXPECT_EQ(value, 175);
    EXPECT_EQ(_NlsGetReal("512", value), 1);
    EXPECT_NEAR(value, 0.12, 1e-15);  // but at the beginning the decimal separator comes first
    Use("", "");
    EXPECT_EQ(_NlsGetReal("12", value), 1);
    EXPECT_EQ(_NlsGetReal("1.5", value), 0);
    EXPECT_EQ(_NlsGetReal("", value), 0);
    Use(".", " ");
    EXPECT_EQ(_NlsGetReal(" 1 234", value), 1);
    EXPECT_EQ(value, 1234);
}

TEST_F(NumberText, ReadsFloatsInTheirRange) {
    float value = 7;
    EXPECT_EQ(_NlsGetReal("1e39", value), 0);
    EXPECT_EQ(_NlsGetReal("-1e39", value), 0);
    EXPECT_EQ(_NlsGetReal(std::string(400, '9').c_str(), value), 0);
    EXPECT_EQ(value, 7);
    EXPECT_EQ(_NlsGetReal("2.5x", value), 0);
    EXPECT_EQ(value, 2.5f);  // what was read is stored
    EXPECT_EQ(_NlsGetReal("3.4e38 W", value, "W"), 1);
    EXPECT_FLOAT_EQ(value, 3.4e38f);
}

TEST_F(NumberText, ReadsWithGivenSeparators) {
    double value = 0;
    EXPECT_EQ(CLocalNlsTools::GetReal("  1_234#5e1", '#', '_', value), 1);
    EXPECT_EQ(value, 12345);
    EXPECT_EQ(CLocalNlsTools::GetReal("1#5 ", '#', '_', value), 0);  // nothing may follow
    EXPECT_EQ(CLocalNlsTools::GetReal("1,5", 0, 0, value), 0);
    EXPECT_EQ(value, 1);
    EXPECT_EQ(CLocalNlsTools::GetReal("", 0, 0, value), 0);
}

TEST_F(NumberText, LargestValueOfAPicture) {
    const struct {
        const char* picture;
        int result;
        double max;
    } cases[] = {{"###.##", 0, 999}, {"###", 1, 999},      {"###.", 1, 999},     {"", 1, 0},   {nullptr, 1, 0},
                 {"##x", 1, 99},     {"##x.##", 1, 99.99}, {"#x.##yz", 0, 9.99}, {"@@", 0, 0}, {"##x.", 1, 99}};
    for (const auto& c : cases) {
        double max = -1;
        EXPECT_EQ(_NlsGetMaxFixed(c.picture, max), c.result) << c.picture;
        EXPECT_DOUBLE_EQ(max, c.max) << c.picture;
    }
    Use("", "");
    double max = -1;
    EXPECT_EQ(_NlsGetMaxFixed("##x", max), 1);  // an empty separator is not the end of the text
}

TEST_F(NumberText, Pictures) {
    EXPECT_STREQ(NlsRealFmt(3, 2), "###.##");
    EXPECT_STREQ(NlsRealFmt(3, 0), "###");
    EXPECT_STREQ(NlsRealFmt(0, 1), ".#");
    EXPECT_STREQ(NlsRealFmt(4), "@@@@");
    EXPECT_STREQ(NlsRealFmt(-1), "");
    m_text.Set(LOCALE_SDECIMAL, "::");
    EXPECT_STREQ(NlsRealFmt(3, 2), "###:##");
    EXPECT_STREQ(Written(1.25, NlsRealFmt(3, 2)), "1");  // the writer knows "." and "," only
}

TEST_F(NumberText, WritesSignificantDigits) {
    const struct {
        double value;
        const char *picture, *text;
    } cases[] = {{0.000012345, nullptr, "1.2345e-05"},
                 {100, "@@@@@", "100"},
                 {0, "@@@@@", "0"},
                 {-0.0, nullptr, "0"},
                 {12345, nullptr, "12345"},
                 {123456, nullptr, "1.2346e+05"},
                 {100000, nullptr, "1.0000e+05"},  // no digit is left to be dropped
                 {99999.6, nullptr, "1.0000e+05"},
                 {-1234.5, nullptr, "-1234.5"},
                 {1234.50004, nullptr, "1234.5"},
                 {0.5, nullptr, "0.5"},
                 {0.0012, nullptr, "0.0012"},
                 {0.00012, nullptr, "1.2e-04"},
                 {0.1234, nullptr, "0.1234"},
                 {0.12345, nullptr, "1.2345e-01"},
                 {-0.001, nullptr, "-0.001"},
                 {0.00001, nullptr, "1e-05"},
                 {9.96, "@@", "10"},
                 {0.096, "@", "0.1"},
                 {0.95, "@", "0.9"},  // 0.9499999...
                 {1e100, "@", "1e+100"},
                 {1.5e-300, "@@", "1.5e-300"},
                 {5e-324, "@@@", "4.94e-324"},
                 {1234.5, "", "1234.5"},
                 {1234567, "x", "1.2346e+06"},
                 {kInfinity, nullptr, "inf"},
                 {-kInfinity, "##.##", "-inf"},
                 {std::nan(""), "@", "nan"}};
    for (const auto& c : cases) EXPECT_STREQ(Written(c.value, c.picture), c.text) << c.value;
    // 0.1 has 55 significant digits and no more.
    EXPECT_STREQ(Written(0.1, std::string(3'000, '@').c_str()), "1.000000000000000055511151231257827021181583404541015625e-01");
}

TEST_F(NumberText, WritesDecimals) {
    const struct {
        double value;
        const char *picture, *text;
    } cases[] = {{1234567.891, "###.##", "1,234,567.89"},
                 {-1234567.891, "#,###", "-1,234,567.891"},
                 {123.4, "#.##", "123.40"},
                 {999.996, "#.##", "1,000.00"},
                 {1000, "####", "1,000"},
                 {123456, "#", "123,456"},
                 {0.5, "#.##", "0.50"},
                 {0.05, "#.##", "0.05"},
                 {0.996, "#.##", "1.00"},
                 {0.01, "#.##", "0.01"},
                 {0.006, "#.##", "0.00"},  // below a unit of the last decimal
                 {-0.006, "#.##", "0.00"},
                 {0.000001, "#.######", "0.000001"},
                 {0, "#.##", "0.00"},
                 {0, "###", "0"},
                 {0.6, "###", "0"},
                 {1.5, "###", "2"},
                 {2.5, "###", "2"},  // an exact half goes to the even digit
                 {2.5, "###.", "2"},
                 {7.25, ".#", "7.2"},
                 {7.25, ".", "7"},
                 {1e22, "#.#", "10,000,000,000,000,000,000,000.0"}};
    for (const auto& c : cases) EXPECT_STREQ(Written(c.value, c.picture), c.text) << c.value << ' ' << c.picture;
    EXPECT_EQ(Written(DBL_MAX, "#.#").GetLength(), 309 + 102 + 2);
    const CString tiny = Written(5e-324, ("#." + std::string(2'000, '#')).c_str());
    EXPECT_EQ(tiny.GetLength(), 2'002);
    EXPECT_EQ(tiny.Mid(2, 330), CString('0', 323) + "4940656");
    EXPECT_EQ(tiny.Right(926), CString('0', 926));
}

TEST_F(NumberText, WritesWithGivenSeparatorsAndWithoutLeadingZero) {
    CString text;
    EXPECT_EQ(_NlsSetReal(text, -1234567.5, "#.##", "<>", "__"), 1);
    EXPECT_STREQ(text, "-1__234__567<>50");
    EXPECT_EQ(_NlsSetReal(text, 1234567.5, "#.##", "", ""), 1);
    EXPECT_STREQ(text, "123456750");
    EXPECT_EQ(_NlsSetReal(text, 12.5, nullptr, "<>", ""), 1);
    EXPECT_STREQ(text, "12<>5");
    m_text.Set(LOCALE_ILZERO, "0");
    EXPECT_STREQ(Written(0.5), ".5");
    EXPECT_STREQ(Written(-0.05, "#.##"), "-.05");
    EXPECT_STREQ(Written(0.001, "#.##"), "0.00");
    m_text.Set(LOCALE_SDECIMAL, "::");
    EXPECT_STREQ(Written(1.5), "1:5");  // the first character
    text = "#.#";
    EXPECT_EQ(_NlsSetReal(text, 1.25, text), 1);  // the picture may be the text itself
    EXPECT_STREQ(text, "1:2");
}

TEST_F(NumberText, Integers) {
    const struct {
        const char* text;
        int result, value;
    } cases[] = {{"-12", 1, -12},
                 {"+12", 0, 7},
                 {"", 0, 7},
                 {"-", 1, 0},
                 {"007", 1, 7},
                 {"1 ", 0, 7},
                 {" 1", 0, 7},
                 {"1.000", 0, 7},
                 {"--1", 0, 7},
                 {"2147483647", 1, 2147483647},
                 {"1-", 0, 7},
                 {"\xB2", 0, 7},
                 {"99999999999", 1, 2147483647},
                 {"-99999999999", 1, -2147483647 - 1}};
    for (const auto& c : cases) {
        int value = 7;
        EXPECT_EQ(_NlsGetInteger(c.text, value), c.result) << c.text;
        EXPECT_EQ(value, c.value) << c.text;
    }
    CString text;
    for (const auto& [value, expected] : {std::pair(0, "0"),
                                          {-999'999, "-999999"},
                                          {9'999'999, "9999999"},
                                          {-42, "-42"},
                                          {10'000'000, ""},
                                          {-1'000'000, ""},
                                          {-2147483647 - 1, ""}}) {
        text = "before";
        EXPECT_EQ(_NlsSetInteger(text, value), 1);
        EXPECT_STREQ(text, expected);
    }
    CString format("mine");
    EXPECT_EQ(_NlsSetFormat(format, "theirs"), 1);
    EXPECT_STREQ(format, "mine");
    EXPECT_EQ(_NlsGetFormat("theirs", format), 1);
    EXPECT_STREQ(format, "theirs");
}

TEST_F(NumberText, GroupsDigitsInText) {
    const struct {
        const char *text, *grouped;
    } cases[] = {{"1234", "1,234"},         {"123", "123"}, {"1234567", "1,234,567"},        {"", ""}, {"-123456", "-123,456"},
                 {"0.123456", "0.123,456"}, {"1", "1"},     {"a1234 5678b", "a1,234 5,678b"}};
    for (const auto& c : cases) {
        CString text(c.text);
        NlsAddThousandSep(text);
        EXPECT_STREQ(text, c.grouped);
    }
    CString text("1234567");
    m_text.Set(LOCALE_STHOUSAND, "'_");
    NlsAddThousandSep(text);
    EXPECT_STREQ(text, "1'_234'_567");
    m_text.Set(LOCALE_STHOUSAND, "");
    NlsAddThousandSep(text = "1234567");
    EXPECT_STREQ(text, "1234567");
}

// Beside the C library, digit by digit.
TEST_F(NumberText, DigitsAreCorrectlyRounded) {
    std::mt19937_64 random(1);
    for (int i = 0; i < 20'000; ++i) {
        const double value = std::ldexp(static_cast<double>(random() >> 11), static_cast<int>(random() % 1'000) - 540);
        const int digits = static_cast<int>(random() % 17) + 1;
        char peer[64];
        std::snprintf(peer, sizeof peer, "%.*e", digits - 1, value);
        const CString text = Written(value, CString('@', digits));
        std::string ours, theirs;
        for (const char c : std::string_view(text).substr(0, text.Find('e') < 0 ? text.GetLength() : text.Find('e')))
            if (c != '.') ours += c;
        for (const char* c = peer; *c != 'e'; ++c)
            if (*c != '.') theirs += *c;
        ours.erase(0, ours.find_first_not_of('0'));
        theirs.resize(std::max(theirs.find_last_not_of('0') + 1, ours.size()));
        ASSERT_EQ(ours, theirs) << peer << ' ' << text.GetString();
    }
}

// What is written reads back to the digits shown; a sanitizer build takes a fifth, which is a million over all settings.
TEST_P(Reals, ReadBackWhatIsWritten) {
    std::mt19937_64 random(2);
    std::uniform_real_distribution<double> unit(0, 1);
    // Twelve digits are what the reader's arithmetic keeps.
    CString pictures[2][13], text, again;
    for (int digits = 0; digits <= 12; ++digits) {
        pictures[0][digits] = CString('@', digits ? digits : 1);
        pictures[1][digits] = "###." + CString('#', digits);
    }
    int beyond = 0;
    for (int i = kSanitized ? 200'000 : 1'000'000; i > 0; --i) {
        const bool fixed = i % 4 == 0;
        const int digits = 1 + static_cast<int>(random() % (fixed ? 4 : 12));
        const double sign = random() % 2 ? 1 : -1;
        const double value = fixed ? sign * std::pow(10, unit(random) * 16 - 6)
                                   : std::ldexp(sign * (1 + unit(random)),
                                                static_cast<int>(random() % 2'098) - 1'074);  // every double's magnitude
        _NlsSetReal(text, value, pictures[fixed][digits]);
        double read = 0;
        const int result = _NlsGetReal(text, read);
        // An exponent of 308 is not read, in either direction.
        const int mark = text.Find('e');
        const bool readable = mark < 0 || std::abs(std::atoi(text.GetString() + mark + 1)) < 308;
        ASSERT_EQ(result, readable) << text.GetString();
        if (!readable) {
            ++beyond;
            continue;
        }
        const double half = fixed ? std::pow(10, -digits) / (std::fabs(value) < std::pow(10, -digits) ? 1 : 2)
                                  : std::fabs(value) * std::pow(10, 1 - digits) / 2;
        ASSERT_LE(std::fabs(read - value), half * 1.00001 + std::fabs(value) * 1e-13) << value << ' ' << text.GetString();
        _NlsSetReal(again, read, pictures[fixed][digits]);
        ASSERT_EQ(again, text) << value;
    }
    EXPECT_GT(beyond, 0);
}

// Quirks that keep a number from being read back.
TEST_F(NumberText, DoesNotReadBack) {
    double value = 0;
    Use(".", "'_");
    EXPECT_STREQ(Written(1234.5, "#.#"), "1'_234.5");  // the whole separator is written, its first character is read
    EXPECT_EQ(_NlsGetReal("1'_234.5", value), 0);
    m_text.Strange("'_");  // without grouping a separator from before stays
    EXPECT_STREQ(Written(1234.5, "#.#"), "1'_234:5");
    Use("", "");
    EXPECT_STREQ(Written(1.5), "15");
    Use(".", ".");
    EXPECT_STREQ(Written(1234.5, "#.#"), "1.234.5");
    EXPECT_EQ(_NlsGetReal("1.234.5", value), 0);
}
