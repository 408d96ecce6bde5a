// Times of day as the user types and reads them: written by the system in the user's format, read by a grammar of our own on the
// locale cache's time separator, decimal separator and designators of morning and afternoon.
// User-interface thread only, since the cache is; texts are Windows-1252. Nothing here shows a message.
#pragma once

#include "afx/string.h"
#include "time/time_point.h"

// With milliseconds, the cached decimal separator and three digits follow at the end, behind a designator too (which then does
// not read back). 1, or 0 with the text unchanged when the system cannot write the time.
ORVIK_API int _NlsSetTime(CString& text, const CVXTTime& time, int bMilliseconds);

// Reads spaces, hours, minutes and seconds of at most two digits (none is 0), up to three decimals of a second behind the cached
// decimal separator, "." or ",", spaces, a designator, spaces. Of separators the first character counts; an empty time separator
// matches nothing. Both separators must be there: "12:30" is not read, "12:30:" is.
// The afternoon designator is tried first, and an empty one matches whatever follows. With either the hour is at most 12; 12 in
// the morning is 0. On purpose the reader then moves on by the length of the other designator, at most to the text's end: with
// designators of different lengths what follows must make up for the difference.
// Sets the time of day and keeps the date; 1, or 0 with the time unchanged.
ORVIK_API int _NlsGetTime(const char* text, CVXTTime& time);
