// Pages are drawn through a canvas on the writers of SVG and PDF files that both homes share.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <span>

#include "platform/house_text_internal.h"
#include "platform/picture_internal.h"
#include "platform/posix/drawing/canvas_internal.h"
#include "platform/vector_sink_internal.h"

namespace orvik::detail {
namespace {

class SinkCanvas : public PageCanvas {
public:
    SinkCanvas(SIZE size, std::unique_ptr<VectorSink> sink) : m_size(size), m_sink(std::move(sink)) {}

    SIZE Size() const override { return m_size; }
    bool Finish(std::string& document) override {
        if (m_lost) return false;
        document = m_sink->Finish();
        return true;
    }

    void Lines(std::span<const POINT> points, std::span<const DWORD> counts, const LineLook& look, int& dash,
               const PixelRegion& clip) override {
        dash = 0;
        VectorPen pen = PenOf(look);
        if (!Marks(look.rop2, pen.colour)) return;
        Clip(clip);
        for (const auto& line : Figures(points, counts)) m_sink->Line(line, pen);
    }

    void Polygons(std::span<const POINT> points, std::span<const DWORD> counts, int mode, const FillLook& look, int rop2,
                  const PixelRegion& clip) override {
        uint32_t colour = look.color;
        if (!Holds(look) || !Marks(rop2, colour)) return;
        Clip(clip);
        m_sink->Area(Figures(points, counts), mode == WINDING, colour);
    }

    void Fill(std::span<const RECT> rects, const FillLook& look, DWORD operation, const PixelRegion& clip) override {
        uint32_t colour = look.color;
        const DWORD code = operation & 0xFF0000;
        if (code == (BLACKNESS & 0xFF0000)) {
            colour = 0;
        } else if (code == (WHITENESS & 0xFF0000)) {
            colour = 0xFFFFFF;
        } else if (code != (PATCOPY & 0xFF0000) || !Holds(look)) {
            return;
        }
        Clip(clip);
        for (const RECT& rect : rects) m_sink->Fill(PageRect(rect), colour);
    }

    void Ellipse(const RECT& rect, const FillLook* inside, const LineLook* outline, int rop2, const PixelRegion& clip) override {
        uint32_t colour = inside != nullptr ? inside->color : 0;
        VectorPen pen = outline != nullptr ? PenOf(*outline) : VectorPen{};
        const bool filled = inside != nullptr && Holds(*inside) && Marks(rop2, colour),
                   drawn = outline != nullptr && Marks(rop2, pen.colour);
        Clip(clip);
        m_sink->Ellipse(PageRect(rect), filled ? &colour : nullptr, drawn ? &pen : nullptr);
    }

    void Text(const TextRun& run, const PixelRegion& clip) override {
        constexpr double kTenth = 3.14159265358979323846 / 1800;
        const TextFont& font = *run.font;
        VectorText text;
        text.anchor = run.align == TA_CENTER  ? VectorAnchor::middle
                      : run.align == TA_RIGHT ? VectorAnchor::end
                                              : VectorAnchor::start;
        // Back from the start to the point that was named, so that text keeps to it in a viewer with another font.
        const int along = run.align == TA_CENTER ? run.width / 2 : run.align == TA_RIGHT ? run.width : 0;
        text.x = run.base.x + std::round(along * std::cos(font.escapement * kTenth));
        text.y = run.base.y - std::round(along * std::sin(font.escapement * kTenth));
        text.angle = font.escapement / 10.0;
        text.text = run.utf8;
        text.width = run.width;
        text.face = Utf8FromHouse({font.asked.lfFaceName, strnlen(font.asked.lfFaceName, LF_FACESIZE)});
        text.pitch = font.asked.lfPitchAndFamily;
        text.size = font.pixels;
        text.weight = font.weight;
        text.italic = font.italic, text.underline = font.underline, text.strikeOut = font.strikeOut;
        text.colour = run.color;
        Clip(clip);
        m_sink->Text(text);
    }

