#include "platform/posix/regional/crt_time.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <mutex>

#include "platform/posix/kernel/errors.h"
#include "platform/zone_rules.h"

using namespace orvik::detail;

namespace {

constexpr __time64_t kLastSecond = 32535215999;       // 3000-12-31 23:59:59 UTC
constexpr long long kUnixEpoch = 116444736000000000;  // 1970-01-01 as a file time
constexpr long long kUnitsPerSecond = 10'000'000, kUnitsPerDay = 864'000'000'000;
constexpr long long kEpochDays = 134774;  // 1601-01-01 to 1970-01-01

long long ToUnits(const FILETIME& t) {
    return static_cast<long long>((static_cast<ULONGLONG>(t.dwHighDateTime) << 32) | t.dwLowDateTime);
}
FILETIME FromUnits(long long units) {
    return {static_cast<DWORD>(static_cast<ULONGLONG>(units)), static_cast<DWORD>(static_cast<ULONGLONG>(units) >> 32)};
}

// Days since 1970-01-01 of a date in the Gregorian calendar, and back. Years are counted from March, so that the leap day is the
// last.
long long DaysFromDate(long long year, unsigned month, unsigned day) {
    if (month <= 2) --year;
    const long long era = year / 400;
    const long long ofEra = year % 400;
    const long long ofYear = (153 * ((month + 9) % 12) + 2) / 5 + day - 1;
    return era * 146097 + ofEra * 365 + ofEra / 4 - ofEra / 100 + ofYear - 719468;
}
void DateFromDays(long long days, SYSTEMTIME& to) {
    days += 719468;
    const long long era = days / 146097, ofEra = days % 146097;
    const long long yearOfEra = (ofEra - ofEra / 1460 + ofEra / 36524 - ofEra / 146096) / 365;
    const long long ofYear = ofEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const long long marchMonth = (5 * ofYear + 2) / 153;
    to.wDay = static_cast<WORD>(ofYear - (153 * marchMonth + 2) / 5 + 1);
    to.wMonth = static_cast<WORD>(marchMonth < 10 ? marchMonth + 3 : marchMonth - 9);
    to.wYear = static_cast<WORD>(yearOfEra + era * 400 + (to.wMonth <= 2));
}
// Times at the end of what the 64 bits hold wrap, and are then no dates.
FILETIME Shifted(const FILETIME& t, long long seconds) {
    const ULONGLONG units = static_cast<ULONGLONG>(ToUnits(t)) + static_cast<ULONGLONG>(seconds * kUnitsPerSecond);
    return FromUnits(static_cast<long long>(units));
}
unsigned DaysInMonth(unsigned year, unsigned month) {
    static constexpr unsigned char kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool leap = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
    return kDays[month - 1] + (month == 2 && leap);
}

void ReadZoneOnce() {
    static std::once_flag once;
    std::call_once(once, [] { tzset(); });
}

// Seconds east of UTC that are in force now.
long BiasNow() {
    ReadZoneOnce();
    const time_t now = time(nullptr);
    tm fields{};
    return localtime_r(&now, &fields) ? fields.tm_gmtoff : 0;
}

ZoneRule RuleAt(long long seconds) {
    const time_t asked = static_cast<time_t>(seconds);
    tm fields{};
    if (!localtime_r(&asked, &fields)) return {0, 0};
    return {static_cast<int>(fields.tm_gmtoff), fields.tm_isdst};
}

// What the fields mean by the rules around them. The C library's own mktime takes what it was asked last for a first guess, and
// in the hour that comes twice, or never, its answer is the one that lies nearest.
long long FromLocal(long long local, int flag) {
    constexpr long long kYear = 366 * 86'400;
    for (const long long around : {ZoneRules::kFarthest, kYear}) {
        const ZoneRules rules(local - around, local + around, RuleAt);
        if (flag < 0 || rules.HasFlag(flag)) return rules.FromLocal(local, flag);
    }
    return ZoneRules(local - ZoneRules::kReach, local + ZoneRules::kReach, RuleAt).FromLocal(local, flag);
}

errno_t Refuse(tm* fields) {
    if (fields) {
        *fields = tm{};
        fields->tm_sec = fields->tm_min = fields->tm_hour = fields->tm_mday = fields->tm_mon = -1;
        fields->tm_year = fields->tm_wday = fields->tm_yday = fields->tm_isdst = -1;
    }
    return errno = EINVAL;
}

BOOL Invalid() {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
}

long long NowInUnits() {
    using namespace std::chrono;
    return duration_cast<duration<long long, std::ratio<1, kUnitsPerSecond>>>(system_clock::now().time_since_epoch()).count() +
           kUnixEpoch;
}

}  // namespace

__time64_t _time64(__time64_t* timer) {
    const __time64_t now = time(nullptr);
    if (timer) *timer = now;
    return now;
}

