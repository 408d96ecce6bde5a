// Writes and reads a date by a picture such as "dddd d MMMM yyyy", with the module's own names.
// Uses texts of the string table only; any thread that may load them. Texts are Windows-1252.
//
// The elements of a picture: a run of "M", "d" or "y"; a text in single quotes, which runs to the end of the picture if the quote
// does not end, and has no way to hold a quote; any other character, which stands for itself.
#pragma once

#include <string_view>

#include "afx/string.h"

namespace orvik::detail {

struct CalendarDate {
    int year, month, day;  // month 1 to 12
    int weekday;           // 0 (Sunday) to 6
};

// Runs of 1 to 4 "M" and "d" write the number, two digits, the short or the long name (of the month, of the weekday); "yy" the
// year's last two digits, "yyyy" the year. Other runs of these letters write nothing.
void AppendDatePicture(CString& text, std::string_view picture, const CalendarDate& date);

// Reads from the cursor and moves it behind what was read; spaces are not skipped. Digits of "M", "MM", "d" and "dd" are any
// number of them, none being 0, without a range. "yy" is 0 to 99, 70 to 99 meaning 1970 to 1999 and the others 2000 to 2069;
// "yyyy" is 1900 to 2041. The name of "MMM", "MMMM", "ddd" and "dddd" is the run of letters at the cursor, whatever the process
// locale holds for letters, and is looked up with its case; that of a weekday is only checked. A name does not move the cursor,
// on purpose: the next element of the picture meets its first letter. Other runs read nothing. False where the text does not
// match, and when the picture leaves one of year, month and day without a value.
bool ReadDatePicture(const char*& cursor, std::string_view picture, CalendarDate& date);

}  // namespace orvik::detail
