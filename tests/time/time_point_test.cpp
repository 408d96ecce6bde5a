#include "time/time_point.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <tuple>

#include "platform/house_text_internal.h"
#include "tests/afx/bytes.h"
#include "tests/support/regional_settings.h"
#include "time/local_zone.h"
#include "time/local_zone_internal.h"
#include "time/locale_cache.h"

namespace {

constexpr __int64 kMillisecond = 1'000, kSecond = 1'000'000, kMinute = 60 * kSecond, kHour = 60 * kMinute;

CVXTTime At(__int64 count) {
    CVXTTime time;
    time.SetBinaryTime(count);
    return time;
}
CVXTTime Local(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
    return {year, month, day, hour, minute, second, -1};
}
CVXTTimeSpan Span(__int64 count) { return CVXTTimeSpan(count, TST_MICROSECONDS); }

// "2024-05-07 15:04:05", in local time.
std::string Fields(const CVXTTime& time) {
    int y, mo, d, h, mi, s;
    time.GetDate(&y, &mo, &d), time.GetTime(&h, &mi, &s);
    char text[64];
    std::snprintf(text, sizeof text, "%d-%02d-%02d %02d:%02d:%02d", y, mo, d, h, mi, s);
    return text;
}

HRESULT ResultOf(const std::function<void()>& make) {
    return Caught<COleException, HRESULT>(make, S_OK, [](const COleException& failure) { return failure.m_sc; });
}

}  // namespace

TEST(TimePoint, NowHasWholeSecondsOrMilliseconds) {
    const CVXTTime before = CVXTTime::Now(), whole, after = CVXTTime::Now();
    EXPECT_EQ(whole.GetBinaryTime() % kSecond, 0);
    EXPECT_EQ(before.GetBinaryTime() % kMillisecond, 0);
    EXPECT_LE(before.GetBinaryTime() / kSecond, whole.GetAnsiTime());
    EXPECT_LE(whole, after);
    const std::unique_ptr<CObject> made(RUNTIME_CLASS(CVXTTime)->CreateObject());
    EXPECT_GE(*static_cast<CVXTTime*>(made.get()), whole);  // dynamic creation gives the current time, not zero
}

TEST(TimePoint, CalendarConstructorChecksItsFields) {
    using Row = std::tuple<int, int, int, int, int, int>;
    for (const auto& [year, month, day, hour, minute, second] :
         {Row{1969, 12, 31, 0, 0, 0}, Row{2024, 0, 1, 0, 0, 0}, Row{2024, 13, 1, 0, 0, 0}, Row{2024, 1, 0, 0, 0, 0},
          Row{2024, 1, 32, 0, 0, 0}, Row{2024, 1, 1, 24, 0, 0}, Row{2024, 1, 1, 0, 60, 0}, Row{2024, 1, 1, 0, 0, 60},
          Row{2024, 1, 1, -1, 0, 0}})
        EXPECT_EQ(ResultOf([&] { Local(year, month, day, hour, minute, second); }), E_FAIL) << year << ' ' << month << ' ' << day;
    EXPECT_EQ(ResultOf([] { Local(3500, 1, 1); }), E_INVALIDARG);      // beyond what the C library represents
    EXPECT_EQ(Fields(Local(2024, 4, 31, 12)), "2024-05-01 12:00:00");  // put right, not refused
}

TEST(TimePoint, StartFailsWithoutALocalNewYear) {
    EXPECT_EQ(ResultOf([] { orvik::detail::LocalNewYear(1972, [](tm*) { return __time64_t{-1}; }); }), E_INVALIDARG);
    EXPECT_EQ(orvik::detail::LocalNewYear(1972) * kSecond, CVXTTime::GetMinTime());
}

