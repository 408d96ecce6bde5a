// The user's regional settings: separators, pictures and names, and the system's writers of dates and times of day.
// They come from LC_ALL, else LC_TIME (dates and clock), LC_NUMERIC (numbers), LC_MONETARY (currency), LC_COLLATE (the order of
// texts), else LANG, read once; no
// locale need be installed. C, POSIX and unknown names give en_US. Text is this house's (platform/house_text.h): in a
// Windows-1252 process what that lacks is replaced by what Windows has for most countries; in a UTF-8 process settings are the
// country's own. Any thread.
#pragma once

#include "platform/api.h"
#include "platform/posix/types.h"

#define LANG_NEUTRAL 0x00
#define LANG_ENGLISH 0x09
#define LANG_SWEDISH 0x1D
#define SUBLANG_NEUTRAL 0x00
#define SUBLANG_DEFAULT 0x01
#define SUBLANG_ENGLISH_US 0x01
#define SUBLANG_SWEDISH 0x01
#define SORT_DEFAULT 0x0
#define MAKELANGID(primary, sub) (static_cast<WORD>((static_cast<WORD>(sub) << 10) | static_cast<WORD>(primary)))
#define PRIMARYLANGID(language) (static_cast<WORD>(static_cast<WORD>(language) & 0x3FF))
#define SUBLANGID(language) (static_cast<WORD>(static_cast<WORD>(language) >> 10))
#define MAKELCID(language, sort) \
    (static_cast<DWORD>((static_cast<DWORD>(static_cast<WORD>(sort)) << 16) | static_cast<WORD>(language)))
#define LANGIDFROMLCID(lcid) (static_cast<WORD>(lcid))
#define LOCALE_USER_DEFAULT 0x0400u
#define LOCALE_SYSTEM_DEFAULT 0x0800u
#define LOCALE_INVARIANT 0x007Fu

#define NORM_IGNORECASE 0x1u
#define CSTR_LESS_THAN 1
#define CSTR_EQUAL 2
#define CSTR_GREATER_THAN 3

#define LOCALE_NOUSEROVERRIDE 0x80000000u
#define LOCALE_RETURN_NUMBER 0x20000000u
#define LOCALE_ILANGUAGE 0x01u
#define LOCALE_SLANGUAGE 0x02u
#define LOCALE_ICOUNTRY 0x05u
#define LOCALE_SCOUNTRY 0x06u
#define LOCALE_SLIST 0x0Cu
#define LOCALE_IMEASURE 0x0Du
#define LOCALE_SDECIMAL 0x0Eu
#define LOCALE_STHOUSAND 0x0Fu
#define LOCALE_SGROUPING 0x10u
#define LOCALE_IDIGITS 0x11u
#define LOCALE_ILZERO 0x12u
#define LOCALE_SNATIVEDIGITS 0x13u
#define LOCALE_SCURRENCY 0x14u
#define LOCALE_ICURRDIGITS 0x19u
#define LOCALE_ICURRENCY 0x1Bu
#define LOCALE_INEGCURR 0x1Cu
#define LOCALE_SDATE 0x1Du
#define LOCALE_STIME 0x1Eu
#define LOCALE_SSHORTDATE 0x1Fu
#define LOCALE_SLONGDATE 0x20u
#define LOCALE_IDATE 0x21u
#define LOCALE_ITIME 0x23u
#define LOCALE_ITLZERO 0x25u
#define LOCALE_S1159 0x28u
#define LOCALE_S2359 0x29u
#define LOCALE_SDAYNAME1 0x2Au  // Monday; six more follow
#define LOCALE_SABBREVDAYNAME1 0x31u
#define LOCALE_SMONTHNAME1 0x38u  // January; eleven more follow
#define LOCALE_SABBREVMONTHNAME1 0x44u
#define LOCALE_SNEGATIVESIGN 0x51u
#define LOCALE_SISO639LANGNAME 0x59u
#define LOCALE_SISO3166CTRYNAME 0x5Au
#define LOCALE_SENGLANGUAGE 0x1001u
#define LOCALE_SENGCOUNTRY 0x1002u
#define LOCALE_STIMEFORMAT 0x1003u
#define LOCALE_IDEFAULTANSICODEPAGE 0x1004u
#define LOCALE_ITIMEMARKPOSN 0x1005u
#define LOCALE_IDIGITSUBSTITUTION 0x1014u  // 1 for digits 0 to 9, 2 for those of LOCALE_SNATIVEDIGITS

#define TIME_NOMINUTESORSECONDS 0x1u
#define TIME_NOSECONDS 0x2u
#define TIME_NOTIMEMARKER 0x4u
#define TIME_FORCE24HOURFORMAT 0x8u
#define DATE_SHORTDATE 0x1u
#define DATE_LONGDATE 0x2u

ORVIK_API LCID WINAPI GetUserDefaultLCID();
ORVIK_API UINT WINAPI GetACP();  // 1252

// The length with the terminator, or with size 0 the length needed; 0 on failure: 87 for an unknown locale, 1004 for an item that
// is not kept here, 122 for a small buffer. LOCALE_RETURN_NUMBER gives the number of an I item as a DWORD and returns 4.
ORVIK_API int WINAPI GetLocaleInfoA(LCID locale, LCTYPE item, LPSTR out, int size);
// Changes an item of the user's settings, in this process and at once; nothing is kept when the process ends. Any text is
// accepted up to the documented length in characters (87 beyond it). As documented, a separator of date or time goes into its
// picture, and the separators and orders that pictures imply follow the pictures; names cannot be changed (1004).
ORVIK_API BOOL WINAPI SetLocaleInfoA(LCID locale, LCTYPE item, LPCSTR text);

// The time of day by a picture of h, hh, H, HH, m, mm, s, ss, t, tt and quoted text; a null picture is the locale's, a null time
// is now. Digits are those from 0 to 9, whatever LOCALE_IDIGITSUBSTITUTION says. Results and failures as GetLocaleInfoA; a time
// with a field out of range is 87. The date fields are not looked at.
ORVIK_API int WINAPI GetTimeFormatA(LCID locale, DWORD flags, const SYSTEMTIME* time, LPCSTR picture, LPSTR out, int size);
// The date by a picture of d to dddd, M to MMMM, y to yyyy, g (era) and quoted text; the day of the week follows from the date.
ORVIK_API int WINAPI GetDateFormatA(LCID locale, DWORD flags, const SYSTEMTIME* date, LPCSTR picture, LPSTR out, int size);

// The order of texts as users of a language look for them in a list: 1, 2 or 3, or 0 on failure as GetLocaleInfoA; lengths of -1
// end at the terminator. A Windows-1252 process has one order for all languages, by bytes, or by those of lower-case letters.
ORVIK_API int WINAPI CompareStringA(LCID locale, DWORD flags, LPCSTR first, int firstLength, LPCSTR second, int secondLength);

namespace orvik::detail {
// Reads the environment again and drops what SetLocaleInfoA changed.
ORVIK_API void ReloadRegionalSettings();
}  // namespace orvik::detail
