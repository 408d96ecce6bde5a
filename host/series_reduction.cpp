#include "host/series_reduction.h"

#include <algorithm>
#include <cmath>
#include <limits>

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
        } else {
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

// One column's readings first to last - 1, at its middle.
void AddColumn(Line& line, const double* values, size_t first, size_t last, double x) {
    double low, high;
    if (!FiniteRange(values, first, last, low, high)) return line.Part();
    while (!std::isfinite(values[first])) ++first;
    while (!std::isfinite(values[last - 1])) --last;
    line.Add(x, values[first]);
    if (low != high) {
        const double* const begin = values + first;
        const double* const end = values + last;
        const bool lowFirst = std::find(begin, end, low) < std::find(begin, end, high);
        line.Add(x, lowFirst ? low : high);
        line.Add(x, lowFirst ? high : low);
    }
    line.Add(x, values[last - 1]);
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

ReducedSeries ReduceSeries(const SeriesData& series, const PlotMapping& mapping) {
    const double span = mapping.toTime - mapping.fromTime, height = mapping.toValue - mapping.fromValue;
    const LONG width = mapping.right - mapping.left;
    if (series.count == 0 || width == 0 || !std::isfinite(span) || span == 0 || !std::isfinite(height) || height == 0) return {};
    const __int64* const begin = series.times;
    const __int64* const end = begin + series.count;
    const auto at = [&](const __int64* from, double time) {
        return std::partition_point(from, end, [time](__int64 t) { return static_cast<double>(t) < time; });
    };
    const double earliest = std::min(mapping.fromTime, mapping.toTime), latest = std::max(mapping.fromTime, mapping.toTime);
    const __int64* first = at(begin, earliest);
    const __int64* last = std::partition_point(first, end, [latest](__int64 t) { return static_cast<double>(t) <= latest; });
    const auto inView = static_cast<size_t>(last - first);
    const auto columns = static_cast<size_t>(std::abs(width)) + 1;
    if (first > begin) --first;
    if (last < end) ++last;

    Line line(mapping);
    if (inView <= columns * kRawPerColumn) {
        for (const __int64* t = first; t < last; ++t) line.Reading(static_cast<double>(*t), series.values[t - begin]);
        ReducedSeries all = line.Take();
        all.markers = inView * static_cast<size_t>(kPixelsPerMarker) <= columns;
        return all;
    }
    // Column by column in the order of time. What lies outside the plot belongs to the columns beside it.
    const double column = std::abs(span) / std::abs(width), step = (span > 0) == (width > 0) ? 1 : -1;
    double x = (span > 0) ? mapping.left : mapping.right;
    const __int64* from = first;
    for (size_t i = 0; from < last; ++i, x += step) {
        const double border = earliest + (static_cast<double>(i) + 0.5) * column;
        const __int64* const to = i + 1 >= columns ? last : std::min(at(from, border), last);
        if (to > from) AddColumn(line, series.values, static_cast<size_t>(from - begin), static_cast<size_t>(to - begin), x);
        from = to;
    }
    return line.Take();
}
