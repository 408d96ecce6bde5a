#include "time/time_point.h"

#include <algorithm>
#include <chrono>

#include "afx/archive.h"
#include "afx/exception.h"
#include "time/date_picture_internal.h"
#include "time/digits_internal.h"
#include "time/integer_internal.h"
#include "time/local_zone.h"
#include "time/local_zone_internal.h"
#include "time/locale_cache.h"

using namespace orvik::detail;

IMPLEMENT_SERIAL(CVXTTime, CObject, 1)

namespace {

constexpr __int64 kMillisecond = 1'000, kSecond = 1'000'000, kMinute = 60 * kSecond, kHour = 60 * kMinute;
constexpr int kSunday = 0, kMonday = 1;

struct TimeRange {
    __int64 minimum = 0, maximum = 0;
};
constinit TimeRange g_range;

const TimeRange& ComputeRange() {
    return g_range = {LocalNewYear(1972) * kSecond, LocalNewYear(2034) * kSecond};
}
inline const TimeRange& Range() { return g_range.maximum != 0 ? g_range : ComputeRange(); }
// The range is computed when the module starts, so that a zone without these dates fails the start and not a later read. Objects
// of other files that are made before find it by asking.
[[maybe_unused]] const TimeRange& g_rangeAtStart = Range();

// Years and months as the C library counts them; numbers at the end of their range wrap and are then refused by it.
int LibraryYear(int year) { return static_cast<int>(static_cast<unsigned>(year) - 1900u); }
int LibraryMonth(int month) { return static_cast<int>(static_cast<unsigned>(month) - 1u); }

__int64 FromFields(int year, int month, int day, int hour, int minute, int second, int dst) {
    if (year < 1970 || month < 1 || month > 12 || day < 1 || day > 31 || hour < 0 || hour > 23 || minute < 0 || minute > 59 ||
        second < 0 || second > 59)
        AtlThrow(E_FAIL);
    tm fields{};
    fields.tm_year = LibraryYear(year), fields.tm_mon = LibraryMonth(month), fields.tm_mday = day;
    fields.tm_hour = hour, fields.tm_min = minute, fields.tm_sec = second, fields.tm_isdst = dst;
    const __int64 seconds = LocalSeconds(fields);
    if (seconds == -1) AtlThrow(E_INVALIDARG);
    return seconds * kSecond;
}

// The week number by the weekday of 1 January, without a look at the year before: simpler than the ISO rule, on purpose.
int WeekOfYear(const tm& fields) {
    const int firstWeekday = ((fields.tm_wday - fields.tm_yday) % 7 + 7) % 7;
    const int first = firstWeekday == kSunday ? 6 : firstWeekday - 1;  // days since Monday
    const int day = fields.tm_yday;
    const auto wrapped = [](int week) { return week == 53 ? 1 : week; };
    switch (first) {
        case 0:
            return wrapped(day / 7 + 1);
        case 1:
            return day < 6 ? 1 : wrapped((day - 6) / 7 + 2);
        case 2:
            return day < 5 ? 1 : wrapped((day - 5) / 7 + 2);
        case 3:
            return day < 4 ? 1 : (day - 4) / 7 + 2;
        case 4:
            return day < 3 ? 53 : wrapped((day - 3) / 7 + 1);
        case 5:
            return day < 2 ? 53 : (day - 2) / 7 + 1;
        default:
            return day < 1 ? 52 : (day - 1) / 7 + 1;
    }
}

void ToMidnight(tm& fields) { fields.tm_hour = fields.tm_min = fields.tm_sec = 0; }

}  // namespace

CVXTTime::CVXTTime() : m_time(_time64(nullptr) * kSecond) {}

