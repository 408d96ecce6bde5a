#include "host/chart/time_ticks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <set>

#include "host/words/time_input.h"
#include "tests/support/regional_settings.h"
#include "time/local_zone.h"
#include "time/locale_cache.h"
#include "time/time_point.h"

namespace {
constexpr __int64 kSecond = 1'000'000, kMinute = 60 * kSecond, kHour = 60 * kMinute, kDay = 24 * kHour;

class TimeTicksTest : public testing::Test {
protected:
    TimeTicksTest() {
        m_settings.Swedish();
        NlsToolsRegister();
    }
    void American() {
        m_settings.American();
        NlsToolsUpdate();
    }

    static __int64 Local(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
        return CVXTTime(year, month, day, hour, minute, second, -1).GetBinaryTime();
    }
    // The instants of 2026 at which summer time begins and ends.
    static __int64 Change(bool begins) {
        for (__int64 t = Local(2026, 1, 1);; t += 1800 * kSecond) {
            const auto flag = [](__int64 at) { return orvik::detail::LocalFields(at / kSecond).tm_isdst > 0; };
            if (flag(t) == begins && flag(t - 1800 * kSecond) != begins) return t;
        }
    }
    static std::vector<std::string> Labels(const TimeStep& step, const std::vector<__int64>& ticks) {
        std::vector<std::string> labels;
        for (const __int64 tick : ticks) labels.push_back(TimeLabel(step, tick));
        return labels;
    }
    using Texts = std::vector<std::string>;

    const TextLanguage m_english{LANG_ENGLISH};
    RegionalSettings m_settings;
};
}  // namespace

TEST_F(TimeTicksTest, StepsAreNatural) {
    const struct {
        double wanted;
        TimeUnit unit;
        int count;
    } cases[] = {{0, TimeUnit::Microsecond, 1},        {3, TimeUnit::Microsecond, 5},
                 {501, TimeUnit::Millisecond, 1},      {15e3, TimeUnit::Millisecond, 20},
                 {600e3, TimeUnit::Second, 1},         {6e6, TimeUnit::Second, 10},
                 {16e6, TimeUnit::Second, 30},         {31e6, TimeUnit::Minute, 1},
                 {11 * 60e6, TimeUnit::Minute, 15},    {20 * 60e6, TimeUnit::Minute, 30},
                 {3600e6, TimeUnit::Hour, 1},          {4 * 3600e6, TimeUnit::Hour, 6},
                 {7 * 3600e6, TimeUnit::Hour, 12},     {13 * 3600e6, TimeUnit::Day, 1},
                 {3 * 86400e6, TimeUnit::Week, 1},     {15 * 86400e6, TimeUnit::Month, 1},
                 {100 * 86400e6, TimeUnit::Month, 6},  {200 * 86400e6, TimeUnit::Year, 1},
                 {2000 * 86400e6, TimeUnit::Year, 10}, {1e20, TimeUnit::Year, 0}};
    for (const auto& c : cases) {
        const TimeStep step = ChooseTimeStep(c.wanted);
        EXPECT_EQ(step.unit, c.unit) << c.wanted;
        EXPECT_EQ(step.count, c.count) << c.wanted;
        const TimeStep part = Subdivide(step);
        EXPECT_TRUE(part.count == 0 || part.Length() < step.Length()) << c.wanted;
    }
}

TEST_F(TimeTicksTest, LabelsAreTheLocalClock) {
    const __int64 noon = Local(2026, 6, 15, 12, 0, 0);
    const struct {
        TimeStep step;
        __int64 from, to;
        Texts labels;
        const char* context;
    } cases[] = {
        {{TimeUnit::Millisecond, 500}, noon, noon + kSecond, {"12:00:00,0", "12:00:00,5", "12:00:01,0"}, "2026-06-15"},
        {{TimeUnit::Microsecond, 20}, noon, noon + 40, {"12:00:00,00000", "12:00:00,00002", "12:00:00,00004"}, "2026-06-15"},
        {{TimeUnit::Second, 15}, noon + 1, noon + 31 * kSecond, {"12:00:15", "12:00:30"}, "2026-06-15"},
        {{TimeUnit::Minute, 15}, noon - 1, noon + 31 * kMinute, {"12:00", "12:15", "12:30"}, "2026-06-15"},
        {{TimeUnit::Hour, 6}, noon, noon + 13 * kHour, {"12:00", "18:00", "00:00"}, "2026-06-15"},
        {{TimeUnit::Day, 1}, noon, noon + 2 * kDay, {"16 Jun", "17 Jun"}, "2026"},
        {{TimeUnit::Week, 1}, noon, noon + 14 * kDay, {"22 Jun", "29 Jun"}, "2026"},
        {{TimeUnit::Month, 3}, noon, noon + 250 * kDay, {"Jul", "Oct", "Jan"}, "2026"},
        {{TimeUnit::Year, 2}, noon, noon + 1500 * kDay, {"2028", "2030"}, ""}};
    for (const auto& c : cases) {
        const auto ticks = TimeTicks(c.step, c.from, c.to);
        EXPECT_EQ(Labels(c.step, ticks), c.labels);
        EXPECT_EQ(TimeContext(c.step, c.from), c.context);
    }
    American();
    EXPECT_EQ(TimeLabel({TimeUnit::Minute, 5}, noon + 3 * kHour), "3:00 PM");
    EXPECT_EQ(TimeLabel({TimeUnit::Millisecond, 10}, noon), "12:00:00.00 PM");
    EXPECT_EQ(TimeLabel({TimeUnit::Day, 1}, noon), "Jun 15");
    EXPECT_EQ(DateText(noon), "6/15/2026");
}

