// Numbers as the user types and reads them: with the decimal and thousand separators of the locale cache.
// User-interface thread only, since the cache is; texts are Windows-1252. Functions that begin with an underscore return 1 on
// success and 0 on failure and never show a message. Readers leave what they have read so far in the output, also when they fail,
// and never look beyond the text's end; a null text is an empty one. Writers always return 1, and depend on no process locale.
//
// A number's picture says how many digits to write:
//   "###.##"  as many decimals as there are "#" behind the "." or "," (none without it); the "#" in front count nothing
//   "@@@@"    as many significant digits as there are "@"
//   null, or anything else: 5 significant digits
#pragma once

#include "afx/string.h"

// The picture of n significant digits.
ORVIK_API CString NlsRealFmt(int n);
// The picture of fracDigits decimals, with the first character of the cached decimal separator; without one for fracDigits < 1.
// The writer knows "." and "," only: where the user's separator is another character, it takes this picture as one of no
// decimals.
ORVIK_API CString NlsRealFmt(int intDigits, int fracDigits);

// Reads a real number: spaces, a sign, digits grouped by the thousand separator or not, the decimal separator and decimals, "e"
// and an exponent below 308, spaces, the suffix or a beginning of it, spaces. Only the separators' first characters count; an
// empty one matches nothing. Behind every thousand separator the whole part must have a multiple of three digits, which is
// counted over all groups: "1.234.567" and "1234.567" are read, "12.34" is not. A sign alone is 0. The value is built up in
// double arithmetic, each decimal weighing 0.1 times the one before it and each step of the exponent a factor of 10.0 or 0.1: it
// agrees with the nearest double to 12 digits. Digits beyond the range of a double give infinity, as that arithmetic does.
ORVIK_API int _NlsGetReal(const char* text, double& value, const char* suffix = nullptr);
// The same; a number outside the range of a float is 0 with `value` unchanged.
ORVIK_API int _NlsGetReal(const char* text, float& value, const char* suffix = nullptr);

// The largest value that a fixed picture can show. Decimals are looked for one character behind the first that is not "#", on
// purpose: those of "###.##" do not count, which gives 999 and the result 0. 1 when the picture ends one character behind the
// last one that was counted, or at it.
ORVIK_API int _NlsGetMaxFixed(const char* picture, double& max);

// Writes a real number, its digits correctly rounded.
// Significant digits: a value below 1 is written out while it needs at most four places behind the separator ("0.0012"),
// otherwise as "1.2345e-02"; one that has more whole digits than significant ones is "1.0000e+05". Other trailing zeros are
// dropped; zero is "0". Decimals: four whole digits or more are grouped by threes, whatever grouping the user has; "0.996" with
// two decimals is "1.00". A value below one unit of the last decimal is "0.00", even where rounding would give "0.01". The zero
// in front of a decimal separator is written if the user's settings have it. Infinities and what is not a number are "inf",
// "-inf", "nan", which are not read.
ORVIK_API int _NlsSetReal(CString& text, const double& value, const char* picture = nullptr);
// The same with given separators; an empty one writes nothing.
ORVIK_API int _NlsSetReal(CString& text, const double& value, const char* picture, CString decimalSep, CString thousandSep);

// Digits with an optional "-" in front; "-" alone is 0; a number beyond an int is the nearest int. On failure `value` is
// unchanged.
ORVIK_API int _NlsGetInteger(const CString& text, int& value);
// From -999,999 to 9,999,999: the text has seven characters at most; other values make it empty.
ORVIK_API int _NlsSetInteger(CString& text, int value);

// Digits of a text that is taken apart or stands in a table: every script's become '0' to '9', and these the user's own. Where
// users have no others, as in every Windows-1252 process, the second changes nothing.
ORVIK_API void NlsToAsciiDigits(CString& text);
ORVIK_API void NlsToOwnDigits(CString& text);

// Leaves the caller's `format` as it is, on purpose: the assignment goes to a copy.
ORVIK_API int _NlsSetFormat(CString format, const CString& source);
ORVIK_API int _NlsGetFormat(const CString& source, CString& format);

// Groups every run of four digits or more by threes from its right end, decimals included: "0.123456" becomes "0.123,456", kept
// so. Nothing changes while digits are not grouped.
ORVIK_API void NlsAddThousandSep(CString& text);
