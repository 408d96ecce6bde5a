// How much of each pixel a smooth line covers. Internal; any thread; arithmetic only, so that both homes draw the same pixels.
#pragma once

#include <cmath>
#include <cstdint>
#include <span>
#include <vector>

#include "platform/picture.h"

namespace orvik::detail {

// A part of the plane and the coverage of its pixels, 0..255, row by row.
struct Coverage {
    int left = 0, top = 0, width = 0, height = 0;
    std::vector<uint8_t> pixels;
};

// The pieces of a line, one after the other, a point with NaN between two of them; far points brought near. A piece of a single
// point is a dot. In one vector, as a dashed line has thousands of pieces.
using SmoothPath = std::vector<ORVIK_CURVE_POINT>;
SmoothPath SmoothPathOf(const ORVIK_CURVE_POINT* points, int count);

// Gives each piece to `take`, as a span.
template <class Take>
void EachPiece(const SmoothPath& path, Take take) {
    for (size_t from = 0, to; from < path.size(); from = to + 1) {
        for (to = from; to < path.size() && !std::isnan(path[to].x);) ++to;
        take(std::span(path).subspan(from, to - from));
    }
}

// The rectangle of pixels that the path may touch; empty without a point.
RECT SmoothBounds(const SmoothPath& path, float width);

// Fills in `coverage.pixels` for its part of the plane. False if no pixel is touched.
bool CoverSmoothLine(const SmoothPath& path, float width, Coverage& coverage);

}  // namespace orvik::detail
