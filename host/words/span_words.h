// Spans of time and sizes as people type them on a command line: a number and a unit, read the same in every locale, so that a
// line that works for one user works for the next. Pure functions; any thread.
//
// A number is digits with at most one decimal sign, "." or ",", and digits behind it; there are no thousand signs. Units are
// English or Swedish words or their usual short forms, in any case, with or without blanks in front of them. Nothing for every
// other text: no number, another unit, something behind it, a sign, or more than the result can hold.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/win32.h"

// Microseconds, rounded to the nearest: "1.5 s", "250 ms", "10 min", "1,5 h", "2 dagar". Several parts are added up if each has
// a smaller unit than the one before ("1 h 30 min"). Digits alone are milliseconds; decimals need a unit.
std::optional<__int64> SpanFromWords(std::string_view text);

// A span as one whole number of the largest unit that says it exactly, in short forms of both languages: "7 d", "250 ms".
std::string WordsFromSpan(__int64 microseconds);

// Bytes, rounded to the nearest: "100 MiB" (by 1024), "2 GB", "500 kB" (by 1000). Digits alone, and those in front of "B", are
// bytes and take no decimals.
std::optional<unsigned __int64> BytesFromWords(std::string_view text);
