// The C run-time's 64-bit time functions and the file-time conversions, as on Windows.
// Any thread. Times are seconds since 1970-01-01 00:00:00 UTC; file times are 100 ns units since 1601-01-01.
#pragma once

#include <cerrno>
#include <ctime>

#include "platform/api.h"
#include "platform/posix/types.h"

using __time64_t = long long;
using errno_t = int;

struct __timeb64 {
    __time64_t time;
    unsigned short millitm;  // milliseconds within the second
    short timezone;          // minutes west of UTC, without daylight saving
    short dstflag;           // non-zero while daylight saving is in force
};

ORVIK_API __time64_t _time64(__time64_t* timer);
ORVIK_API errno_t _ftime64_s(__timeb64* now);
// Local calendar fields to seconds, putting the fields right. -1, with the fields untouched, when the result would lie before
// 1970 or after the year 3000. The same fields always mean the same time, whatever was converted before: with the flag at -1
// standard time in an hour that comes twice, and in one that is skipped the time moves on by what is skipped. A flag that the
// fields' time does not have is taken at its word: an hour beside, as a rule (platform/zone_rules.h has it in full).
ORVIK_API __time64_t _mktime64(tm* fields);
// 0, or EINVAL for a null pointer and for a time before 1970 or after the year 3000; the fields are then all -1.
ORVIK_API errno_t _localtime64_s(tm* fields, const __time64_t* timer);
ORVIK_API errno_t _gmtime64_s(tm* fields, const __time64_t* timer);
// Reads TZ again. The zone is otherwise read once, as on Windows.
ORVIK_API void _tzset();

// Fields out of range, 30 February included, fail with 87. wDayOfWeek is not looked at.
ORVIK_API BOOL WINAPI SystemTimeToFileTime(const SYSTEMTIME* system, FILETIME* file);
ORVIK_API BOOL WINAPI FileTimeToSystemTime(const FILETIME* file, SYSTEMTIME* system);
// Both shift by the difference from UTC that is in force now, not by the one in force at the given time: that is their documented
// rule.
ORVIK_API BOOL WINAPI LocalFileTimeToFileTime(const FILETIME* local, FILETIME* utc);
ORVIK_API BOOL WINAPI FileTimeToLocalFileTime(const FILETIME* utc, FILETIME* local);
ORVIK_API void WINAPI GetLocalTime(SYSTEMTIME* now);
ORVIK_API void WINAPI GetSystemTime(SYSTEMTIME* now);
ORVIK_API void WINAPI GetSystemTimeAsFileTime(FILETIME* now);
