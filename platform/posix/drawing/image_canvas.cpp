// The canvas of 32-bit pixels. Thin lines, rectangles and copies go straight to the pixels; wide lines and ellipses become a mask
// of whole pixels by cairo first, smooth lines one of coverages.
#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <new>
#include <numbers>

#include "platform/posix/drawing/dc_internal.h"
#include "platform/posix/drawing/font_internal.h"
#include "platform/posix/drawing/raster_internal.h"
#include "platform/posix/drawing/shaping_internal.h"

namespace orvik::detail {
namespace {

constexpr int kLargestSide = 32767;
constexpr int64_t kMostPixels = int64_t{1} << 28;

// A cairo context over coverages of a part of the canvas, in the canvas's coordinates.
class CoverageMask {
public:
    explicit CoverageMask(const RECT& place) {
        m_surface = cairo_image_surface_create(CAIRO_FORMAT_A8, place.right - place.left, place.bottom - place.top);
        m_painter = cairo_create(m_surface);
        cairo_translate(m_painter, -place.left, -place.top);
        cairo_set_antialias(m_painter, CAIRO_ANTIALIAS_NONE);
    }
    CoverageMask(const CoverageMask&) = delete;
    CoverageMask& operator=(const CoverageMask&) = delete;
    ~CoverageMask() {
        cairo_destroy(m_painter);
        cairo_surface_destroy(m_surface);
    }
    cairo_t* Painter() { return m_painter; }
    // Null when memory was short.
    const uint8_t* Coverage() {
        cairo_surface_flush(m_surface);
        return cairo_status(m_painter) == CAIRO_STATUS_SUCCESS ? cairo_image_surface_get_data(m_surface) : nullptr;
    }
    ptrdiff_t Stride() const { return cairo_image_surface_get_stride(m_surface); }

private:
    cairo_surface_t* m_surface;
    cairo_t* m_painter;
};

void SetPen(cairo_t* painter, const LineLook& look) {
    cairo_set_line_width(painter, look.width);
    const DWORD cap = look.style & PS_ENDCAP_MASK, join = look.style & PS_JOIN_MASK;
    cairo_set_line_cap(painter, cap == PS_ENDCAP_FLAT     ? CAIRO_LINE_CAP_BUTT
                                : cap == PS_ENDCAP_SQUARE ? CAIRO_LINE_CAP_SQUARE
                                                          : CAIRO_LINE_CAP_ROUND);
    cairo_set_line_join(painter, join == PS_JOIN_BEVEL   ? CAIRO_LINE_JOIN_BEVEL
                                 : join == PS_JOIN_MITER ? CAIRO_LINE_JOIN_MITER
                                                         : CAIRO_LINE_JOIN_ROUND);
    const raster::DashPattern dashes = raster::DashesOf(look.style);
    std::vector<double> lengths;
    for (const int length : dashes.lengths) lengths.push_back(length / 3.0 * look.width);
    cairo_set_dash(painter, lengths.data(), static_cast<int>(lengths.size()), 0);
}

void EllipsePath(cairo_t* painter, double left, double top, double right, double bottom) {
    cairo_save(painter);
    cairo_translate(painter, (left + right) / 2, (top + bottom) / 2);
    cairo_scale(painter, (right - left) / 2, (bottom - top) / 2);
    cairo_new_path(painter);
    cairo_arc(painter, 0, 0, 1, 0, 2 * std::numbers::pi);
    cairo_restore(painter);
}

class ImageCanvas final : public Canvas {
public:
    ImageCanvas(int width, int height, bool bottomUp, bool monochrome)
        : m_pixels(static_cast<size_t>(width) * static_cast<size_t>(height)),
          m_width(width),
          m_height(height),
          m_bottomUp(bottomUp),
          m_monochrome(monochrome) {}

    SIZE Size() const override { return {m_width, m_height}; }
    bool IsMonochrome() const override { return m_monochrome; }
    PixelView Pixels() override {
        if (!m_bottomUp) return {m_pixels.data(), m_width, m_height, m_width};
        return {m_pixels.data() + static_cast<ptrdiff_t>(m_width) * (m_height - 1), m_width, m_height, -ptrdiff_t{m_width}};
    }