TEST(TimePoint, ForeignTimes) {
    __timeb64 stamp{};
    stamp.time = 1'700'000'000, stamp.millitm = 125;
    EXPECT_EQ(CVXTTime(stamp).GetBinaryTime(), 1'700'000'000'125'000);
    EXPECT_EQ(CVXTTime(CTime(1'700'000'000)).GetBinaryTime(), 1'700'000'000 * kSecond);
    CTime seconds;
    At(-1'500'000).GetAtlTime(&seconds);
    EXPECT_EQ(seconds.GetTime(), -1);  // truncated toward zero
    EXPECT_EQ(At(-1'500'000).GetAnsiTime(), -1);
    CVXTTime time;
    time.SetAtlTime(&seconds);
    EXPECT_EQ(time.GetBinaryTime(), -kSecond);

    const COleDateTime noon(2024, 3, 5, 12, 0, 0);
    EXPECT_EQ(CVXTTime(noon), Local(2024, 3, 5, 12));
    const CVXTTime half{COleDateTime(static_cast<double>(noon) + 0.5 / 86'400)};
    EXPECT_NEAR(static_cast<double>(half.GetBinaryTime() - Local(2024, 3, 5, 12).GetBinaryTime()), 500'000, 1);
    EXPECT_EQ(ResultOf([] { CVXTTime{COleDateTime(1900, 1, 1, 0, 0, 0)}; }), E_FAIL);
}

TEST(TimePoint, SumsSaturateAtTheEpoch) {
    const __int64 lowest = CVXTTime::GetMinTime(), highest = CVXTTime::GetMaxTime();
    using Row = std::tuple<__int64, __int64, __int64, __int64>;
    for (const auto& [time, span, sum, difference] :
         {Row{1'000, 1, 1'001, 999}, Row{1'000, -1'000, lowest, 2'000}, Row{1'000, -999, 1, 1'999},  // below the range, yet kept
          Row{1'000, -1'001, lowest, 2'001}, Row{1'000, 1'000, 2'000, lowest}, Row{1'000, 1'001, 2'001, lowest}, Row{0, 0, 0, 0},
          Row{0, -1, lowest, 1}, Row{0, 1, 1, lowest}, Row{-1'000, 999, -1, -1'999}, Row{-1'000, 1'000, highest, -2'000},
          Row{-1'000, -1, -1'001, -999}, Row{-1'000, -1'000, -2'000, highest}, Row{-1'000, -1'001, -2'001, highest},
          Row{INT64_MAX, 1, INT64_MIN, INT64_MAX - 1},  // adding wraps
          Row{INT64_MIN, 1, INT64_MIN + 1, INT64_MAX}}) {
        EXPECT_EQ((At(time) + Span(span)).GetBinaryTime(), sum) << time << " + " << span;
        EXPECT_EQ((At(time) - Span(span)).GetBinaryTime(), difference) << time << " - " << span;
    }
    EXPECT_EQ(static_cast<const __int64&>(At(5) - At(-7)), 12);
    EXPECT_EQ(static_cast<const __int64&>(At(INT64_MIN) - At(1)), INT64_MAX);
}

TEST(TimePoint, GridRoundingTruncates) {
    using Row = std::tuple<__int64, __int64, __int64>;
    for (const auto& [count, floor, ceil] : {Row{1'001, 1'000, 2'000}, Row{2'000, 2'000, 2'000}, Row{1'999, 1'000, 2'000},
                                             Row{-1'001, -1'000, 0}, Row{-1'500, -1'000, 0}}) {  // not true ones before 1970
        CVXTTime down = At(count), up = At(count);
        down.Floor(1'000), up.Ceil(1'000);
        EXPECT_EQ(down.GetBinaryTime(), floor) << count;
        EXPECT_EQ(up.GetBinaryTime(), ceil) << count;
    }
}

TEST(TimePoint, CalendarReadsClampTheirValue) {
    EXPECT_EQ(Fields(At(0)), "1972-01-01 00:00:00");
    EXPECT_EQ(Fields(At(INT64_MIN)), "1972-01-01 00:00:00");
    EXPECT_EQ(Fields(At(INT64_MAX)), "2034-01-01 00:00:00");
    EXPECT_EQ(At(123'456).Get(TT_MILLISECOND), 0);  // parts of a second are clamped too
    EXPECT_EQ(At(INT64_MAX).Get(TT_MICROSECOND), 0);
    CVXTTime time = At(INT64_MAX);
    time.Clamp();
    EXPECT_EQ(time, Local(2034, 1, 1));
    time = At(0);
    EXPECT_EQ(time.SetTime(12, 30, 15, 250), 1);
    EXPECT_EQ(time, Local(1972, 1, 1, 12, 30, 15) + Span(250'000));
}

TEST(TimePoint, FieldSelectors) {
    const CVXTTime time = Local(2024, 11, 15, 13, 14, 15) + Span(678'901);
    const int expected[] = {2024, 4, 11, 46, 319, 15, 5, 13, 14, 15, 678, 901, 0};
    for (int type = 0; type <= 12; ++type) EXPECT_EQ(time.Get(static_cast<CVXTTimeType>(type)), expected[type]) << type;
    EXPECT_EQ(Local(2023, 1, 1).Get(TT_DAYOFYEAR), 0);
    EXPECT_EQ(Local(2023, 1, 31).Get(TT_MONTH), 1);
    EXPECT_EQ(Local(2024, 3, 1).Get(TT_DAYOFYEAR), 60);
    time.GetDate(nullptr, nullptr, nullptr), time.GetTime(nullptr, nullptr, nullptr);
}

TEST(TimePoint, WeekNumbers) {
    const struct {
        int year, month, day, week;
    } cases[] = {
        {2024, 1, 1, 1},  {2024, 1, 7, 1},  {2024, 1, 8, 2},    {2024, 12, 30, 1},                      // Monday
        {2019, 1, 1, 1},  {2019, 1, 6, 1},  {2019, 1, 7, 2},    {2019, 12, 29, 52}, {2019, 12, 30, 1},  // Tuesday
        {2020, 1, 5, 1},  {2020, 1, 6, 2},  {2020, 12, 28, 1},                                          // Wednesday: never 53
        {2015, 1, 4, 1},  {2015, 1, 5, 2},  {2015, 12, 31, 53},                                         // Thursday
        {2021, 1, 1, 53}, {2021, 1, 3, 53}, {2021, 1, 4, 1},    {2016, 12, 31, 52},                     // Friday
        {2022, 1, 1, 53}, {2022, 1, 2, 53}, {2022, 1, 3, 1},    {2022, 12, 31, 52},  // Saturday: 53, where ISO has 52
        {2023, 1, 1, 52}, {2023, 1, 2, 1},  {2012, 12, 30, 52}, {2012, 12, 31, 53},  // Sunday
    };
    for (const auto& c : cases)
        EXPECT_EQ(Local(c.year, c.month, c.day, 12).Get(TT_WEEK), c.week) << c.year << '-' << c.month << '-' << c.day;
}

TEST(TimePoint, SettingDateAndTime) {
    CVXTTime time = Local(2024, 2, 29, 23, 59, 58) + Span(999'999);
    EXPECT_EQ(time.SetDate(2023, 4, 31), 1);
    EXPECT_EQ(time, Local(2023, 5, 1, 23, 59, 58));  // normalised, whole seconds
    EXPECT_EQ(time.SetTime(25, -1, 0, 7), 1);
    EXPECT_EQ(time, Local(2023, 5, 2, 0, 59, 0) + Span(7'000));
    const CVXTTime kept = time;
    EXPECT_EQ(time.SetDate(1900, 1, 1), 0);
    EXPECT_EQ(time.SetDate(INT_MIN, INT_MIN, INT_MIN), 0);
    EXPECT_EQ(time.SetDate(99'999, 1, 1), 0);
    EXPECT_EQ(time, kept);
}

TEST(TimePoint, SystemAndFileTimes) {
    const CVXTTime time = Local(2024, 7, 6, 5, 4, 3) + Span(2'999);
    SYSTEMTIME system{};
    time.GetSystemTime(&system);
    const SYSTEMTIME expected = {2024, 7, 6, 6, 5, 4, 3, 2};  // local, a Saturday
    EXPECT_EQ(std::memcmp(&system, &expected, sizeof system), 0);
    CVXTTime back = At(0);
    EXPECT_EQ(back.SetSystemTime(&system), 1);
    EXPECT_EQ(back, Local(2024, 7, 6, 5, 4, 3) + Span(2'000));

    FILETIME local{}, utc{}, check{};
    time.GetLocalFileTime(&local);
    SystemTimeToFileTime(&expected, &check);
    EXPECT_EQ(std::memcmp(&local, &check, sizeof local), 0);
    time.GetFileTime(&utc);
    FileTimeToLocalFileTime(&utc, &check);
    EXPECT_EQ(std::memcmp(&local, &check, sizeof local), 0);
    back = At(0);
    back.SetFileTime(&utc);
    EXPECT_EQ(back, Local(2024, 7, 6, 5, 4, 3) + Span(2'000));

    const FILETIME none = {0, 0x80000000u};  // no date
    back.SetLocalFileTime(&none);
    EXPECT_EQ(back, Local(2024, 7, 6, 5, 4, 3) + Span(2'000));
}

// Only seeks that stay in winter time: one across a change keeps its flag, see SeeksKeepTheDaylightFlag.
TEST(TimePoint, SeekFloorByCalendar) {
    const CVXTTime time = Local(2023, 2, 16, 13, 14, 15) + Span(678'901);  // a Thursday
    using Row = std::tuple<CVXTTimeType, const char*>;
    for (const auto& [type, fields] :
         {Row{TT_YEAR, "2023-01-01 00:00:00"}, Row{TT_QUARTER, "2023-01-01 00:00:00"}, Row{TT_MONTH, "2023-02-01 00:00:00"},
          Row{TT_WEEK, "2023-02-13 00:00:00"}, Row{TT_DAYOFYEAR, "2023-02-16 00:00:00"},
          Row{TT_DAYOFMONTH, "2023-02-16 00:00:00"}, Row{TT_WEEKDAY, "2023-02-16 00:00:00"},
          Row{TT_MICROSECOND, "2023-02-16 13:14:15"}, Row{static_cast<CVXTTimeType>(99), "2023-02-16 13:14:15"}}) {
        CVXTTime sought = time;
        sought.SeekFloor(type);
        EXPECT_EQ(Fields(sought), fields) << type;
        EXPECT_EQ(sought.GetBinaryTime() % kSecond, 0) << type;
    }
    CVXTTime monday = Local(2023, 11, 13, 0, 0, 1);
    monday.SeekFloor(TT_WEEK);
    EXPECT_EQ(monday, Local(2023, 11, 13));
    CVXTTime first = At(0);
    first.SeekFloor(TT_WEEK);  // 1 January 1972 was a Saturday: there is nothing before it
    EXPECT_EQ(first.GetBinaryTime(), CVXTTime::GetMinTime());
}

// Midnight of the day on which summer time ends or begins, with the flag of the value: an hour beside the day's real midnight.
TEST(TimePoint, SeeksKeepTheDaylightFlag) {
    const CVXTTime summer(2023, 7, 1, 12, 0, 0, -1);
    tm fields = orvik::detail::LocalFields(summer.GetAnsiTime());
    if (fields.tm_isdst <= 0) GTEST_SKIP() << "a zone without daylight saving has nothing to keep";
    CVXTTime time = summer;
    time.SeekFloor(TT_YEAR);
    tm expected = fields;
    expected.tm_mon = 0, expected.tm_mday = 1, expected.tm_hour = expected.tm_min = expected.tm_sec = 0;
    EXPECT_EQ(time.GetAnsiTime(), _mktime64(&expected));
    EXPECT_EQ(time.GetAnsiTime(), CVXTTime(2023, 1, 1, 0, 0, 0, -1).GetAnsiTime() - 3'600);
}

TEST(TimePoint, SeekOnTheEpochGrid) {
    const __int64 count = 1'700'000'123'456'789;
    struct Row {
        CVXTTimeType type;
        __int64 unit;
    };
    for (const Row& c :
         {Row{TT_HOUR, kHour}, Row{TT_MINUTE, kMinute}, Row{TT_SECOND, kSecond}, Row{TT_MILLISECOND, kMillisecond}}) {
        CVXTTime time = At(count);
        time.SeekFloor(c.type);
        EXPECT_EQ(time.GetBinaryTime(), count - count % c.unit) << c.type;
        if (c.type == TT_MILLISECOND) continue;
        const __int64 start = time.GetBinaryTime();
        time.SeekNext(c.type);
        EXPECT_EQ(time.GetBinaryTime(), start + c.unit) << c.type;  // from the start of a unit a whole one on
    }
    CVXTTime past = At(5);
    past.SeekFloor(TT_SECOND);  // clamped first
    EXPECT_EQ(past.GetBinaryTime(), CVXTTime::GetMinTime());
}

TEST(TimePoint, SeekNextByCalendar) {
    using Row = std::tuple<CVXTTime, CVXTTimeType, const char*>;
    for (const auto& [from, type, fields] :
         {Row{Local(2023, 11, 15, 12), TT_QUARTER, "2024-01-01 00:00:00"},
          Row{Local(2024, 12, 31, 23, 59, 59), TT_YEAR, "2025-01-01 00:00:00"},
          Row{Local(2023, 12, 1), TT_MONTH, "2024-01-01 00:00:00"}, Row{Local(2024, 1, 31), TT_MONTH, "2024-02-01 00:00:00"},
          Row{Local(2023, 11, 13), TT_WEEK, "2023-11-20 00:00:00"}, Row{Local(2023, 11, 16, 1), TT_WEEK, "2023-11-20 00:00:00"},
          Row{Local(2024, 2, 28, 23), TT_DAYOFYEAR, "2024-02-29 00:00:00"},
          Row{Local(2023, 12, 31, 8), TT_WEEKDAY, "2024-01-01 00:00:00"},
          Row{Local(2024, 7, 31, 8), TT_QUARTER, "2024-10-01 00:00:00"},
          Row{Local(2024, 5, 31, 8), TT_QUARTER, "2024-07-01 00:00:00"},
          Row{Local(2024, 1, 6, 12) + Span(750'000), TT_MILLISECOND, "2024-01-06 12:00:00"},
          Row{Local(2024, 1, 6, 12) + Span(750'000), TT_MICROSECOND, "2024-01-06 12:00:00"}}) {
        CVXTTime time = from;
        time.SeekNext(type);
        EXPECT_EQ(Fields(time), fields) << Fields(from) << " by " << type;
        EXPECT_EQ(time.GetBinaryTime() % kSecond, 0);
    }
}

TEST(TimePoint, SeekNextWeekStopsAtTheEndOfTheRange) {
    for (const CVXTTime& from : {Local(2033, 12, 26, 1), Local(2033, 12, 31, 23, 59, 59), At(INT64_MAX)}) {
        CVXTTime time = from;
        time.SeekNext(TT_WEEK);
        EXPECT_EQ(time.GetBinaryTime(), CVXTTime::GetMaxTime());
    }
}

TEST(TimePoint, FormatFollowsTheUsersSettings) {
    RegionalSettings settings;
    settings.American();
    NlsToolsUpdate();
    EXPECT_STREQ((Local(2024, 5, 7, 15, 4, 5)).Format(), "5/7/2024 3:04:05 PM");
    const TextLanguage swedish(LANG_SWEDISH);
    settings.Set(LOCALE_SSHORTDATE, "dddd 'den' d MMMM yy"), settings.Set(LOCALE_STIMEFORMAT, "H.mm");
    NlsToolsUpdate();
    EXPECT_STREQ((Local(2024, 5, 5, 7)).Format(), orvik::detail::HouseFrom1252("S\xF6ndag den 5 Maj 24 7.00").c_str());
}

TEST(TimePoint, ArchiveHoldsEightBytes) {
    const std::string bytes = afx_test::Stored([](CArchive& ar) { At(0x0102030405060708).Serialize(ar); });
    EXPECT_EQ(bytes, "\x08\x07\x06\x05\x04\x03\x02\x01");
    CVXTTime time = At(1);
    afx_test::ExpectLoads(bytes, [&](CArchive& ar) { time.Serialize(ar); });
    EXPECT_EQ(time.GetBinaryTime(), 0x0102030405060708);
    EXPECT_EQ(afx_test::Loaded("", [&](CArchive& ar) { time.Serialize(ar); }), CArchiveException::endOfFile);
}
