#include "host/chart/chart_tag.h"

#include <algorithm>
#include <cmath>

namespace {
// Parts are stored in single precision.
double Part(double part) {
    constexpr double kFarthest = TagFrame::kFarthest;
    if (std::isnan(part)) return 0;
    return static_cast<double>(static_cast<float>(std::round(std::clamp(part, -kFarthest, kFarthest) * TagFrame::kGrid))) /
           TagFrame::kGrid;
}
}  // namespace

double TagFrame::Left(__int64 time) const {
    return (static_cast<double>(time) - static_cast<double>(first)) / (static_cast<double>(last) - static_cast<double>(first));
}

double TagFrame::Top(double value) const { return (value - extent) / (origin - extent); }

void TagFrame::Place(ChartTag& tag, double left, double top) const {
    constexpr double kFarthestTime = 9e18;
    const double after = Part(left) * (static_cast<double>(last) - static_cast<double>(first));
    const double time = static_cast<double>(first) + after;
    tag.time = std::abs(time) < kFarthestTime ? first + std::llround(after)
                                              : static_cast<__int64>(std::clamp(time, -kFarthestTime, kFarthestTime));
    tag.value = extent + Part(top) * (origin - extent);
}
