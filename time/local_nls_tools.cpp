#include "time/local_nls_tools.h"

#include <climits>

#include "res/ids.h"
#include "time/clock_text.h"
#include "time/date_picture_internal.h"
#include "time/digits_internal.h"
#include "time/locale_cache.h"
#include "time/span_text.h"
#include "time/span_words_internal.h"

using namespace orvik::detail;

namespace {
// The year that a number stands for, or -1. These bounds are the system's own.
int YearOf(int number) {
    if (number >= 100 && number <= 1979) return -1;
    if (number >= 71 && number <= 99)
        number += 1900;
    else if (number <= 42)
        number += 2000;
    return number >= 1900 && number <= 2041 ? number : -1;
}
}  // namespace

CLocalNlsTools::CLocalNlsTools() {
    UINT id = IDS_WORDS_WEEKS;
    for (CString* words : {&m_weeks, &m_days, &m_hours, &m_minutes, &m_seconds, &m_milliseconds, &m_microseconds})
        words->LoadString(id++);
}
CLocalNlsTools::CLocalNlsTools(const CLocalNlsTools& other) = default;
CLocalNlsTools& CLocalNlsTools::operator=(const CLocalNlsTools& other) = default;

void CLocalNlsTools::eatWhite(const char*& cursor) {
    while (*cursor == ' ') ++cursor;
}

int CLocalNlsTools::sInt(const char*& cursor, int* value, int maxDigits) {
    *value = 0;
    const char* behind = cursor;
    for (int count = 0, digit; (digit = TakeDigit(behind)) >= 0; ++count, cursor = behind) {
        if (maxDigits >= 0 && count >= maxDigits) return 0;
        *value = *value > (INT_MAX - digit) / 10 ? INT_MAX : *value * 10 + digit;
    }
    return 1;
}

int CLocalNlsTools::nTokC(const char*& cursor, char c) {
    if (c == 0) return 0;
    const char* const start = cursor;
    while (*cursor == c) ++cursor;
    return static_cast<int>(cursor - start);
}

int CLocalNlsTools::GetDate(const char* text, const char* picture, CVXTTime& time) {
    if (text == nullptr) text = "";
    if (picture == nullptr) picture = "";
    eatWhite(text);
    int year = -1, month = -1, day = -1;
    for (; *picture; ++picture) {
        switch (*picture) {
            case 'M':
                sInt(text, &month, -1);
                if (month < 1 || month > 12) return 0;
                break;
            case 'd':
                sInt(text, &day, -1);
                if (day < 1 || day > 31) return 0;
                break;
            case 'y':
                sInt(text, &year, -1);
                year = YearOf(year);
                if (year < 0) return 0;
                break;
            default:
                if (*text != *picture) return 0;
                ++text;
        }
    }
    return year >= 0 && month >= 0 && day >= 0 ? time.SetDate(year, month, day) : 0;
}

int CLocalNlsTools::GetTime(const char* text, CVXTTime& time) { return _NlsGetTime(text, time); }

int CLocalNlsTools::StringToTime(const char* text, CVXTTime& time) {
    const char* start = text ? text : "";
    eatWhite(start);
    for (const CString* picture : {&TheLocaleCache().shortDate, &TheLocaleCache().longDate}) {
        const char* cursor = start;
        CalendarDate date;
        if (!ReadDatePicture(cursor, picture->GetView(), date)) continue;
        eatWhite(cursor);
        CVXTTime read = time;
        // With a time of day to come the date goes to noon, which no change of the clock skips: by the old time of day it could
        // come out as the day after.
        if (*cursor) read.SetTime(12, 0, 0, 0);
        if (!read.SetDate(date.year, date.month, date.day)) continue;
        if (*cursor && !GetTime(cursor, read)) continue;
        time = read;
        return 1;
    }
    return 0;
}

int CLocalNlsTools::GetShortTimeSpan(const char* text, CVXTTimeSpan& span, int strict) {
    const SpanWords words = {&m_weeks, &m_days, &m_hours, &m_minutes, &m_seconds, &m_milliseconds, &m_microseconds};
    return ReadShortSpan(text, words, span, strict);
}
int CLocalNlsTools::GetLongTimeSpan(const char* text, CVXTTimeSpan& span) { return _NlsGetLongTimeSpan(text, span); }
int CLocalNlsTools::StringToSpan(const char* text, CVXTTimeSpan& span) {
    return GetLongTimeSpan(text, span) || GetShortTimeSpan(text, span);
}