errno_t _ftime64_s(__timeb64* now) {
    if (!now) return errno = EINVAL;
    ReadZoneOnce();
    const long long units = NowInUnits() - kUnixEpoch;
    const time_t seconds = static_cast<time_t>(units / kUnitsPerSecond);
    tm fields{};
    localtime_r(&seconds, &fields);
    now->time = seconds;
    now->millitm = static_cast<unsigned short>(units % kUnitsPerSecond / 10'000);
    now->dstflag = fields.tm_isdst > 0;
    // The bias without daylight saving; an hour is what almost every zone shifts by, and nothing here reads this field.
    now->timezone = static_cast<short>(-(fields.tm_gmtoff - (fields.tm_isdst > 0 ? 3600 : 0)) / 60);
    return 0;
}

__time64_t _mktime64(tm* fields) {
    if (!fields) {
        errno = EINVAL;
        return -1;
    }
    ReadZoneOnce();
    const long long local = LocalSecondsOf(*fields);
    if (local >= -ZoneRules::kFarthest && local <= kLastSecond + ZoneRules::kFarthest) {
        const __time64_t seconds = FromLocal(local, std::clamp(fields->tm_isdst, -1, 1));
        tm right{};
        if (_localtime64_s(&right, &seconds) == 0) {
            *fields = right;
            return seconds;
        }
    }
    errno = EINVAL;
    return -1;
}

errno_t _localtime64_s(tm* fields, const __time64_t* timer) {
    if (!fields || !timer || *timer < 0 || *timer > kLastSecond) return Refuse(fields);
    ReadZoneOnce();
    const time_t seconds = static_cast<time_t>(*timer);
    return localtime_r(&seconds, fields) ? 0 : Refuse(fields);
}

errno_t _gmtime64_s(tm* fields, const __time64_t* timer) {
    if (!fields || !timer || *timer < 0 || *timer > kLastSecond) return Refuse(fields);
    const time_t seconds = static_cast<time_t>(*timer);
    return gmtime_r(&seconds, fields) ? 0 : Refuse(fields);
}

void _tzset() { tzset(); }

BOOL SystemTimeToFileTime(const SYSTEMTIME* system, FILETIME* file) {
    if (!system || !file) return Invalid();
    const SYSTEMTIME& s = *system;
    if (s.wYear < 1601 || s.wYear > 30827 || s.wMonth < 1 || s.wMonth > 12 || s.wDay < 1 ||
        s.wDay > DaysInMonth(s.wYear, s.wMonth) || s.wHour > 23 || s.wMinute > 59 || s.wSecond > 59 || s.wMilliseconds > 999)
        return Invalid();
    const long long days = DaysFromDate(s.wYear, s.wMonth, s.wDay) + kEpochDays;
    *file = FromUnits(days * kUnitsPerDay + (s.wHour * 3600LL + s.wMinute * 60LL + s.wSecond) * kUnitsPerSecond +
                      s.wMilliseconds * 10'000LL);
    return TRUE;
}

BOOL FileTimeToSystemTime(const FILETIME* file, SYSTEMTIME* system) {
    if (!file || !system) return Invalid();
    const long long units = ToUnits(*file);
    if (units < 0) return Invalid();
    const long long days = units / kUnitsPerDay, rest = units % kUnitsPerDay / 10'000;
    SYSTEMTIME s{};
    DateFromDays(days - kEpochDays, s);
    s.wDayOfWeek = static_cast<WORD>((days + 1) % 7);  // 1601-01-01 was a Monday
    s.wMilliseconds = static_cast<WORD>(rest % 1000);
    s.wSecond = static_cast<WORD>(rest / 1000 % 60);
    s.wMinute = static_cast<WORD>(rest / 60'000 % 60);
    s.wHour = static_cast<WORD>(rest / 3'600'000);
    *system = s;
    return TRUE;
}

BOOL LocalFileTimeToFileTime(const FILETIME* local, FILETIME* utc) {
    if (!local || !utc) return Invalid();
    *utc = Shifted(*local, -BiasNow());
    return TRUE;
}

BOOL FileTimeToLocalFileTime(const FILETIME* utc, FILETIME* local) {
    if (!utc || !local) return Invalid();
    *local = Shifted(*utc, BiasNow());
    return TRUE;
}

void GetSystemTimeAsFileTime(FILETIME* now) { *now = FromUnits(NowInUnits()); }

void GetSystemTime(SYSTEMTIME* now) {
    FILETIME utc;
    GetSystemTimeAsFileTime(&utc);
    FileTimeToSystemTime(&utc, now);
}

void GetLocalTime(SYSTEMTIME* now) {
    FILETIME utc, local;
    GetSystemTimeAsFileTime(&utc);
    FileTimeToLocalFileTime(&utc, &local);
    FileTimeToSystemTime(&local, now);
}
