#include "host/session/time_stamp.h"

#include <algorithm>
#include <cstdio>

#include "time/time_point.h"

namespace {
constexpr __int64 kFirstTime = -11'644'473'600'000'000LL, kLastTime = 253'402'300'799'999'999LL;
constexpr __int64 kSecond = 1'000'000, kDay = 86'400 * kSecond;

struct Fields {
    int year, month, day;
};

// The calendar's day that is `days` after 1970-01-01, counted in eras of 400 years that begin with March.
Fields DateOf(__int64 days) {
    days += 719'468;
    const __int64 era = (days >= 0 ? days : days - 146'096) / 146'097, inEra = days - era * 146'097;
    const __int64 year = (inEra - inEra / 1460 + inEra / 36'524 - inEra / 146'096) / 365;
    const __int64 inYear = inEra - (365 * year + year / 4 - year / 100), march = (5 * inYear + 2) / 153;
    const int month = static_cast<int>(march < 10 ? march + 3 : march - 9);
    return {static_cast<int>(year + era * 400 + (month <= 2)), month, static_cast<int>(inYear - (153 * march + 2) / 5 + 1)};
}

__int64 DaysOf(const Fields& date) {
    const __int64 year = date.year - (date.month <= 2), era = (year >= 0 ? year : year - 399) / 400, inEra = year - era * 400;
    const __int64 inYear = (153 * (date.month > 2 ? date.month - 3 : date.month + 9) + 2) / 5 + date.day - 1;
    return era * 146'097 + inEra * 365 + inEra / 4 - inEra / 100 + inYear - 719'468;
}

char* Digits(char* out, __int64 value, int count) {
    for (int i = count; i-- > 0; value /= 10) out[i] = static_cast<char>('0' + value % 10);
    return out + count;
}

char* Stamp(char* out, __int64 time, char between) {
    const __int64 days = time >= 0 ? time / kDay : (time - kDay + 1) / kDay, seconds = (time - days * kDay) / kSecond;
    const Fields date = DateOf(days);
    *(out = Digits(out, date.year, 4))++ = '-';
    *(out = Digits(out, date.month, 2))++ = '-';
    *(out = Digits(out, date.day, 2))++ = between;
    *(out = Digits(out, seconds / 3600, 2))++ = ':';
    *(out = Digits(out, seconds / 60 % 60, 2))++ = ':';
    return Digits(out, seconds % 60, 2);
}

__int64 PartOfSecond(__int64 time) { return (time % kSecond + kSecond) % kSecond; }

// What a clock on the wall shows, as microseconds as if it were UTC.
__int64 OnTheWall(__int64 time) {
    CVXTTime point;
    point.SetBinaryTime(time - PartOfSecond(time));
    Fields date = {};
    int hour = 0, minute = 0, second = 0;
    point.GetDate(&date.year, &date.month, &date.day);
    point.GetTime(&hour, &minute, &second);
    return DaysOf(date) * kDay + ((hour * 60 + minute) * 60 + second) * kSecond + PartOfSecond(time);
}
}  // namespace

void AppendUtcStamp(std::string& text, __int64 time) {
    time = std::clamp(time, kFirstTime, kLastTime);
    char stamp[40];
    char* end = Stamp(stamp, time, 'T');
    *end++ = '.';
    end = Digits(end, PartOfSecond(time), 6);
    *end++ = 'Z';
    text.append(stamp, end);
}

void AppendLocalStamp(std::string& text, __int64 time, const std::string& decimalSign) {
    constexpr __int64 kHalf = 500;  // of the last digit that is written
    time = OnTheWall(std::clamp(time, kFirstTime + 2 * kDay, kLastTime - 2 * kDay) + kHalf);
    char stamp[40];
    text.append(stamp, Stamp(stamp, time, ' ')).append(decimalSign);
    text.append(stamp, Digits(stamp, PartOfSecond(time) / 1000, 3));
}

LocalStamp FromLocalStamp(const std::string& text, __int64& time) {
    Fields date = {};
    int hour, minute, second, used = 0;
    if (std::sscanf(text.c_str(), "%4d-%2d-%2d %2d:%2d:%2d%n", &date.year, &date.month, &date.day, &hour, &minute, &second,
                    &used) != 6 ||
        used != 19)
        return LocalStamp::Wrong;
    __int64 wall = DaysOf(date) * kDay + ((hour * 60 + minute) * 60 + second) * kSecond;
    char again[40];
    if (std::string(again, Stamp(again, wall, ' ')) != text.substr(0, 19)) return LocalStamp::Wrong;
    if (text.size() > 19) {
        const std::string decimals = text.substr(20);
        if ((text[19] != '.' && text[19] != ',') || decimals.empty() || decimals.find_first_not_of("0123456789") != decimals.npos)
            return LocalStamp::Wrong;
        __int64 weight = kSecond / 10;
        for (const char digit : decimals) wall += (digit - '0') * weight, weight /= 10;
    }
    // With the difference from UTC of the day before, and with that of the day after.
    const __int64 earlier = wall - (OnTheWall(wall - kDay) - (wall - kDay)),
                  later = wall - (OnTheWall(wall + kDay) - (wall + kDay));
    const bool firstFits = OnTheWall(earlier) == wall, secondFits = OnTheWall(later) == wall;
    if (firstFits && secondFits && earlier != later) return LocalStamp::Ambiguous;
    if (!firstFits && !secondFits) return LocalStamp::Wrong;  // the hour that summer time leaves out
    time = firstFits ? earlier : later;
    return LocalStamp::Read;
}
