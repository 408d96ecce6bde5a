#include "host/chart/time_ticks.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>

#include "chart/axis.h"
#include "time/clock_text.h"
#include "time/date_text.h"
#include "time/local_zone.h"
#include "time/locale_cache.h"
#include "time/number_text.h"
#include "time/time_point.h"

namespace {
constexpr __int64 kSecond = 1'000'000, kMinute = 60 * kSecond, kHour = 60 * kMinute, kDay = 24 * kHour;
constexpr double kYear = 365.2425 * static_cast<double>(kDay);

__int64 FloorDiv(__int64 a, __int64 b) { return a / b - (a % b < 0 ? 1 : 0); }  // b > 0

// Days since 1970 of a date, and the date of days: the civil calendar in eras of 400 years.
struct Date {
    __int64 year;
    int month, day;  // from 1
};

__int64 DaysOf(__int64 year, int month, int day) {
    year -= month <= 2;
    const __int64 era = FloorDiv(year, 400), ofEra = year - era * 400;
    const __int64 ofYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    return era * 146'097 + ofEra * 365 + ofEra / 4 - ofEra / 100 + ofYear - 719'468;
}

Date DateOf(__int64 days) {
    days += 719'468;
    const __int64 era = FloorDiv(days, 146'097), ofEra = days - era * 146'097;
    const __int64 year = (ofEra - ofEra / 1'460 + ofEra / 36'524 - ofEra / 146'096) / 365;
    const __int64 ofYear = ofEra - (365 * year + year / 4 - year / 100), shifted = (5 * ofYear + 2) / 153;
    const int month = static_cast<int>(shifted < 10 ? shifted + 3 : shifted - 9);
    return {year + era * 400 + (month <= 2), month, static_cast<int>(ofYear - (153 * shifted + 2) / 5 + 1)};
}

// Local clock minus UTC at a time, microseconds.
__int64 OffsetAt(__int64 time) {
    const __int64 seconds = FloorDiv(time, kSecond);
    const tm fields = orvik::detail::LocalFields(seconds);
    const __int64 local = DaysOf(fields.tm_year + 1900, fields.tm_mon + 1, fields.tm_mday) * 86'400 + fields.tm_hour * 3'600 +
                          fields.tm_min * 60 + fields.tm_sec;
    return (local - seconds) * kSecond;
}

// Local clock as if it were UTC.
__int64 LocalOf(__int64 time) { return time + OffsetAt(time); }

// The first time in (from, to] whose difference from UTC is not that of `from`; `to` has another one.
__int64 ChangeBetween(__int64 from, __int64 to) {
    const __int64 before = OffsetAt(from);
    while (to - from > 1) {
        const __int64 middle = from + (to - from) / 2;
        (OffsetAt(middle) == before ? from : to) = middle;
    }
    return to;
}

// The first instant at which the local clock shows `local` or, where it leaps over that, the instant of the leap.
__int64 InstantOf(__int64 local) {
    __int64 early = local - OffsetAt(local - kDay), late = local - OffsetAt(local + kDay);
    if (early > late) std::swap(early, late);
    if (LocalOf(early) == local) return early;
    if (LocalOf(late) == local) return late;
    return OffsetAt(early) == OffsetAt(late) ? late : ChangeBetween(early, late);
}

struct Row {
    TimeUnit unit;
    double length;
    std::initializer_list<int> counts;
};

// In each row only steps that lie within the bounds of its unit in CAxis::tstsVector; what the table's last row spans, to 7000
// days, is told in weeks, months and years here, and so is what lies beyond.
const Row kRows[] = {
    {TimeUnit::Microsecond, 1, {1, 2, 5, 10, 20, 50, 100, 200, 500}},
    {TimeUnit::Millisecond, 1'000, {1, 2, 5, 10, 20, 50, 100, 200, 500}},
    {TimeUnit::Second, kSecond, {1, 2, 5, 10, 15}},
    {TimeUnit::Second, kSecond, {30}},
    {TimeUnit::Minute, kMinute, {1, 2, 5, 10, 15}},
    {TimeUnit::Minute, kMinute, {30}},
    {TimeUnit::Hour, kHour, {1, 2, 3, 6}},
    {TimeUnit::Hour, kHour, {12}},
    {TimeUnit::Day, kDay, {1, 2}},
    {TimeUnit::Week, 7.0 * kDay, {1, 2}},
    {TimeUnit::Month, kYear / 12, {1, 2, 3, 6}},
    {TimeUnit::Year, kYear, {1, 2, 5, 10, 20, 50, 100, 200, 500, 1'000}},
};

// "Nov 21" rather than "21 Nov", as the user's dates go.
bool MonthFirst() { return NlsGetShortDateSpec().Find('M') == 0; }

constexpr int kFirstYear = 1601, kLastYear = 9999;  // four digits, and the calendar of today

CVXTTime PointOf(__int64 time) {
    CVXTTime point;
    point.SetBinaryTime(time);
    return point;
}

bool IsPoint(__int64 time) { return time >= CVXTTime::GetMinTime() && time <= CVXTTime::GetMaxTime(); }

// A year that points of time have and whose days are those of the given one. Its last two digits are no day's and no month's.
__int64 YearLike(__int64 year) {
    const auto shape = [](__int64 one) {
        const __int64 days = DaysOf(one, 1, 1);
        return std::pair(FloorDiv(days, 7) * 7 - days, DaysOf(one + 1, 1, 1) - days);
    };
    __int64 like = 1972;
    while (shape(like) != shape(year)) ++like;  // within 28 years
    return like;
}

// The same clock on a day on which no zone sets it.
CVXTTime ClockPointOf(__int64 time) {
    if (IsPoint(time)) return PointOf(time);
    const __int64 local = LocalOf(time);
    return PointOf(InstantOf(DaysOf(1973, 1, 10) * kDay + local - FloorDiv(local, kDay) * kDay));
}

// Behind the seconds, in front of a designator.
void InsertBehindDigits(CString& clock, const char* text) {
    NlsToAsciiDigits(clock);
    int end = clock.GetLength();
    while (end > 0 && (clock.GetAt(end - 1) < '0' || clock.GetAt(end - 1) > '9')) --end;
    clock.Insert(end, text);
    NlsToOwnDigits(clock);
}

std::string FractionText(const TimeStep& step, __int64 time) {
    const __int64 part = time - FloorDiv(time, kSecond) * kSecond;
    int digits = 6;
    __int64 last = 1;
    // No more digits than the step needs.
    while (digits > 1 && std::llround(step.Length()) % (last * 10) == 0) --digits, last *= 10;
    char text[32];
    const char separator = NlsGetDecimalSep();
    std::snprintf(text, sizeof text, "%c%0*lld", separator ? separator : '.', digits, part / last);
    return text;
}
}  // namespace

double TimeStep::Length() const {
    for (const Row& row : kRows) {
        if (row.unit == unit) return row.length * count;
    }
    return 0;
}

TimeStep ChooseTimeStep(double microseconds) {
    // A length between two units' rows is told in the larger unit.
    double least = microseconds;
    for (const CAxis::TimeSpanTypeSelector& row : CAxis::tstsVector) {
        if (microseconds > static_cast<double>(row.m_upper.CvtToInt64())) continue;
        least = std::max(microseconds, static_cast<double>(row.m_lower.CvtToInt64()));
        break;
    }
    for (const Row& row : kRows) {
        for (const int count : row.counts) {
            if (row.length * count >= least) return {row.unit, count};
        }
    }
    return {TimeUnit::Year, 0};
}

TimeStep Subdivide(const TimeStep& step) {
    if (step.count <= 0) return step;
    switch (step.unit) {
        case TimeUnit::Week:
            return step.count == 1 ? TimeStep{TimeUnit::Day, 1} : TimeStep{TimeUnit::Week, 1};
        case TimeUnit::Month:
            return {TimeUnit::Month, step.count > 1 ? 1 : 0};
        case TimeUnit::Year:
            return step.count == 1 ? TimeStep{TimeUnit::Month, 3} : TimeStep{TimeUnit::Year, std::max(step.count / 5, 1)};
        case TimeUnit::Day:
            return step.count == 1 ? TimeStep{TimeUnit::Hour, 6} : TimeStep{TimeUnit::Day, 1};
        default:
            break;
    }
    // The largest one of three to six parts, such as 5 min in 15, 2 in 10, 1 in 5, 15 min in 1 h.
    TimeStep best{step.unit, 0};
    const auto whole = static_cast<__int64>(step.Length());
    for (const Row& row : kRows) {
        for (const int count : row.counts) {
            const auto part = static_cast<__int64>(row.length * count);
            if (part * 3 <= whole && part * 6 >= whole && whole % part == 0) best = {row.unit, count};
        }
    }
    return best;
}

bool InCalendar(__int64 from, __int64 to) {
    return from >= DaysOf(kFirstYear, 1, 2) * kDay && to <= DaysOf(kLastYear, 12, 30) * kDay && from <= to;
}

std::vector<__int64> TimeTicks(const TimeStep& step, __int64 from, __int64 to, size_t most) {
    std::vector<__int64> ticks;
    const double length = step.Length();
    if (!InCalendar(from, to) || length <= 0 || static_cast<double>(to - from) / length > static_cast<double>(most)) return ticks;
    if (step.unit >= TimeUnit::Day) {
        // Dates one by one, counted in steps of days, of Mondays, or of months.
        const Date begin = DateOf(FloorDiv(LocalOf(from), kDay));
        const __int64 days = DaysOf(begin.year, begin.month, begin.day), monday = FloorDiv(days + 3, 7),
                      month = begin.year * 12 + begin.month - 1;
        const __int64 months = step.unit == TimeUnit::Year ? 12LL * step.count : step.count;
        for (__int64 i = 0;; ++i) {
            __int64 day = 0;
            if (step.unit == TimeUnit::Day) {
                day = (FloorDiv(days, step.count) + i) * step.count;
            } else if (step.unit == TimeUnit::Week) {
                day = (FloorDiv(monday, step.count) + i) * step.count * 7 - 3;
            } else {
                const __int64 at = (FloorDiv(month, months) + i) * months;
                day = DaysOf(FloorDiv(at, 12), static_cast<int>(at - FloorDiv(at, 12) * 12) + 1, 1);
            }
            const __int64 time = InstantOf(day * kDay);
            if (time > to) return ticks;
            if (time >= from) ticks.push_back(time);
        }
    }
    // Stretches between changes of the clock; in each the local clock runs evenly.
    const auto stride = static_cast<__int64>(length);
    for (__int64 begin = from; begin <= to;) {
        const __int64 offset = OffsetAt(begin);
        __int64 end = to + 1;
        for (__int64 probe = begin; probe < to;) {
            const __int64 next = std::min(to, probe + kDay);
            if (OffsetAt(next) != offset) {
                end = ChangeBetween(probe, next);
                break;
            }
            probe = next;
        }
        for (__int64 time = -FloorDiv(-(begin + offset), stride) * stride - offset; time < end; time += stride)
            ticks.push_back(time);
        begin = end;
    }
    return ticks;
}

std::string ClockText(__int64 time, bool seconds) {
    CString text;
    _NlsSetTime(text, ClockPointOf(time), 0);
    const char separator = NlsGetTimeSep();
    if (seconds || separator == 0) return text.GetString();
    // Hours and minutes are what stands in front of the second separator.
    NlsToAsciiDigits(text);
    const int second = text.Find(separator, text.Find(separator) + 1);
    if (second >= 0) {
        int end = second + 1;
        while (end < text.GetLength() && text.GetAt(end) >= '0' && text.GetAt(end) <= '9') ++end;
        text.Delete(second, end - second);
    }
    NlsToOwnDigits(text);
    return text.GetString();
}

std::string DateText(__int64 time) {
    CString text;
    if (IsPoint(time)) {
        _NlsSetShortDate(text, PointOf(time));
        return text.GetString();
    }
    // The date of another year, with this one in its place.
    const Date date = DateOf(FloorDiv(LocalOf(time), kDay));
    const __int64 like = YearLike(date.year);
    _NlsSetShortDate(text, PointOf(InstantOf(DaysOf(like, date.month, date.day) * kDay + kDay / 2)));
    NlsToAsciiDigits(text);
    std::string whole = text.GetString();
    for (const size_t digits : {4, 2}) {
        const std::string year = std::to_string(like).substr(4 - digits);
        const size_t at = whole.rfind(year);
        if (at == std::string::npos) continue;
        whole.replace(at, digits, std::to_string(date.year).substr(4 - digits));
        break;
    }
    text = whole.c_str();
    NlsToOwnDigits(text);
    return text.GetString();
}

std::string OffsetText(__int64 time) {
    const __int64 minutes = OffsetAt(time) / kMinute, size = std::abs(minutes);
    char text[32];
    std::snprintf(text, sizeof text, size % 60 ? "UTC%c%lld:%02lld" : "UTC%c%lld", minutes < 0 ? '-' : '+', size / 60, size % 60);
    return text;
}

std::string TimeLabel(const TimeStep& step, __int64 time) {
    const Date date = DateOf(FloorDiv(LocalOf(time), kDay));
    CString text;
    switch (step.unit) {
        case TimeUnit::Microsecond:
        case TimeUnit::Millisecond:
            text = ClockText(time, true).c_str();
            InsertBehindDigits(text, FractionText(step, time).c_str());
            break;
        case TimeUnit::Second:
            return ClockText(time, true);
        case TimeUnit::Minute:
        case TimeUnit::Hour:
            return ClockText(time, false);
        case TimeUnit::Day:
        case TimeUnit::Week: {
            const CString month = NlsGetShortMonth(date.month);
            if (MonthFirst()) {
                text.Format("%s %d", month.GetString(), date.day);
            } else {
                text.Format("%d %s", date.day, month.GetString());
            }
            break;
        }
        case TimeUnit::Month:
            text = NlsGetShortMonth(date.month);
            break;
        case TimeUnit::Year:
            text.Format("%d", static_cast<int>(date.year));
            break;
    }
    return text.GetString();
}

std::string TimeContext(const TimeStep& step, __int64 time) {
    if (step.unit == TimeUnit::Year) return {};
    if (step.unit < TimeUnit::Day) return DateText(time);
    return std::to_string(DateOf(FloorDiv(LocalOf(time), kDay)).year);
}

std::vector<ContextLabel> TimeContexts(const TimeStep& step, __int64 from, __int64 to, const std::vector<__int64>& ticks) {
    if (!InCalendar(from, to)) return {};
    // The difference from UTC matters where hours are told and it changes.
    bool offsets = false;
    if (step.unit < TimeUnit::Day) {
        for (__int64 probe = from; probe < to && !offsets; probe += kDay)
            offsets = OffsetAt(std::min(probe + kDay, to)) != OffsetAt(from);
    }
    std::vector<ContextLabel> labels;
    const auto look = [&](__int64 time) {
        const ContextLabel now{time, TimeContext(step, time), offsets ? OffsetText(time) : ""};
        if (labels.empty() || now.date != labels.back().date || now.offset != labels.back().offset) labels.push_back(now);
    };
    look(from);
    for (const __int64 tick : ticks) look(tick);
    return labels;
}

std::string ContextText(const ContextLabel& label, const ContextLabel& told) {
    if (label.date == told.date) return label.offset == told.offset ? "" : label.offset;
    return label.offset.empty() ? label.date : label.date + " " + label.offset;
}
