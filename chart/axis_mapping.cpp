#include "chart/axis_mapping.h"

#include <algorithm>
#include <cfloat>

namespace orvik {
namespace {

// Truncated toward zero; the lower limit for what is not a number.
__int64 ToWhole(double pixels, double limit) {
    if (!(pixels > -limit)) return static_cast<__int64>(-limit);
    return static_cast<__int64>(std::min(pixels, limit));
}

}  // namespace

LONG AxisMapping::ToCoordinate(double value) const {
    constexpr double kMostValue = 2.0 * static_cast<double>(FLT_MAX);
    value = std::clamp(value, -kMostValue, kMostValue);
    const __int64 pixels = ToWhole(PixelsFromOrigin(value), kFarthest);
    const __int64 coordinate = vertical ? end - pixels : start + pixels;
    return static_cast<LONG>(std::clamp<__int64>(coordinate, -kFarthest, kFarthest));
}

__int64 AxisMapping::ToFarCoordinate(double value) const {
    const __int64 pixels = ToWhole(PixelsFromOrigin(value), 0x1p60);
    return vertical ? end - pixels : start + pixels;
}

}  // namespace orvik
