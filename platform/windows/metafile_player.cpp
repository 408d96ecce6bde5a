// What the records of a metafile draw.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "platform/windows/metafile_player_internal.h"

namespace orvik::detail::metafile {

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

Font FontOf(HGDIOBJ font) {
    Font made;
    GetObjectW(font, sizeof made.asked, &made.asked);
    return made;
}

namespace {
std::string Utf8From(const std::wstring& text) {
    const int length = static_cast<int>(text.size());
    const int size = WideCharToMultiByte(CP_UTF8, 0, text.c_str(), length, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<size_t>(std::max(size, 0)), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.c_str(), length, utf8.data(), size, nullptr, nullptr);
    return utf8;
}
}  // namespace

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
    shown.text = Utf8From(text);
    shown.width = width;
    shown.face = Utf8From(font.lfFaceName);
    shown.pitch = font.lfPitchAndFamily;
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

}  // namespace orvik::detail::metafile
