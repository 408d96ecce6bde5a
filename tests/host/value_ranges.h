// Ranges of value axes, of all sizes and widths, the same on every machine.
#pragma once

#include <cmath>
#include <random>
#include <string>
#include <vector>

struct ValueRange {
    double low, high;
    std::string unit;
};

// Sizes from 1e-12 to 1e12, widths from twice the size down to a 10^-9th part of it.
inline std::vector<ValueRange> ValueRanges(size_t count) {
    std::mt19937_64 random(20261122);
    const auto between = [&](double a, double b) { return a + (b - a) * static_cast<double>(random() % 1'000'003) / 1'000'003; };
    const char* const units[] = {"Wh", "°C", "Pa", "", "A", "hPa", "V", "%", "mS/cm", "m", "kW", "bar"};
    std::vector<ValueRange> ranges;
    for (size_t i = 0; i < count; ++i) {
        const double size = std::pow(10, between(-12, 12)), middle = random() % 3 == 0 ? -size : size;
        const double width = size * std::pow(10, i % 2 == 0 ? between(-1, 0.3) : between(-9, 0));
        ranges.push_back({middle - width / 2, middle + width / 2, units[i % std::size(units)]});
    }
    return ranges;
}
