#include "host/session/series_reduction.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "host/session/channel_intervals.h"

namespace {
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr size_t kRawPerColumn = 3;     // up to so many readings a column are drawn one by one
constexpr LONG kPixelsPerMarker = 14;   // marks stand no closer than this on the average
constexpr double kFarthestPixel = 1e6;  // what the picture's lines take

// Where the lowest and the highest value stand among first to last - 1, comparing so that what is not a number never wins. Four
// of each side by side, as one alone would wait for itself.
void Extremes(const double* values, size_t first, size_t last, double& low, double& high) {
    double lows[4] = {kInfinity, kInfinity, kInfinity, kInfinity}, highs[4] = {-kInfinity, -kInfinity, -kInfinity, -kInfinity};
    size_t i = first;
    for (; i + 4 <= last; i += 4) {
        for (size_t k = 0; k < 4; ++k) {
            const double value = values[i + k];
            lows[k] = value < lows[k] ? value : lows[k];
            highs[k] = value > highs[k] ? value : highs[k];
        }
    }
    for (; i < last; ++i) {
        lows[0] = values[i] < lows[0] ? values[i] : lows[0];
        highs[0] = values[i] > highs[0] ? values[i] : highs[0];
    }
    low = std::min(std::min(lows[0], lows[1]), std::min(lows[2], lows[3]));
    high = std::max(std::max(highs[0], highs[1]), std::max(highs[2], highs[3]));
}

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
SeriesColumn ColumnOf(const double* values, size_t first, size_t last) {
    SeriesColumn column;
    column.finite = FiniteRange(values, first, last, column.low, column.high);
    column.readings = column.finite || !std::all_of(values + first, values + last, IsNotDue);
    if (!column.finite) return column;
    while (!std::isfinite(values[first])) ++first;
    while (!std::isfinite(values[last - 1])) --last;
    column.first = values[first], column.last = values[last - 1];
    if (column.low != column.high) {
        const double* const begin = values + first;
        const double* const end = values + last;
        column.lowFirst = std::find(begin, end, column.low) < std::find(begin, end, column.high);
    }
    return column;
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

bool FiniteRange(const double* values, size_t first, size_t last, double& low, double& high) {
    Extremes(values, first, last, low, high);
    if (std::isinf(low) || std::isinf(high)) {
        // Infinities among them, or nothing at all: once more, and with care.
        low = kInfinity, high = -kInfinity;
        for (size_t i = first; i < last; ++i) {
            if (!std::isfinite(values[i])) continue;
            low = std::min(low, values[i]);
            high = std::max(high, values[i]);
        }
    }
    return low <= high;
}

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
    const __int64* from = first;
    for (size_t i = 0; from < last; ++i) {
        const __int64* const to = i + 1 >= plan.columns ? last : std::min(at(from, plan.Border(i)), last);
        if (to > from) {
            const auto place = [&](const __int64* t) { return static_cast<size_t>(t - begin); };
            AddColumn(line, ColumnOf(series.values, place(from), place(to)), plan.X(i));
        }
        from = to;
    }
    return line.Take();
}
