#include "time/local_zone.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "time/time_point.h"

namespace {

constexpr __int64 kHour = 3'600;

bool SameFields(const tm& a, const tm& b) {
    return a.tm_year == b.tm_year && a.tm_mon == b.tm_mon && a.tm_mday == b.tm_mday && a.tm_hour == b.tm_hour &&
           a.tm_min == b.tm_min && a.tm_sec == b.tm_sec && a.tm_wday == b.tm_wday && a.tm_yday == b.tm_yday &&
           a.tm_isdst == b.tm_isdst;
}

tm FromLibrary(__int64 seconds) {
    tm fields{};
    const __time64_t t = seconds;
    EXPECT_EQ(_localtime64_s(&fields, &t), 0);
    return fields;
}

}  // namespace

// Every hour of the range, and every second around each hour in which the C library's difference from UTC changes.
TEST(LocalZone, AgreesWithTheLibrary) {
    const __int64 first = CVXTTime::GetMinTime() / 1'000'000, last = CVXTTime::GetMaxTime() / 1'000'000;
    int transitions = 0;
    tm before = FromLibrary(first);
    for (__int64 t = first; t <= last; t += kHour) {
        const tm fields = FromLibrary(t);
        ASSERT_TRUE(SameFields(orvik::detail::LocalFields(t), fields)) << t;
        const bool change = t > first && (fields.tm_isdst != before.tm_isdst || fields.tm_hour != (before.tm_hour + 1) % 24 ||
                                          fields.tm_min != before.tm_min);
        before = fields;
        if (!change) continue;
        ++transitions;
        for (__int64 s = t - 2 * kHour; s <= std::min(t + kHour, last); ++s)
            ASSERT_TRUE(SameFields(orvik::detail::LocalFields(s), FromLibrary(s))) << s;
    }
    EXPECT_EQ(transitions % 2, 0);  // the range begins and ends in winter
}

// Midnight of the day on which summer time ends or begins, with the flag of the value: an hour beside the day's real midnight.
TEST(LocalZone, SeeksKeepTheDaylightFlag) {
    const CVXTTime summer(2023, 7, 1, 12, 0, 0, -1);
    tm fields = orvik::detail::LocalFields(summer.GetAnsiTime());
    if (fields.tm_isdst <= 0) return;  // a zone without daylight saving has nothing to keep
    CVXTTime time = summer;
    time.SeekFloor(TT_YEAR);
    tm expected = fields;
    expected.tm_mon = 0, expected.tm_mday = 1, expected.tm_hour = expected.tm_min = expected.tm_sec = 0;
    EXPECT_EQ(time.GetAnsiTime(), _mktime64(&expected));
    EXPECT_EQ(time.GetAnsiTime(), CVXTTime(2023, 1, 1, 0, 0, 0, -1).GetAnsiTime() - 3'600);
}
