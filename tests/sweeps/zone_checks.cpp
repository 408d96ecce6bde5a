#include "tests/sweeps/zone_checks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <set>
#include <tuple>

#include "time/local_nls_tools.h"
#include "time/local_zone.h"
#include "time/time_point.h"

namespace {

constexpr __int64 kSecond = 1'000'000, kTick = 1, kMinute = 60, kHour = 3'600, kDay = 24 * kHour;

__int64 First() { return CVXTTime::GetMinTime() / kSecond; }
__int64 Last() { return CVXTTime::GetMaxTime() / kSecond; }

CVXTTime At(__int64 seconds) {
    CVXTTime time;
    time.SetBinaryTime(seconds * kSecond);
    return time;
}

// Fields as seconds as if they were UTC, and back, by the system's calendar of file times.
constexpr __int64 kEpoch = 11'644'473'600;  // 1601 to 1970, in seconds
__int64 Count(const tm& fields) {
    const auto word = [](int value) { return static_cast<WORD>(value); };
    const SYSTEMTIME system = {
        word(fields.tm_year + 1900), word(fields.tm_mon + 1), 0, word(fields.tm_mday), word(fields.tm_hour),
        word(fields.tm_min),         word(fields.tm_sec),     0};
    FILETIME file{};
    EXPECT_TRUE(SystemTimeToFileTime(&system, &file));
    return ((static_cast<__int64>(file.dwHighDateTime) << 32) | file.dwLowDateTime) / 10'000'000 - kEpoch;
}
tm Fields(__int64 local, int flag) {
    tm fields{};
    const __time64_t t = local;
    EXPECT_EQ(_gmtime64_s(&fields, &t), 0);
    fields.tm_isdst = flag;
    return fields;
}

tm Local(__int64 seconds) {
    tm fields{};
    const __time64_t t = seconds;
    EXPECT_EQ(_localtime64_s(&fields, &t), 0);
    return fields;
}

std::string Text(__int64 local) {
    const tm fields = Fields(local, 0);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &fields);
    return text;
}

}  // namespace

ZoneChecks::Side ZoneChecks::SideAt(__int64 seconds) {
    const tm fields = Local(seconds);
    return {static_cast<int>(Count(fields) - seconds), fields.tm_isdst};
}

ZoneChecks::ZoneChecks() {
    Side side = SideAt(First());
    std::set<std::tuple<int, int, int, int, int, int, int>> kinds;
    constexpr __int64 kStep = kDay / 2;
    for (__int64 at = First(); at < Last(); at += kStep) {
        const Side next = SideAt(std::min(at + kStep, Last()));
        if (next == side) continue;
        __int64 before = at, after = std::min(at + kStep, Last());
        while (after - before > 1) {
            const __int64 middle = (before + after) / 2;
            (SideAt(middle) == side ? before : after) = middle;
        }
        m_changes.push_back({after, side, next});
        const tm fields = Fields(after + side.offset, 0);
        const int ofMonth = fields.tm_mday <= 2 || fields.tm_mday >= 28 ? fields.tm_mday : 0;
        if (kinds.emplace(side.offset, side.daylight, next.offset, next.daylight, ofMonth, fields.tm_wday, fields.tm_hour).second)
            m_kinds.push_back(m_changes.back());
        side = next;
    }
}

// The time that local fields mean; with a flag only where a time has it.
__int64 ZoneChecks::Meant(__int64 local, int flag) const {
    __int64 standard = -1, any = -1;
    auto change =
        std::partition_point(m_changes.begin(), m_changes.end(), [local](const Change& c) { return c.at < local - 2 * kDay; });
    for (; change != m_changes.end() && change->at <= local + 2 * kDay; ++change) {
        for (const Side& side : {change->before, change->after}) {
            const __int64 t = local - side.offset;
            if (SideAt(t) != side || (flag >= 0 && side.daylight != flag)) continue;
            any = std::max(any, t);
            if (side.daylight == 0) standard = std::max(standard, t);
        }
        if (local - change->before.offset >= change->at && local - change->after.offset < change->at)
            return local - change->before.offset;
    }
    if (any == -1) any = local - SideAt(local).offset;
    return standard != -1 ? standard : any;
}

