// Writes a date by a picture such as "dddd d MMMM yyyy", with the module's own names.
// Reads texts of the string table only; any thread that may load them.
#pragma once

#include "afx/string.h"

namespace orvik::detail {

struct CalendarDate {
    int year, month, day;  // month 1 to 12
    int weekday;           // 0 (Sunday) to 6
};

// Runs of 1 to 4 "M" and "d" write the number, two digits, the short or the long name (of the month, of the weekday); "yy" the
// year's last two digits, "yyyy" the year. Other runs of these letters write nothing. Text in single quotes is copied without
// them, up to the end of the picture if a quote does not end; every other character is copied.
CString WriteDatePicture(const CString& picture, const CalendarDate& date);

}  // namespace orvik::detail
