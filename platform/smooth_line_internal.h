// How much of each pixel a smooth line covers. Internal; any thread; arithmetic only, so that both homes draw the same pixels.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/picture.h"

namespace orvik::detail {

// A part of the plane and the coverage of its pixels, 0..255, row by row.
struct Coverage {
    int left = 0, top = 0, width = 0, height = 0;
    std::vector<uint8_t> pixels;
};

// The line's pieces: points with NaN apart, far points brought near, a single point as a line to itself.
std::vector<std::vector<ORVIK_CURVE_POINT>> SmoothPieces(const ORVIK_CURVE_POINT* points, int count);

// The rectangle of pixels that the pieces may touch; empty without any.
RECT SmoothBounds(const std::vector<std::vector<ORVIK_CURVE_POINT>>& pieces, float width);

// Fills in `coverage.pixels` for its part of the plane. False if no pixel is touched.
bool CoverSmoothLine(const std::vector<std::vector<ORVIK_CURVE_POINT>>& pieces, float width, Coverage& coverage);

}  // namespace orvik::detail
