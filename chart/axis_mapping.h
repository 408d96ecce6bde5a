// The straight line between the values and the pixels of an axis. A value type; any thread. Formulas are evaluated as written, in
// double precision; nothing here rounds but where it says so.
#pragma once

#include "platform/win32.h"

namespace orvik {

struct AxisMapping {
    double origin = 0;  // the value at the start of a horizontal axis, at the bottom end of a vertical one
    double extent = 0;  // the value at the other end; may be the smaller one
    LONG start = 0;     // the axis's first and last pixel, from left to right or from top to bottom
    LONG end = 0;
    bool vertical = false;

    // Coordinates given out are never farther from 0 than this, so that drawing calls accept them.
    static constexpr LONG kFarthest = 0x10000000;

    // The value at a pixel. Without a pixel between the ends it is infinite or not a number.
    double ToValue(LONG coordinate) const {
        const double along = vertical ? Distance(coordinate, end) : Distance(start, coordinate);
        return origin + along * (extent - origin) / Distance(start, end);
    }

    // The pixel of a value: its distance from the origin's pixel truncated, all clamped to kFarthest. Values beyond twice the
    // single-precision range are clamped first. What is not a number lies as far before the origin as it can.
    ORVIK_API LONG ToCoordinate(double value) const;

    // The same without clamping, for ticks that may lie far outside the axis. Saturates at 2 to the power 60.
    ORVIK_API __int64 ToFarCoordinate(double value) const;

private:
    static double Distance(LONG from, LONG to) { return static_cast<double>(to) - static_cast<double>(from); }
    double PixelsFromOrigin(double value) const { return (value - origin) / (extent - origin) * Distance(start, end); }
};

}  // namespace orvik
