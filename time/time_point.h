// A point in time: one signed 64-bit count of microseconds since 1970-01-01 00:00:00 UTC.
// A value type; any thread. Calendar fields are local time. Before any calendar field is taken, the value is clamped to the time
// range, local midnight of 1 January 1972 to that of 1 January 2034; the count itself may lie anywhere.
#pragma once

#include <compare>

#include "afx/object.h"
#include "afx/string.h"
#include "afx/time.h"
#include "time/time_span.h"

// Calendar fields.
enum CVXTTimeType : int {
    TT_YEAR = 0,
    TT_QUARTER = 1,
    TT_MONTH = 2,
    TT_WEEK = 3,
    TT_DAYOFYEAR = 4,
    TT_DAYOFMONTH = 5,
    TT_WEEKDAY = 6,
    TT_HOUR = 7,
    TT_MINUTE = 8,
    TT_SECOND = 9,
    TT_MILLISECOND = 10,
    TT_MICROSECOND = 11
};

class ORVIK_API CVXTTime : public CObject {
    DECLARE_SERIAL(CVXTTime)

public:
    CVXTTime();             // now, to the whole second
    static CVXTTime Now();  // now, to the millisecond
    CVXTTime(const __timeb64& time);
    CVXTTime(const CTime& time);
    // The value rounded to the nearest second gives the fields below; what the rounding left off is added.
    CVXTTime(const COleDateTime& date);
    // Local calendar time; `dst` is the C library's daylight flag, -1 to let it decide. Raises the framework's exception for
    // E_FAIL when a field is out of range (year from 1970, month 1 to 12, day 1 to 31, ...), for E_INVALIDARG when the C library
    // cannot represent the time. 31 April is 1 May.
    CVXTTime(int year, int month, int day, int hour, int minute, int second, int dst);
    CVXTTime(const CVXTTime& other);
    CVXTTime& operator=(const CVXTTime& other);

    void GetAtlTime(CTime* time) const;  // whole seconds, truncated toward zero
    void SetAtlTime(const CTime* time);
    // The count itself, in microseconds: what files hold.
    void SetBinaryTime(__int64 count) { m_time = count; }
    __int64 GetBinaryTime() const { return m_time; }
    __int64 GetAnsiTime() const { return m_time / 1'000'000; }  // seconds since 1970, truncated toward zero

    // A sum that would cross or meet the epoch (not the time range) saturates: from above it becomes the minimum time, from below
    // the maximum time. Kept exactly so. Otherwise overflow wraps.
    CVXTTime& operator+=(const CVXTTimeSpan& span);
    CVXTTime& operator-=(const CVXTTimeSpan& span);
    CVXTTime operator+(const CVXTTimeSpan& span) const;
    CVXTTime operator-(const CVXTTimeSpan& span) const;
    CVXTTimeSpan operator-(const CVXTTime& other) const;

    bool operator==(const CVXTTime& other) const { return m_time == other.m_time; }
    std::strong_ordering operator<=>(const CVXTTime& other) const { return m_time <=> other.m_time; }

    // To a multiple of `step` microseconds (positive) on the epoch's grid, not on local boundaries; the remainder truncates, so
    // these are not true floors and ceilings before 1970.
    void Ceil(const __int64& step);
    void Floor(const __int64& step);
    void Clamp();  // into the time range

    // Microseconds. Computed once when the module starts, in the zone of that moment.
    static __int64 GetMinTime();
    static __int64 GetMaxTime();

    // Pointers may be null. Month 1 to 12.
    void GetDate(int* year, int* month, int* day) const;
    void GetTime(int* hour, int* minute, int* second) const;
    // Quarter 1 to 4, month 1 to 12, day of year from 0 on purpose, day of month from 1, weekday 0 (Sunday) to 6, milliseconds
    // and microseconds below the next larger unit. Weeks start on Monday; days before the year's first week count as the last
    // week of the year before, 53 or 52 by this year's first weekday alone. Any other selector gives 0.
    int Get(CVXTTimeType type) const;
    // 1, or 0 with the value unchanged when the C library cannot represent the result. Fields are put right (31 April is 1 May).
    // In the hour of autumn that comes twice the result is standard time; a time that the clock skips moves on by what is
    // skipped, which may be into the next day, but never back.
    int SetDate(int year, int month, int day);  // keeps the local time of day, drops the part of a second
    int SetTime(int hour, int minute, int second, int millisecond);

    // Local fields, not UTC.
    void GetSystemTime(SYSTEMTIME* time) const;
    int SetSystemTime(const SYSTEMTIME* time);  // SetDate, then SetTime; 1 if both succeed
    void GetLocalFileTime(FILETIME* time) const;
    void GetFileTime(FILETIME* time) const;  // UTC, by the system's conversion, which applies today's difference from UTC
    void SetFileTime(const FILETIME* time);
    void SetLocalFileTime(const FILETIME* time);  // a time that has no date leaves the value unchanged

    // To the start of the calendar unit that holds the value, or of the next one. Units from the hour down step on the epoch's
    // grid. The daylight flag of the value is kept, literally: midnight of the other half of the year is an hour beside, and one
    // that the clock skips into summer is the evening before. SeekFloor never goes up, and SeekNext always does within the time
    // range, whatever the clock does; but by milliseconds and microseconds it only drops the part of a second, on purpose.
    void SeekFloor(CVXTTimeType type);
    void SeekNext(CVXTTimeType type);

    // The date in the user's short-date picture, a space, the time of day in the user's format.
    CString Format() const;

    void Serialize(CArchive& ar) override;  // 8 bytes, little-endian

protected:
    explicit CVXTTime(__int64 count) : m_time(count) {}
    int GetLocalTime(tm* fields) const;  // 0, as _localtime64_s
    int SetLocalTime(tm* fields);        // 1, with the fields put right; 0 when the C library cannot represent them

private:
    __int64 Clamped() const;
    int SetFields(const tm& fields, int offset);  // as LocalSeconds of local_zone.h

    __int64 m_time;
};
