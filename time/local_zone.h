// Local calendar fields, and back, without asking the C library for each time: its zone is probed once, transition by transition,
// and kept as a table of differences from UTC; the rest is arithmetic.
// Any thread. The table agrees with the C library's local time at every second of the time range of time_point.h, since it is
// made of that function's own answers. A change of zone while the program runs is not seen before RefreshLocalZone.
#pragma once

#include <cstdint>

#include "platform/win32.h"

namespace orvik::detail {

// Local fields of a time given in seconds since 1970. Times outside the range that the table was made for take the zone's rule at
// its nearest end.
ORVIK_API tm LocalFields(__int64 seconds);

// Seconds east of UTC at that time, by the same table.
ORVIK_API int LocalOffset(__int64 seconds);

// The time that local fields mean, in seconds; the fields may lie outside their ranges. -1 where the C library cannot represent
// it; within the time range it always can. With the daylight flag at -1 an hour that comes twice is standard time, and in one
// that is skipped the time moves on by what is skipped. Otherwise the flag is kept, literally: fields that have the other one
// come out an hour beside, as a rule. `offset` is LocalOffset of the time that the fields were made from: of two times with the
// same fields and flag, the one with this offset is meant. This is the rule of _mktime64 on Linux; here it holds on both homes.
constexpr int kAnyOffset = INT32_MIN;
ORVIK_API __int64 LocalSeconds(const tm& fields, int offset = kAnyOffset);

// Probes the zone again. Call it after the zone changed (and, where the C library reads it from TZ, after _tzset);
// NlsToolsUpdate does.
ORVIK_API void RefreshLocalZone();

}  // namespace orvik::detail
