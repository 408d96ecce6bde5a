#include "platform/posix/drawing/dc.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "platform/posix/drawing/dc_internal.h"
#include "platform/posix/drawing/display_dots_internal.h"
#include "platform/posix/kernel/handle_table_internal.h"
#include "platform/posix/text/text.h"

namespace orvik::detail {
namespace {

constexpr int64_t kFarthest = (int64_t{1} << 27) - 1;

LONG Within(int64_t value) { return static_cast<LONG>(std::clamp(value, -kFarthest, kFarthest)); }

// The one bitmap that many DCs have at once; each has pixels of its own, for threads do not wait for each other here.
std::shared_ptr<Canvas> DefaultPixel() { return MakePixelCanvas(1, 1, false, true); }

RECT WholeOf(const Canvas& canvas) {
    const SIZE size = canvas.Size();
    return {0, 0, size.cx, size.cy};
}

}  // namespace

Dc::~Dc() {
    if (bitmap != nullptr) {
        bitmap->selectedIn = nullptr;
        UncountSelection(state.bitmap, *bitmap);
    }
}

const PixelRegion& Dc::Clip() {
    if (!m_clip.has_value()) {
        m_clip = place.clip;
        if (state.clip.has_value()) {
            PixelRegion shifted = *state.clip;
            shifted.Offset(place.origin.x, place.origin.y);
            m_clip->Combine(shifted, RGN_AND);
        }
    }
    return *m_clip;
}

POINT Dc::ToDevice(POINT point) const {
    return {Within(int64_t{point.x} - state.windowOrg.x + state.viewportOrg.x),
            Within(int64_t{point.y} - state.windowOrg.y + state.viewportOrg.y)};
}

POINT Dc::ToCanvas(POINT point) const {
    const POINT device = ToDevice(point);
    return {Within(int64_t{device.x} + place.origin.x), Within(int64_t{device.y} + place.origin.y)};
}

POINT Dc::DeviceToLogical(POINT point) const {
    return {Within(int64_t{point.x} + state.windowOrg.x - state.viewportOrg.x),
            Within(int64_t{point.y} + state.windowOrg.y - state.viewportOrg.y)};
}

RECT Dc::ToDevice(const RECT& rect) const {
    const POINT first = ToDevice(POINT{rect.left, rect.top}), last = ToDevice(POINT{rect.right, rect.bottom});
    return {first.x, first.y, last.x, last.y};
}

RECT Dc::ToCanvas(const RECT& rect) const {
    const POINT first = ToCanvas(POINT{rect.left, rect.top}), last = ToCanvas(POINT{rect.right, rect.bottom});
    return {first.x, first.y, last.x, last.y};
}

std::optional<LineLook> Dc::Line() const {
    const PenObject& pen = *state.pen;
    const DWORD style = pen.style & PS_STYLE_MASK;
    if (style == PS_NULL) return std::nullopt;
    LineLook look;
    look.style = (pen.style & ~PS_STYLE_MASK) | (style == PS_INSIDEFRAME ? DWORD{PS_SOLID} : style);
    look.width = pen.width;
    look.color = pen.fromDc ? state.dcPenColor : pen.color;
    // The gaps of a geometric pen stay open in either mode.
    if (style >= PS_DASH && style <= PS_DASHDOTDOT && state.bkMode == OPAQUE && (pen.style & PS_TYPE_MASK) == PS_COSMETIC)
        look.gap = state.bkColor;
    look.rop2 = state.rop2;
    return look;
}

std::optional<FillLook> Dc::LookOf(const BrushObject& brush) const {
    if (brush.style == BS_NULL) return std::nullopt;
    FillLook look;
    look.color = brush.fromDc ? state.dcBrushColor : brush.Colour();
    look.origin = {state.brushOrg.x + place.origin.x, state.brushOrg.y + place.origin.y};
    if (brush.style == BS_HATCHED) {
        look.kind = FillLook::kHatch;
        look.hatch = brush.hatch;
        if (state.bkMode == OPAQUE) look.gap = state.bkColor;
    } else if (brush.style == BS_PATTERN) {
        look.kind = FillLook::kTile;
        m_tile = brush.tile;
        if (brush.tileMonochrome)  // black is drawn in the colour of text, white in that of the background
            for (uint32_t& pixel : m_tile) pixel = PixelOf(pixel == 0 ? state.textColor : state.bkColor);
        look.tile = {m_tile.data(), brush.tileWidth, brush.tileHeight, brush.tileWidth};
    }
    return look;
}

const FontFace& Dc::Face() {
    if (face == nullptr || faceOf != state.font.Handle()) {
        face = FaceOf(state.font->description);
        faceOf = state.font.Handle();
    }
    return *face;
}

std::shared_ptr<Dc> FindDc(HDC dc) {
    std::shared_ptr<GdiObject> found = FindGdiObject(dc);
    if (found != nullptr && (found->type == OBJ_DC || found->type == OBJ_MEMDC))
        return std::static_pointer_cast<Dc>(std::move(found));
    SetLastError(ERROR_INVALID_HANDLE);
    return nullptr;
}

HDC NewDc(DWORD type, CanvasPlace place) {
    auto dc = std::make_shared<Dc>(type);
    dc->place = std::move(place);
    const auto stock = [](int index) { return GetStockObject(index); };
    dc->state.pen = {stock(BLACK_PEN), FindPen(stock(BLACK_PEN))};
    dc->state.brush = {stock(WHITE_BRUSH), FindGdi<BrushObject>(stock(WHITE_BRUSH), OBJ_BRUSH)};
    dc->state.font = {stock(SYSTEM_FONT), FindGdi<FontObject>(stock(SYSTEM_FONT), OBJ_FONT)};
    if (type == OBJ_MEMDC) dc->state.bitmap = DefaultBitmap();
    return static_cast<HDC>(AddGdiObject(std::move(dc)));
}

DWORD OperationOf(int rop2) {
    // Bit 2P + D of the binary operation's number minus one is the result for pen P and destination D; the ternary code has the
    // pattern at 4, the source at 2 and the destination at 1.
    const auto table = static_cast<DWORD>(rop2 - 1);
    DWORD code = 0;
    for (DWORD bit = 0; bit < 8; ++bit)
        if (table >> ((bit >> 2) * 2 + (bit & 1)) & 1) code |= 1u << bit;
    return code << 16;
}

HDC MakeCanvasDC(CanvasPlace place) {
    place.clip.Combine(PixelRegion(WholeOf(*place.canvas)), RGN_AND);
    return NewDc(OBJ_DC, std::move(place));
}

bool PlaceCanvasDC(HDC dc, CanvasPlace place) {
    const auto found = FindDc(dc);
    if (found == nullptr || found->type != OBJ_DC) return false;
    place.clip.Combine(PixelRegion(WholeOf(*place.canvas)), RGN_AND);
    found->place = std::move(place);
    found->ClipChanged();
    return true;
}

bool EndCanvasDC(HDC dc) { return FindDc(dc) != nullptr && RemoveGdiObject(dc); }

std::optional<CanvasTarget> TargetOf(HDC dc) {
    const auto found = FindDc(dc);
    if (found == nullptr) return std::nullopt;
    return CanvasTarget{found->place.canvas, found->ToCanvas(POINT{0, 0}), found->Clip()};
}

}  // namespace orvik::detail

