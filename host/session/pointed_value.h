// What a chart's lines show at a time. One thread, that of the session.
#pragma once

#include <string>

#include "host/session/recorded_notes.h"
#include "host/session/session.h"

// Where a pointer stands in the times of a chart.
struct PointedTime {
    __int64 time = 0;    // microseconds since 1970
    __int64 within = 0;  // microseconds within which a reading counts as being pointed at
    bool operator==(const PointedTime&) const = default;
};

// The value of the channel's reading that is the nearest to a point of its line; NaN where the line has a hole or has not begun
// or has ended, unless a reading with a value is near. A binary search: the cost does not grow with the session.
double ValueAt(const Session& session, size_t channel, const PointedTime& pointed);
// Which time that is, in words: that of the reading whose values these are (the nearest one, where channels are read at times of
// their own); where there are none, the pointed time, and why nothing was read then. UTF-8.
std::string PointedText(const Session& session, const RecordedNotes& notes, const PointedTime& pointed);
