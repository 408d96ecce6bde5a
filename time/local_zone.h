// Local calendar fields without asking the C library for each time: its zone is probed once, transition by transition, and kept
// as a table of differences from UTC; the fields follow by arithmetic.
// Any thread. The table agrees with the C library's local time at every second of the time range of time_point.h, since it is
// made of that function's own answers. A change of zone while the program runs is not seen before RefreshLocalZone.
#pragma once

#include "platform/win32.h"

namespace orvik::detail {

// Local fields of a time given in seconds since 1970. Times outside the range that the table was made for take the zone's rule at
// its nearest end.
ORVIK_API tm LocalFields(__int64 seconds);

// Probes the zone again. Call it after the zone changed (and, where the C library reads it from TZ, after _tzset);
// NlsToolsUpdate does.
ORVIK_API void RefreshLocalZone();

}  // namespace orvik::detail