    void Lines(std::span<const POINT> points, std::span<const DWORD> counts, const LineLook& given, int& dash,
               const PixelRegion& clip) override {
        LineLook look = given;
        look.color = Shown(look.color);
        if (look.gap.has_value()) look.gap = Shown(*look.gap);
        const raster::PixelOp op = raster::OpOf(look.rop2, PixelOf(look.color));
        if (look.width > 1) {
            WideLines(points, counts, look, op, clip);
            return;
        }
        const std::optional<raster::PixelOp> gap =
            look.gap.has_value() ? std::optional(raster::OpOf(look.rop2, PixelOf(*look.gap))) : std::nullopt;
        const raster::DashPattern dashes = raster::DashesOf(look.style);
        size_t begin = 0;
        for (const DWORD count : counts) {
            for (size_t i = 1; i < count; ++i)
                raster::Line(Pixels(), points[begin + i - 1], points[begin + i], op, gap, dashes, dash, clip);
            begin += count;
        }
    }

    void Polygons(std::span<const POINT> points, std::span<const DWORD> counts, int mode, const FillLook& look, int rop2,
                  const PixelRegion& clip) override {
        PixelRegion rows = raster::PolygonRows(points, counts, mode, clip.Box());
        Fill(rows.Rects(), look, OperationOf(rop2), clip);
    }

    void Fill(std::span<const RECT> rects, const FillLook& given, DWORD operation, const PixelRegion& clip) override {
        const FillLook look = Shown(given);
        for (const RECT& rect : rects) raster::Fill(Pixels(), rect, look, operation >> 16 & 0xFF, clip);
    }

    void Ellipse(const RECT& rect, const FillLook* inside, const LineLook* outline, int rop2, const PixelRegion& clip) override {
        RECT place = rect, seen;
        InflateRect(&place, 1 + (outline != nullptr ? outline->width : 0), 1 + (outline != nullptr ? outline->width : 0));
        const RECT box = clip.Box();
        if (!IntersectRect(&seen, &place, &box)) return;
        if (inside != nullptr) {
            CoverageMask mask(seen);
            EllipsePath(mask.Painter(), rect.left, rect.top, rect.right, rect.bottom);
            cairo_fill(mask.Painter());
            if (const uint8_t* coverage = mask.Coverage())
                raster::Mask(Pixels(), coverage, mask.Stride(), seen, raster::OpOf(rop2, PixelOf(Shown(inside->color))), clip);
        }
        if (outline != nullptr) {
            CoverageMask mask(seen);
            const double half = outline->width / 2.0;
            EllipsePath(mask.Painter(), rect.left + half, rect.top + half, rect.right - half, rect.bottom - half);
            SetPen(mask.Painter(), *outline);
            cairo_stroke(mask.Painter());
            if (const uint8_t* coverage = mask.Coverage())
                raster::Mask(Pixels(), coverage, mask.Stride(), seen, raster::OpOf(outline->rop2, PixelOf(Shown(outline->color))),
                             clip);
        }
    }

    void Text(const TextRun& run, const PixelRegion& clip) override {
        if (run.face == nullptr) return;
        const uint32_t color = PixelOf(Shown(run.color));
        for (size_t i = 0; i < run.bytes.size(); ++i)
            Glyph(run.face->Glyph(run.bytes[i]), run.base, run.face->Step(run.offsets[i], 0), color, clip);
        if (run.shaped == nullptr) return;
        for (const ShapedGlyph& glyph : run.shaped->glyphs)
            Glyph(*run.face->Picture(glyph), run.base, run.face->Step(glyph.x, glyph.y), color, clip);
    }

    void Image(const PixelView& source, const RECT& to, DWORD operation, const FillLook& pattern,
               const PixelRegion& clip) override {
        raster::Copy(Pixels(), source, to, operation >> 16 & 0xFF, Shown(pattern), clip);
    }

