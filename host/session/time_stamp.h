// Times of readings as programs and spreadsheets take them. User-interface thread where they are local.
#pragma once

#include <string>

#include "platform/win32.h"

// "2026-11-21T10:50:26.123456Z"; times outside the years 1601 to 9999 as their ends.
void AppendUtcStamp(std::string& text, __int64 time);
// "2026-11-21 10:50:26.123" in local time, rounded to these digits, with this decimal sign.
void AppendLocalStamp(std::string& text, __int64 time, const std::string& decimalSign);

enum class LocalStamp { Read, Wrong, Ambiguous };
// Back, with "." or "," as the sign and any number of decimals. Ambiguous: an hour that the end of summer time brings twice.
LocalStamp FromLocalStamp(const std::string& text, __int64& time);
