// What a DC draws on: a canvas. A DC keeps the state (objects, origins, clip, text alignment, current position) and turns a call
// into primitives with everything said; a canvas turns a primitive into pixels or into marks on a page, and keeps no state.
// One thread at a time for a canvas and all DCs over it.
// Coordinates are whole pixels of the canvas: pixel (x, y) covers [x, x + 1) by [y, y + 1). Pages have the same units.
// Canvases: MakeImageCanvas (32-bit pixels), and whoever derives from Canvas or PageCanvas.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/posix/drawing/draw.h"
#include "platform/posix/drawing/paint.h"
#include "platform/posix/drawing/pixel_region_internal.h"
#include "platform/posix/drawing/text_draw.h"

namespace orvik::detail {

// Pixels of an image: 0x00RRGGBB each, rows from the top `stride` pixels apart (negative in an image stored bottom up).
struct PixelView {
    uint32_t* bits = nullptr;
    int width = 0, height = 0;
    ptrdiff_t stride = 0;
    uint32_t* Row(int y) const { return bits + y * stride; }
};

inline uint32_t PixelOf(COLORREF color) { return (color & 0xFF) << 16 | (color & 0xFF00) | (color >> 16 & 0xFF); }

// How a line looks. `style` has a PS_ style of lines without PS_NULL, the PS_ENDCAP_ and PS_JOIN_ bits of wide lines; styles
// other than solid are for width 1, except where PS_GEOMETRIC is set.
struct LineLook {
    DWORD style = PS_SOLID;
    int width = 1;
    COLORREF color = 0;
    std::optional<COLORREF> gap;  // what dashes leave open; nothing when transparent
    int rop2 = R2_COPYPEN;
};

// How an area looks.
struct FillLook {
    enum Kind { kSolid, kHatch, kTile } kind = kSolid;
    COLORREF color = 0;
    int hatch = 0;                // HS_
    std::optional<COLORREF> gap;  // between the hatch lines
    PixelView tile;               // repeated; its pixels are constant while the call lasts
    POINT origin = {0, 0};        // where hatch and tile begin
};

class FontFace;     // font_internal.h
struct ShapedText;  // shaping_internal.h

// A font of the machine, at a size.
struct TextFont {
    LOGFONTA asked;      // as the DC's font was described
    std::string family;  // the family in use, UTF-8
    int pixels = 0;      // em size
    int weight = FW_NORMAL;
    bool italic = false, underline = false, strikeOut = false;
    int escapement = 0;  // tenths of a degree, counter-clockwise
    int ascent = 0, descent = 0;
};

// One line of text along its base line: either plain, where glyph i of `bytes` begins offsets[i] pixels after the start along the
// base line, or shaped.
struct TextRun {
    const TextFont* font = nullptr;
    const FontFace* face = nullptr;  // null on a machine without fonts
    std::string_view bytes;          // Windows-1252; empty when shaped
    std::span<const int> offsets;
    const ShapedText* shaped = nullptr;
    std::string_view utf8;  // for pages; empty for others
    int width = 0;          // of the whole run, along the base line
    POINT base = {0, 0};
    UINT align = TA_LEFT;  // or TA_CENTER, TA_RIGHT: the point of the base line that was named; base is the start in any case
    COLORREF color = 0;
};

struct CanvasPoint {
    double x, y;  // in pixels; whole numbers are the corners of pixels, .5 their centres
};

class Canvas {
public:
    Canvas() = default;
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;
    virtual ~Canvas() = default;

    virtual SIZE Size() const = 0;
    virtual int DotsPerInch() const { return 96; }
    virtual bool IsPage() const { return false; }        // paper or a document: no pixels, DT_RASPRINTER
    virtual bool IsMonochrome() const { return false; }  // pixels are black or white
    virtual PixelView Pixels() { return {}; }            // no bits on a page

    // Figures of `counts` points each, a line from each point to the next in its figure. `dash` is where the dash pattern stands,
    // in pixels, and moves on along every line, from figure to figure too.
    virtual void Lines(std::span<const POINT> points, std::span<const DWORD> counts, const LineLook& look, int& dash,
                       const PixelRegion& clip) = 0;
    // The inside of polygons, which are closed by themselves; without the outline. `mode` ALTERNATE or WINDING.
    virtual void Polygons(std::span<const POINT> points, std::span<const DWORD> counts, int mode, const FillLook& look, int rop2,
                          const PixelRegion& clip) = 0;
    // Every pixel of the rectangles: operation of a PatBlt (256 of them, in bits 16-23), whatever a look says of gaps.
    virtual void Fill(std::span<const RECT> rects, const FillLook& look, DWORD operation, const PixelRegion& clip) = 0;
    // The ellipse within the rectangle: inside (null: none) and outline (null: none).
    virtual void Ellipse(const RECT& rect, const FillLook* inside, const LineLook* outline, int rop2,
                         const PixelRegion& clip) = 0;
    virtual void Text(const TextRun& run, const PixelRegion& clip) = 0;
    // The pixels, stretched to the rectangle by the nearest pixel; negative extents mirror. `pattern` takes part if the
    // operation (bits 16-23) asks for it.
    virtual void Image(const PixelView& source, const RECT& to, DWORD operation, const FillLook& pattern,
                       const PixelRegion& clip) = 0;
    // Pixels 0xAARRGGBB, not premultiplied, laid over what is there, stretched likewise.
    virtual void Overlay(const PixelView& source, const RECT& to, const PixelRegion& clip) = 0;
};

// A document of one page. Drawing after Finish has no effect.
class PageCanvas : public Canvas {
public:
    bool IsPage() const override { return true; }
    // A line that viewers show smooth (antialiased), with round joins and ends, in a colour of its own; no raster operation.
    // Pixels are covered by who has them.
    virtual void SmoothLine(std::span<const CanvasPoint> points, double width, COLORREF color, const PixelRegion& clip) = 0;
    // Ends the page and gives the document's bytes; false when it could not be made.
    virtual bool Finish(std::string& document) = 0;
};

// Black at first. Null for a size below 1, above 32767 a side or above 2^28 pixels, and where memory ends.
std::shared_ptr<Canvas> MakeImageCanvas(int width, int height);

// A DC over a canvas that others may draw on as well. Device coordinates of the DC begin at `origin` of the canvas; nothing is
// drawn outside `clip` (canvas coordinates, within the canvas), which is the DC's visible region. SaveDC and clip functions work
// within that.
struct CanvasPlace {
    std::shared_ptr<Canvas> canvas;
    POINT origin = {0, 0};
    PixelRegion clip;
    HWND window = nullptr;  // for WindowFromDC; with a window DeleteDC refuses the DC
};
HDC MakeCanvasDC(CanvasPlace place);
// Moves a live DC elsewhere, its state unchanged: after a window has moved or has got a new picture. False for a bad handle.
bool PlaceCanvasDC(HDC dc, CanvasPlace place);
// Ends a DC made by MakeCanvasDC, a window's too.
bool EndCanvasDC(HDC dc);

// Where a DC draws at this moment: for primitives that have no call of their own.
struct CanvasTarget {
    std::shared_ptr<Canvas> canvas;
    POINT offset;      // add to logical coordinates to get canvas coordinates
    PixelRegion clip;  // canvas coordinates
};
std::optional<CanvasTarget> TargetOf(HDC dc);

}  // namespace orvik::detail