    void Overlay(const PixelView& source, const RECT& to, const PixelRegion& clip) override {
        raster::Overlay(Pixels(), source, to, clip);
    }

private:
    // Black and white pixels take the colour that is nearer.
    COLORREF Shown(COLORREF color) const {
        if (!m_monochrome) return color;
        return GetRValue(color) + GetGValue(color) + GetBValue(color) > 3 * 127 ? RGB(255, 255, 255) : RGB(0, 0, 0);
    }
    FillLook Shown(FillLook look) const {
        look.color = Shown(look.color);
        if (look.gap.has_value()) look.gap = Shown(*look.gap);
        return look;
    }

    void Glyph(const GlyphImage& glyph, POINT base, POINT step, uint32_t color, const PixelRegion& clip) {
        if (glyph.width == 0) return;
        const LONG left = base.x + step.x + glyph.left, top = base.y + step.y + glyph.top;
        const RECT place = {left, top, left + glyph.width, top + glyph.height};
        if (m_monochrome) {
            raster::Mask(Pixels(), glyph.coverage.data(), glyph.width, place, raster::OpOf(R2_COPYPEN, color), clip);
        } else if (!glyph.colours.empty()) {
            std::vector<uint32_t> colours = glyph.colours;
            raster::Overlay(Pixels(), {colours.data(), glyph.width, glyph.height, glyph.width}, place, clip);
        } else {
            raster::Blend(Pixels(), glyph.coverage.data(), glyph.width, place, color, clip);
        }
    }

    void WideLines(std::span<const POINT> points, std::span<const DWORD> counts, const LineLook& look, raster::PixelOp op,
                   const PixelRegion& clip) {
        if (points.empty()) return;
        RECT place = {points[0].x, points[0].y, points[0].x + 1, points[0].y + 1};
        for (const POINT& point : points)
            place = {std::min(place.left, point.x), std::min(place.top, point.y), std::max(place.right, point.x + 1),
                     std::max(place.bottom, point.y + 1)};
        // A mitred corner reaches further than half the width, up to cairo's limit of ten times that.
        const int reach = ((look.style & PS_JOIN_MASK) == PS_JOIN_MITER ? 10 : 2) * look.width;
        InflateRect(&place, reach, reach);
        const RECT box = clip.Box();
        RECT seen;
        if (!IntersectRect(&seen, &place, &box)) return;
        CoverageMask mask(seen);
        cairo_t* painter = mask.Painter();
        SetPen(painter, look);
        // An odd width has the named pixels in its middle, an even one their upper left corners.
        const double middle = look.width % 2 != 0 ? 0.5 : 0;
        size_t begin = 0;
        for (const DWORD count : counts) {
            const std::span<const POINT> figure = points.subspan(begin, count);
            begin += count;
            if (count < 2) continue;
            const bool closed = count > 2 && figure.front().x == figure.back().x && figure.front().y == figure.back().y;
            cairo_move_to(painter, figure[0].x + middle, figure[0].y + middle);
            for (const POINT& point : figure.subspan(1, count - (closed ? 2 : 1)))
                cairo_line_to(painter, point.x + middle, point.y + middle);
            if (closed) cairo_close_path(painter);
        }
        cairo_stroke(painter);
        if (const uint8_t* coverage = mask.Coverage()) raster::Mask(Pixels(), coverage, mask.Stride(), seen, op, clip);
    }

    std::vector<uint32_t> m_pixels;
    const int m_width, m_height;
    const bool m_bottomUp, m_monochrome;
};

}  // namespace

std::shared_ptr<Canvas> MakePixelCanvas(int width, int height, bool bottomUp, bool monochrome) {
    if (width < 1 || height < 1 || width > kLargestSide || height > kLargestSide || int64_t{width} * height > kMostPixels)
        return nullptr;
    try {
        return std::make_shared<ImageCanvas>(width, height, bottomUp, monochrome);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

std::shared_ptr<Canvas> MakeImageCanvas(int width, int height) { return MakePixelCanvas(width, height, false, false); }

}  // namespace orvik::detail
