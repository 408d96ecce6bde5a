// Dates as the user types and reads them: by the short and the long date picture of the locale cache, with the module's own names
// of months and weekdays. A picture has runs of "d", "M" and "y", quoted text, and other characters that stand for themselves.
// User-interface thread only, since the cache is; texts are Windows-1252. Nothing here shows a message. Readers return 1, or 0
// with the time unchanged; writers always 1.
#pragma once

#include "afx/string.h"
#include "time/time_point.h"

// "M" and "d" are numbers without, "MM" and "dd" with a leading zero; "MMM" and "ddd" are short names, "MMMM" and "dddd" long
// ones; "yy" is the year's last two digits, "yyyy" the year. Longer runs and other runs of "y" write nothing.
ORVIK_API int _NlsSetShortDate(CString& text, const CVXTTime& time);
ORVIK_API int _NlsSetLongDate(CString& text, const CVXTTime& time);

// Leading spaces are not skipped; what follows the picture's last element is not looked at. Names are read with their case, those
// of weekdays are only checked. Two digits of a year mean 1970 to 2069, four lie from 1900 to 2041. A month or day without digits
// is 0, and neither is checked: CVXTTime::SetDate puts them right (day 0 is the last day of the month before). The date is set by
// it, which keeps the time of day and drops its part of a second. A picture that does not name day, month and year reads nothing.
//
// A name does not move the reader on, on purpose: the picture's next element meets the name's first letter. So a picture that
// ends with its name reads what it writes, "d MMM yyyy" does not.
ORVIK_API int _NlsGetShortDate(const char* text, CVXTTime& time);
ORVIK_API int _NlsGetLongDate(const char* text, CVXTTime& time);
