// The toolkit's rectangle of doubles. A value type; any thread.
#pragma once

#include "platform/api.h"

// The members in memory order. A rectangle of charts: top may lie above or below bottom, as the axis has it.
class CBCGPRect {
public:
    CBCGPRect() = default;
    CBCGPRect(double l, double t, double r, double b) : left(l), top(t), right(r), bottom(b) {}

    double Width() const { return right - left; }
    double Height() const { return bottom - top; }
    bool operator==(const CBCGPRect&) const = default;

    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;
};
