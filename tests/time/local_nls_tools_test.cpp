#include "time/local_nls_tools.h"

#include <gtest/gtest.h>

#include <climits>
#include <tuple>

TEST(LocalNlsTools, Integers) {
    struct Row {
        const char* text;
        int digits, value, result;
        const char* rest;
    };
    for (const Row& c : {Row{"2024-", 4, 2024, 1, "-"}, Row{"20245", 4, 2024, 0, "5"}, Row{"x", -1, 0, 1, "x"},
                         Row{"", 2, 0, 1, ""}, Row{"7", 0, 0, 0, "7"}, Row{"x", 0, 0, 1, "x"}, Row{"-5", -1, 0, 1, "-5"},
                         Row{"99999999999 ", -1, INT_MAX, 1, " "}, Row{"007", -1, 7, 1, ""}}) {
        const char* cursor = c.text;
        int value = -1;
        EXPECT_EQ(CLocalNlsTools::sInt(cursor, &value, c.digits), c.result) << c.text;
        EXPECT_EQ(value, c.value) << c.text;
        EXPECT_STREQ(cursor, c.rest) << c.text;
    }
}

TEST(LocalNlsTools, RunsAndSpaces) {
    const char* cursor = "MMM d";
    EXPECT_EQ(CLocalNlsTools::nTokC(cursor, 'd'), 0);
    EXPECT_EQ(CLocalNlsTools::nTokC(cursor, 'M'), 3);
    EXPECT_STREQ(cursor, " d");
    cursor = " \t x";
    CLocalNlsTools::eatWhite(cursor);
    EXPECT_STREQ(cursor, "\t x");
    cursor = "";
    EXPECT_EQ(CLocalNlsTools::nTokC(cursor, '\0'), 0);  // never beyond the end
    EXPECT_STREQ(cursor, "");
}

TEST(LocalNlsTools, Dates) {
    CLocalNlsTools tools;
    const CVXTTime before(2001, 2, 3, 4, 5, 6, -1);
    using Row = std::tuple<const char*, const char*, int, int, int>;  // the year is 0 where the text is refused
    for (const auto& [text, picture, year, month, day] :
         {Row{"31.12.41", "d.M.y", 2041, 12, 31}, Row{"1.1.1975", "d.M.y", 0, 0, 0}, Row{"1.1.1979", "d.M.y", 0, 0, 0},
          Row{"1.1.1980", "d.M.y", 1980, 1, 1}, Row{"1.13.20", "d.M.y", 0, 0, 0}, Row{"0.12.20", "d.M.y", 0, 0, 0},
          Row{"32.12.20", "d.M.y", 0, 0, 0}, Row{"1.1.42", "d.M.y", 0, 0, 0}, Row{"1.1.70", "d.M.y", 0, 0, 0},
          Row{"1.1.72", "d.M.y", 1972, 1, 1}, Row{"1.1.99", "d.M.y", 1999, 1, 1}, Row{"1.1.100", "d.M.y", 0, 0, 0},
          Row{"1.1.2042", "d.M.y", 0, 0, 0}, Row{"1.1.", "d.M.y", 2000, 1, 1},  // no digit is 0
          Row{"  2024-02-30 and more", "y-M-d", 2024, 3, 1}, Row{" 2024-02", "y-M-d", 0, 0, 0},
          Row{"5/6", "d/M", 0, 0, 0},  // a picture that does not name all three
          Row{"5/6/2020", "d/M/", 0, 0, 0}}) {
        CVXTTime read = before;
        EXPECT_EQ(tools.GetDate(text, picture, read), year != 0) << text;
        EXPECT_EQ(read, year ? CVXTTime(year, month, day, 4, 5, 6, -1) : before) << text;  // the time of day is kept
    }
    // 1971 is accepted by the reader and set, though it reads back clamped.
    CVXTTime time(2001, 2, 3, 4, 5, 6, -1);
    EXPECT_EQ(tools.GetDate("1.1.71", "d.M.y", time), 1);
    EXPECT_EQ(time, CVXTTime(1971, 1, 1, 4, 5, 6, -1));
    EXPECT_EQ(time.Get(TT_YEAR), 1972);
    EXPECT_EQ(tools.GetDate(nullptr, "d.M.y", time), 0);
    EXPECT_EQ(tools.GetDate("1.1.20", nullptr, time), 0);
}
