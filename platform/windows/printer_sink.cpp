// All that is drawn is in the printer's dots when it comes to GDI; nothing is left to be scaled there.
#include "platform/windows/door_text_internal.h"

#include "platform/windows/printer_sink_internal.h"

#include <algorithm>
#include <cmath>

namespace orvik::detail {
namespace {
// Selects an object of its own for a while.
class Using {
public:
    Using(HDC dc, HGDIOBJ own) : m_dc(dc), m_own(own), m_before(SelectObject(dc, own)) {}
    ~Using() {
        SelectObject(m_dc, m_before);
        DeleteObject(m_own);  // nothing for the system's own
    }
    Using(const Using&) = delete;
    Using& operator=(const Using&) = delete;

private:
    HDC m_dc;
    HGDIOBJ m_own, m_before;
};

class PrinterSink final : public VectorSink {
public:
    PrinterSink(HDC dc, int width, int height, const PrinterScale& scale)
        : VectorSink(width, height), m_dc(dc), m_scale(scale), m_saved(SaveDC(dc)) {
        SetBkMode(dc, TRANSPARENT);
    }
    ~PrinterSink() override { RestoreDC(m_dc, m_saved); }

    std::string Finish() override {
        CloseClip();
        return {};
    }

protected:
    void BeginClip(const std::vector<VectorRect>& rects) override {
        const HRGN all = CreateRectRgn(0, 0, 0, 0);
        for (const VectorRect& rect : rects) {
            const RECT dots = Dots(rect);
            const HRGN one = CreateRectRgnIndirect(&dots);
            CombineRgn(all, all, one, RGN_OR);
            DeleteObject(one);
        }
        SelectClipRgn(m_dc, all);
        DeleteObject(all);
    }
    void EndClip() override { SelectClipRgn(m_dc, nullptr); }

