// How an axis is divided: which step its large divisions have, where the first and the last of them lie, and which range the axis
// takes on by it. Asked without a drawing context. Pure functions on values; any thread.
//
// Steps are of the 1-2-5 family. The step chosen is the smallest at which each large division is at least one and a half labels
// long, but none below the smallest permitted step:
//   "#..."  10 to minus the number of characters behind the decimal separator in the format
//   "@..."  the decade of the end of larger magnitude
//   other   1
// and never one that would make two neighbouring labels equal, whether for the digits that the format has or for those that a
// double has.
#pragma once

#include <string_view>

#include "chart/axis_mapping.h"
#include "chart/axis_step.h"

namespace orvik {

struct AxisDivisionRequest {
    AxisMapping mapping;
    LONG labelSize = 0;       // pixels that the format's own text takes along the axis: its width or its height; from 1 up
    std::string_view format;  // of the labels, for _NlsSetReal
    char decimalSeparator = '.';
};

// No axis has more large divisions than this; no screen has room for more.
constexpr LONG kMostAxisDivisions = 65536;

struct ORVIK_API AxisDivision {
    LONG count = 0;    // large divisions; 0 where there is none: an empty or unbounded range, or no pixel between the ends
    AxisStep size;     // the step's magnitude
    double step = 0;   // the step from the first tick to the next one: negative on an axis whose values fall
    double first = 0;  // the values of the outermost ticks, at or outside the ends
    double last = 0;
    double firstNumber = 0;  // the same in steps from 0: whole numbers
    double lastNumber = 0;
    __int64 firstAt = 0;  // their pixels, which may lie far outside
    __int64 lastAt = 0;
    double origin = 0;  // the range, each end moved to its outermost tick where that has the end's own pixel
    double extent = 0;
    LONG originAlignment = 0;  // pixels between an end and its outermost tick, or the next one inside if that is nearer
    LONG extentAlignment = 0;

    // The value of the large tick i from the first one on (or, with -i, from the last one back), exactly 0 at 0.
    double FromFirst(LONG i) const { return Tick(firstNumber + (step < 0 ? -i : i)); }
    double FromLast(LONG i) const { return Tick(lastNumber + (step < 0 ? i : -i)); }

private:
    double Tick(double number) const { return number == 0 ? 0.0 : size.Times(number); }
};

// The smallest permitted step of a range that is bounded and not empty.
ORVIK_API AxisStep SmallestAxisStep(const AxisDivisionRequest& request);

// Ends for any numbers, after at most a few dozen evaluations for labels and axes of ordinary size.
ORVIK_API AxisDivision DivideAxis(const AxisDivisionRequest& request);

// distance * i / total, rounded half away from zero, where the product may need more than 64 bits. 0 <= i <= total, 0 < total <
// 2^31.
ORVIK_API __int64 PartOfDistance(__int64 distance, __int64 i, __int64 total);

}  // namespace orvik
