// What a picture of lines, areas and text is made of, in the terms of a DC; SVG and PDF files are two ways to write it down.
// Internal; one thread. Coordinates name pixels, as in GDI: the writers know that the middle of pixel (3, 5) is at (3.5, 5.5) of
// the page. Nothing here fails: what cannot be written is left to the caller to refuse.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace orvik::detail {

struct VectorPoint {
    double x, y;
    bool operator==(const VectorPoint&) const = default;
};
// Right and bottom lie outside, as in RECT.
struct VectorRect {
    double left, top, right, bottom;
    bool operator==(const VectorRect&) const = default;
};

// Colours are 0x00bbggrr, as a COLORREF.
struct VectorPen {
    uint32_t colour = 0;
    double width = 1;
    std::vector<double> dashes;  // lengths drawn and left out in turn; none: a whole line
    bool round = false;          // ends and joins; else they are square and pointed
};

enum class VectorAnchor { start, middle, end };

struct VectorText {
    double x = 0, y = 0;  // on the base line, at the anchor
    VectorAnchor anchor = VectorAnchor::start;
    double angle = 0;  // degrees, against the clock
    std::string text;  // UTF-8
    double width = 0;  // as the DC measured it; 0 where it is not known
    std::string face;  // UTF-8
    int pitch = 0;     // lfPitchAndFamily: what else the face may be, where it is not there
    double size = 0;   // the height of an em
    int weight = 400;
    bool italic = false, underline = false, strikeOut = false;
    uint32_t colour = 0;
};

// The lengths of a dashed pen of GDI by its style (1 dash, 2 dot, 3 dash-dot, 4 dash-dot-dot), for a pen one pixel wide; a wider
// pen has them in proportion. None for other styles.
std::vector<double> DashesOf(unsigned style, double width);

class VectorSink {
public:
    VectorSink(int width, int height) : m_page{0, 0, static_cast<double>(width), static_cast<double>(height)} {}
    virtual ~VectorSink() = default;

    // What follows is seen inside these rectangles only; null: on the whole page; none at all: nowhere.
    void SetClip(const std::vector<VectorRect>* rects);

    // From point to point; closed where the last point is the first.
    void Line(const std::vector<VectorPoint>& points, const VectorPen& pen);
    // What outlines enclose, by the even-odd or by the winding rule; each is closed by itself.
    void Area(const std::vector<std::vector<VectorPoint>>& outlines, bool winding, uint32_t colour);
    void Fill(const VectorRect& rect, uint32_t colour);
    // Within the rectangle, as GDI's Ellipse; null: no inside, no outline.
    void Ellipse(const VectorRect& rect, const uint32_t* inside, const VectorPen* outline);
    void Text(const VectorText& text);
    // As OrvikSmoothPolyline.
    void Curve(const std::vector<VectorPoint>& points, uint32_t colour, double width);

    // The whole file, once.
    virtual std::string Finish() = 0;

protected:
    using Outlines = std::vector<std::vector<VectorPoint>>;
    // The same in coordinates of the page, where pixel (0, 0) covers 0..1; only what may be seen arrives here.
    virtual void BeginClip(const std::vector<VectorRect>& rects) = 0;
    virtual void EndClip() = 0;
    virtual void PutLine(const std::vector<VectorPoint>& points, bool closed, const VectorPen& pen) = 0;
    virtual void PutArea(const Outlines& outlines, bool winding, uint32_t colour) = 0;
    virtual void PutRectangle(const VectorRect& rect, const uint32_t* inside, const VectorPen* outline) = 0;
    virtual void PutEllipse(const VectorRect& rect, const uint32_t* inside, const VectorPen* outline) = 0;
    virtual void PutDot(const VectorPoint& centre, double diameter, uint32_t colour) = 0;
    virtual void PutText(const VectorText& text) = 0;

    void CloseClip();

private:
    bool Shows();  // false: all is clipped away; else the clip of what follows is open

    VectorRect m_page;
    bool m_clips = false, m_clipOpen = false;
    std::vector<VectorRect> m_clip, m_openClip;
};

// With at most two decimals, always with a point: "12", "0.5", "-3.25".
std::string VectorNumber(double value);

std::unique_ptr<VectorSink> MakeSvgWriter(int width, int height);
std::unique_ptr<VectorSink> MakePdfWriter(int width, int height);
// On a sheet of paper: its size, and where the picture's corner lies on it, in points.
struct PdfSheet {
    double width, height, left, top;
};
std::unique_ptr<VectorSink> MakePdfWriter(int width, int height, const PdfSheet& sheet);

}  // namespace orvik::detail