using namespace orvik::detail;

HWND WindowFromDC(HDC dc) {
    const auto found = FindDc(dc);
    return found != nullptr ? found->place.window : nullptr;
}

HDC CreateCompatibleDC(HDC dc) {
    if (dc != nullptr && FindDc(dc) == nullptr) return nullptr;
    CanvasPlace place;
    place.canvas = DefaultPixel();
    place.clip = PixelRegion(WholeOf(*place.canvas));
    return NewDc(OBJ_MEMDC, std::move(place));
}

HDC CreateDCA(LPCSTR driver, LPCSTR, LPCSTR, const DEVMODEA*) {
    constexpr DWORD kInvalidPrinterName = 1801;
    if (driver == nullptr || lstrcmpiA(driver, "DISPLAY") != 0) {
        SetLastError(kInvalidPrinterName);
        return nullptr;
    }
    CanvasPlace place;
    place.canvas = MakeImageCanvas(1, 1);
    if (place.canvas == nullptr) return nullptr;
    place.clip = PixelRegion(WholeOf(*place.canvas));
    return NewDc(OBJ_DC, std::move(place));
}

BOOL DeleteDC(HDC dc) {
    const auto found = FindDc(dc);
    if (found == nullptr) return FALSE;
    if (found->place.window != nullptr) return Finish(ERROR_INVALID_HANDLE);
    return RemoveGdiObject(dc);
}

int SaveDC(HDC dc) {
    const auto found = FindDc(dc);
    if (found == nullptr) return 0;
    found->saved.push_back(found->state);
    return static_cast<int>(found->saved.size());
}

