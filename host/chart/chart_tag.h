// A comment on a chart. It stands at a time, and at a value on the axis of one channel, whatever is shown of both and whether
// that axis is shown at all; its upper left corner lies there. Values; any thread.
#pragma once

#include <string>

#include "platform/win32.h"

struct ChartTag {
    std::string text;     // house text
    __int64 time = 0;     // microseconds since 1970
    double value = 0;     // on the axis of the channel's unit
    std::string channel;  // its key
    bool operator==(const ChartTag&) const = default;
};

// What a session keeps of a tag's place: parts of the times of all readings, and of the range that an axis has when it follows
// the data, from the upper left corner (docs/formats.md).
struct TagFrame {
    static constexpr LONG kGrid = 1 << 22;  // places are whole parts of this one
    static constexpr LONG kFarthest = 24;   // frames from the corner; places beyond are not kept apart

    __int64 first = 0, last = 1;      // of the readings
    double origin = 0, extent = 100;  // of the axis

    double Left(__int64 time) const;
    double Top(double value) const;
    // The tag at such parts. Parts that no file should hold are those of the corner.
    void Place(ChartTag& tag, double left, double top) const;
    // The nearest place that comes back from a file as it is.
    void Snap(ChartTag& tag) const { Place(tag, Left(tag.time), Top(tag.value)); }
};
