#include "afx/time.h"

#include <cmath>

namespace {
// A FILETIME counts 100 ns from 1601-01-01.
constexpr __int64 kEpochSeconds = 11644473600;

// Days from 1899-12-30 of a day of the Gregorian calendar, and back: years counted from March, so that the leap day comes last.
constexpr int kDaysToZero = 693899;  // from 0000-03-01 to 1899-12-30

int DaysOf(int year, int month, int day) {
    const int shifted = month > 2 ? year : year - 1;
    const int fromMarch = (month + 9) % 12;
    return 365 * shifted + shifted / 4 - shifted / 100 + shifted / 400 + (153 * fromMarch + 2) / 5 + day - 1 - kDaysToZero;
}

bool IsLeap(int year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

int DaysInMonth(int year, int month) {
    static constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && IsLeap(year) ? 29 : kDays[month - 1];
}

struct Fields {
    int year, month, day, second;  // second of the day
    int number;                    // day number
};

bool FieldsOf(const COleDateTime& time, Fields& out) {
    if (time.GetStatus() != COleDateTime::valid) return false;
    double day = 0;
    const double fraction = std::modf(time.m_dt, &day);
    long second = std::lround(std::fabs(fraction) * 86400);
    auto number = static_cast<int>(day);
    if (second == 86400) {
        second = 0;
        ++number;
    }
    const int shifted = number + kDaysToZero;
    int year = (400 * shifted + 399) / 146097;  // at most one too high
    int rest = shifted - (365 * year + year / 4 - year / 100 + year / 400);
    if (rest < 0) {
        --year;
        rest = shifted - (365 * year + year / 4 - year / 100 + year / 400);
    }
    const int fromMarch = (5 * rest + 2) / 153;
    out.day = rest - (153 * fromMarch + 2) / 5 + 1;
    out.month = fromMarch < 10 ? fromMarch + 3 : fromMarch - 9;
    out.year = out.month <= 2 ? year + 1 : year;
    out.second = static_cast<int>(second);
    out.number = number;
    return out.year <= 9999;
}

constexpr double kFirst = -657434;  // 0100-01-01
constexpr double kLast = 2958466;   // the day after 9999-12-31
}  // namespace

CTime::CTime(const FILETIME& utc) {
    const auto ticks = (static_cast<ULONGLONG>(utc.dwHighDateTime) << 32) | utc.dwLowDateTime;
    m_time = static_cast<__int64>(ticks / 10000000) - kEpochSeconds;
}

COleDateTime::COleDateTime(double date) : m_dt(date) {
    if (!(date > kFirst - 1 && date < kLast)) m_status = invalid;
}

COleDateTime::COleDateTime(const SYSTEMTIME& local) {
    SetDateTime(local.wYear, local.wMonth, local.wDay, local.wHour, local.wMinute, local.wSecond);
}

COleDateTime::COleDateTime(int nYear, int nMonth, int nDay, int nHour, int nMin, int nSec) {
    SetDateTime(nYear, nMonth, nDay, nHour, nMin, nSec);
}

int COleDateTime::SetDateTime(int nYear, int nMonth, int nDay, int nHour, int nMin, int nSec) {
    const bool fits = nYear >= 100 && nYear <= 9999 && nMonth >= 1 && nMonth <= 12 && nDay >= 1 &&
                      nDay <= DaysInMonth(nYear, nMonth) && nHour >= 0 && nHour <= 23 && nMin >= 0 && nMin <= 59 && nSec >= 0 &&
                      nSec <= 59;
    if (!fits) {
        m_status = invalid;
        return m_status;
    }
    const int day = DaysOf(nYear, nMonth, nDay);
    const double fraction = (nHour * 3600 + nMin * 60 + nSec) / 86400.0;
    m_dt = day >= 0 ? day + fraction : day - fraction;
    m_status = valid;
    return m_status;
}

bool COleDateTime::GetAsSystemTime(SYSTEMTIME& local) const {
    Fields fields;
    if (!FieldsOf(*this, fields)) return false;
    local = {};
    local.wYear = static_cast<WORD>(fields.year);
    local.wMonth = static_cast<WORD>(fields.month);
    local.wDay = static_cast<WORD>(fields.day);
    local.wDayOfWeek = static_cast<WORD>(GetDayOfWeek() - 1);
    local.wHour = static_cast<WORD>(fields.second / 3600);
    local.wMinute = static_cast<WORD>(fields.second / 60 % 60);
    local.wSecond = static_cast<WORD>(fields.second % 60);
    return true;
}

int COleDateTime::GetYear() const {
    Fields fields;
    return FieldsOf(*this, fields) ? fields.year : error;
}
int COleDateTime::GetMonth() const {
    Fields fields;
    return FieldsOf(*this, fields) ? fields.month : error;
}
int COleDateTime::GetDay() const {
    Fields fields;
    return FieldsOf(*this, fields) ? fields.day : error;
}
int COleDateTime::GetHour() const {
    Fields fields;
    return FieldsOf(*this, fields) ? fields.second / 3600 : error;
}
int COleDateTime::GetMinute() const {
    Fields fields;
    return FieldsOf(*this, fields) ? fields.second / 60 % 60 : error;
}
int COleDateTime::GetSecond() const {
    Fields fields;
    return FieldsOf(*this, fields) ? fields.second % 60 : error;
}
int COleDateTime::GetDayOfWeek() const {
    Fields fields;
    // Day 0 was a Saturday.
    return FieldsOf(*this, fields) ? ((fields.number + 6) % 7 + 7) % 7 + 1 : error;
}
int COleDateTime::GetDayOfYear() const {
    Fields fields;
    return FieldsOf(*this, fields) ? fields.number - DaysOf(fields.year, 1, 1) + 1 : error;
}