    void Image(const PixelView&, const RECT&, DWORD, const FillLook&, const PixelRegion&) override { m_lost = true; }
    void Overlay(const PixelView&, const RECT&, const PixelRegion&) override { m_lost = true; }

    void SmoothLine(std::span<const CanvasPoint> points, double width, COLORREF color, const PixelRegion& clip) override {
        std::vector<VectorPoint> line;
        for (const CanvasPoint& point : points) line.push_back({point.x - 0.5, point.y - 0.5});
        Clip(clip);
        m_sink->Curve(line, color, width);
    }

private:
    static VectorRect PageRect(const RECT& rect) {
        return {static_cast<double>(rect.left), static_cast<double>(rect.top), static_cast<double>(rect.right),
                static_cast<double>(rect.bottom)};
    }
    static std::vector<std::vector<VectorPoint>> Figures(std::span<const POINT> points, std::span<const DWORD> counts) {
        std::vector<std::vector<VectorPoint>> figures;
        for (const DWORD count : counts) {
            figures.emplace_back();
            for (const POINT& point : points.first(count))
                figures.back().push_back({static_cast<double>(point.x), static_cast<double>(point.y)});
            points = points.subspan(count);
        }
        return figures;
    }
    static VectorPen PenOf(const LineLook& look) {
        VectorPen pen;
        pen.colour = look.color;
        pen.width = std::max(look.width, 1);
        pen.dashes = DashesOf(look.style & PS_STYLE_MASK, pen.width);
        pen.round = look.width > 1 && (look.style & PS_ENDCAP_MASK) == PS_ENDCAP_ROUND;
        return pen;
    }
    // Whether a raster operation leaves a mark, and in which colour.
    static bool Marks(int rop2, uint32_t& colour) {
        if (rop2 == R2_BLACK) colour = 0;
        if (rop2 == R2_WHITE) colour = 0xFFFFFF;
        return rop2 == R2_COPYPEN || rop2 == R2_BLACK || rop2 == R2_WHITE;
    }
    // Only plain areas can be held.
    bool Holds(const FillLook& look) {
        m_lost |= look.kind != FillLook::kSolid;
        return look.kind == FillLook::kSolid;
    }
    void Clip(const PixelRegion& clip) {
        std::vector<VectorRect> rects;
        for (const RECT& rect : clip.Rects()) rects.push_back(PageRect(rect));
        m_sink->SetClip(&rects);
    }

