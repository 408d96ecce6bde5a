// Spans as the user types and reads them. The short form is a number with a unit, such as "1.5 h" or "90 min"; the long form has
// clock-like fields, such as "001-02:03:04" with the user's separators. Only the separators' first characters count.
// User-interface thread only, since the locale cache is; texts are Windows-1252. Nothing here shows a message. Readers return 1,
// or 0 with the span unchanged; a span that 64 bits of microseconds cannot hold is not read. Writers return 1.
#pragma once

#include "afx/string.h"
#include "time/time_span.h"

// Ways to choose the unit to write in, besides a preferred unit 0 to 6.
constexpr auto TST_LARGEST = static_cast<CVXTTimeSpanType>(7);        // the largest one not greater than the span
constexpr auto TST_LARGEST_EXACT = static_cast<CVXTTimeSpanType>(8);  // the largest one that divides it
constexpr int TST_EXACTLY = 256;                                      // added to a unit: that one, whatever the span

// Spaces, a sign, digits, the decimal separator and digits, spaces, and a unit by one of the module's words for it, with their
// case. What follows the word and a space is not looked at, on purpose. The number is exact: what it has below a microsecond is
// truncated toward zero, and decimals of microseconds are ignored. A sign without digits is 0. Without a unit only 0 is read, and
// nothing if `strict` is not 0.
ORVIK_API int _NlsGetShortTimeSpan(const char* text, CVXTTimeSpan& span, int strict);

// "days-hours:minutes:seconds", without seconds or with milliseconds behind them; or the same with total hours and no days. The
// days' separator is the date's, and must be the fourth character (behind a "-"); so there are at most 999 days, while total
// hours have no limit of their own. Fields have at most two digits and may be empty. Milliseconds stand behind the decimal
// separator, "." or ",", and are a whole number whatever their places, on purpose: ".5" is 5 of them. What follows seconds or
// milliseconds is not looked at; without seconds the text must end behind the minutes.
ORVIK_API int _NlsGetLongTimeSpan(const char* text, CVXTTimeSpan& span);

// The long form or, where it fails, the short one, not strictly.
ORVIK_API int _NlsGetLongOrShortTimeSpan(const char* text, CVXTTimeSpan& span);

// The unit to write a span in. A preferred unit is kept unless it is too large or too small for the span; then the unit next
// to the span's own takes its place. Negative spans count as shorter than a millisecond.
ORVIK_API CVXTTimeSpanType _BestType(const CVXTTimeSpan& span, CVXTTimeSpanType selector);

// Writes the short form in the unit of _BestType for the span's magnitude, with TST_LARGEST if `selector` is null. If it points
// to a value below 7, it takes the unit that was used. `digits` decimals by CVXTTimeSpan::GetFrac, none for 0 or below; -1 writes
// up to three and drops trailing zeros. To be read back to the microsecond a span needs 3, 6, 9, 10, 12 and 13 decimals from
// milliseconds up to weeks. A unit that there is not leaves the text with nothing but the sign.
ORVIK_API int _NlsSetShortTimeSpan(CString& text, const CVXTTimeSpan& span, CVXTTimeSpanType* selector, int digits);

// Writes the long form: three digits of days or more, two digits of every other field or more, "-" in front of a negative span;
// parts of a second are dropped. The number is a set of fields, 2 for seconds, 4 for minutes, 8 for hours, 16 for days: 30, 28,
// 14 and 12 are known, others are taken as 30; without days the hours are total hours, as they are without a date separator. What
// is written reads back, but for 1,000 days and more, which the reader does not take, and for texts without a time separator.
ORVIK_API int _NlsSetLongTimeSpan(CString& text, const CVXTTimeSpan& span, int fields);
ORVIK_API int _NlsSetTimeSpan(CString& text, const CVXTTimeSpan& span);  // with all fields

// Layouts 0 to 6 are the short form in exactly that unit, with up to three decimals; 7 to 10 the long form with days to seconds,
// days to minutes, hours to seconds, hours to minutes. 0 for any other layout, with the text unchanged. The last number is not
// used.
ORVIK_API int _NlsFormatTimeSpan(CString& text, const CVXTTimeSpan& span, int layout, int);
