// The user's regional settings, read once into a module-wide cache, and the module's own names of months, days and units.
// The cache is read and updated on the user-interface thread only; nothing locks it. Texts are this house's
// (platform/house_text.h).
// An entry that the system cannot supply is empty: every reader must live with a separator of 0 and with an empty picture.
//
// In a process that chose UTF-8 separators, designators and pictures are those that the user's country has, however long, and so
// are digits and the minus where its numbering says so ("\xD9\xA1\xD9\xAB\xD9\xA5" in Egypt, U+2212 in Sweden): what
// functions of number_text.h, date_text.h, clock_text.h and span_text.h write for people. Readers take every script's digits,
// "-" and U+2212, and any blank for a blank, in every such process. Forms for programs are written without these functions.
#pragma once

#include "afx/string.h"
#include "time/separator.h"

// Loads the word lists and messages, then calls NlsToolsUpdate. The host calls it once after start-up.
ORVIK_API void NlsToolsRegister();
// Reads the settings again, and the time zone; the host calls it when the user has changed them.
ORVIK_API void NlsToolsUpdate();
// Does nothing; there so that a host can pair it with NlsToolsRegister.
ORVIK_API void NlsToolsUnregister();

// The first character of the entry, 0 when it is empty (as the thousand separator is while digits are not grouped). For one
// beyond ASCII, which only a UTF-8 process has, the character of ASCII that readers take in its place, and that pictures of
// numbers have:
// "." for decimals ("," where "." parts thousands); for thousands " " in the place of a blank, "'" of an apostrophe, else the one
// of "," and "." that the decimals leave; ";" for lists, ":" for the time, "-" for the date.
ORVIK_API char NlsGetDecimalSep();
ORVIK_API char NlsGetThousandSep();
ORVIK_API char NlsGetListSep();
ORVIK_API char NlsGetTimeSep();
ORVIK_API char NlsGetDateSep();
ORVIK_API CString NlsGetShortDateSpec();
ORVIK_API CString NlsGetTimeSpec();

// Months count from 1 (January), days from 0 (Sunday), as CVXTTime::Get does. Not checked: another number gives the text that
// happens to have its id, or an empty one.
ORVIK_API CString NlsGetLongMonth(int month);
ORVIK_API CString NlsGetShortMonth(int month);
ORVIK_API CString NlsGetLongDay(int day);
ORVIK_API CString NlsGetShortDay(int day);

namespace orvik::detail {

struct LocaleCache {
    CString timePicture, country, language, listSep, timeSep, morning, afternoon, dateSep, shortDate, longDate, currency,
        thousandSep, decimalSep;
    CString digits;       // the user's own from 0 to 9, of one length; empty for ASCII's, as in every Windows-1252 process
    CString minus = "-";  // or U+2212 for a user of that, in a UTF-8 process
    int leadingZero = 0;  // whether "0.5" is written with its zero
    // Made of the texts above by UpdateSeparators, and pointing into them.
    Separator decimal, thousand, list, time, date;
};

// The words accepted for each unit, from weeks down to microseconds, and the messages for text that cannot be read.
struct NlsTexts {
    CString weeks, days, hours, minutes, seconds, milliseconds, microseconds;
    CString badNumber, badDate, badTime, badSpan;
};

ORVIK_API const LocaleCache& TheLocaleCache();
ORVIK_API void UpdateSeparators(LocaleCache& cache);
ORVIK_API const NlsTexts& TheNlsTexts();

}  // namespace orvik::detail
