// The zones that users live in, against the C library and against ICU, which reads its own copy of the zone data.
#include <gtest/gtest.h>
#include <unicode/basictz.h>
#include <unicode/timezone.h>
#include <unicode/tztrans.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "time/local_zone.h"
#include "time/time_point.h"

namespace {

using orvik::detail::LocalFields;

class Zones : public testing::TestWithParam<const char*> {
protected:
    void SetUp() override {
        if (const char* zone = std::getenv("TZ")) m_saved = zone;
        Use(GetParam());
    }
    void TearDown() override { Use(m_saved.c_str()); }
    static void Use(const char* zone) {
        setenv("TZ", zone, 1);
        _tzset();
        orvik::detail::RefreshLocalZone();
    }

private:
    std::string m_saved;
};

__int64 AsUtc(const tm& fields) {
    tm copy = fields;
    return timegm(&copy);
}

}  // namespace

TEST_P(Zones, AgreeAtEverySecondAroundEveryTransition) {
    std::unique_ptr<icu::TimeZone> made(icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(GetParam())));
    const auto* zone = dynamic_cast<icu::BasicTimeZone*>(made.get());
    ASSERT_TRUE(zone);
    const __int64 first = CVXTTime::GetMinTime() / 1'000'000, last = CVXTTime::GetMaxTime() / 1'000'000;
    icu::TimeZoneTransition next;
    int transitions = 0;
    for (double at = static_cast<double>(first) * 1'000; zone->getNextTransition(at, false, next); at = next.getTime()) {
        const auto change = static_cast<__int64>(next.getTime() / 1'000);
        if (change >= last) break;
        ++transitions;
        for (__int64 t = std::max(first, change - 7'200); t <= std::min(last, change + 7'200); ++t) {
            const time_t asked = static_cast<time_t>(t);
            tm library{};
            localtime_r(&asked, &library);
            const tm ours = LocalFields(t);
            ASSERT_EQ(AsUtc(ours), AsUtc(library)) << t;
            ASSERT_EQ(ours.tm_isdst, library.tm_isdst) << t;
            ASSERT_EQ(ours.tm_wday, library.tm_wday) << t;
            ASSERT_EQ(ours.tm_yday, library.tm_yday) << t;
            int32_t raw = 0, saving = 0;
            UErrorCode status = U_ZERO_ERROR;
            zone->getOffset(static_cast<double>(t) * 1'000, false, raw, saving, status);
            ASSERT_EQ(AsUtc(ours) - t, (raw + saving) / 1'000) << t;
        }
    }
    if (std::string(GetParam()) == "Asia/Kolkata")
        EXPECT_EQ(transitions, 0);
    else
        EXPECT_GT(transitions, 80);
    // Between the transitions, daily.
    for (__int64 t = first; t <= last; t += 86'399) {
        const time_t asked = static_cast<time_t>(t);
        tm library{};
        localtime_r(&asked, &library);
        ASSERT_EQ(AsUtc(LocalFields(t)), AsUtc(library)) << t;
    }
}

INSTANTIATE_TEST_SUITE_P(World, Zones,
                         testing::Values("Europe/Stockholm", "America/New_York", "Asia/Kolkata", "Australia/Lord_Howe"));

// Their local form may lie outside what a file time can count, and is no date then.
TEST_P(Zones, FileTimesAtEitherEndLeaveTheDateAlone) {
    for (const FILETIME file : {FILETIME{0xFFFFFFFF, 0x7FFFFFFF}, FILETIME{0, 0}, FILETIME{0, 0x80000000}}) {
        CVXTTime time(2023, 4, 5, 6, 7, 8, -1);
        time.SetFileTime(&file);
        int year = 0, month = 0, day = 0;
        time.GetDate(&year, &month, &day);
        EXPECT_EQ(year, 2023);
        EXPECT_EQ(month, 4);
        EXPECT_EQ(day, 5);
    }
}
