#include "host/session/series_reduction.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "host/session/series_range.h"

namespace {
constexpr double kNan = std::numeric_limits<double>::quiet_NaN(), kInfinity = std::numeric_limits<double>::infinity();

struct Series {
    std::vector<__int64> times;
    std::vector<double> values;
    SeriesData Data() const { return {times.data(), values.data(), times.size()}; }
};

Series Every(__int64 step, std::vector<double> values) {
    Series series{{}, std::move(values)};
    for (size_t i = 0; i < series.values.size(); ++i) series.times.push_back(static_cast<__int64>(i) * step);
    return series;
}

PlotMapping Plot(LONG width, double seconds) { return {0, seconds, 0, width, 0, 100, 100, 0}; }

std::vector<std::vector<ORVIK_CURVE_POINT>> Pieces(const ReducedSeries& reduced) {
    std::vector<std::vector<ORVIK_CURVE_POINT>> pieces(1);
    for (const auto& point : reduced.points) {
        if (std::isnan(point.x))
            pieces.emplace_back();
        else
            pieces.back().push_back(point);
    }
    return pieces;
}
}  // namespace

TEST(SeriesReduction, FewReadingsAreTakenAsTheyAre) {
    const Series series = Every(10, {0, 100, kNan, 50, kInfinity, 25, 75});
    const auto reduced = ReduceSeries(series.Data(), Plot(600, 60));
    EXPECT_TRUE(reduced.markers);
    const auto pieces = Pieces(reduced);
    ASSERT_EQ(pieces.size(), 3u);
    EXPECT_FLOAT_EQ(pieces[0][1].x, 100);
    EXPECT_FLOAT_EQ(pieces[0][1].y, 0);
    EXPECT_EQ(pieces[1].size(), 1u);
    EXPECT_FLOAT_EQ(pieces[2][1].x, 600);
    EXPECT_FLOAT_EQ(pieces[2][1].y, 25);
}

// What is drawn is the line through all readings: the same first, lowest, highest and last value in every column.
TEST(SeriesReduction, EveryColumnKeepsItsExtremes) {
    std::mt19937 random(5);
    std::uniform_real_distribution<double> any(0, 100);
    Series series;
    __int64 time = 0;
    for (int i = 0; i < 200'000; ++i) {
        time += 1 + random() % 50;
        series.times.push_back(time);
        series.values.push_back(random() % 40 == 0 ? (random() % 2 ? kNan : -kInfinity) : any(random));
    }
    for (const bool reversed : {false, true}) {
        PlotMapping mapping = Plot(700, static_cast<double>(time));
        mapping.fromTime = static_cast<double>(time) * 0.25;
        mapping.toTime = static_cast<double>(time) * 0.75;
        if (reversed) std::swap(mapping.fromTime, mapping.toTime);
        std::vector<double> low(701, kInfinity), high(701, -kInfinity);
        for (size_t i = 0; i < series.times.size(); ++i) {
            const double x = mapping.X(static_cast<double>(series.times[i]));
            if (x < -0.4 || x > 700.4 || std::abs(x - std::floor(x) - 0.5) < 1e-6 || !std::isfinite(series.values[i])) continue;
            const auto column = static_cast<size_t>(std::lround(x));
            low[column] = std::min(low[column], mapping.Y(series.values[i]));
            high[column] = std::max(high[column], mapping.Y(series.values[i]));
        }
        const auto reduced = ReduceSeries(series.Data(), mapping);
        EXPECT_FALSE(reduced.markers);
        EXPECT_LE(reduced.points.size(), 5u * 701);
        // The same line, whether it is read as a whole or by blocks.
        const SeriesBlocks blocks(series.values.data(), series.values.size());
        SeriesData data = series.Data();
        data.blocks = &blocks;
        const auto blockwise = ReduceSeries(data, mapping);
        ASSERT_EQ(blockwise.points.size(), reduced.points.size());
        EXPECT_EQ(std::memcmp(blockwise.points.data(), reduced.points.data(), reduced.points.size() * sizeof(ORVIK_CURVE_POINT)),
                  0);
        std::vector<double> drawnLow(701, kInfinity), drawnHigh(701, -kInfinity);
        for (const auto& point : reduced.points) {
            if (std::isnan(point.x)) continue;
            auto& drawn = drawnLow[static_cast<size_t>(point.x)];
            drawn = std::min<double>(drawn, point.y);
            drawnHigh[static_cast<size_t>(point.x)] = std::max<double>(drawnHigh[static_cast<size_t>(point.x)], point.y);
        }
        for (size_t column = 1; column < 700; ++column) {
            ASSERT_NEAR(drawnLow[column], low[column], 1e-3) << column;
            ASSERT_NEAR(drawnHigh[column], high[column], 1e-3) << column;
        }
    }
}