CVXTTime CVXTTime::Now() {
    // Without the zone's bias, which costs more than all else.
    using namespace std::chrono;
    const __int64 milliseconds = duration_cast<std::chrono::milliseconds>(system_clock::now().time_since_epoch()).count();
    __timeb64 now{};
    now.time = milliseconds / 1'000;
    now.millitm = static_cast<unsigned short>(milliseconds % 1'000);
    return CVXTTime(now);
}

CVXTTime::CVXTTime(const __timeb64& time) : m_time(WrapMul(WrapAdd(WrapMul(time.time, 1'000), time.millitm), kMillisecond)) {}
CVXTTime::CVXTTime(const CTime& time) : m_time(WrapMul(time.GetTime(), kSecond)) {}
CVXTTime::CVXTTime(const COleDateTime& date)
    : m_time(FromFields(date.GetYear(), date.GetMonth(), date.GetDay(), date.GetHour(), date.GetMinute(), date.GetSecond(), -1)) {
    const COleDateTime whole(date.GetYear(), date.GetMonth(), date.GetDay(), date.GetHour(), date.GetMinute(), date.GetSecond());
    *this += CVXTTimeSpan(static_cast<double>(date) - static_cast<double>(whole));
}
CVXTTime::CVXTTime(int year, int month, int day, int hour, int minute, int second, int dst)
    : m_time(FromFields(year, month, day, hour, minute, second, dst)) {}
CVXTTime::CVXTTime(const CVXTTime& other) : CObject(), m_time(other.m_time) {}
CVXTTime& CVXTTime::operator=(const CVXTTime& other) {
    m_time = other.m_time;
    return *this;
}

void CVXTTime::GetAtlTime(CTime* time) const { *time = CTime(m_time / kSecond); }
void CVXTTime::SetAtlTime(const CTime* time) { m_time = WrapMul(time->GetTime(), kSecond); }

__int64 CVXTTime::GetMinTime() { return Range().minimum; }
__int64 CVXTTime::GetMaxTime() { return Range().maximum; }

CVXTTime& CVXTTime::operator+=(const CVXTTimeSpan& span) {
    const __int64 t = m_time, s = span.m_span, sum = WrapAdd(t, s);
    if (s > 0 && t < 0 && sum >= 0)
        m_time = GetMaxTime();
    else if (s < 0 && t >= 0 && sum <= 0)
        m_time = GetMinTime();
    else
        m_time = sum;
    return *this;
}

CVXTTime& CVXTTime::operator-=(const CVXTTimeSpan& span) {
    const __int64 t = m_time, s = span.m_span;
    if (s > 0 && t >= 0 && t <= s)
        m_time = GetMinTime();
    else if (s < 0 && t < 0 && t >= s)
        m_time = GetMaxTime();
    else
        m_time = WrapSub(t, s);
    return *this;
}

CVXTTime CVXTTime::operator+(const CVXTTimeSpan& span) const { return CVXTTime(*this) += span; }
CVXTTime CVXTTime::operator-(const CVXTTimeSpan& span) const { return CVXTTime(*this) -= span; }
CVXTTimeSpan CVXTTime::operator-(const CVXTTime& other) const { return {CVXTTimeSpan::Raw{}, WrapSub(m_time, other.m_time)}; }

void CVXTTime::Ceil(const __int64& step) {
    const __int64 raised = WrapSub(WrapAdd(m_time, step), 1);
    m_time = raised - raised % step;
}
void CVXTTime::Floor(const __int64& step) { m_time -= m_time % step; }
__int64 CVXTTime::Clamped() const { return std::clamp(m_time, GetMinTime(), GetMaxTime()); }
void CVXTTime::Clamp() { m_time = Clamped(); }

int CVXTTime::GetLocalTime(tm* fields) const {
    *fields = LocalFields(Clamped() / kSecond);
    return 0;
}

int CVXTTime::SetLocalTime(tm* fields) {
    if (!SetFields(*fields, kAnyOffset)) return 0;
    const __time64_t seconds = m_time / kSecond;
    return _localtime64_s(fields, &seconds) == 0;
}

int CVXTTime::SetFields(const tm& fields, int offset) {
    const __int64 seconds = LocalSeconds(fields, offset);
    if (seconds == -1) return 0;
    m_time = seconds * kSecond;
    return 1;
}

void CVXTTime::GetDate(int* year, int* month, int* day) const {
    tm fields;
    GetLocalTime(&fields);
    if (year) *year = fields.tm_year + 1900;
    if (month) *month = fields.tm_mon + 1;
    if (day) *day = fields.tm_mday;
}

void CVXTTime::GetTime(int* hour, int* minute, int* second) const {
    tm fields;
    GetLocalTime(&fields);
    if (hour) *hour = fields.tm_hour;
    if (minute) *minute = fields.tm_min;
    if (second) *second = fields.tm_sec;
}

int CVXTTime::Get(CVXTTimeType type) const {
    tm fields;
    GetLocalTime(&fields);
    switch (type) {
        case TT_YEAR:
            return fields.tm_year + 1900;
        case TT_QUARTER:
            return fields.tm_mon / 3 + 1;
        case TT_MONTH:
            return fields.tm_mon + 1;
        case TT_WEEK:
            return WeekOfYear(fields);
        case TT_DAYOFYEAR:
            return fields.tm_yday;
        case TT_DAYOFMONTH:
            return fields.tm_mday;
        case TT_WEEKDAY:
            return fields.tm_wday;
        case TT_HOUR:
            return fields.tm_hour;
        case TT_MINUTE:
            return fields.tm_min;
        case TT_SECOND:
            return fields.tm_sec;
        case TT_MILLISECOND:
            return static_cast<int>(Clamped() % kSecond / kMillisecond);
        case TT_MICROSECOND:
            return static_cast<int>(Clamped() % kMillisecond);
        default:
            return 0;
    }
}

int CVXTTime::SetDate(int year, int month, int day) {
    tm fields;
    GetLocalTime(&fields);
    fields.tm_year = LibraryYear(year), fields.tm_mon = LibraryMonth(month), fields.tm_mday = day;
    fields.tm_isdst = -1;
    return SetFields(fields, kAnyOffset);
}

int CVXTTime::SetTime(int hour, int minute, int second, int millisecond) {
    tm fields;
    GetLocalTime(&fields);
    fields.tm_hour = hour, fields.tm_min = minute, fields.tm_sec = second;
    fields.tm_isdst = -1;
    if (!SetFields(fields, kAnyOffset)) return 0;
    m_time += millisecond * kMillisecond;
    return 1;
}

void CVXTTime::GetSystemTime(SYSTEMTIME* time) const {
    const __int64 count = Clamped(), seconds = count / kSecond;
    const tm fields = LocalFields(seconds);
    const auto word = [](__int64 value) { return static_cast<WORD>(value); };
    *time = {word(fields.tm_year + 1900), word(fields.tm_mon + 1),
             word(fields.tm_wday),        word(fields.tm_mday),
             word(fields.tm_hour),        word(fields.tm_min),
             word(fields.tm_sec),         word((count - seconds * kSecond) / kMillisecond)};
}

int CVXTTime::SetSystemTime(const SYSTEMTIME* time) {
    // The date goes to noon, which no change of the clock skips: by the old time of day it could come out as the day after.
    CVXTTime set = *this;
    const int date = set.SetTime(12, 0, 0, 0) && set.SetDate(time->wYear, time->wMonth, time->wDay);
    if (!set.SetTime(time->wHour, time->wMinute, time->wSecond, time->wMilliseconds)) return 0;
    *this = set;
    return date;
}

void CVXTTime::GetLocalFileTime(FILETIME* time) const {
    SYSTEMTIME local;
    GetSystemTime(&local);
    SystemTimeToFileTime(&local, time);
}

void CVXTTime::GetFileTime(FILETIME* time) const {
    FILETIME local;
    GetLocalFileTime(&local);
    LocalFileTimeToFileTime(&local, time);
}

void CVXTTime::SetFileTime(const FILETIME* time) {
    FILETIME local;
    if (FileTimeToLocalFileTime(time, &local)) SetLocalFileTime(&local);
}

void CVXTTime::SetLocalFileTime(const FILETIME* time) {
    SYSTEMTIME local;
    if (FileTimeToSystemTime(time, &local)) SetSystemTime(&local);
}

void CVXTTime::SeekFloor(CVXTTimeType type) {
    static constexpr __int64 kGrid[] = {kHour, kMinute, kSecond, kMillisecond};
    if (type >= TT_HOUR && type <= TT_MILLISECOND) {
        m_time = Clamped();
        Floor(kGrid[type - TT_HOUR]);
        return;
    }
    tm fields;
    GetLocalTime(&fields);
    const int offset = LocalOffset(Clamped() / kSecond);
    switch (type) {
        case TT_YEAR:
            fields.tm_mon = 0, fields.tm_mday = 1, ToMidnight(fields);
            break;
        case TT_QUARTER:
            fields.tm_mon -= fields.tm_mon % 3, fields.tm_mday = 1, ToMidnight(fields);
            break;
        case TT_MONTH:
            fields.tm_mday = 1, ToMidnight(fields);
            break;
        case TT_WEEK:
        case TT_DAYOFYEAR:
        case TT_DAYOFMONTH:
        case TT_WEEKDAY:
            ToMidnight(fields);
            break;
        default:
            break;
    }
    if (!SetFields(fields, offset) || type != TT_WEEK) return;
    while (Get(TT_WEEKDAY) != kMonday && m_time > GetMinTime()) {
        m_time -= 1;
        SeekFloor(TT_WEEKDAY);
    }
}

void CVXTTime::SeekNext(CVXTTimeType type) {
    static constexpr __int64 kGrid[] = {kHour, kMinute, kSecond};
    if (type >= TT_HOUR && type <= TT_SECOND) {
        const __int64 unit = kGrid[type - TT_HOUR];
        m_time = (Clamped() / unit + 1) * unit;
        return;
    }
    if (type == TT_WEEK) {
        do {
            const __int64 before = Clamped();
            SeekNext(TT_WEEKDAY);
            if (m_time <= before) return;
            // Beyond the range every value reads as its end, whose weekday never changes.
            if (m_time >= GetMaxTime()) {
                m_time = GetMaxTime();
                return;
            }
        } while (Get(TT_WEEKDAY) != kMonday);
        return;
    }
    tm fields;
    GetLocalTime(&fields);
    const int offset = LocalOffset(Clamped() / kSecond);
    switch (type) {
        case TT_YEAR:
            ++fields.tm_year, fields.tm_mon = 0, fields.tm_mday = 1, ToMidnight(fields);
            break;
        case TT_QUARTER:
            fields.tm_mon += 3 - fields.tm_mon % 3;
            if (fields.tm_mon == 12) ++fields.tm_year, fields.tm_mon = 0;
            fields.tm_mday = 1, ToMidnight(fields);
            break;
        case TT_MONTH:
            if (++fields.tm_mon == 12) ++fields.tm_year, fields.tm_mon = 0;
            fields.tm_mday = 1, ToMidnight(fields);
            break;
        case TT_DAYOFYEAR:
        case TT_DAYOFMONTH:
        case TT_WEEKDAY:
            ++fields.tm_mday, ToMidnight(fields);
            break;
        default:
            break;
    }
    SetFields(fields, offset);
}

CString CVXTTime::Format() const {
    SYSTEMTIME local;
    GetSystemTime(&local);
    char time[1 + 255];
    *time = ' ';
    const int size = ::GetTimeFormatA(LOCALE_USER_DEFAULT, 0, &local, nullptr, time + 1, sizeof time - 1);
    CString text;
    text.Preallocate(31);
    AppendDatePicture(text, TheLocaleCache().shortDate.GetView(), {local.wYear, local.wMonth, local.wDay, local.wDayOfWeek});
    const int clock = text.GetLength();
    text += std::string_view(time, static_cast<size_t>(std::max(size, 1)));
    SpellDigits(text, clock);
    return text;
}

void CVXTTime::Serialize(CArchive& ar) {
    CObject::Serialize(ar);
    if (ar.IsStoring())
        ar << m_time;
    else
        ar >> m_time;
}
