// The C run-time's time functions and the file-time conversions, as every home has them.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <tuple>

#include "platform/win32.h"

namespace {

long long Units(const FILETIME& t) {
    return static_cast<long long>((static_cast<unsigned long long>(t.dwHighDateTime) << 32) | t.dwLowDateTime);
}
FILETIME FileTime(long long units) {
    FILETIME t;
    t.dwLowDateTime = static_cast<DWORD>(units), t.dwHighDateTime = static_cast<DWORD>(units >> 32);
    return t;
}

}  // namespace

TEST(ClockFunctions, LimitsOfTheRunTime) {
    using Row = std::tuple<int, int, int, bool>;
    for (const auto& [year, month, day, good] : {Row{1969, 12, 30, false}, Row{1970, 1, 3, true}, Row{3000, 12, 30, true},
                                                 Row{3001, 1, 3, false}, Row{30'000, 1, 1, false}}) {
        tm fields{};
        fields.tm_year = year - 1900, fields.tm_mon = month - 1, fields.tm_mday = day, fields.tm_hour = 12, fields.tm_isdst = -1;
        EXPECT_EQ(_mktime64(&fields) != -1, good) << year;
    }
    tm fields{};
    __time64_t time = -1;
    EXPECT_NE(_localtime64_s(&fields, &time), 0);
    EXPECT_EQ(fields.tm_year, -1);
    time = 86'400LL * 365;
    EXPECT_EQ(_gmtime64_s(&fields, &time), 0);
    EXPECT_EQ(fields.tm_year, 71);
    EXPECT_EQ(fields.tm_yday, 0);
}

TEST(ClockFunctions, FieldsAreNormalised) {
    tm fields{};
    fields.tm_year = 124, fields.tm_mon = 13, fields.tm_mday = 30, fields.tm_hour = 12, fields.tm_isdst = -1;  // 30 February 2025
    const __time64_t time = _mktime64(&fields);
    ASSERT_NE(time, -1);
    EXPECT_EQ(std::tie(fields.tm_year, fields.tm_mon, fields.tm_mday, fields.tm_wday), std::tuple(125, 2, 2, 0));
    tm back{};
    EXPECT_EQ(_localtime64_s(&back, &time), 0);
    EXPECT_EQ(std::tie(back.tm_mday, back.tm_hour), std::tuple(2, 12));
}

TEST(FileTimes, KnownDates) {
    using Row = std::tuple<SYSTEMTIME, long long>;
    for (const auto& [system, units] :
         {Row{{1601, 1, 1, 1, 0, 0, 0, 0}, 0}, Row{{1970, 1, 4, 1, 0, 0, 0, 0}, 116'444'736'000'000'000},
          Row{{2000, 2, 2, 29, 23, 59, 59, 999}, 125'963'423'999'990'000},
          Row{{2024, 5, 2, 7, 15, 4, 5, 678}, 133'595'678'456'780'000},
          Row{{30'827, 12, 5, 31, 23, 59, 59, 999}, 9'223'149'887'999'990'000}}) {
        FILETIME file{};
        ASSERT_TRUE(SystemTimeToFileTime(&system, &file));
        EXPECT_EQ(Units(file), units) << system.wYear;
        SYSTEMTIME back{};
        ASSERT_TRUE(FileTimeToSystemTime(&file, &back));
        EXPECT_EQ(std::memcmp(&back, &system, sizeof back), 0) << system.wYear;
    }
}

TEST(FileTimes, ImpossibleDatesAreRefused) {
    for (const SYSTEMTIME& system :
         {SYSTEMTIME{1600, 12, 0, 31, 0, 0, 0, 0}, SYSTEMTIME{2024, 0, 0, 1, 0, 0, 0, 0}, SYSTEMTIME{2024, 13, 0, 1, 0, 0, 0, 0},
          SYSTEMTIME{2024, 4, 0, 31, 0, 0, 0, 0}, SYSTEMTIME{2024, 1, 0, 0, 0, 0, 0, 0}, SYSTEMTIME{2024, 1, 0, 1, 24, 0, 0, 0},
          SYSTEMTIME{2024, 1, 0, 1, 0, 60, 0, 0}, SYSTEMTIME{2024, 1, 0, 1, 0, 0, 0, 1'000}}) {
        FILETIME file = FileTime(7);
        EXPECT_FALSE(SystemTimeToFileTime(&system, &file)) << system.wYear << '-' << system.wMonth << '-' << system.wDay;
    }
    const FILETIME negative = FileTime(-1);
    SYSTEMTIME system{};
    EXPECT_FALSE(FileTimeToSystemTime(&negative, &system));
}

TEST(FileTimes, LocalOnesDifferByTheBiasOfNow) {
    const FILETIME utc = FileTime(133'595'678'456'780'000);
    FILETIME local{}, back{};
    ASSERT_TRUE(FileTimeToLocalFileTime(&utc, &local));
    ASSERT_TRUE(LocalFileTimeToFileTime(&local, &back));
    EXPECT_EQ(Units(back), Units(utc));
    SYSTEMTIME localNow{}, utcNow{};
    GetLocalTime(&localNow), GetSystemTime(&utcNow);
    FILETIME a{}, b{};
    SystemTimeToFileTime(&localNow, &a), SystemTimeToFileTime(&utcNow, &b);
    const long long bias = Units(a) - Units(b), expected = Units(local) - Units(utc);
    EXPECT_LT(std::abs(bias - expected), 600'000'000);  // the two readings of the clock are not one
}