BOOL RestoreDC(HDC dc, int saved) {
    const auto found = FindDc(dc);
    if (found == nullptr) return FALSE;
    const int levels = static_cast<int>(found->saved.size());
    const int level = saved < 0 ? levels + 1 + std::max(saved, -levels - 1) : saved;
    if (level < 1 || level > levels) return Finish(ERROR_INVALID_PARAMETER);
    DcState& back = found->saved[static_cast<size_t>(level) - 1];
    if (back.bitmap != found->state.bitmap) SelectObject(dc, back.bitmap);
    back.bitmap = found->state.bitmap;  // where the old one could not be had back
    found->state = std::move(back);
    found->saved.resize(static_cast<size_t>(level) - 1);
    found->ClipChanged();
    return TRUE;
}

HGDIOBJ SelectObject(HDC dc, HGDIOBJ object) {
    const auto found = FindDc(dc);
    const auto chosen = found != nullptr ? FindGdiObject(object) : nullptr;
    if (chosen == nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    DcState& state = found->state;
    switch (chosen->type) {
        case OBJ_PEN:
        case OBJ_EXTPEN: {
            const HGDIOBJ before = state.pen.Handle();
            state.pen = {object, std::static_pointer_cast<PenObject>(chosen)};
            return before;
        }
        case OBJ_BRUSH: {
            const HGDIOBJ before = state.brush.Handle();
            state.brush = {object, std::static_pointer_cast<BrushObject>(chosen)};
            return before;
        }
        case OBJ_FONT: {
            const HGDIOBJ before = state.font.Handle();
            state.font = {object, std::static_pointer_cast<FontObject>(chosen)};
            return before;
        }
        case OBJ_BITMAP: {
            auto bitmap = std::static_pointer_cast<BitmapObject>(chosen);
            const bool isDefault = object == DefaultBitmap();
            if (found->type != OBJ_MEMDC || (bitmap->selectedIn != nullptr && bitmap->selectedIn != dc)) return nullptr;
            const HGDIOBJ before = state.bitmap;
            if (before == object) return before;
            if (found->bitmap != nullptr) {
                found->bitmap->selectedIn = nullptr;
                UncountSelection(before, *found->bitmap);
            }
            found->place.canvas = isDefault ? DefaultPixel() : bitmap->canvas;
            found->place.clip = PixelRegion(WholeOf(*found->place.canvas));
            found->bitmap = nullptr;
            if (!isDefault) {
                CountSelection(*bitmap);
                bitmap->selectedIn = dc;
                found->bitmap = std::move(bitmap);
            }
            state.bitmap = static_cast<HBITMAP>(object);
            found->ClipChanged();
            return before;
        }
        case OBJ_REGION:
            return reinterpret_cast<HGDIOBJ>(static_cast<INT_PTR>(SelectClipRgn(dc, static_cast<HRGN>(object))));
        default:
            SetLastError(ERROR_INVALID_HANDLE);
            return nullptr;
    }
}

HGDIOBJ GetCurrentObject(HDC dc, UINT type) {
    const auto found = FindDc(dc);
    if (found == nullptr) return nullptr;
    switch (type) {
        case OBJ_PEN:
        case OBJ_EXTPEN:
            return found->state.pen.Handle();
        case OBJ_BRUSH:
            return found->state.brush.Handle();
        case OBJ_FONT:
            return found->state.font.Handle();
        case OBJ_BITMAP:
            return found->state.bitmap;
        default:
            SetLastError(ERROR_INVALID_PARAMETER);
            return nullptr;
    }
}

int GetDeviceCaps(HDC dc, int index) {
    const auto found = FindDc(dc);
    if (found == nullptr) return 0;
    const Canvas& canvas = *found->place.canvas;
    // Memory and windows tell of a display of usual size; a page tells of itself.
    const SIZE size = canvas.IsPage() ? canvas.Size() : SIZE{1920, 1080};
    const int dots = canvas.IsPage() ? canvas.DotsPerInch() : DisplayDots().load();
    const auto millimetres = [&](LONG pixels) { return static_cast<int>(std::lround(pixels * 25.4 / dots)); };
    switch (index) {
        case DRIVERVERSION:
            return 0x4000;
        case TECHNOLOGY:
            return canvas.IsPage() ? DT_RASPRINTER : DT_RASDISPLAY;
        case HORZSIZE:
            return millimetres(size.cx);
        case VERTSIZE:
            return millimetres(size.cy);
        case HORZRES:
            return size.cx;
        case VERTRES:
            return size.cy;
        case BITSPIXEL:
            return 32;
        case PLANES:
            return 1;
        case NUMCOLORS:
            return -1;
        case RASTERCAPS:
            return canvas.IsPage() ? 0 : RC_BITBLT | RC_STRETCHBLT;
        case LOGPIXELSX:
        case LOGPIXELSY:
            return dots;
        case PHYSICALWIDTH:
            return canvas.IsPage() ? size.cx : 0;
        case PHYSICALHEIGHT:
            return canvas.IsPage() ? size.cy : 0;
        default:
            return 0;
    }
}

int SetMapMode(HDC dc, int mode) { return FindDc(dc) != nullptr && mode == MM_TEXT ? MM_TEXT : 0; }
int GetMapMode(HDC dc) { return FindDc(dc) != nullptr ? MM_TEXT : 0; }

namespace {
// A value of the state, checked and exchanged; `failure` for a bad handle or value.
template <class T>
T Exchange(HDC dc, T DcState::*member, T value, bool good = true, T failure = 0) {
    const auto found = FindDc(dc);
    if (found == nullptr) return failure;
    if (!good) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return failure;
    }
    return std::exchange(found->state.*member, value);
}

template <class T>
T ValueOf(HDC dc, T DcState::*member, T failure = 0) {
    const auto found = FindDc(dc);
    return found != nullptr ? found->state.*member : failure;
}

BOOL MoveOrigin(HDC dc, POINT DcState::*member, bool relative, int x, int y, LPPOINT before) {
    const auto found = FindDc(dc);
    if (found == nullptr) return FALSE;
    POINT& origin = found->state.*member;
    if (before != nullptr) *before = origin;
    const int64_t baseX = relative ? origin.x : 0, baseY = relative ? origin.y : 0;
    origin = {static_cast<LONG>(std::clamp(baseX + x, -kFarthest, kFarthest)),
              static_cast<LONG>(std::clamp(baseY + y, -kFarthest, kFarthest))};
    return TRUE;
}

BOOL OriginOf(HDC dc, POINT DcState::*member, LPPOINT origin) {
    const auto found = FindDc(dc);
    if (found == nullptr || origin == nullptr) return FALSE;
    *origin = found->state.*member;
    return TRUE;
}

// Combines the clip region with one in device coordinates; without a clip region the first operand is all that is visible.
int CombineClip(Dc& dc, const PixelRegion& region, int mode) {
    if (mode == RGN_COPY) {
        dc.state.clip = region;
    } else {
        if (!dc.state.clip.has_value()) {
            PixelRegion visible = dc.place.clip;
            visible.Offset(-dc.place.origin.x, -dc.place.origin.y);
            dc.state.clip = std::move(visible);
        }
        dc.state.clip->Combine(region, mode);
    }
    dc.ClipChanged();
    return LooksOf(dc.Clip());
}
}  // namespace

