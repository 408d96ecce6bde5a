// Dialog data exchange for values in the user's regional format: dates, times of day, spans, real numbers and number pictures.
// Called from DoDataExchange, on the user-interface thread.
//
// Loading writes the value into the edit control. Saving reads the whole text back; a text that cannot be read brings one message
// box with the exclamation icon and ends the exchange (CDataExchange::Fail), which takes the focus to the control and selects its
// text. The variable then has the value it had, but for real numbers, whose reader leaves what it has read so far.
#pragma once

#include "afx/data_exchange.h"
#include "time/time_point.h"
#include "time/time_span.h"

// By the short or the long date picture. The date must lie in the time range, local 1 January 1972 to 1 January 2034; the time of
// day stays. An unreadable short date is told with today's date as an example; the other messages show the text's "%s" as it
// stands, on purpose.
ORVIK_API void DDX_NlsShortDate(CDataExchange* pDX, int nIDC, CVXTTime& value);
ORVIK_API void DDX_NlsLongDate(CDataExchange* pDX, int nIDC, CVXTTime& value);
// The time of day; the date stays.
ORVIK_API void DDX_NlsTime(CDataExchange* pDX, int nIDC, CVXTTime& value);

// A number with a unit, such as "1.5 h": the unit is chosen by *unit, which takes the one that was used; null: the largest one
// not greater than the span. A bare number other than 0 is refused.
ORVIK_API void DDX_NlsShortTimeSpan(CDataExchange* pDX, int nIDC, CVXTTimeSpan& value, CVXTTimeSpanType* unit);
// Clock-like fields, such as "001-02:03:04".
ORVIK_API void DDX_NlsLongTimeSpan(CDataExchange* pDX, int nIDC, CVXTTimeSpan& value);

// `picture` says how many digits are written, null five significant ones.
ORVIK_API void DDX_NlsReal(CDataExchange* pDX, int nIDC, double& value, const char* picture);
ORVIK_API void DDX_NlsReal(CDataExchange* pDX, int nIDC, float& value, const char* picture);

// A number picture as it stands: "@@@@", or "###.##" with the user's decimal separator, of which either side may be empty; a
// picture without any "#" or "@" is the separator alone.
ORVIK_API void DDX_NlsRealFmt(CDataExchange* pDX, int nIDC, CString& picture);