    void PutLine(const std::vector<VectorPoint>& points, bool closed, const VectorPen& pen) override {
        const Using look(m_dc, PenOf(pen)), inside(m_dc, GetStockObject(HOLLOW_BRUSH));
        const std::vector<POINT> dots = Dots(points);
        closed ? Polygon(m_dc, dots.data(), static_cast<int>(dots.size()))
               : Polyline(m_dc, dots.data(), static_cast<int>(dots.size()));
    }
    void PutArea(const Outlines& outlines, bool winding, uint32_t colour) override {
        const Using look(m_dc, GetStockObject(NULL_PEN)), inside(m_dc, CreateSolidBrush(colour));
        std::vector<POINT> all;
        std::vector<int> counts;
        for (const auto& outline : outlines) {
            const std::vector<POINT> dots = Dots(outline);
            all.insert(all.end(), dots.begin(), dots.end());
            counts.push_back(static_cast<int>(dots.size()));
        }
        SetPolyFillMode(m_dc, winding ? WINDING : ALTERNATE);
        PolyPolygon(m_dc, all.data(), counts.data(), static_cast<int>(counts.size()));
    }
    void PutRectangle(const VectorRect& rect, const uint32_t* inside, const VectorPen* outline) override {
        if (inside != nullptr) {
            RECT dots = Dots(rect);
            // What is thinner than a dot is seen all the same.
            dots.right = std::max(dots.right, dots.left + 1);
            dots.bottom = std::max(dots.bottom, dots.top + 1);
            const HBRUSH brush = CreateSolidBrush(*inside);
            FillRect(m_dc, &dots, brush);
            DeleteObject(brush);
        }
        if (outline != nullptr)
            PutLine({{rect.left, rect.top}, {rect.right, rect.top}, {rect.right, rect.bottom}, {rect.left, rect.bottom}}, true,
                    *outline);
    }
    void PutEllipse(const VectorRect& rect, const uint32_t* inside, const VectorPen* outline) override {
        const Using look(m_dc, outline != nullptr ? PenOf(*outline) : GetStockObject(NULL_PEN)),
            brush(m_dc, inside != nullptr ? CreateSolidBrush(*inside) : GetStockObject(HOLLOW_BRUSH));
        const RECT dots = Dots(rect);
        ::Ellipse(m_dc, dots.left, dots.top, dots.right + 1, dots.bottom + 1);
    }
    void PutDot(const VectorPoint& centre, double diameter, uint32_t colour) override {
        const double radius = diameter / 2;
        PutEllipse({centre.x - radius, centre.y - radius, centre.x + radius, centre.y + radius}, &colour, nullptr);
    }
    void PutText(const VectorText& text) override {
        LOGFONTW asked{};
        asked.lfHeight = -std::max(static_cast<LONG>(std::lround(text.size * m_scale.along)), LONG{1});
        asked.lfEscapement = asked.lfOrientation = static_cast<LONG>(std::lround(text.angle * 10));
        asked.lfWeight = text.weight;
        asked.lfItalic = text.italic, asked.lfUnderline = text.underline, asked.lfStrikeOut = text.strikeOut;
        asked.lfCharSet = DEFAULT_CHARSET;
        asked.lfPitchAndFamily = static_cast<BYTE>(text.pitch);
        WideText(text.face).copy(asked.lfFaceName, LF_FACESIZE - 1);
        const Using font(m_dc, CreateFontIndirectW(&asked));
        SetTextColor(m_dc, text.colour);
        SetTextAlign(m_dc, static_cast<UINT>(TA_BASELINE | (text.anchor == VectorAnchor::middle ? TA_CENTER
                                                            : text.anchor == VectorAnchor::end  ? TA_RIGHT
                                                                                                : TA_LEFT)));
        const POINT at = Dot({text.x, text.y});
        const std::wstring wide = WideText(text.text);
        TextOutW(m_dc, at.x, at.y, wide.c_str(), static_cast<int>(wide.size()));
    }

private:
    POINT Dot(const VectorPoint& point) const {
        return {static_cast<LONG>(std::lround(m_scale.left + point.x * m_scale.across)),
                static_cast<LONG>(std::lround(m_scale.top + point.y * m_scale.along))};
    }
    RECT Dots(const VectorRect& rect) const {
        const POINT begin = Dot({rect.left, rect.top}), end = Dot({rect.right, rect.bottom});
        return {begin.x, begin.y, end.x, end.y};
    }
    std::vector<POINT> Dots(const std::vector<VectorPoint>& points) const {
        std::vector<POINT> dots;
        dots.reserve(points.size());
        for (const VectorPoint& point : points) dots.push_back(Dot(point));
        return dots;
    }
    DWORD Length(double units) const {
        return static_cast<DWORD>(std::max(std::lround(units * std::min(m_scale.across, m_scale.along)), 1L));
    }
    HPEN PenOf(const VectorPen& pen) const {
        std::vector<DWORD> dashes;
        for (const double dash : pen.dashes) dashes.push_back(Length(dash));
        const LOGBRUSH look{BS_SOLID, pen.colour, 0};
        const DWORD ends = pen.round        ? PS_ENDCAP_ROUND | PS_JOIN_ROUND
                           : dashes.empty() ? PS_ENDCAP_SQUARE | PS_JOIN_MITER
                                            : PS_ENDCAP_FLAT | PS_JOIN_MITER;
        return ExtCreatePen(PS_GEOMETRIC | ends | (dashes.empty() ? PS_SOLID : PS_USERSTYLE), Length(pen.width), &look,
                            static_cast<DWORD>(dashes.size()), dashes.empty() ? nullptr : dashes.data());
    }

    HDC m_dc;
    PrinterScale m_scale;
    int m_saved;
};
}  // namespace

std::unique_ptr<VectorSink> MakePrinterSink(HDC printer, int width, int height, const PrinterScale& scale) {
    return std::make_unique<PrinterSink>(printer, width, height, scale);
}
}  // namespace orvik::detail
