// The user's regional settings, read once into a module-wide cache, and the module's own names of months, days and units.
// The cache is read and updated on the user-interface thread only; nothing locks it. Texts are Windows-1252.
// An entry that the system cannot supply is empty: every reader must live with a separator of 0 and with an empty picture.
#pragma once

#include "afx/string.h"

// Loads the word lists and messages, then calls NlsToolsUpdate. The host calls it once after start-up.
ORVIK_API void NlsToolsRegister();
// Reads the settings again, and the time zone; the host calls it when the user has changed them.
ORVIK_API void NlsToolsUpdate();
// Does nothing; there so that a host can pair it with NlsToolsRegister.
ORVIK_API void NlsToolsUnregister();

// The first character of the entry, 0 when it is empty (as the thousand separator is while digits are not grouped).
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
    int leadingZero = 0;  // whether "0.5" is written with its zero
};

// The words accepted for each unit, from weeks down to microseconds, and the messages for text that cannot be read.
struct NlsTexts {
    CString weeks, days, hours, minutes, seconds, milliseconds, microseconds;
    CString badNumber, badDate, badTime, badSpan;
};

ORVIK_API const LocaleCache& TheLocaleCache();
ORVIK_API const NlsTexts& TheNlsTexts();

}  // namespace orvik::detail
