// The device context that recorded a metafile: its state as the records change it, and its drawing calls in the page's terms.
// Internal; one thread.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/vector_sink_internal.h"
#include "platform/win32.h"

namespace orvik::detail::metafile {

struct Pen {
    bool visible = true;
    VectorPen look;
};
struct Brush {
    enum Kind { solid, hollow, other } kind = solid;
    uint32_t colour = 0xFFFFFF;
};
struct Font {
    LOGFONTW asked{};
};

// A region that is deleted with its owner.
class Region {
public:
    Region() : m_region(CreateRectRgn(0, 0, 0, 0)) {}
    Region(const Region& other) : Region() { CombineRgn(m_region, other.m_region, nullptr, RGN_COPY); }
    Region& operator=(const Region& other) {
        CombineRgn(m_region, other.m_region, nullptr, RGN_COPY);
        return *this;
    }
    ~Region() { DeleteObject(m_region); }
    HRGN Get() const { return m_region; }

private:
    HRGN m_region;
};

std::vector<RECT> RectanglesOf(HRGN region);
VectorRect Plain(const RECT& rect);
Font FontOf(HGDIOBJ font);

struct State {
    Pen pen;
    Brush brush;
    Font font;
    COLORREF textColour = 0, backColour = 0xFFFFFF;
    int backMode = OPAQUE, rop2 = R2_COPYPEN, fillMode = ALTERNATE;
    UINT align = TA_LEFT | TA_TOP;
    POINT position{}, window{}, viewport{};
    bool clips = false;
    Region clip;  // device units
};

// The measures of a font, asked of a DC as like the recorded one as can be; turned text is measured before it is turned.
class Measure {
public:
    Measure() : m_dc(CreateCompatibleDC(nullptr)) {}
    ~Measure() { DeleteDC(m_dc); }
    Measure(const Measure&) = delete;
    Measure& operator=(const Measure&) = delete;

    TEXTMETRICW Use(const Font& font) {
        LOGFONTW level = font.asked;
        level.lfEscapement = level.lfOrientation = 0;
        m_font = CreateFontIndirectW(&level);
        m_before = SelectObject(m_dc, m_font);
        TEXTMETRICW metrics{};
        GetTextMetricsW(m_dc, &metrics);
        return metrics;
    }
    int Width(const std::wstring& text) const {
        SIZE size{};
        GetTextExtentPoint32W(m_dc, text.c_str(), static_cast<int>(text.size()), &size);
        return size.cx;
    }
    void Done() {
        SelectObject(m_dc, m_before);
        DeleteObject(m_font);
    }

private:
    HDC m_dc;
    HFONT m_font = nullptr;
    HGDIOBJ m_before = nullptr;
};

class Player {
public:
    explicit Player(VectorSink& sink) : m_sink(sink) { m_now.font = FontOf(GetStockObject(SYSTEM_FONT)); }

    // False for a record that this page cannot hold.
    bool Play(const ENHMETARECORD& record);

private:
    template <class T>
    static const T& As(const ENHMETARECORD& record) {
        return reinterpret_cast<const T&>(record);
    }

    POINT Shift() const { return {m_now.viewport.x - m_now.window.x, m_now.viewport.y - m_now.window.y}; }
    VectorPoint ToPage(LONG x, LONG y) const {
        const POINT shift = Shift();
        return {static_cast<double>(x) + shift.x, static_cast<double>(y) + shift.y};
    }
    RECT ToDevice(const RECT& rect) const {
        const POINT shift = Shift();
        return {rect.left + shift.x, rect.top + shift.y, rect.right + shift.x, rect.bottom + shift.y};
    }
    VectorRect ToPage(const RECT& rect) const {
        const VectorPoint a = ToPage(rect.left, rect.top), b = ToPage(rect.right, rect.bottom);
        return {a.x, a.y, b.x, b.y};
    }
    // The raster operation as a colour: false where it leaves no mark.
    bool Marks(uint32_t& colour) const {
        if (m_now.rop2 == R2_BLACK) colour = 0;
        if (m_now.rop2 == R2_WHITE) colour = 0xFFFFFF;
        return m_now.rop2 == R2_COPYPEN || m_now.rop2 == R2_BLACK || m_now.rop2 == R2_WHITE;
    }

