#include "time/time_span.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <memory>
#include <string>

#include "tests/afx/bytes.h"
#include "tests/support/regional_settings.h"
#include "time/locale_cache.h"

namespace {

constexpr __int64 kSecond = 1'000'000, kMinute = 60 * kSecond, kHour = 60 * kMinute, kDay = 24 * kHour, kWeek = 7 * kDay;

CVXTTimeSpan Micro(__int64 count) { return CVXTTimeSpan(count, TST_MICROSECONDS); }
__int64 Count(const CVXTTimeSpan& span) { return span; }

class TimeSpanText : public testing::Test {
protected:
    void SetUp() override {
        m_settings.American();
        NlsToolsRegister();
    }
    std::string Format(__int64 count, ERelFormat layout) { return Micro(count).Format(layout).GetString(); }

    RegionalSettings m_settings;
    TextLanguage m_language{LANG_ENGLISH};
};

}  // namespace

TEST(TimeSpan, UnitsAndFields) {
    EXPECT_EQ(Count(CVXTTimeSpan()), 0);
    const __int64 sizes[] = {1, 1'000, kSecond, kMinute, kHour, kDay, kWeek};
    for (int unit = 0; unit <= 6; ++unit)
        EXPECT_EQ(Count(CVXTTimeSpan(-3, static_cast<CVXTTimeSpanType>(unit))), -3 * sizes[unit]);
    EXPECT_EQ(Count(CVXTTimeSpan(7, static_cast<CVXTTimeSpanType>(7))), 0);
    CVXTTimeSpan span(5, TST_HOURS);
    span.Set(1, static_cast<CVXTTimeSpanType>(263));
    EXPECT_EQ(Count(span), 5 * kHour);
    EXPECT_EQ(Count(CVXTTimeSpan(1, 30, -5, 61, 1'500)), kDay + 30 * kHour - 5 * kMinute + 61 * kSecond + 1'500'000);
}

TEST(TimeSpan, DaysAsReal) {
    EXPECT_EQ(Count(CVXTTimeSpan(-1.5)), -129'600'000'000);
    EXPECT_EQ(Count(CVXTTimeSpan(0.5 / 86'400'000'000.0)), 0);  // half a microsecond is truncated, not rounded
    EXPECT_EQ(Count(CVXTTimeSpan(-1.9 / 86'400'000'000.0)), -1);
    EXPECT_DOUBLE_EQ(Micro(-129'600'000'000).CvtToReal(), -1.5);
    // 100 million days and a quarter: the whole part must not cost the fraction its bits.
    EXPECT_DOUBLE_EQ(Micro(100'000'000 * kDay + 6 * kHour).CvtToReal(), 100'000'000.25);
}

TEST(TimeSpan, ArithmeticWrapsAndTruncates) {
    EXPECT_EQ(Count(Micro(INT64_MAX) + Micro(1)), INT64_MIN);
    EXPECT_EQ(Count(-Micro(INT64_MIN)), INT64_MIN);
    EXPECT_EQ(Count(Micro(-7) / 2LL), -3);
    CVXTTimeSpan span = Micro(10);
    span += Micro(5), span -= Micro(1), span *= 3L, span *= -2LL, span /= 5LL;
    EXPECT_EQ(Count(span), -16);
    EXPECT_EQ(Count(Micro(-7).Align(Micro(5))), -5);
    EXPECT_EQ(Count(Micro(9).Align(Micro(-5))), 5);
    span = Micro(7 * kSecond + 1);
    span.AlignTo(CVXTTimeSpan(2, TST_SECONDS));
    EXPECT_EQ(Count(span), 6 * kSecond);
    EXPECT_LT(Micro(-1), Micro(0));
}

TEST(TimeSpan, NarrowConversionsKeepTheLow32Bits) {
    EXPECT_EQ(static_cast<long>(Micro(0x1'8000'0001)), static_cast<long>(static_cast<int32_t>(0x80000001u)));
    EXPECT_EQ(static_cast<unsigned long>(Micro(-1)), 0xFFFFFFFFul);
}

TEST(TimeSpan, ComponentsAndTotals) {
    const CVXTTimeSpan nineDays = CVXTTimeSpan(9, 23, 59, 58, 7) + Micro(6);
    const long components[] = {6, 7, 58, 59, 23, 2, 1};
    const __int64 totals[] = {863'998'007'006, 863'998'007, 863'998, 14'399, 239, 9, 1};
    for (int unit = 0; unit <= 6; ++unit) {
        EXPECT_EQ(nineDays.Get(static_cast<CVXTTimeSpanType>(unit)), components[unit]) << unit;
        EXPECT_EQ((-nineDays).Get(static_cast<CVXTTimeSpanType>(unit)), -components[unit]) << unit;
        EXPECT_EQ(nineDays.GetTotal(static_cast<CVXTTimeSpanType>(unit)), totals[unit]) << unit;
        EXPECT_EQ((-nineDays).GetTotal(static_cast<CVXTTimeSpanType>(unit)), -totals[unit]) << unit;
    }
    EXPECT_EQ(nineDays.Get(static_cast<CVXTTimeSpanType>(7)), 0);
    EXPECT_EQ(nineDays.GetTotal(static_cast<CVXTTimeSpanType>(-1)), 0);
    EXPECT_EQ(nineDays.GetTotalMilliSeconds(), 863'998'007);
    EXPECT_EQ(nineDays.GetTotalDays(), 9);
}

TEST(TimeSpan, FractionAddsHalfTheScaleNotHalfTheUnit) {
    EXPECT_EQ(Micro(1'500'000).GetFrac(TST_SECONDS, 3), 500);
    EXPECT_EQ(Micro(1'999'999).GetFrac(TST_SECONDS, 3), 999);  // ordinary rounding would give 1000
    EXPECT_EQ(Micro(90 * kMinute).GetFrac(TST_HOURS, 2), 50);
    EXPECT_EQ(Micro(90 * kMinute).GetFrac(TST_HOURS, 0), 0);
    EXPECT_EQ(Micro(999).GetFrac(TST_MICROSECONDS, 3), 0);
    EXPECT_EQ(Micro(999).GetFrac(static_cast<CVXTTimeSpanType>(7), 3), 0);
    EXPECT_EQ(Micro(604'799'999'999).GetFrac(TST_WEEKS, 13), 9'999'999'999'991);  // beyond 64 bits on the way
    EXPECT_EQ(Micro(-123'456'789).GetFrac(TST_HOURS, 12), -34'293'552'361);
    Micro(1).GetFrac(TST_WEEKS, INT_MAX);  // ends, whatever it gives
}

TEST(TimeSpan, ScanReadsNothing) {
    CVXTTimeSpan span = Micro(12);
    EXPECT_EQ(span.Scan("5 s"), 0);
    EXPECT_EQ(Count(span), 12);
}

TEST_F(TimeSpanText, Layouts) {
    const struct {
        __int64 count;
        int layout;
        const char* text;
    } cases[] = {
        {-15, RF_MICROSECONDS, "-15"},
        {0, RF_MICROSECONDS, " 0"},
        {INT64_MIN, RF_MICROSECONDS, "-9223372036854775808"},
        {1'250, RF_MILLISECONDS, " 1.25"},
        {1'001, RF_MILLISECONDS, " 1.001"},
        {1'500'000, RF_SECONDS, " 1.5"},
        {2'000'000, RF_SECONDS, " 2"},
        {20'000'000, RF_SECONDS, " 20"},
        {-1'000'001, RF_SECONDS, "-1.000001"},
        {90 * kSecond, RF_MINUTES, " 1.5"},
        {59, RF_MINUTES, " 0"},  // less than a millionth of a minute
        {kMinute + 60, RF_MINUTES, " 1.000001"},
        {kHour / 3, RF_HOURS, " 0.333333"},
        {-36 * kHour, RF_DAYS, "-1.5"},
        {kWeek / 4, RF_WEEKS, " 0.25"},
        {kDay + 2 * kHour + 3 * kMinute + 4 * kSecond + 999'999, RF_DAYS_HMS, " 001 - 02:03:04"},
        {-(kDay + 2 * kHour + 3 * kMinute), RF_DAYS_HM, "-001 - 02:03"},
        {1'234 * kDay, RF_DAYS_HM, " 1234 - 00:00"},
        {26 * kHour + 5, RF_HMS, " 26:00:00"},
        {49 * kHour + 5 * kMinute, RF_HM, " 49:05"},
        {8 * kDay + 5 * kMinute, RF_WORDS, "1 weeks 1 days 0 hours 5 minutes"},
        {45 * kSecond, RF_WORDS, "45 seconds"},
        {-45 * kSecond, RF_WORDS, "45 seconds"},
        {7 * kDay, RF_WORDS, "1 weeks "},
        {kDay + kSecond, RF_WORDS, "1 days 0 hours 0 minutes 1 seconds"},
        {kWeek + kHour, RF_WORDS, "1 weeks 0 days 1 hours"},
        {0, RF_WORDS, "<error>"},
        {999'999, RF_WORDS, "<error>"},
        {1'500'000, RF_WORDS, "<error>"},
        {kSecond, 12, "<error>"},
        {kSecond, -1, "<error>"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Format(c.count, static_cast<ERelFormat>(c.layout)), c.text) << c.count << " in layout " << c.layout;
}

TEST_F(TimeSpanText, FollowsTheUsersSettings) {
    m_settings.Swedish();
    NlsToolsUpdate();
    EXPECT_EQ(Format(1'500'000, RF_SECONDS), " 1,5");
    m_settings.Set(LOCALE_SDECIMAL, "");
    NlsToolsUpdate();
    EXPECT_EQ(Format(1'500'000, RF_SECONDS), " 15");  // an empty separator writes nothing

    const TextLanguage swedish(LANG_SWEDISH);
    EXPECT_EQ(Format(8 * kDay + 5 * kMinute, RF_WORDS), "1 veckor 1 dagar 0 timmar 5 minuter");
    EXPECT_EQ(Format(0, RF_WORDS), "<fel>");
}
