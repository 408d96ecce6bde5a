// Pixels by GDI's rules: which ones a line, a polygon or a rectangle has, and what an operation makes of them.
// Functions on an image and a clip region; no state. Nothing is written outside the clip region, which lies within the image.
#pragma once

#include "platform/posix/drawing/canvas_internal.h"

namespace orvik::detail::raster {

constexpr uint32_t kColors = 0xFFFFFF;

// A binary operation with a given pen colour: d' = (d & keep) ^ flip. Every one of the sixteen is of that form.
struct PixelOp {
    uint32_t keep, flip;
    uint32_t operator()(uint32_t pixel) const { return (pixel & keep) ^ flip; }
};
PixelOp OpOf(int rop2, uint32_t pixel);
// The same for a ternary code (0..255) that does not read the source.
PixelOp PatternOpOf(DWORD code, uint32_t pattern);
// Whether a ternary code reads the source, or the pattern.
bool ReadsSource(DWORD code);
bool ReadsPattern(DWORD code);

// One-pixel lines from point to point. The pixel nearest to the line in each column or row; between two, the upper or left one.
// The first pixel belongs to a line, the last one does not. `dash` (pixels) advances by every line's length, seen or not.
struct DashPattern {
    std::vector<int> lengths;  // on and off in turn; empty: solid
    int total = 0;
};
DashPattern DashesOf(DWORD style);
void Line(const PixelView& image, POINT from, POINT to, PixelOp on, std::optional<PixelOp> off, const DashPattern& dashes,
          int& dash, const PixelRegion& clip);

// The pixels within the polygons, as far as they lie in the bounds: those whose upper left corner does, a right or lower edge
// excluded.
PixelRegion PolygonRows(std::span<const POINT> points, std::span<const DWORD> counts, int mode, const RECT& bounds);

void Fill(const PixelView& image, const RECT& rect, const FillLook& look, DWORD code, const PixelRegion& clip);
// Exchanges each pixel by the operation where the coverage (rows of `width`) is at least half.
void Mask(const PixelView& image, const uint8_t* coverage, ptrdiff_t stride, const RECT& place, PixelOp op,
          const PixelRegion& clip);
// Lays a colour over the pixels by coverage.
void Blend(const PixelView& image, const uint8_t* coverage, ptrdiff_t stride, const RECT& place, uint32_t color,
           const PixelRegion& clip);

// The pixels of a source, stretched to the rectangle (nearest pixel; negative extents mirror).
void Copy(const PixelView& image, const PixelView& source, const RECT& to, DWORD code, const FillLook& pattern,
          const PixelRegion& clip);
void Overlay(const PixelView& image, const PixelView& source, const RECT& to, const PixelRegion& clip);

}  // namespace orvik::detail::raster
