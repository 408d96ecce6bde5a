// One room, for it is one table: each record is one drawing call, and all share the state of the DC that recorded them.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <new>

#include "platform/windows/metafile_internal.h"

namespace orvik::detail {
namespace {

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

// A pen of ExtCreatePen as it stands in a file, where its hatch has 32 bits on every system; headers differ in it.
struct RecordedPen {
    EMR emr;
    DWORD handle, bitmapInfo, bitmapInfoSize, bitmap, bitmapSize;
    DWORD style, width, brushStyle;
    COLORREF colour;
    DWORD hatch, entryCount, entries[1];
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

std::vector<RECT> RectanglesOf(HRGN region) {
    const DWORD size = GetRegionData(region, 0, nullptr);
    std::vector<BYTE> bytes(size);
    if (size == 0 || GetRegionData(region, size, reinterpret_cast<RGNDATA*>(bytes.data())) == 0) return {};
    const auto* data = reinterpret_cast<const RGNDATA*>(bytes.data());
    std::vector<RECT> rects(data->rdh.nCount);
    std::memcpy(rects.data(), data->Buffer, rects.size() * sizeof(RECT));
    return rects;
}

VectorRect Plain(const RECT& rect) {
    return {static_cast<double>(rect.left), static_cast<double>(rect.top), static_cast<double>(rect.right),
            static_cast<double>(rect.bottom)};
}

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

Font FontOf(HGDIOBJ font) {
    Font made;
    GetObjectW(font, sizeof made.asked, &made.asked);
    return made;
}

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

std::string Narrow(const std::wstring& text) {
    constexpr UINT kCodePage = 1252;
    const int length = static_cast<int>(text.size());
    const int size = WideCharToMultiByte(kCodePage, 0, text.c_str(), length, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<size_t>(std::max(size, 0)), '\0');
    WideCharToMultiByte(kCodePage, 0, text.c_str(), length, narrow.data(), size, nullptr, nullptr);
    return narrow;
}

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

bool Player::DrawRectangle(const RECT& box) {
    const RECT shifted = ToDevice(box);
    RECT rect = {std::min(shifted.left, shifted.right), std::min(shifted.top, shifted.bottom),
                 std::max(shifted.left, shifted.right), std::max(shifted.top, shifted.bottom)};
    if (rect.left == rect.right || rect.top == rect.bottom) return true;
    if (m_now.brush.kind == Brush::other) return false;
    // The outline's middle runs through the outermost pixels; without one the right and bottom edge are missing.
    RECT inside = {rect.left, rect.top, rect.right - 1, rect.bottom - 1};
    if (m_now.pen.visible) {
        const auto width = static_cast<LONG>(m_now.pen.look.width);
        inside = {rect.left + (width + 1) / 2, rect.top + (width + 1) / 2, rect.right - 1 - width / 2,
                  rect.bottom - 1 - width / 2};
    }
    uint32_t colour = m_now.brush.colour;
    if (inside.left < inside.right && inside.top < inside.bottom && m_now.brush.kind == Brush::solid && Marks(colour))
        Clipped(nullptr, [&] { m_sink.Fill(Plain(inside), colour); });
    const double left = rect.left, top = rect.top, right = rect.right - 1, bottom = rect.bottom - 1;
    DrawLine({{right, top}, {left, top}, {left, bottom}, {right, bottom}, {right, top}});
    return true;
}

bool Player::DrawEllipse(const RECT& box) {
    if (m_now.brush.kind == Brush::other) return false;
    uint32_t colour = m_now.brush.colour;
    VectorPen pen = m_now.pen.look;
    const bool inside = m_now.brush.kind == Brush::solid && Marks(colour), outline = m_now.pen.visible && Marks(pen.colour);
    Clipped(nullptr, [&] { m_sink.Ellipse(ToPage(box), inside ? &colour : nullptr, outline ? &pen : nullptr); });
    return true;
}

bool Player::FillRects(const std::vector<RECT>& rects, const Brush& brush, DWORD operation) {
    uint32_t colour = brush.colour;
    if (operation == BLACKNESS || operation == WHITENESS) {
        colour = operation == BLACKNESS ? 0 : 0xFFFFFF;
    } else if (operation != PATCOPY || brush.kind == Brush::hollow) {
        return true;  // leaves no mark
    } else if (brush.kind == Brush::other) {
        return false;
    }
    Clipped(nullptr, [&] {
        for (const RECT& rect : rects) m_sink.Fill(Plain(rect), colour);
    });
    return true;
}

void Player::DrawText(POINT reference, std::wstring text, UINT options, const RECT& box, const LONG* widths, size_t widthStep) {
    const RECT area = ToDevice(box);
    const RECT* within = (options & ETO_CLIPPED) != 0 ? &area : nullptr;
    if ((options & ETO_OPAQUE) != 0) Clipped(nullptr, [&] { m_sink.Fill(Plain(area), m_now.backColour); });
    if (text.empty()) return;

    const LOGFONTW& font = m_now.font.asked;
    const TEXTMETRICW metrics = m_measure.Use(m_now.font);
    int width = m_measure.Width(text);
    m_measure.Done();
    if (widths != nullptr) {
        width = 0;
        for (size_t i = 0; i < text.size(); ++i) width += static_cast<int>(widths[i * widthStep]);
    }
    if ((m_now.align & TA_UPDATECP) != 0) reference = m_now.position;

    constexpr double kTenth = 3.14159265358979323846 / 1800;
    const double cosine = std::cos(font.lfEscapement * kTenth), sine = std::sin(font.lfEscapement * kTenth);
    const UINT across = m_now.align & TA_CENTER, upright = m_now.align & TA_BASELINE;
    const double before = across == TA_CENTER ? width / 2 : across == TA_RIGHT ? width : 0;  // from the start to the reference
    const double below = upright == TA_BASELINE ? 0 : upright == TA_BOTTOM ? -metrics.tmDescent : metrics.tmAscent;

    const VectorPoint at = ToPage(reference.x, reference.y);
    VectorText shown;
    // The base line at the anchor.
    shown.x = at.x + below * sine, shown.y = at.y + below * cosine;
    shown.anchor = across == TA_CENTER ? VectorAnchor::middle : across == TA_RIGHT ? VectorAnchor::end : VectorAnchor::start;
    shown.angle = font.lfEscapement / 10.0;
    shown.text = Narrow(text);
    shown.width = width;
    shown.face = Narrow(font.lfFaceName);
    shown.size = font.lfHeight < 0 ? -font.lfHeight : metrics.tmHeight - metrics.tmInternalLeading;
    shown.weight = font.lfWeight == 0 ? FW_NORMAL : static_cast<int>(font.lfWeight);
    shown.italic = font.lfItalic != 0, shown.underline = font.lfUnderline != 0, shown.strikeOut = font.lfStrikeOut != 0;
    shown.colour = m_now.textColour;

    Clipped(within, [&] {
        if (m_now.backMode == OPAQUE) {
            // The box of the text, turned with it.
            const auto corner = [&](double along, double down) {
                return VectorPoint{shown.x + (along - before) * cosine + down * sine,
                                   shown.y - (along - before) * sine + down * cosine};
            };
            const double top = -metrics.tmAscent, bottom = metrics.tmDescent;
            m_sink.Area({{corner(0, top), corner(width, top), corner(width, bottom), corner(0, bottom)}}, true, m_now.backColour);
        }
        m_sink.Text(shown);
    });
    if ((m_now.align & TA_UPDATECP) != 0) {
        const double along = across == TA_RIGHT ? -width : across == TA_CENTER ? 0 : width;
        m_now.position.x += std::lround(along * cosine), m_now.position.y -= std::lround(along * sine);
    }
}

void Player::Clip(HRGN region, int mode) {
    if (!m_now.clips) {
        // Without a clip everything is inside: as much as a page may ever have.
        constexpr int kFar = 1 << 20;
        SetRectRgn(m_now.clip.Get(), -kFar, -kFar, kFar, kFar);
    }
    CombineRgn(m_now.clip.Get(), m_now.clip.Get(), region, mode);
    if (mode == RGN_COPY) CombineRgn(m_now.clip.Get(), region, nullptr, RGN_COPY);
    m_now.clips = true;
}

void Player::Select(DWORD handle) {
    if ((handle & ENHMETA_STOCK_OBJECT) == 0) {
        if (const auto pen = m_pens.find(handle); pen != m_pens.end()) m_now.pen = pen->second;
        if (const auto brush = m_brushes.find(handle); brush != m_brushes.end()) m_now.brush = brush->second;
        if (const auto font = m_fonts.find(handle); font != m_fonts.end()) m_now.font = font->second;
        return;
    }
    const HGDIOBJ object = GetStockObject(static_cast<int>(handle & ~static_cast<DWORD>(ENHMETA_STOCK_OBJECT)));
    switch (GetObjectType(object)) {
        case OBJ_PEN: {
            LOGPEN pen{};
            GetObjectA(object, sizeof pen, &pen);
            m_now.pen = {pen.lopnStyle != PS_NULL, {pen.lopnColor, 1, {}, false}};
            break;
        }
        case OBJ_BRUSH: {
            LOGBRUSH brush{};
            GetObjectA(object, sizeof brush, &brush);
            m_now.brush = {brush.lbStyle == BS_NULL ? Brush::hollow : Brush::solid, brush.lbColor};
            break;
        }
        case OBJ_FONT:
            m_now.font = FontOf(object);
            break;
        default:
            break;  // palettes
    }
}

bool Player::PlayState(const ENHMETARECORD& record, bool& known) {
    switch (record.iType) {
        case EMR_SETWINDOWORGEX:
            m_now.window = {As<EMRSETWINDOWORGEX>(record).ptlOrigin.x, As<EMRSETWINDOWORGEX>(record).ptlOrigin.y};
            break;
        case EMR_SETVIEWPORTORGEX:
            m_now.viewport = {As<EMRSETWINDOWORGEX>(record).ptlOrigin.x, As<EMRSETWINDOWORGEX>(record).ptlOrigin.y};
            break;
        case EMR_SETMAPMODE:
            return As<EMRSETMAPMODE>(record).iMode == MM_TEXT;
        case EMR_SETBKMODE:
            m_now.backMode = static_cast<int>(As<EMRSETBKMODE>(record).iMode);
            break;
        case EMR_SETPOLYFILLMODE:
            m_now.fillMode = static_cast<int>(As<EMRSETPOLYFILLMODE>(record).iMode);
            break;
        case EMR_SETROP2:
            m_now.rop2 = static_cast<int>(As<EMRSETROP2>(record).iMode);
            break;
        case EMR_SETTEXTALIGN:
            m_now.align = As<EMRSETTEXTALIGN>(record).iMode;
            break;
        case EMR_SETTEXTCOLOR:
            m_now.textColour = As<EMRSETTEXTCOLOR>(record).crColor & 0xFFFFFF;
            break;
        case EMR_SETBKCOLOR:
            m_now.backColour = As<EMRSETBKCOLOR>(record).crColor & 0xFFFFFF;
            break;
        case EMR_SAVEDC:
            m_saved.push_back(m_now);
            break;
        case EMR_RESTOREDC: {
            const LONG step = As<EMRRESTOREDC>(record).iRelative;
            const auto depth = static_cast<LONG>(m_saved.size());
            const LONG level = step < 0 ? depth + step : step - 1;
            if (level < 0 || level >= depth) break;
            m_now = m_saved[static_cast<size_t>(level)];
            m_saved.resize(static_cast<size_t>(level));
            break;
        }
        case EMR_INTERSECTCLIPRECT:
        case EMR_EXCLUDECLIPRECT: {
            const RECTL& box = As<EMRINTERSECTCLIPRECT>(record).rclClip;
            const RECT device = ToDevice({box.left, box.top, box.right, box.bottom});
            Region region;
            SetRectRgn(region.Get(), device.left, device.top, device.right, device.bottom);
            Clip(region.Get(), record.iType == EMR_INTERSECTCLIPRECT ? RGN_AND : RGN_DIFF);
            break;
        }
        case EMR_OFFSETCLIPRGN:
            OffsetRgn(m_now.clip.Get(), As<EMROFFSETCLIPRGN>(record).ptlOffset.x, As<EMROFFSETCLIPRGN>(record).ptlOffset.y);
            break;
        case EMR_EXTSELECTCLIPRGN: {
            const auto& selected = As<EMREXTSELECTCLIPRGN>(record);
            if (selected.cbRgnData == 0) {
                m_now.clips = false;
                break;
            }
            Region region;
            if (const HRGN made =
                    ExtCreateRegion(nullptr, selected.cbRgnData, reinterpret_cast<const RGNDATA*>(selected.RgnData))) {
                CombineRgn(region.Get(), made, nullptr, RGN_COPY);
                DeleteObject(made);
            }
            Clip(region.Get(), static_cast<int>(selected.iMode));
            break;
        }
        default:
            known = false;
    }
    return true;
}

bool Player::PlayObject(const ENHMETARECORD& record, bool& known) {
    switch (record.iType) {
        case EMR_CREATEPEN: {
            const LOGPEN& pen = As<EMRCREATEPEN>(record).lopn;
            const double width = std::max<double>(static_cast<double>(pen.lopnWidth.x), 1);
            const UINT style = pen.lopnStyle & PS_STYLE_MASK;
            // Broken lines are one pixel wide; wider ones are whole, as documented.
            m_pens[As<EMRCREATEPEN>(record).ihPen] = {
                style != PS_NULL,
                {pen.lopnColor & 0xFFFFFF, width, width > 1 ? std::vector<double>{} : DashesOf(style, 1), width > 1}};
            break;
        }
        case EMR_EXTCREATEPEN: {
            const RecordedPen& pen = As<RecordedPen>(record);
            const bool geometric = (pen.style & PS_TYPE_MASK) == PS_GEOMETRIC;
            const double width = geometric ? std::max<double>(pen.width, 1) : 1;
            const DWORD style = pen.style & PS_STYLE_MASK;
            if (pen.brushStyle != BS_SOLID && style != PS_NULL && pen.brushStyle != BS_NULL) return false;
            Pen made = {style != PS_NULL && pen.brushStyle != BS_NULL,
                        {pen.colour & 0xFFFFFF, width, DashesOf(style, width), false}};
            if (style == PS_USERSTYLE)
                for (DWORD i = 0; i < pen.entryCount; ++i) made.look.dashes.push_back(pen.entries[i]);
            if (style == PS_ALTERNATE) made.look.dashes = {1, 1};
            made.look.round = geometric && width > 1 && (pen.style & PS_ENDCAP_MASK) == PS_ENDCAP_ROUND;
            m_pens[pen.handle] = made;
            break;
        }
        case EMR_CREATEBRUSHINDIRECT: {
            const LOGBRUSH32& brush = As<EMRCREATEBRUSHINDIRECT>(record).lb;
            m_brushes[As<EMRCREATEBRUSHINDIRECT>(record).ihBrush] = {brush.lbStyle == BS_SOLID  ? Brush::solid
                                                                     : brush.lbStyle == BS_NULL ? Brush::hollow
                                                                                                : Brush::other,
                                                                     brush.lbColor & 0xFFFFFF};
            break;
        }
        case EMR_CREATEDIBPATTERNBRUSHPT:
        case EMR_CREATEMONOBRUSH:
            m_brushes[As<EMRCREATEBRUSHINDIRECT>(record).ihBrush] = {Brush::other, 0};
            break;
        case EMR_EXTCREATEFONTINDIRECTW:
            m_fonts[As<EMREXTCREATEFONTINDIRECTW>(record).ihFont].asked = As<EMREXTCREATEFONTINDIRECTW>(record).elfw.elfLogFont;
            break;
        case EMR_SELECTOBJECT:
            Select(As<EMRSELECTOBJECT>(record).ihObject);
            break;
        case EMR_DELETEOBJECT: {
            const DWORD handle = As<EMRDELETEOBJECT>(record).ihObject;
            m_pens.erase(handle), m_brushes.erase(handle), m_fonts.erase(handle);
            break;
        }
        default:
            known = false;
    }
    return true;
}

bool Player::PlayShape(const ENHMETARECORD& record, bool& known) {
    switch (record.iType) {
        case EMR_MOVETOEX:
            m_now.position = {As<EMRMOVETOEX>(record).ptl.x, As<EMRMOVETOEX>(record).ptl.y};
            break;
        case EMR_LINETO:
            LinesTo(&As<EMRLINETO>(record).ptl, 1);
            break;
        case EMR_POLYLINE:
            DrawLine(Points(As<EMRPOLYLINE>(record).aptl, As<EMRPOLYLINE>(record).cptl));
            break;
        case EMR_POLYLINE16:
            DrawLine(Points(As<EMRPOLYLINE16>(record).apts, As<EMRPOLYLINE16>(record).cpts));
            break;
        case EMR_POLYLINETO:
            LinesTo(As<EMRPOLYLINE>(record).aptl, As<EMRPOLYLINE>(record).cptl);
            break;
        case EMR_POLYLINETO16:
            LinesTo(As<EMRPOLYLINE16>(record).apts, As<EMRPOLYLINE16>(record).cpts);
            break;
        case EMR_POLYGON:
            return DrawPolygons({Points(As<EMRPOLYLINE>(record).aptl, As<EMRPOLYLINE>(record).cptl)});
        case EMR_POLYGON16:
            return DrawPolygons({Points(As<EMRPOLYLINE16>(record).apts, As<EMRPOLYLINE16>(record).cpts)});
        case EMR_POLYPOLYLINE:
        case EMR_POLYPOLYGON: {
            // The points stand behind all counts.
            const auto& many = As<EMRPOLYPOLYLINE>(record);
            const auto outlines =
                Outlines(reinterpret_cast<const POINTL*>(many.aPolyCounts + many.nPolys), many.aPolyCounts, many.nPolys);
            if (record.iType == EMR_POLYPOLYGON) return DrawPolygons(outlines);
            for (const auto& line : outlines) DrawLine(line);
            break;
        }
        case EMR_POLYPOLYLINE16:
        case EMR_POLYPOLYGON16: {
            const auto& many = As<EMRPOLYPOLYLINE16>(record);
            const auto outlines =
                Outlines(reinterpret_cast<const POINTS*>(many.aPolyCounts + many.nPolys), many.aPolyCounts, many.nPolys);
            if (record.iType == EMR_POLYPOLYGON16) return DrawPolygons(outlines);
            for (const auto& line : outlines) DrawLine(line);
            break;
        }
        case EMR_RECTANGLE: {
            // The record has the last pixels inside.
            const RECTL& box = As<EMRRECTANGLE>(record).rclBox;
            return DrawRectangle({box.left, box.top, box.right + 1, box.bottom + 1});
        }
        case EMR_ELLIPSE: {
            const RECTL& box = As<EMRELLIPSE>(record).rclBox;
            return DrawEllipse({box.left, box.top, box.right + 1, box.bottom + 1});
        }
        default:
            known = false;
    }
    return true;
}

// Windows' short form of a text; its header has no name of its own in every set of headers.
struct SmallText {
    EMR emr;
    LONG x, y;
    DWORD length, options, graphicsMode;
    float scaleX, scaleY;
};
constexpr DWORD kSmallTextRecord = 108, kNoBox = 0x100, kNarrowLetters = 0x200;

bool Player::PlayOther(const ENHMETARECORD& record) {
    switch (record.iType) {
        case EMR_HEADER:
        case EMR_EOF:
        case EMR_SETBRUSHORGEX:
        case EMR_SETSTRETCHBLTMODE:
        case EMR_SETMITERLIMIT:
        case EMR_SETARCDIRECTION:
        case EMR_SETMAPPERFLAGS:
        case EMR_SETLAYOUT:
        case EMR_SETICMMODE:
        case EMR_SELECTPALETTE:
        case EMR_REALIZEPALETTE:
        case EMR_SETWINDOWEXTEX:
        case EMR_SETVIEWPORTEXTEX:
            return true;  // nothing that shows where one unit is one pixel
        case EMR_EXTTEXTOUTA:
        case EMR_EXTTEXTOUTW: {
            const auto& out = As<EMREXTTEXTOUTW>(record);
            const auto* bytes = reinterpret_cast<const BYTE*>(&record);
            std::wstring text;
            for (DWORD i = 0; i < out.emrtext.nChars; ++i) {
                const BYTE* letters = bytes + out.emrtext.offString;
                text += record.iType == EMR_EXTTEXTOUTW ? reinterpret_cast<const wchar_t*>(letters)[i]
                                                        : static_cast<wchar_t>(letters[i]);
            }
            if ((out.emrtext.fOptions & ETO_GLYPH_INDEX) != 0) return false;
            const auto* widths = out.emrtext.offDx != 0 ? reinterpret_cast<const LONG*>(bytes + out.emrtext.offDx) : nullptr;
            const RECTL& box = out.emrtext.rcl;
            DrawText({out.emrtext.ptlReference.x, out.emrtext.ptlReference.y}, text, out.emrtext.fOptions,
                     {box.left, box.top, box.right, box.bottom}, widths, (out.emrtext.fOptions & ETO_PDY) != 0 ? 2 : 1);
            return true;
        }
        case kSmallTextRecord: {
            const auto& small = As<SmallText>(record);
            if ((small.options & ETO_GLYPH_INDEX) != 0) return false;
            const auto* bytes = reinterpret_cast<const BYTE*>(&small) + sizeof small;
            RECT box{};
            if ((small.options & kNoBox) == 0) {
                std::memcpy(&box, bytes, sizeof box);
                bytes += sizeof box;
            }
            std::wstring text;
            for (DWORD i = 0; i < small.length; ++i)
                text += (small.options & kNarrowLetters) != 0 ? static_cast<wchar_t>(bytes[i])
                                                              : reinterpret_cast<const wchar_t*>(bytes)[i];
            DrawText({small.x, small.y}, text, small.options, box, nullptr, 1);
            return true;
        }
        case EMR_BITBLT: {
            const auto& blit = As<EMRBITBLT>(record);
            if (blit.cbBmiSrc != 0) return false;
            return FillRects({ToDevice({blit.xDest, blit.yDest, blit.xDest + blit.cxDest, blit.yDest + blit.cyDest})},
                             m_now.brush, blit.dwRop);
        }
        case EMR_FILLRGN: {
            const auto& fill = As<EMRFILLRGN>(record);
            const auto* data = reinterpret_cast<const RGNDATA*>(fill.RgnData);
            std::vector<RECT> rects(data->rdh.nCount);
            std::memcpy(rects.data(), data->Buffer, rects.size() * sizeof(RECT));
            for (RECT& rect : rects) rect = ToDevice(rect);
            const auto brush = m_brushes.find(fill.ihBrush);
            Brush used = m_now.brush;
            if (brush != m_brushes.end()) {
                used = brush->second;
            } else if ((fill.ihBrush & ENHMETA_STOCK_OBJECT) != 0) {
                const Brush kept = m_now.brush;
                Select(fill.ihBrush);
                used = m_now.brush;
                m_now.brush = kept;
            }
            return FillRects(rects, used, PATCOPY);
        }
        case EMR_SETPIXELV: {
            const auto& pixel = As<EMRSETPIXELV>(record);
            const VectorPoint at = ToPage(pixel.ptlPixel.x, pixel.ptlPixel.y);
            Clipped(nullptr, [&] { m_sink.Fill({at.x, at.y, at.x + 1, at.y + 1}, pixel.crColor & 0xFFFFFF); });
            return true;
        }
        case EMR_GDICOMMENT: {
            const auto& comment = As<EMRGDICOMMENT>(record);
            SmoothLineComment head;
            if (comment.cbData < sizeof head) return true;
            std::memcpy(&head, comment.Data, sizeof head);
            if (std::memcmp(head.name, kSmoothLineName, sizeof head.name) != 0) return true;  // of somebody else
            if ((comment.cbData - sizeof head) / (2 * sizeof(float)) < head.count) return true;
            std::vector<VectorPoint> points;
            const POINT shift = Shift();
            for (DWORD i = 0; i < head.count; ++i) {
                float point[2];
                std::memcpy(point, comment.Data + sizeof head + i * sizeof point, sizeof point);
                points.push_back({static_cast<double>(point[0]) + shift.x, static_cast<double>(point[1]) + shift.y});
            }
            Clipped(nullptr, [&] { m_sink.Curve(points, head.colour & 0xFFFFFF, static_cast<double>(head.width)); });
            return true;
        }
        default:
            return false;
    }
}

bool Player::Play(const ENHMETARECORD& record) {
    for (const auto play : {&Player::PlayState, &Player::PlayObject, &Player::PlayShape}) {
        bool known = true;
        const bool held = (this->*play)(record, known);
        if (known) return held;
    }
    return PlayOther(record);
}

struct Playing {
    Player player;
    DWORD error = ERROR_SUCCESS;
};

// Nothing may be thrown through the system's loop.
int CALLBACK PlayRecord(HDC, HANDLETABLE*, const ENHMETARECORD* record, int, LPARAM data) {
    auto& playing = *reinterpret_cast<Playing*>(data);
    try {
        if (!playing.player.Play(*record)) playing.error = ERROR_NOT_SUPPORTED;
    } catch (const std::bad_alloc&) {
        playing.error = ERROR_NOT_ENOUGH_MEMORY;
    }
    return playing.error == ERROR_SUCCESS;
}
}  // namespace

DWORD DrawMetafile(HENHMETAFILE file, VectorSink& sink) {
    Playing playing{Player(sink)};
    const BOOL whole = EnumEnhMetaFile(nullptr, file, PlayRecord, &playing, nullptr);
    if (playing.error != ERROR_SUCCESS) return playing.error;
    return whole ? ERROR_SUCCESS : ERROR_INVALID_DATA;
}
}  // namespace orvik::detail
