// The table of records: each is one drawing call of the device context that recorded them, or a change of its state.
#include <algorithm>
#include <cstring>
#include <new>

#include "platform/windows/metafile_internal.h"
#include "platform/windows/metafile_player_internal.h"

namespace orvik::detail {
namespace metafile {
namespace {
// A pen of ExtCreatePen as it stands in a file, where its hatch has 32 bits on every system; headers differ in it.
struct RecordedPen {
    EMR emr;
    DWORD handle, bitmapInfo, bitmapInfoSize, bitmap, bitmapSize;
    DWORD style, width, brushStyle;
    COLORREF colour;
    DWORD hatch, entryCount, entries[1];
};
}  // namespace

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

namespace {
// Windows' short form of a text; its header has no name of its own in every set of headers.
struct SmallText {
    EMR emr;
    LONG x, y;
    DWORD length, options, graphicsMode;
    float scaleX, scaleY;
};
constexpr DWORD kSmallTextRecord = 108, kNoBox = 0x100, kNarrowLetters = 0x200;
}  // namespace

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
}  // namespace metafile

namespace {
struct Playing {
    metafile::Player player;
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
    Playing playing{metafile::Player(sink)};
    const BOOL whole = EnumEnhMetaFile(nullptr, file, PlayRecord, &playing, nullptr);
    if (playing.error != ERROR_SUCCESS) return playing.error;
    return whole ? ERROR_SUCCESS : ERROR_INVALID_DATA;
}
}  // namespace orvik::detail
