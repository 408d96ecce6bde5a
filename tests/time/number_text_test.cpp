#include "time/number_text.h"

#include <cfloat>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>
#include <tuple>

#include "tests/support/table.h"
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
    // The result, and what is left in the output.
    using Result = std::pair<int, double>;
    static Result Read(const std::string& text) {
        double value = -77;
        const int result = _NlsGetReal(text.c_str(), value);
        return {result, value};
    }
    RegionalText m_text;
};

class Reals : public RegionTest {};
FOR_EVERY_REGION(Reals);

}  // namespace

TEST_F(NumberText, ReadsReals) {
    Use(",", ".");
    struct Row {
        const char* text;
        int result;
        double value;  // what is left in the output, also on failure
        const char* suffix = nullptr;
    };
    for (const Row& c :
         Table(Row{"1.234,5", 1, 1234.5}, Row{"12.34", 0, 1234}, Row{"1.234.567", 1, 1234567}, Row{"1234.567", 1, 1234567},
               Row{"1.2345", 0, 12345}, Row{"-12.34", 0, 1234},  // the sign had not been applied yet
               Row{"-1.234", 1, -1234}, Row{"1..234", 1, 1234}, Row{"123.", 1, 123}, Row{"+.", 1, 0}, Row{".5", 0, 0},
               Row{",5", 1, 0.5}, Row{"-,5", 1, -0.5}, Row{",", 1, 0}, Row{"-", 1, 0}, Row{"+", 1, 0}, Row{"- ", 1, 0},
               Row{"- 5", 0, 0}, Row{"--5", 0, 0}, Row{"", 0, 0}, Row{"   ", 0, 0}, Row{nullptr, 0, 0}, Row{"x", 0, 0},
               Row{"  7,25  ", 1, 7.25}, Row{"\t7", 0, 0}, Row{"1e3", 1, 1000}, Row{"-2,5E-01", 1, -0.25}, Row{"1e+16", 1, 1e16},
               Row{"1e", 0, 1}, Row{"1e+", 0, 1}, Row{"1e5,5", 0, 1e5}, Row{"1e308", 0, 1}, Row{"-3e-308", 0, -3},
               Row{"3e99999999999999999999", 0, 3}, Row{"1e0000307", 1, 1e307}, Row{"2,5 V", 1, 2.5, "V"},
               Row{"2,5V ", 1, 2.5, "V"}, Row{"2,5 X", 0, 2.5, "V"}, Row{"2,5 m", 1, 2.5, "mV"}, Row{"2,5 mVx", 0, 2.5, "mV"},
               Row{"2,5", 1, 2.5, "mV"}, Row{"2,5 V", 0, 2.5}, Row{"-V", 1, 0, "V"}, Row{"inf", 0, 0}, Row{"nan", 0, 0},
               Row{"0x10", 0, 0})) {
        double value = -77;
        EXPECT_EQ(_NlsGetReal(c.text, value, c.suffix), c.result) << c.text;
        EXPECT_NEAR(value, c.value, std::fabs(c.value) * 1e-13) << c.text;
    }
}

