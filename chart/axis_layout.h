// Which ticks of a division are drawn, which of them are labelled, and at which pixels. Values; one thread at a time for one
// layout, which may be used again: it keeps its memory.
// An axis has no more ticks than pixels, whatever it is divided into.
#pragma once

#include <functional>
#include <vector>

#include "afx/string.h"
#include "chart/axis_division.h"

namespace orvik {

struct AxisTick {
    LONG at;  // along the axis
    bool large;
};

struct AxisLabel {
    LONG at;     // its tick, which stands at the label's middle
    LONG width;  // of the text
    double value;
    CString text;
};

struct AxisLayout {
    std::vector<AxisTick> ticks;    // from left to right or from top to bottom
    std::vector<AxisLabel> labels;  // in the same order; no two overlap, and each belongs to a large tick
    std::vector<LONG> offsets;      // of every large division from the axis's start, one more than there are divisions
    LONG labelEnd = 0;              // behind the last label of a horizontal axis, with its gap; before the start without one
};

// What a label says, and how wide a text is in the font that it will be drawn in, in pixels.
using AxisLabelText = std::function<void(double value, CString& text)>;
using AxisLabelWidth = std::function<LONG(const CString& text)>;

// Ticks from one pixel before the start to the end, `subDivisions` small steps to each large one (at least 1). Labels follow one
// another as the ticks do; one that would overlap the one before is left out. Along a horizontal axis they are centred at their
// ticks, with two pixels between them; along a vertical one they have the height request.labelSize and a pixel between.
// Offsets of ticks far outside are clamped to AxisMapping::kFarthest.
ORVIK_API void LayOutAxis(AxisLayout& layout, const AxisDivisionRequest& request, const AxisDivision& division, int subDivisions,
                          const AxisLabelText& text, const AxisLabelWidth& width);

}  // namespace orvik
