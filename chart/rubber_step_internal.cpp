#include "chart/rubber_step_internal.h"

#include <algorithm>
#include <limits>

namespace orvik::detail {
namespace {

LONG Clamped(long long value) {
    return static_cast<LONG>(std::clamp<long long>(value, std::numeric_limits<LONG>::min(), std::numeric_limits<LONG>::max()));
}

// An alignment bounds shifts of its own direction only; a tick that stands on the end (0) has let go already.
long long Limited(long long shift, LONG alignment) {
    if (alignment >= 1) return std::min<long long>(shift, alignment);
    if (alignment < 0) return std::max<long long>(shift, alignment);
    return shift;
}

bool Sticks(RubberMode mode, const RubberAxis& axis) {
    switch (mode) {
        case RubberMode::MoveOrigin:
            return axis.originAlignment == 0;
        case RubberMode::MoveExtent:
            return axis.extentAlignment == 0;
        case RubberMode::Pan:
            return axis.originAlignment == 0 || axis.extentAlignment == 0;
        case RubberMode::None:
            break;
    }
    return false;
}

}  // namespace

RubberMode RubberModeOf(bool shift, bool control) {
    if (shift) return RubberMode::MoveOrigin;
    return control ? RubberMode::Pan : RubberMode::MoveExtent;
}

RubberMove RubberStep(RubberMode mode, LONG anchor, LONG pointer, const RubberAxis& axis) {
    RubberMove move{false, anchor, 0, 0, axis.origin, axis.extent};
    const long long length = Clamped(static_cast<long long>(axis.extent) - axis.origin);
    // Without a pixel of length there is no scale to pull at.
    if (mode == RubberMode::None || length == 0) return move;

    long long distance = Clamped(static_cast<long long>(pointer) - anchor);
    if (Sticks(mode, axis)) {
        if (distance > -axis.sticky && distance < axis.sticky) return move;
        const LONG letGo = distance > 0 ? axis.sticky - 1 : 1 - axis.sticky;
        move.anchor = anchor + letGo;
        distance -= letGo;
    }

    long long originShift = 0;
    long long extentShift = 0;
    if (mode == RubberMode::Pan) {
        originShift = extentShift = Limited(distance, axis.originAlignment);
    } else {
        const bool pullsOrigin = mode == RubberMode::MoveOrigin;
        const long long lever =
            pullsOrigin ? static_cast<long long>(axis.extent) - pointer : static_cast<long long>(pointer) - axis.origin;
        if (lever == 0) return move;
        (pullsOrigin ? originShift : extentShift) =
            Limited(length * distance / lever, pullsOrigin ? axis.originAlignment : axis.extentAlignment);
    }
    if (originShift == 0 && extentShift == 0) return move;

    move.changes = true;
    move.anchor = pointer;
    move.originShift = Clamped(originShift);
    move.extentShift = Clamped(extentShift);
    move.zoomOrigin = Clamped(axis.origin - originShift);
    move.zoomExtent = Clamped(axis.extent - extentShift);
    return move;
}

}  // namespace orvik::detail