TEST(SeriesReduction, GapsStayGaps) {
    std::vector<double> values(100'000, 50);
    std::fill(values.begin() + 30'000, values.begin() + 60'000, kNan);
    const Series series = Every(1, values);
    const auto pieces = Pieces(ReduceSeries(series.Data(), Plot(1000, 100'000)));
    ASSERT_EQ(pieces.size(), 2u);
    EXPECT_NEAR(pieces[0].back().x, 300, 1);
    EXPECT_NEAR(pieces[1].front().x, 600, 1);
    // Columns without any reading are no gap: the line goes on to the next one.
    Series sparse = Every(1, std::vector<double>(20'000, 1));
    for (size_t i = 10'000; i < 20'000; ++i) sparse.times[i] += 80'000;
    EXPECT_EQ(Pieces(ReduceSeries(sparse.Data(), Plot(100, 100'000))).size(), 1u);
}

TEST(SeriesReduction, LinesReachTheEdgesOfAView) {
    const Series series = Every(100, std::vector<double>(11, 5));
    const auto reduced = ReduceSeries(series.Data(), PlotMapping{250, 650, 0, 400, 0, 10, 100, 0});
    ASSERT_EQ(reduced.points.size(), 6u);
    EXPECT_FLOAT_EQ(reduced.points.front().x, -50);
    EXPECT_FLOAT_EQ(reduced.points.back().x, 450);
    // Between two readings there is their line, and nothing beside all of them.
    EXPECT_EQ(ReduceSeries(series.Data(), PlotMapping{210, 290, 0, 400, 0, 10, 100, 0}).points.size(), 2u);
}

TEST(SeriesReduction, StrangeViewsDrawNothing) {
    const Series series = Every(1, {1, 2, 3});
    for (const PlotMapping& mapping : {PlotMapping{0, 0, 0, 100, 0, 1, 0, 100}, PlotMapping{0, kNan, 0, 100, 0, 1, 0, 100},
                                       PlotMapping{0, 9, 5, 5, 0, 1, 0, 100}, PlotMapping{0, 9, 0, 100, 7, 7, 0, 100},
                                       PlotMapping{0, kInfinity, 0, 100, 0, 1, 0, 100}})
        EXPECT_TRUE(ReduceSeries(series.Data(), mapping).points.empty());
    EXPECT_TRUE(ReduceSeries({}, Plot(10, 10)).points.empty());
    const Series none = Every(1, std::vector<double>(5'000, kNan));
    EXPECT_TRUE(ReduceSeries(none.Data(), Plot(10, 5'000)).points.empty());
    const Series huge = Every(1, {-1.7e308, 1.7e308, 0});
    for (const auto& point : ReduceSeries(huge.Data(), Plot(10, 2)).points) EXPECT_LE(std::abs(point.y), 1e6f);
}

TEST(SeriesRange, BlocksSayWhatAllReadingsSay) {
    std::mt19937 random(7);
    constexpr size_t kBlock = SeriesBlocks::kReadings;
    for (const size_t count : {size_t{0}, size_t{1}, kBlock - 1, kBlock, 5 * kBlock + 3}) {
        // Values come again; stretches of whole blocks hold none.
        std::vector<double> values(count);
        for (size_t i = 0; i < count; ++i)
            values[i] = i / (2 * kBlock) == 1 ? kNan : random() % 9 == 0 ? -kInfinity : static_cast<double>(random() % 50);
        const SeriesBlocks blocks(values.data(), count);
        for (int i = 0; i < 300; ++i) {
            const size_t a = random() % (count + 1), b = random() % (count + 1), first = std::min(a, b), last = std::max(a, b);
            double low, high, wantedLow, wantedHigh;
            const bool any = FiniteRange(values.data(), first, last, wantedLow, wantedHigh);
            ASSERT_EQ(blocks.Range(values.data(), first, last, low, high), any);
            if (!any) continue;
            ASSERT_EQ(low, wantedLow);
            ASSERT_EQ(high, wantedHigh);
            const auto at = std::find(values.begin() + static_cast<ptrdiff_t>(first), values.end(), high) - values.begin();
            ASSERT_EQ(blocks.Find(values.data(), first, high), static_cast<size_t>(at));
        }
    }
}
