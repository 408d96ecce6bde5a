// Times as a user types them on the command line.
#pragma once

#include <optional>
#include <string>

#include "platform/win32.h"

// Microseconds since 1970 of "2026-11-21T10:50:26.123456Z" (with as many decimals as are there; the form that `show --csv`
// writes), of the same without the Z in local time, of the user's own date and time of day, such as "11/21/2026 10:50:26 AM",
// with or without seconds and their decimals, or of a date alone, which is its midnight. Nothing for any other text, nor for a
// date or a time of day that there is not. Texts of the house's character set; the user-interface thread, since the user's format
// is cached.
std::optional<__int64> TimeFromText(const std::string& text);
// The same; a Failure for what is no time.
__int64 NeedTime(const std::string& text);