int SetROP2(HDC dc, int mode) { return Exchange(dc, &DcState::rop2, mode, mode >= R2_BLACK && mode <= R2_WHITE); }
int GetROP2(HDC dc) { return ValueOf(dc, &DcState::rop2); }
int SetBkMode(HDC dc, int mode) { return Exchange(dc, &DcState::bkMode, mode, mode == TRANSPARENT || mode == OPAQUE); }
int GetBkMode(HDC dc) { return ValueOf(dc, &DcState::bkMode); }
int SetPolyFillMode(HDC dc, int mode) { return Exchange(dc, &DcState::polyFillMode, mode, mode == ALTERNATE || mode == WINDING); }
int GetPolyFillMode(HDC dc) { return ValueOf(dc, &DcState::polyFillMode); }
int SetStretchBltMode(HDC dc, int mode) {
    return Exchange(dc, &DcState::stretchMode, mode, mode >= BLACKONWHITE && mode <= HALFTONE);
}
int GetStretchBltMode(HDC dc) { return ValueOf(dc, &DcState::stretchMode); }
COLORREF SetBkColor(HDC dc, COLORREF color) { return Exchange(dc, &DcState::bkColor, color & 0xFFFFFF, true, CLR_INVALID); }
COLORREF GetBkColor(HDC dc) { return ValueOf(dc, &DcState::bkColor, CLR_INVALID); }
COLORREF SetTextColor(HDC dc, COLORREF color) { return Exchange(dc, &DcState::textColor, color & 0xFFFFFF, true, CLR_INVALID); }
COLORREF GetTextColor(HDC dc) { return ValueOf(dc, &DcState::textColor, CLR_INVALID); }
COLORREF SetDCPenColor(HDC dc, COLORREF color) { return Exchange(dc, &DcState::dcPenColor, color & 0xFFFFFF, true, CLR_INVALID); }
UINT SetTextAlign(HDC dc, UINT align) { return Exchange(dc, &DcState::textAlign, align, true, GDI_ERROR); }
UINT GetTextAlign(HDC dc) { return ValueOf(dc, &DcState::textAlign, GDI_ERROR); }

