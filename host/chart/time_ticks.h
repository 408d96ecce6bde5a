// Ticks of a time axis on natural steps of the local calendar: which times they stand at, and what is written at them.
// Decided without a drawing context. User-interface thread only, since texts are written in the user's regional format.
//
// Ticks stand where the local clock shows a multiple of the step: 12:00, 12:15; midnights; Mondays; firsts of months and years.
// They are true instants, so that the spring night has one hour less between its midnights, and in the autumn night the hour that
// comes twice has its ticks twice. Where the difference from UTC changes within the axis, the second line of text tells it.
#pragma once

#include <string>
#include <vector>

#include "platform/win32.h"

enum class TimeUnit { Microsecond, Millisecond, Second, Minute, Hour, Day, Week, Month, Year };

struct TimeStep {
    TimeUnit unit = TimeUnit::Second;
    int count = 1;  // 0: none
    // Microseconds; for months and years their mean length.
    double Length() const;
};

// The smallest step that is at least so many microseconds long. The unit is the one in whose row of CAxis::tstsVector that length
// falls; from weeks on by way of months to years. No step is above 1000 years: then the count is 0.
TimeStep ChooseTimeStep(double microseconds);

// A smaller step that divides this one evenly, for small ticks; 0 when there is none.
TimeStep Subdivide(const TimeStep& step);

// Times from `from` to `to` (microseconds since 1970) in the calendar, at most `most` of them: a step too short for that gives
// nothing.
std::vector<__int64> TimeTicks(const TimeStep& step, __int64 from, __int64 to, size_t most = 4096);

// True as long as both lie where calendar text can be made of them, in the years 1601 to 9999. Outside the years of CVXTTime the
// clock is that of the zone at their nearest end.
bool InCalendar(__int64 from, __int64 to);

// Texts in the house's character set. The label of a tick is as long as its step demands: "12:00:00.250", "12:15", "21 Nov",
// "Nov", "2026"; the context tells the rest: the date, the year, or nothing.
std::string TimeLabel(const TimeStep& step, __int64 time);
std::string TimeContext(const TimeStep& step, __int64 time);
// Time of day without its seconds, in the user's format; with `seconds` as the module writes it.
std::string ClockText(__int64 time, bool seconds);
std::string DateText(__int64 time);
// "UTC+2", "UTC-3:30".
std::string OffsetText(__int64 time);

// A label on the second line, under the tick at `time`.
struct ContextLabel {
    __int64 time = 0;
    std::string date, offset;  // what holds there; the offset is empty where it stays the same all along the axis
};
// What the second line says: at `from` (no tick), and at every tick at which it changes.
std::vector<ContextLabel> TimeContexts(const TimeStep& step, __int64 from, __int64 to, const std::vector<__int64>& ticks);
// Its text behind one that has told so much: what differs, and with a date its offset too. With nothing told, all.
std::string ContextText(const ContextLabel& label, const ContextLabel& told = {});