// Local seconds beside the changes: of the hours before and after, on either side, and of the days and midnights around.
template <class Check>
void ZoneChecks::Around(const std::vector<Change>& changes, Check check) {
    for (const Change& change : changes) {
        const __int64 before = change.at + change.before.offset, after = change.at + change.after.offset;
        const __int64 midnight = after - after % kDay, middle = (before + after) / 2;
        for (const __int64 local :
             {before - kHour, before - 1, before, std::min(before, after) - 1, middle, std::max(before, after) - 1,
              std::max(before, after), after, after + kHour, midnight - kDay, midnight, midnight + kDay})
            if (!check(local, change)) return;
    }
}

void ZoneChecks::FieldsMeanTheTimeThatHasThem(Library home) const {
    // In both directions, so that every conversion comes after another one; an answer that remembers would differ.
    const auto agree = [this, home](__int64 local, int flag) {
        const __int64 expected = Meant(local, flag);
        tm library = Fields(local, flag);
        EXPECT_EQ(orvik::detail::LocalSeconds(library), expected) << Text(local) << " flag " << flag;
        const bool skipped = Count(Local(expected)) != local;
        if (const __int64 meant = _mktime64(&library); !skipped || home == Library::Ours) {
            EXPECT_EQ(meant, expected) << Text(local) << " flag " << flag << ", C library";
            EXPECT_EQ(Count(library), Count(Local(expected)));
        }
        return !testing::Test::HasFailure();
    };
    Around(m_kinds, [&](__int64 local, const Change& change) {
        for (const Side& side : {change.before, change.after})
            if (SideAt(local - side.offset) == side && !agree(local, side.daylight)) return false;
        return agree(local, -1);
    });
    for (size_t i = m_changes.size(); i-- > 0;)
        for (const int offset : {m_changes[i].after.offset, (m_changes[i].before.offset + m_changes[i].after.offset) / 2})
            if (!agree(m_changes[i].at + offset, -1)) return;
    for (__int64 day = First() + kDay; day < Last() - kDay; day += 37 * kDay + 5 * kHour)
        if (!agree(day, -1)) return;
}

// Of the seconds beside each change, and of days between.
void ZoneChecks::TheTableHasTheLibrarysFields() const {
    const auto agree = [](__int64 time) {
        const tm ours = orvik::detail::LocalFields(time), theirs = Local(time);
        const auto all = [](const tm& t) {
            return std::tuple(t.tm_year, t.tm_mon, t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec, t.tm_wday, t.tm_yday, t.tm_isdst);
        };
        EXPECT_EQ(all(ours), all(theirs)) << time;
        return !testing::Test::HasFailure();
    };
    for (const Change& change : m_changes)
        for (const __int64 beside : {-kDay, -kHour, -kTick, 0 * kTick, kHour, kDay})
            if (!agree(std::clamp(change.at + beside, First(), Last()))) return;
    for (__int64 time = First(); time < Last(); time += 3 * kDay + 5 * kHour + 7)
        if (!agree(time)) return;
}

// Their local form may lie outside what a file time can count, and is no date then.
void ZoneChecks::FileTimesAtEitherEndLeaveTheDateAlone() const {
    for (const FILETIME file : {FILETIME{0xFFFFFFFF, 0x7FFFFFFF}, FILETIME{0, 0}, FILETIME{0, 0x80000000}}) {
        CVXTTime time(2023, 4, 5, 6, 7, 8, -1);
        time.SetFileTime(&file);
        int date[3] = {};
        time.GetDate(&date[0], &date[1], &date[2]);
        EXPECT_TRUE(date[0] == 2023 && date[1] == 4 && date[2] == 5) << file.dwHighDateTime;
    }
}

