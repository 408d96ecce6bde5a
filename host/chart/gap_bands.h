// Where a chart shows that every channel misses readings: bands of its plot. One that would be too narrow to be seen is widened,
// and those that then touch are one. Plain values; any thread.
#pragma once

#include <vector>

#include "host/session/recorded_notes.h"
#include "host/session/series_reduction.h"

struct GapBand {
    LONG left, right;          // pixels, the right one not included; within the plot
    const CRecordedGap* only;  // the gap it shows, as the notes have it; null where there are several
};

// In the order of their places, each at least `least` wide where the plot has the room.
std::vector<GapBand> GapBands(const RecordedNotes& notes, const PlotMapping& mapping, LONG least);
