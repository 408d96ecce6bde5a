// The C run-time's time functions and the file-time conversions, as every home has them.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

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
    const struct {
        int year, month, day;
        bool good;
    } cases[] = {{1969, 12, 30, false}, {1970, 1, 3, true}, {3000, 12, 30, true}, {3001, 1, 3, false}, {30'000, 1, 1, false}};
    for (const auto& c : cases) {
        tm fields{};
        fields.tm_year = c.year - 1900, fields.tm_mon = c.month - 1, fields.tm_mday = c.day, fields.tm_hour = 12,
        fields.tm_isdst = -1;
        EXPECT_EQ(_mktime64(&fields) != -1, c.good) << c.year;
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
    EXPECT_EQ(fields.tm_year, 125);
    EXPECT_EQ(fields.tm_mon, 2);
    EXPECT_EQ(fields.tm_mday, 2);
    EXPECT_EQ(fields.tm_wday, 0);
    tm back{};
    EXPECT_EQ(_localtime64_s(&back, &time), 0);
    EXPECT_EQ(back.tm_mday, 2);
    EXPECT_EQ(back.tm_hour, 12);
}

TEST(FileTimes, KnownDates) {
    const struct {
        SYSTEMTIME system;
        long long units;
    } cases[] = {{{1601, 1, 1, 1, 0, 0, 0, 0}, 0},
                 {{1970, 1, 4, 1, 0, 0, 0, 0}, 116'444'736'000'000'000},
                 {{2000, 2, 2, 29, 23, 59, 59, 999}, 125'963'423'999'990'000},
                 {{2024, 5, 2, 7, 15, 4, 5, 678}, 133'595'678'456'780'000},
                 {{30'827, 12, 5, 31, 23, 59, 59, 999}, 9'223'149'887'999'990'000}};
    for (const auto& c : cases) {
        FILETIME file{};
        ASSERT_TRUE(SystemTimeToFileTime(&c.system, &file));
        EXPECT_EQ(Units(file), c.units) << c.system.wYear;
        SYSTEMTIME back{};
        ASSERT_TRUE(FileTimeToSystemTime(&file, &back));
        EXPECT_EQ(std::memcmp(&back, &c.system, sizeof back), 0) << c.system.wYear;
    }
}

TEST(FileTimes, ImpossibleDatesAreRefused) {
    const SYSTEMTIME cases[] = {{1600, 12, 0, 31, 0, 0, 0, 0}, {2024, 0, 0, 1, 0, 0, 0, 0},    {2024, 13, 0, 1, 0, 0, 0, 0},
                                {2024, 4, 0, 31, 0, 0, 0, 0},  {2024, 1, 0, 0, 0, 0, 0, 0},    {2024, 1, 0, 1, 24, 0, 0, 0},
                                {2024, 1, 0, 1, 0, 60, 0, 0},  {2024, 1, 0, 1, 0, 0, 0, 1'000}};
    for (const SYSTEMTIME& system : cases) {
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