void ZoneChecks::SeeksGetOnAndEnd() const {
    static constexpr __int64 kLength[] = {366 * kDay, 92 * kDay, 31 * kDay, 7 * kDay, kDay, kDay, kDay, kHour, kMinute, 1, 1, 1};
    const auto seek = [](const CVXTTime& time, int unit) {
        // A week's first day may have no midnight; the flag of summer leads to the evening before, and so to the week before.
        const CVXTTimeSpan most(kLength[unit] + (unit == TT_WEEK ? 8 : 2) * kDay, TST_SECONDS);
        CVXTTime floor = time, next = time;
        floor.SeekFloor(static_cast<CVXTTimeType>(unit)), next.SeekNext(static_cast<CVXTTimeType>(unit));
        EXPECT_LE(floor, time) << "floor by " << unit;
        EXPECT_LE(time - floor, most) << "floor by " << unit;
        if (unit <= TT_SECOND) {
            EXPECT_GT(next, time) << "next by " << unit;
        }
        EXPECT_LE(next - time, most) << "next by " << unit;
        return !testing::Test::HasFailure();
    };
    Around(m_kinds, [&](__int64 local, const Change& change) {
        for (const Side& side : {change.before, change.after})
            for (int unit = TT_YEAR; unit <= TT_MICROSECOND; ++unit) {
                const __int64 time = std::clamp(local - side.offset, First(), Last() - 1);
                if (!seek(At(time), unit)) {
                    ADD_FAILURE() << "from " << time;
                    return false;
                }
            }
        return true;
    });
    // Loops as a user writes them; that by weeks goes from day to day.
    for (const int unit : {TT_YEAR, TT_QUARTER, TT_MONTH, TT_WEEK}) {
        CVXTTime time = At(First());
        for (const CVXTTime end = At(Last()); time < end;) {
            const CVXTTime before = time;
            time.SeekNext(static_cast<CVXTTimeType>(unit));
            ASSERT_GT(time, before) << "loop by " << unit << " at " << before.GetAnsiTime();
        }
    }
}

void ZoneChecks::DatesLandOnTheirDay() const {
    CLocalNlsTools tools;
    Around(m_kinds, [&](__int64 local, const Change& change) {
        const __int64 ofDay = local % kDay, expected = Meant(local, -1);
        if (expected - kDay < First() || expected + kDay > Last()) return true;
        const tm fields = Fields(local, -1);
        const int year = fields.tm_year + 1900, month = fields.tm_mon + 1, day = fields.tm_mday;
        // From a day on which this time of day came once.
        CVXTTime time = At(Meant((change.at / kDay - 5) * kDay + ofDay, -1));
        EXPECT_EQ(time.SetDate(year, month, day), 1);
        EXPECT_EQ(time.GetAnsiTime(), expected) << "date of " << Text(local);
        // From a time of day that this day may not have.
        for (const __int64 old : {kMinute, 12 * kHour, kDay - 30 * kMinute, kDay - 1}) {
            CVXTTime stamped = At(Meant((change.at / kDay - 5) * kDay + old, -1)), read = stamped;
            const SYSTEMTIME system = {static_cast<WORD>(year),
                                       static_cast<WORD>(month),
                                       0,
                                       static_cast<WORD>(day),
                                       static_cast<WORD>(fields.tm_hour),
                                       static_cast<WORD>(fields.tm_min),
                                       static_cast<WORD>(fields.tm_sec),
                                       0};
            EXPECT_EQ(stamped.SetSystemTime(&system), 1);
            EXPECT_EQ(stamped.GetAnsiTime(), expected) << "system time of " << Text(local);
            char text[32];
            std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &fields);
            EXPECT_EQ(tools.StringToTime(text, read), 1) << text;
            EXPECT_EQ(read.GetAnsiTime(), expected) << "text " << text;
        }
        return !testing::Test::HasFailure();
    });
}
