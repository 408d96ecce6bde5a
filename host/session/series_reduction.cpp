#include "host/session/series_reduction.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "host/session/channel_intervals.h"
#include "host/session/series_range.h"

namespace {
constexpr size_t kRawPerColumn = 3;     // up to so many readings a column are drawn one by one
constexpr LONG kPixelsPerMarker = 14;   // marks stand no closer than this on the average
constexpr double kFarthestPixel = 1e6;  // what the picture's lines take

class Line {
public:
    explicit Line(const PlotMapping& mapping) : m_mapping(mapping) {}

    void Reading(double time, double value) {
        if (std::isfinite(value)) {
            Add(m_mapping.X(time), value);
        } else if (!IsNotDue(value)) {
            Part();
        }
    }
    void Add(double x, double value) {
        const ORVIK_CURVE_POINT point = {Pixel(x), Pixel(m_mapping.Y(value))};
        if (m_open && !m_line.points.empty() && m_line.points.back().x == point.x && m_line.points.back().y == point.y) return;
        m_line.points.push_back(point);
        m_open = true;
    }
    void Part() {
        constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
        if (m_open) m_line.points.push_back({kNan, kNan});
        m_open = false;
    }
    ReducedSeries Take() {
        if (!m_open && !m_line.points.empty()) m_line.points.pop_back();
        return std::move(m_line);
    }

private:
    static float Pixel(double coordinate) { return static_cast<float>(std::clamp(coordinate, -kFarthestPixel, kFarthestPixel)); }

    const PlotMapping& m_mapping;
    ReducedSeries m_line;
    bool m_open = false;
};

// One column's readings first to last - 1.
SeriesColumn ColumnOf(const SeriesData& series, size_t first, size_t last) {
    const double* const values = series.values;
    SeriesColumn column;
    column.finite = series.blocks != nullptr ? series.blocks->Range(values, first, last, column.low, column.high)
                                             : FiniteRange(values, first, last, column.low, column.high);
    column.readings = column.finite || !std::all_of(values + first, values + last, IsNotDue);
    if (!column.finite) return column;
    while (!std::isfinite(values[first])) ++first;
    while (!std::isfinite(values[last - 1])) --last;
    column.first = values[first], column.last = values[last - 1];
    if (column.low == column.high) return column;
    const auto find = [&](double value) {
        if (series.blocks != nullptr) return series.blocks->Find(values, first, value);
        return static_cast<size_t>(std::find(values + first, values + last, value) - values);
    };
    column.lowFirst = find(column.low) < find(column.high);
    return column;
}

// The first of the places `from` to `last` whose time is `time` or later, `last` without one. It is looked for around `guess`,
// and then ever farther: columns that follow each other mostly hold as many readings.
size_t NextAt(const __int64* times, size_t from, size_t last, double time, size_t guess) {
    const auto before = [&](size_t at) { return static_cast<double>(times[at]) < time; };
    size_t low = from, high = last, reach = 1;
    if (guess > low && guess <= high && before(guess - 1)) {
        low = guess;
        for (; high - low > reach && before(low + reach - 1); reach *= 2) low += reach;
        high = std::min(high, low + reach);
    } else if (guess > low && guess <= high) {
        high = guess - 1;
        for (; high - low > reach && !before(high - reach); reach *= 2) high -= reach;
        low = high - low > reach ? high - reach : low;
    }
    const __int64* const found =
        std::partition_point(times + low, times + high, [time](__int64 t) { return static_cast<double>(t) < time; });
    return static_cast<size_t>(found - times);
}

void AddColumn(Line& line, const SeriesColumn& column, double x) {
    if (!column.readings) return;
    if (!column.finite) return line.Part();
    line.Add(x, column.first);
    if (column.low != column.high) {
        line.Add(x, column.lowFirst ? column.low : column.high);
        line.Add(x, column.lowFirst ? column.high : column.low);
    }
    line.Add(x, column.last);
}
}  // namespace

ColumnPlan::ColumnPlan(const PlotMapping& mapping) {
    const double span = mapping.toTime - mapping.fromTime, height = mapping.toValue - mapping.fromValue;
    const LONG pixels = mapping.right - mapping.left;
    if (pixels == 0 || !std::isfinite(span) || span == 0 || !std::isfinite(height) || height == 0) return;
    earliest = std::min(mapping.fromTime, mapping.toTime), latest = std::max(mapping.fromTime, mapping.toTime);
    columns = static_cast<size_t>(std::abs(pixels)) + 1;
    width = std::abs(span) / std::abs(pixels);
    firstX = span > 0 ? mapping.left : mapping.right;
    step = (span > 0) == (pixels > 0) ? 1 : -1;
}

bool ColumnPlan::DrawsEach(size_t inView) const { return inView <= columns * kRawPerColumn; }

ReducedSeries DrawColumns(const std::vector<SeriesColumn>& columns, const ColumnPlan& plan, const PlotMapping& mapping) {
    Line line(mapping);
    for (size_t i = 0; i < columns.size(); ++i) AddColumn(line, columns[i], plan.X(i));
    return line.Take();
}

ReducedSeries ReduceSeries(const SeriesData& series, const PlotMapping& mapping) {
    const ColumnPlan plan(mapping);
    if (series.count == 0 || plan.columns == 0) return {};
    const __int64* const begin = series.times;
    const __int64* const end = begin + series.count;
    const auto at = [&](const __int64* from, double time) {
        return std::partition_point(from, end, [time](__int64 t) { return static_cast<double>(t) < time; });
    };
    const __int64* first = at(begin, plan.earliest);
    const __int64* last = std::partition_point(first, end, [&](__int64 t) { return static_cast<double>(t) <= plan.latest; });
    const auto inView = static_cast<size_t>(last - first);
    if (first > begin) --first;
    if (last < end) ++last;

    Line line(mapping);
    if (plan.DrawsEach(inView)) {
        // The line reaches the edges from the nearest readings that there are.
        while (first > begin && IsNotDue(series.values[first - begin])) --first;
        while (last < end && IsNotDue(series.values[last - 1 - begin])) ++last;
        for (const __int64* t = first; t < last; ++t) line.Reading(static_cast<double>(*t), series.values[t - begin]);
        ReducedSeries all = line.Take();
        all.markers = inView * static_cast<size_t>(kPixelsPerMarker) <= plan.columns;
        return all;
    }
    // Column by column in the order of time. What lies outside the plot belongs to the columns beside it.
    const auto stop = static_cast<size_t>(last - begin);
    for (size_t i = 0, from = static_cast<size_t>(first - begin), to = from, step = 0; from < stop;
         ++i, step = to - from, from = to) {
        to = i + 1 >= plan.columns ? stop : NextAt(begin, from, stop, plan.Border(i), from + step);
        if (to > from) AddColumn(line, ColumnOf(series, from, to), plan.X(i));
    }
    return line.Take();
}