BOOL SetBrushOrgEx(HDC dc, int x, int y, LPPOINT before) { return MoveOrigin(dc, &DcState::brushOrg, false, x, y, before); }
BOOL SetWindowOrgEx(HDC dc, int x, int y, LPPOINT before) { return MoveOrigin(dc, &DcState::windowOrg, false, x, y, before); }
BOOL GetWindowOrgEx(HDC dc, LPPOINT origin) { return OriginOf(dc, &DcState::windowOrg, origin); }
BOOL OffsetWindowOrgEx(HDC dc, int dx, int dy, LPPOINT before) {
    return MoveOrigin(dc, &DcState::windowOrg, true, dx, dy, before);
}
BOOL SetViewportOrgEx(HDC dc, int x, int y, LPPOINT before) { return MoveOrigin(dc, &DcState::viewportOrg, false, x, y, before); }
BOOL GetViewportOrgEx(HDC dc, LPPOINT origin) { return OriginOf(dc, &DcState::viewportOrg, origin); }
BOOL OffsetViewportOrgEx(HDC dc, int dx, int dy, LPPOINT before) {
    return MoveOrigin(dc, &DcState::viewportOrg, true, dx, dy, before);
}

BOOL LPtoDP(HDC dc, LPPOINT points, int count) {
    const auto found = FindDc(dc);
    if (found == nullptr || points == nullptr || count < 0) return FALSE;
    std::transform(points, points + count, points, [&](POINT point) { return found->ToDevice(point); });
    return TRUE;
}

BOOL DPtoLP(HDC dc, LPPOINT points, int count) {
    const auto found = FindDc(dc);
    if (found == nullptr || points == nullptr || count < 0) return FALSE;
    std::transform(points, points + count, points, [&](POINT point) { return found->DeviceToLogical(point); });
    return TRUE;
}

int IntersectClipRect(HDC dc, int left, int top, int right, int bottom) {
    const auto found = FindDc(dc);
    if (found == nullptr) return 0;
    const PixelRegion rect = Normalised(found->ToDevice(RECT{left, top, right, bottom}));
    // Without a clip region the rectangle becomes it, whatever is visible now: the DC may come to see more.
    return CombineClip(*found, rect, found->state.clip.has_value() ? RGN_AND : RGN_COPY);
}

int ExcludeClipRect(HDC dc, int left, int top, int right, int bottom) {
    const auto found = FindDc(dc);
    return found != nullptr ? CombineClip(*found, Normalised(found->ToDevice(RECT{left, top, right, bottom})), RGN_DIFF) : 0;
}

int SelectClipRgn(HDC dc, HRGN region) { return ExtSelectClipRgn(dc, region, RGN_COPY); }

int ExtSelectClipRgn(HDC dc, HRGN region, int mode) {
    const auto found = FindDc(dc);
    if (found == nullptr) return 0;
    if (mode < RGN_AND || mode > RGN_COPY || (region == nullptr && mode != RGN_COPY)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    if (region == nullptr) {
        found->state.clip.reset();
        found->ClipChanged();
        return LooksOf(found->Clip());
    }
    const auto chosen = FindGdi<RegionObject>(region, OBJ_REGION);
    if (chosen == nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
        return 0;
    }
    return CombineClip(*found, chosen->pixels, mode);
}

int OffsetClipRgn(HDC dc, int dx, int dy) {
    const auto found = FindDc(dc);
    if (found == nullptr) return 0;
    if (found->state.clip.has_value()) found->state.clip->Offset(dx, dy);
    found->ClipChanged();
    return LooksOf(found->Clip());
}

int GetClipBox(HDC dc, LPRECT box) {
    const auto found = FindDc(dc);
    if (found == nullptr || box == nullptr) return 0;
    RECT device = found->Clip().Box();
    if (!found->Clip().Empty()) OffsetRect(&device, -found->place.origin.x, -found->place.origin.y);
    DPtoLP(dc, reinterpret_cast<LPPOINT>(&device), 2);
    *box = device;
    return LooksOf(found->Clip());
}

BOOL PtVisible(HDC dc, int x, int y) {
    const auto found = FindDc(dc);
    if (found == nullptr) return FALSE;
    const POINT point = found->ToCanvas(POINT{x, y});
    return found->Clip().Contains(point.x, point.y);
}

BOOL RectVisible(HDC dc, const RECT* rect) {
    const auto found = FindDc(dc);
    return found != nullptr && rect != nullptr && found->Clip().Touches(Normalised(found->ToCanvas(*rect)));
}