// Years that points of time do not have are told like any other.
TEST_F(TimeTicksTest, TheCalendarReachesBackAndFar) {
    const struct {
        __int64 days;
        const char *swedish, *american;
    } cases[] = {
        {-1, "1969-12-31", "12/31/1969"},     {0, "1970-01-01", "1/1/1970"},        {-3'653, "1960-01-01", "1/1/1960"},
        {-3'594, "1960-02-29", "2/29/1960"},  {-25'509, "1900-02-28", "2/28/1900"}, {-25'508, "1900-03-01", "3/1/1900"},
        {-134'773, "1601-01-02", "1/2/1601"}, {47'541, "2100-03-01", "3/1/2100"},   {2'932'894, "9999-12-29", "12/29/9999"}};
    for (const bool american : {false, true}) {
        if (american) American();
        for (const auto& c : cases) {
            const __int64 noon = c.days * kDay + 12 * kHour;
            EXPECT_TRUE(InCalendar(noon, noon + 1)) << c.days;
            EXPECT_EQ(DateText(noon), american ? c.american : c.swedish) << c.days;
        }
    }
    // The hour is that of the zone at the beginning of 1972, in winter.
    const TimeStep hours{TimeUnit::Hour, 6};
    EXPECT_EQ(Labels(hours, TimeTicks(hours, -20 * kDay, -19 * kDay)).size(), 4u);
    EXPECT_FALSE(InCalendar(-200'000 * kDay, 0));
}

TEST_F(TimeTicksTest, ADayChangeIsToldOnce) {
    const __int64 evening = Local(2026, 6, 15, 21, 30, 0);
    const TimeStep step{TimeUnit::Hour, 1};
    const auto ticks = TimeTicks(step, evening, evening + 5 * kHour);
    const auto contexts = TimeContexts(step, evening, evening + 5 * kHour, ticks);
    ASSERT_EQ(contexts.size(), 2u);
    EXPECT_EQ(ContextText(contexts[0]), "2026-06-15");
    EXPECT_EQ(contexts[0].time, evening);
    EXPECT_EQ(ContextText(contexts[1], contexts[0]), "2026-06-16");
    EXPECT_EQ(contexts[1].time, Local(2026, 6, 16));
}

TEST_F(TimeTicksTest, TheAutumnNightHasItsHourTwice) {
    const __int64 change = Change(false);  // the hour before it is the first one
    const __int64 from = change - 2 * kHour, to = change + 2 * kHour;
    const TimeStep step{TimeUnit::Hour, 1};
    const auto ticks = TimeTicks(step, from, to);
    ASSERT_EQ(ticks.size(), 5u);
    for (size_t i = 0; i < ticks.size(); ++i) EXPECT_EQ(ticks[i], from + static_cast<__int64>(i) * kHour);
    const auto labels = Labels(step, ticks);
    EXPECT_EQ(labels[1], labels[2]);
    const auto contexts = TimeContexts(step, from, to, ticks);
    ASSERT_EQ(contexts.size(), 2u);
    const std::string date = contexts[0].date;
    EXPECT_EQ(ContextText(contexts[0]), date + " UTC+2");
    EXPECT_EQ(ContextText(contexts[1], contexts[0]), "UTC+1");
    EXPECT_EQ(ContextText(contexts[1], {change, date, ""}), "UTC+1");
    EXPECT_EQ(ContextText(contexts[1]), date + " UTC+1");
    EXPECT_EQ(contexts[1].time, change);
}

TEST_F(TimeTicksTest, TheSpringNightLeapsOverAnHour) {
    const __int64 change = Change(true);
    const TimeStep hours{TimeUnit::Hour, 1};
    const auto labels = Labels(hours, TimeTicks(hours, change - kHour, change + kHour));
    ASSERT_EQ(labels.size(), 3u);
    EXPECT_EQ(std::stoi(labels[1]) - std::stoi(labels[0]), 2);
    // Midnights stay midnights, 23 hours apart.
    const TimeStep days{TimeUnit::Day, 1};
    const auto midnights = TimeTicks(days, change - kDay, change + kDay);
    ASSERT_EQ(midnights.size(), 2u);
    EXPECT_EQ(midnights[1] - midnights[0], 23 * kHour);
    for (const __int64 midnight : midnights) EXPECT_EQ(ClockText(midnight, true), "00:00:00");
}

// Whatever the range and the step: increasing, inside, at the step's multiples on the local clock, and no gap between them.
TEST_F(TimeTicksTest, HoldsForAnyRange) {
    std::mt19937_64 random(7);
    for (int i = 0; i < 3'000; ++i) {
        // Half of them beyond the years of CVXTTime.
        const __int64 low = i % 2 == 0 ? CVXTTime::GetMinTime() : -130'000 * kDay,
                      high = i % 2 == 0 ? CVXTTime::GetMaxTime() : 2'900'000 * kDay;
        const double length = std::pow(10.0, static_cast<double>(random() % 14'500) / 1000.0);
        const TimeStep step = ChooseTimeStep(length);
        const auto span = static_cast<__int64>(length * 12);
        if (span >= high - low) continue;
        const __int64 from = low + static_cast<__int64>(random() % static_cast<unsigned __int64>(high - low - span));
        const auto ticks = TimeTicks(step, from, from + span);
        ASSERT_TRUE(std::is_sorted(ticks.begin(), ticks.end()));
        __int64 before = from;
        for (const __int64 tick : ticks) {
            ASSERT_GE(tick, from);
            ASSERT_LE(tick, from + span);
            ASSERT_LT(static_cast<double>(tick - before),
                      step.Length() * 1.04 + (step.unit >= TimeUnit::Month ? 3.0 * kDay : 2.0 * kHour));
            before = tick;
            const tm fields = orvik::detail::LocalFields(tick / kSecond);
            ASSERT_TRUE(!(step.unit == TimeUnit::Minute) || fields.tm_min % step.count == 0);
            ASSERT_TRUE(!(step.unit == TimeUnit::Hour) || fields.tm_hour % step.count == 0);
            ASSERT_TRUE(!(step.unit >= TimeUnit::Day) || fields.tm_hour * 60 + fields.tm_min <= 60);
            ASSERT_TRUE(!(step.unit == TimeUnit::Week) || fields.tm_wday == 1);
            ASSERT_TRUE(!(step.unit >= TimeUnit::Month) || fields.tm_mday == 1);
            ASSERT_TRUE(!(step.unit == TimeUnit::Year) || (fields.tm_year + 1900) % step.count == 0);
        }
        ASSERT_EQ(std::set<__int64>(ticks.begin(), ticks.end()).size(), ticks.size());
    }
    EXPECT_TRUE(TimeTicks({TimeUnit::Second, 1}, 0x7FFF'FFFF'FFFF'0000, 0x7FFF'FFFF'FFFF'FFFF).empty());
    EXPECT_TRUE(TimeTicks({TimeUnit::Second, 1}, kDay * 1000, kDay * 1001, 100).empty());
    EXPECT_TRUE(TimeTicks({TimeUnit::Year, 0}, kDay * 1000, kDay * 1001).empty());
}

TEST_F(TimeTicksTest, TypedTimes) {
    const __int64 time = Local(2026, 11, 21, 15, 6, 7);
    const std::pair<const char*, __int64> swedish[] =  // 0: refused
        {{"2026-11-21 15:06:07", time},
         {"2026-11-21 15:06:07,250", time + 250'000},
         {"2026-11-21 15:06", time - 7 * kSecond},
         {"2026-11-21", Local(2026, 11, 21)},
         {"1970-01-02T00:00:01.5Z", 86'401'500'000},
         {"1970-01-02T00:00:01Z", 86'401'000'000},
         {"2026-11-21 25:00:00", 0},
         {"2026-11-31 12:00:00", 0},
         {"2026-13-01", 0},
         {"2026-11-21 15:06:07 foo 8", 0},
         {"noon", 0},
         {"", 0},
         {"-", 0},
         {"2026-11-21T15:06:07.25", time + 250'000},
         {"2026-11-21T15:06:07 ", 0},
         {"2026-11-31T15:06:07", 0},
         {"1970-02-30T00:00:01Z", 0}};
    for (const auto& c : swedish) EXPECT_EQ(TimeFromText(c.first).value_or(0), c.second) << c.first;
    American();
    EXPECT_EQ(TimeFromText("11/21/2026 3:06:07 PM"), time);
    EXPECT_EQ(TimeFromText("11/21/2026 3:06 PM"), time - 7 * kSecond);
    EXPECT_EQ(TimeFromText("11/21/2026 3:06:07.250 PM"), time + 250'000);
    EXPECT_FALSE(TimeFromText("2026-11-21 15:06:07"));
}
