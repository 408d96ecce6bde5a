// CTime: whole seconds since 1970-01-01 00:00:00 UTC. COleDateTime: days since 1899-12-30 00:00, local time without a zone.
// Value types; any thread.
#pragma once

#include "platform/win32.h"

#include <compare>

class ORVIK_API CTime {
public:
    CTime() = default;  // 0
    explicit CTime(__int64 time) : m_time(time) {}
    explicit CTime(const FILETIME& utc);  // whole seconds, rounded down

    __int64 GetTime() const { return m_time; }

    bool operator==(const CTime& other) const { return m_time == other.m_time; }
    auto operator<=>(const CTime& other) const { return m_time <=> other.m_time; }

private:
    __int64 m_time = 0;
};

// The day is the whole part, also for days before the first; the time of day is the fraction without its sign.
class ORVIK_API COleDateTime {
public:
    enum DateTimeStatus { error = -1, valid = 0, invalid = 1, null = 2 };

    COleDateTime() = default;  // midnight of 1899-12-30, valid
    COleDateTime(double date);
    COleDateTime(const SYSTEMTIME& local);  // to the whole second
    // Fields out of range make an invalid value. Years 100 to 9999.
    COleDateTime(int nYear, int nMonth, int nDay, int nHour, int nMin, int nSec);

    DateTimeStatus GetStatus() const { return m_status; }
    void SetStatus(DateTimeStatus status) { m_status = status; }
    int SetDateTime(int nYear, int nMonth, int nDay, int nHour, int nMin, int nSec);

    // Fields of the value rounded to the nearest second; a value that is not valid gives `error`.
    int GetYear() const;
    int GetMonth() const;  // 1 to 12
    int GetDay() const;    // 1 to 31
    int GetHour() const;
    int GetMinute() const;
    int GetSecond() const;
    int GetDayOfWeek() const;  // 1 (Sunday) to 7
    int GetDayOfYear() const;  // 1 to 366
    // The same fields, milliseconds 0; false when the value is not valid.
    bool GetAsSystemTime(SYSTEMTIME& local) const;

    operator double() const { return m_dt; }

    double m_dt = 0;
    DateTimeStatus m_status = valid;
};
