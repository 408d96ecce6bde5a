#include "host/session/series_range.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// Comparing so that what is not a number never wins. Four of each side by side, as one alone would wait for itself.
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

SeriesBlocks::SeriesBlocks(const double* values, size_t count) : m_blocks(count / kReadings) {
    for (size_t i = 0; i < m_blocks.size(); ++i)
        FiniteRange(values, i * kReadings, (i + 1) * kReadings, m_blocks[i].low, m_blocks[i].high);
}

bool SeriesBlocks::Range(const double* values, size_t first, size_t last, double& low, double& high) const {
    const size_t begin = (first + kReadings - 1) / kReadings, end = std::min(last / kReadings, m_blocks.size());
    if (begin >= end) return FiniteRange(values, first, last, low, high);
    double nearLow, nearHigh;
    FiniteRange(values, first, begin * kReadings, low, high);
    FiniteRange(values, end * kReadings, last, nearLow, nearHigh);
    low = std::min(low, nearLow), high = std::max(high, nearHigh);
    for (size_t i = begin; i < end; ++i) low = std::min(low, m_blocks[i].low), high = std::max(high, m_blocks[i].high);
    return low <= high;
}

size_t SeriesBlocks::Find(const double* values, size_t first, double value) const {
    size_t at = first;
    const auto search = [&](size_t end) {
        while (at < end && values[at] != value) ++at;
        return at < end;
    };
    size_t block = (first + kReadings - 1) / kReadings;
    if (block < m_blocks.size() && search(block * kReadings)) return at;
    for (; block < m_blocks.size(); ++block) {
        at = block * kReadings;
        if (m_blocks[block].low <= value && value <= m_blocks[block].high && search(at + kReadings)) return at;
    }
    while (values[at] != value) ++at;
    return at;
}