TEST_F(NumberText, LeavesNoCharacterBeyondTheEndUnread) {
    const std::string many(10'000, '9');
    EXPECT_EQ(Read(many), Result(1, kInfinity));  // as far as a double goes
    for (const auto& [text, expected] : {std::pair("0." + many, 1.0), std::pair("1e-" + std::string(9'000, '0') + "5", 1e-5),
                                         std::pair(std::string("1e307"), 1e307), std::pair(std::string("1e-307"), 1e-307)}) {
        const auto [result, value] = Read(text);
        EXPECT_EQ(result, 1);
        EXPECT_NEAR(value / expected, 1, 1e-13) << expected;
    }
}

TEST_F(NumberText, ReadsWithSeparatorsThatAreHardToTellApart) {
    using Row = std::tuple<const char*, const char*, const char*, int, double>;
    for (const auto& [decimal, thousand, text, result, value] :
         {Row{".", ".", "1.234", 1, 1234},  // the whole part takes it first
          Row{".", ".", "1.5", 0, 15}, Row{".", ".", ".5", 1, 0.5}, Row{"5", "7", "175", 1, 175},  // a digit is a digit
          Row{"5", "7", "512", 1, 0.12},  // but at the beginning the decimal separator comes first
          Row{"", "", "12", 1, 12}, Row{"", "", "1.5", 0, 1}, Row{"", "", "", 0, 0}, Row{".", " ", " 1 234", 1, 1234}}) {
        Use(decimal, thousand);
        const Result read = Read(text);
        EXPECT_EQ(read.first, result) << text;
        EXPECT_NEAR(read.second, value, 1e-15) << text;
    }
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
    using Row = std::tuple<const char*, char, char, int, double>;
    for (const auto& [text, decimal, thousand, result, expected] :
         {Row{"  1_234#5e1", '#', '_', 1, 12345}, Row{"1#5 ", '#', '_', 0, 1.5},  // nothing may follow
          Row{"1,5", 0, 0, 0, 1}, Row{"", 0, 0, 0, 0}}) {
        double value = 0;
        EXPECT_EQ(CLocalNlsTools::GetReal(text, decimal, thousand, value), result) << text;
        EXPECT_EQ(value, expected) << text;
    }
}

TEST_F(NumberText, LargestValueOfAPicture) {
    double max = -1;
    using Row = std::tuple<const char*, int, double>;
    for (const auto& [picture, result, expected] :
         {Row{"###.##", 0, 999}, Row{"###", 1, 999}, Row{"###.", 1, 999}, Row{"", 1, 0}, Row{nullptr, 1, 0}, Row{"##x", 1, 99},
          Row{"##x.##", 1, 99.99}, Row{"#x.##yz", 0, 9.99}, Row{"@@", 0, 0}, Row{"##x.", 1, 99}}) {
        EXPECT_EQ(_NlsGetMaxFixed(picture, max), result) << picture;
        EXPECT_DOUBLE_EQ(max, expected) << picture;
    }
    Use("", "");
    EXPECT_EQ(_NlsGetMaxFixed("##x", max), 1);  // an empty separator is not the end of the text
}

TEST_F(NumberText, Pictures) {
    using Row = std::tuple<int, int, const char*>;
    for (const auto& [whole, decimals, picture] : {Row{3, 2, "###.##"}, Row{3, 0, "###"}, Row{0, 1, ".#"}})
        EXPECT_STREQ(NlsRealFmt(whole, decimals), picture);
    EXPECT_STREQ(NlsRealFmt(4), "@@@@");
    EXPECT_STREQ(NlsRealFmt(-1), "");
    m_text.Set(LOCALE_SDECIMAL, "::");
    EXPECT_STREQ(NlsRealFmt(3, 2), "###:##");
    EXPECT_STREQ(Written(1.25, NlsRealFmt(3, 2)), "1");  // the writer knows "." and "," only
}

TEST_F(NumberText, WritesSignificantDigits) {
    using Row = std::tuple<double, const char*, const char*>;
    for (const auto& [value, picture, text] :
         Table(Row{0.000012345, nullptr, "1.2345e-05"}, Row{100, "@@@@@", "100"}, Row{0, "@@@@@", "0"}, Row{-0.0, nullptr, "0"},
               Row{12345, nullptr, "12345"}, Row{123456, nullptr, "1.2346e+05"},
               Row{100000, nullptr, "1.0000e+05"},  // no digit is left to be dropped
               Row{99999.6, nullptr, "1.0000e+05"}, Row{-1234.5, nullptr, "-1234.5"}, Row{1234.50004, nullptr, "1234.5"},
               Row{0.5, nullptr, "0.5"}, Row{0.0012, nullptr, "0.0012"}, Row{0.00012, nullptr, "1.2e-04"},
               Row{0.1234, nullptr, "0.1234"}, Row{0.12345, nullptr, "1.2345e-01"}, Row{-0.001, nullptr, "-0.001"},
               Row{0.00001, nullptr, "1e-05"}, Row{9.96, "@@", "10"}, Row{0.096, "@", "0.1"},
               Row{0.95, "@", "0.9"},  // 0.9499999...
               Row{1e100, "@", "1e+100"}, Row{1.5e-300, "@@", "1.5e-300"}, Row{5e-324, "@@@", "4.94e-324"},
               Row{1234.5, "", "1234.5"}, Row{1234567, "x", "1.2346e+06"}, Row{kInfinity, nullptr, "inf"},
               Row{-kInfinity, "##.##", "-inf"}, Row{std::nan(""), "@", "nan"}))
        EXPECT_STREQ(Written(value, picture), text) << value;
    // 0.1 has 55 significant digits and no more.
    EXPECT_STREQ(Written(0.1, std::string(3'000, '@').c_str()), "1.000000000000000055511151231257827021181583404541015625e-01");
}

TEST_F(NumberText, WritesDecimals) {
    using Row = std::tuple<double, const char*, const char*>;
    for (const auto& [value, picture, text] :
         Table(Row{1234567.891, "###.##", "1,234,567.89"}, Row{-1234567.891, "#,###", "-1,234,567.891"},
               Row{123.4, "#.##", "123.40"}, Row{999.996, "#.##", "1,000.00"}, Row{1000, "####", "1,000"},
               Row{123456, "#", "123,456"}, Row{0.5, "#.##", "0.50"}, Row{0.05, "#.##", "0.05"}, Row{0.996, "#.##", "1.00"},
               Row{0.01, "#.##", "0.01"}, Row{0.006, "#.##", "0.00"},  // below a unit of the last decimal
               Row{-0.006, "#.##", "0.00"}, Row{0.000001, "#.######", "0.000001"}, Row{0, "#.##", "0.00"}, Row{0, "###", "0"},
               Row{0.6, "###", "0"}, Row{1.5, "###", "2"}, Row{2.5, "###", "2"},  // an exact half goes to the even digit
               Row{2.5, "###.", "2"}, Row{7.25, ".#", "7.2"}, Row{7.25, ".", "7"},
               Row{1e22, "#.#", "10,000,000,000,000,000,000,000.0"}))
        EXPECT_STREQ(Written(value, picture), text) << value << ' ' << picture;
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
    using Row = std::tuple<const char*, int, int>;
    for (const auto& [text, result, expected] :
         {Row{"-12", 1, -12}, Row{"+12", 0, 7}, Row{"", 0, 7}, Row{"-", 1, 0}, Row{"007", 1, 7}, Row{"1 ", 0, 7}, Row{" 1", 0, 7},
          Row{"1.000", 0, 7}, Row{"--1", 0, 7}, Row{"2147483647", 1, 2147483647}, Row{"1-", 0, 7}, Row{"\xB2", 0, 7},
          Row{"99999999999", 1, 2147483647}, Row{"-99999999999", 1, -2147483647 - 1}}) {
        int value = 7;
        EXPECT_EQ(_NlsGetInteger(text, value), result) << text;
        EXPECT_EQ(value, expected) << text;
    }
    using Number = std::pair<int, const char*>;
    for (const auto& [value, expected] : {Number{0, "0"}, Number{-999'999, "-999999"}, Number{9'999'999, "9999999"},
                                          Number{10'000'000, ""}, Number{-1'000'000, ""}, Number{-2147483647 - 1, ""}}) {
        CString text = "before";
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
    using Row = std::tuple<const char*, const char*, const char*>;
    for (const auto& [separator, digits, grouped] :
         {Row{",", "1234", "1,234"}, Row{",", "123", "123"}, Row{",", "1234567", "1,234,567"}, Row{",", "", ""},
          Row{",", "-123456", "-123,456"}, Row{",", "0.123456", "0.123,456"}, Row{",", "a1234 5678b", "a1,234 5,678b"},
          Row{"'_", "1234567", "1'_234'_567"}, Row{"", "1234567", "1234567"}}) {
        m_text.Set(LOCALE_STHOUSAND, separator);
        CString text(digits);
        NlsAddThousandSep(text);
        EXPECT_STREQ(text, grouped);
    }
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
    Use(".", "'_");
    EXPECT_STREQ(Written(1234.5, "#.#"), "1'_234.5");  // the whole separator is written, its first character is read
    EXPECT_EQ(Read("1'_234.5").first, 0);
    m_text.Strange("'_");  // without grouping a separator from before stays
    EXPECT_STREQ(Written(1234.5, "#.#"), "1'_234:5");
    Use("", "");
    EXPECT_STREQ(Written(1.5), "15");
    Use(".", ".");
    EXPECT_STREQ(Written(1234.5, "#.#"), "1.234.5");
    EXPECT_EQ(Read("1.234.5").first, 0);
}