    SIZE m_size;
    std::unique_ptr<VectorSink> m_sink;
    bool m_lost = false;  // something was drawn that has no place here
};

class PageTarget : public PictureTarget {
public:
    explicit PageTarget(std::shared_ptr<PageCanvas> canvas) : m_canvas(std::move(canvas)) {
        const SIZE size = m_canvas->Size();
        m_dc = MakeCanvasDC({m_canvas, {0, 0}, RECT{0, 0, size.cx, size.cy}, nullptr});
    }
    ~PageTarget() override {
        if (m_dc != nullptr) EndCanvasDC(m_dc);
    }
    HDC Dc() const override { return m_dc; }
    DWORD Finish(std::string& file) override { return m_canvas->Finish(file) ? ERROR_SUCCESS : ERROR_NOT_SUPPORTED; }

private:
    std::shared_ptr<PageCanvas> m_canvas;
    HDC m_dc = nullptr;
};

std::unique_ptr<PictureTarget> TargetOver(SIZE size, std::unique_ptr<VectorSink> sink) {
    auto target = std::make_unique<PageTarget>(std::make_shared<SinkCanvas>(size, std::move(sink)));
    return target->Dc() != nullptr ? std::move(target) : nullptr;
}
}  // namespace

std::unique_ptr<PictureTarget> MakePageTarget(PictureKind kind, int width, int height) {
    return TargetOver({width, height}, kind == PictureKind::svg ? MakeSvgWriter(width, height) : MakePdfWriter(width, height));
}

std::unique_ptr<PictureTarget> MakeSheetTarget(int width, int height, const PdfSheet& sheet) {
    return TargetOver({width, height}, MakePdfWriter(width, height, sheet));
}

void SettlePixels() {}  // drawing reaches the pixels at once

BOOL KeepSmoothLine(HDC dc, const SmoothPath& path, COLORREF colour, float width) {
    const auto target = TargetOf(dc);
    auto* page = target ? dynamic_cast<PageCanvas*>(target->canvas.get()) : nullptr;
    if (page == nullptr) return FALSE;
    EachPiece(path, [&](std::span<const ORVIK_CURVE_POINT> piece) {
        std::vector<CanvasPoint> points;
        for (const ORVIK_CURVE_POINT& point : piece)
            points.push_back(
                {static_cast<double>(point.x) + target->offset.x + 0.5, static_cast<double>(point.y) + target->offset.y + 0.5});
        page->SmoothLine(points, static_cast<double>(width), colour, target->clip);
    });
    return TRUE;
}

// A colour for so many pixels at once: their bytes are all alike and mixed without a branch, side by side.
constexpr int kBlock = 8;
class Ink {
public:
    explicit Ink(uint32_t pixel) {
        for (size_t i = 0; i < sizeof m_bytes; ++i) m_bytes[i] = static_cast<uint8_t>(pixel >> i % 4 * 8);
    }
    void Fill(uint32_t* pixels) const { std::memcpy(pixels, m_bytes, sizeof m_bytes); }
    // Each pixel as much as its weight says, 0..255.
    void Mix(uint32_t* pixels, const uint8_t* weights) const {
        uint8_t share[sizeof m_bytes], under[sizeof m_bytes];
        std::memcpy(under, pixels, sizeof under);
        for (size_t i = 0; i < kBlock; ++i) {
            const uint32_t each = weights[i] * 0x01010101u;  // for all four bytes of its pixel
            std::memcpy(share + i * sizeof each, &each, sizeof each);
        }
        for (size_t i = 0; i < sizeof under; ++i) {
            // By 255, rounded to the nearest: v / 255 is (v + 1 + v / 256) / 256 for all v that fit 16 bits.
            const auto sum = static_cast<uint16_t>(m_bytes[i] * share[i] + under[i] * (255 - share[i]) + 127);
            under[i] = static_cast<uint8_t>(static_cast<uint16_t>(sum + 1 + (sum >> 8)) >> 8);
        }
        std::memcpy(pixels, under, sizeof under);
    }

private:
    uint8_t m_bytes[kBlock * 4];
};

DWORD BlendCoverage(HDC dc, const Coverage& coverage, COLORREF colour) {
    const auto target = TargetOf(dc);
    if (!target) return ERROR_INVALID_HANDLE;
    const PixelView pixels = target->canvas->Pixels();
    if (pixels.bits == nullptr) return ERROR_SUCCESS;  // the screen: nothing to see
    const Ink ink(PixelOf(colour));
    const int left = coverage.left + target->offset.x, top = coverage.top + target->offset.y;
    for (const RECT& part : target->clip.Rects()) {
        const int fromX = std::max(left, part.left), toX = std::min(left + coverage.width, part.right);
        const int toY = std::min(top + coverage.height, part.bottom);
        for (int y = std::max(top, part.top); y < toY; ++y) {
            const uint8_t* alpha = coverage.pixels.data() + static_cast<ptrdiff_t>(y - top) * coverage.width - left;
            uint32_t* row = pixels.Row(y);
            int x = fromX;
            for (; x + kBlock <= toX; x += kBlock) {
                uint64_t some;
                std::memcpy(&some, alpha + x, sizeof some);
                if (some == 0) continue;  // as most of the part is
                if (some == ~uint64_t{0}) {
                    ink.Fill(row + x);
                } else {
                    ink.Mix(row + x, alpha + x);
                }
            }
            if (x >= toX) continue;  // also of a part that lies beside the line
            uint32_t last[kBlock] = {};
            uint8_t weights[kBlock] = {};
            std::copy(row + x, row + toX, last);
            std::copy(alpha + x, alpha + toX, weights);
            ink.Mix(last, weights);
            std::copy(last, last + (toX - x), row + x);
        }
    }
    return ERROR_SUCCESS;
}
}  // namespace orvik::detail