    // Runs `draw` under the clip of this moment, narrowed to `within` (device units) if given.
    template <class Draw>
    void Clipped(const RECT* within, Draw draw) {
        if (!m_now.clips && within == nullptr) {
            m_sink.SetClip(nullptr);
        } else {
            Region seen;
            if (within != nullptr) SetRectRgn(seen.Get(), within->left, within->top, within->right, within->bottom);
            if (m_now.clips) CombineRgn(seen.Get(), m_now.clip.Get(), seen.Get(), within != nullptr ? RGN_AND : RGN_COPY);
            std::vector<VectorRect> rects;
            for (const RECT& rect : RectanglesOf(seen.Get())) rects.push_back(Plain(rect));
            m_sink.SetClip(&rects);
        }
        draw();
    }

    void DrawLine(const std::vector<VectorPoint>& points) {
        VectorPen pen = m_now.pen.look;
        if (!m_now.pen.visible || !Marks(pen.colour)) return;
        Clipped(nullptr, [&] { m_sink.Line(points, pen); });
    }
    bool DrawArea(const std::vector<std::vector<VectorPoint>>& outlines) {
        if (m_now.brush.kind == Brush::other) return false;
        uint32_t colour = m_now.brush.colour;
        if (m_now.brush.kind == Brush::solid && Marks(colour))
            Clipped(nullptr, [&] { m_sink.Area(outlines, m_now.fillMode == WINDING, colour); });
        return true;
    }
    bool DrawPolygons(std::vector<std::vector<VectorPoint>> outlines) {
        if (!DrawArea(outlines)) return false;
        for (auto& outline : outlines) {
            if (outline.empty()) continue;
            if (outline.front() != outline.back()) outline.push_back(outline.front());
            DrawLine(outline);
        }
        return true;
    }
    bool DrawRectangle(const RECT& box);
    bool DrawEllipse(const RECT& box);
    bool FillRects(const std::vector<RECT>& rects, const Brush& brush, DWORD operation);
    void DrawText(POINT reference, std::wstring text, UINT options, const RECT& box, const LONG* widths, size_t widthStep);

    template <class T>
    std::vector<VectorPoint> Points(const T* points, DWORD count) const {
        std::vector<VectorPoint> out;
        for (DWORD i = 0; i < count; ++i) out.push_back(ToPage(points[i].x, points[i].y));
        return out;
    }
    template <class T>
    std::vector<std::vector<VectorPoint>> Outlines(const T* points, const DWORD* counts, DWORD figures) const {
        std::vector<std::vector<VectorPoint>> out;
        for (DWORD i = 0; i < figures; points += counts[i++]) out.push_back(Points(points, counts[i]));
        return out;
    }
    template <class T>
    void LinesTo(const T* points, DWORD count) {
        if (count == 0) return;
        std::vector<VectorPoint> line = Points(points, count);
        line.insert(line.begin(), ToPage(m_now.position.x, m_now.position.y));
        m_now.position = {points[count - 1].x, points[count - 1].y};
        DrawLine(line);
    }

    void Clip(HRGN region, int mode);
    bool PlayState(const ENHMETARECORD& record, bool& known);
    bool PlayObject(const ENHMETARECORD& record, bool& known);
    bool PlayShape(const ENHMETARECORD& record, bool& known);
    bool PlayOther(const ENHMETARECORD& record);
    void Select(DWORD handle);

    VectorSink& m_sink;
    Measure m_measure;
    State m_now;
    std::vector<State> m_saved;
    std::map<DWORD, Pen> m_pens;
    std::map<DWORD, Brush> m_brushes;
    std::map<DWORD, Font> m_fonts;
};

}  // namespace orvik::detail::metafile
