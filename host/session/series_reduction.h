// What of a long series can be seen: a line through at most a handful of points a pixel column, in the plot's own coordinates.
// Pure functions on values; any thread.
//
// A series with few readings in view is taken as it is. A longer one is reduced: every pixel column gives its first, lowest,
// highest and last value, in the order in which they were read, so that the picture is the one of the line through all of them.
// Values that are no finite numbers draw nothing: they part the line where they fill a column of a reduced series, or stand
// between two readings of one that is not reduced. Those that were not to be read (IsNotDue) do not even that.
#pragma once

#include <cstddef>
#include <vector>

#include "platform/picture.h"
#include "platform/win32.h"

// From microseconds since 1970 and from values to pixels. The ends of each range lie at the ends of the plot's; a range may fall.
struct PlotMapping {
    double fromTime = 0, toTime = 1;      // microseconds
    LONG left = 0, right = 0;             // pixels of the two
    double fromValue = 0, toValue = 100;  // values at the bottom and at the top
    LONG bottom = 0, top = 0;

    double X(double time) const { return left + (time - fromTime) / (toTime - fromTime) * (right - left); }
    double Y(double value) const { return bottom + (value - fromValue) / (toValue - fromValue) * (top - bottom); }
};

class SeriesBlocks;

// `count` increasing times and as many values, and for a long series their blocks. The caller keeps them.
struct SeriesData {
    const __int64* times = nullptr;
    const double* values = nullptr;
    size_t count = 0;
    const SeriesBlocks* blocks = nullptr;
};

struct ReducedSeries {
    std::vector<ORVIK_CURVE_POINT> points;  // a NaN parts pieces, as OrvikSmoothPolyline takes them
    bool markers = false;                   // so few that each reading deserves a mark of its own
};

// Which times a mapping shows, and where its pixel columns end; columns count in the order of time.
struct ColumnPlan {
    double earliest = 0, latest = 0;  // microseconds
    size_t columns = 0;               // 0: nothing can be drawn
    double width = 1;                 // of a column, in microseconds
    double firstX = 0, step = 1;      // pixels

    ColumnPlan() = default;
    explicit ColumnPlan(const PlotMapping& mapping);
    // What comes at or after it belongs to a later column.
    double Border(size_t column) const { return earliest + (static_cast<double>(column) + 0.5) * width; }
    double X(size_t column) const { return firstX + static_cast<double>(column) * step; }
    // So few readings in view are drawn one by one.
    bool DrawsEach(size_t inView) const;
    bool operator==(const ColumnPlan&) const = default;
};

// What one column is drawn from. Without `finite` it parts the line, without `readings` it is passed over.
struct SeriesColumn {
    bool readings = false, finite = false, lowFirst = false;
    double first = 0, low = 0, high = 0, last = 0;
};

// The readings in view, and one more at each side, so that the line reaches the plot's edges. Nothing for an empty mapping.
ReducedSeries ReduceSeries(const SeriesData& series, const PlotMapping& mapping);
// The same from columns that were filled elsewhere, with a plan made of this mapping.
ReducedSeries DrawColumns(const std::vector<SeriesColumn>& columns, const ColumnPlan& plan, const PlotMapping& mapping);
