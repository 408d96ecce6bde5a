// Scans text at a cursor, and carries the words accepted for the units of a span.
// A value type; the default constructor and the readers use the module's texts, on the user-interface thread. A cursor is a
// pointer into zero-terminated text; no function moves it beyond the end.
#pragma once

#include "afx/string.h"
#include "time/time_point.h"

class ORVIK_API CLocalNlsTools {
public:
    CLocalNlsTools();  // the words in the language of the resources
    CLocalNlsTools(const CLocalNlsTools& other);
    CLocalNlsTools& operator=(const CLocalNlsTools& other);

    // Skips spaces, and only spaces.
    static void eatWhite(const char*& cursor);
    // Reads at most maxDigits decimal digits (any number if it is negative); no digit is the value 0. 1 when it stopped before
    // something else than a digit, 0 when a further digit follows: a field with too many digits. Larger numbers than an int holds
    // read as the largest one.
    static int sInt(const char*& cursor, int* value, int maxDigits);
    // The length of the run of `c` at the cursor, which is consumed; 0 if another character stands there.
    static int nTokC(const char*& cursor, char c);

    // Reads a date by a picture whose fields are single letters "M", "d" and "y", all three of them, such as "d.M.y"; any other
    // character stands for itself. Leading spaces are skipped, what follows the last field is not looked at. Years: 0 to 41 are
    // 2000 to 2041, 71 to 99 are 1971 to 1999, others lie from 1980 to 2041. Sets the date and keeps the time of day; 1, or 0
    // with `time` unchanged.
    int GetDate(const char* text, const char* picture, CVXTTime& time);
    // Reads a time of day as _NlsGetTime does.
    int GetTime(const char* text, CVXTTime& time);
    // Reads what CVXTTime::Format writes: spaces, a date in the user's short or long picture and, if more than spaces follow, a
    // time of day. Both are set, or the date alone with the time of day kept; 1, or 0 with `time` unchanged.
    int StringToTime(const char* text, CVXTTime& time);

    // Reads a number as _NlsGetReal does, with given separators (0 matches nothing), without a suffix and with nothing behind it.
    static int GetReal(const char* text, char decimalSep, char thousandSep, double& value);

    // Read spans as the functions of span_text.h do, the short form with the words held here.
    int GetShortTimeSpan(const char* text, CVXTTimeSpan& span, int strict = 0);
    int GetLongTimeSpan(const char* text, CVXTTimeSpan& span);
    int StringToSpan(const char* text, CVXTTimeSpan& span);  // the long form or, where it fails, the short one

private:
    // Words between semicolons, shortest first, with a semicolon at both ends.
    CString m_weeks, m_days, m_hours, m_minutes, m_seconds, m_milliseconds, m_microseconds;
};
