#include "platform/posix/drawing/gdi.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <mutex>
#include <unordered_map>

#include "platform/posix/drawing/gdi_internal.h"
#include "platform/posix/kernel/handle_table_internal.h"

using namespace orvik::detail;

namespace {
struct Table {
    std::mutex lock;
    std::unordered_map<HGDIOBJ, std::shared_ptr<GdiObject>> objects;
    uintptr_t last = 0x01000000;  // far from window and kernel handles; numbers are not used again
};

Table& TheTable() {
    static Table* table = new Table;  // never destroyed: static objects of other files still delete theirs at exit
    return *table;
}

// The face and size of the system's own texts: 9 points at 96 dots an inch.
LOGFONTA GuiFont(int weight = FW_NORMAL, LPCSTR face = "Segoe UI", BYTE pitch = VARIABLE_PITCH | FF_SWISS) {
    LOGFONTA font{};
    font.lfHeight = -12;
    font.lfWeight = weight;
    font.lfCharSet = DEFAULT_CHARSET;
    font.lfPitchAndFamily = pitch;
    std::strcpy(font.lfFaceName, face);
    return font;
}

template <class T>
HGDIOBJ AddSystem(std::shared_ptr<T> object) {
    object->system = true;
    return AddGdiObject(std::move(object));
}

HGDIOBJ SystemPen(DWORD style, COLORREF color, bool fromDc = false) {
    auto pen = std::make_shared<PenObject>(OBJ_PEN);
    pen->style = style, pen->color = color, pen->fromDc = fromDc;
    return AddSystem(std::move(pen));
}

HGDIOBJ SystemBrush(UINT style, COLORREF color, bool fromDc = false) {
    auto brush = std::make_shared<BrushObject>();
    brush->style = style, brush->color = color, brush->fromDc = fromDc;
    return AddSystem(std::move(brush));
}

HGDIOBJ SystemFont(const LOGFONTA& description) {
    auto font = std::make_shared<FontObject>();
    font->description = description;
    return AddSystem(std::move(font));
}

constexpr int kStockObjects = DC_PEN + 1;

const std::array<HGDIOBJ, kStockObjects>& StockObjects() {
    static const std::array<HGDIOBJ, kStockObjects> stock = [] {
        std::array<HGDIOBJ, kStockObjects> made{};
        made[WHITE_BRUSH] = SystemBrush(BS_SOLID, RGB(255, 255, 255));
        made[LTGRAY_BRUSH] = SystemBrush(BS_SOLID, RGB(192, 192, 192));
        made[GRAY_BRUSH] = SystemBrush(BS_SOLID, RGB(128, 128, 128));
        made[DKGRAY_BRUSH] = SystemBrush(BS_SOLID, RGB(64, 64, 64));
        made[BLACK_BRUSH] = SystemBrush(BS_SOLID, RGB(0, 0, 0));
        made[NULL_BRUSH] = SystemBrush(BS_NULL, 0);
        made[WHITE_PEN] = SystemPen(PS_SOLID, RGB(255, 255, 255));
        made[BLACK_PEN] = SystemPen(PS_SOLID, RGB(0, 0, 0));
        made[NULL_PEN] = SystemPen(PS_NULL, 0);
        made[OEM_FIXED_FONT] = made[ANSI_FIXED_FONT] = made[SYSTEM_FIXED_FONT] =
            SystemFont(GuiFont(FW_NORMAL, "Courier New", FIXED_PITCH | FF_MODERN));
        made[ANSI_VAR_FONT] = SystemFont(GuiFont(FW_NORMAL, "MS Sans Serif"));
        made[SYSTEM_FONT] = made[DEVICE_DEFAULT_FONT] = SystemFont(GuiFont(FW_BOLD));
        made[DEFAULT_GUI_FONT] = SystemFont(GuiFont());
        made[DC_BRUSH] = SystemBrush(BS_SOLID, RGB(255, 255, 255), true);
        made[DC_PEN] = SystemPen(PS_SOLID, RGB(0, 0, 0), true);
        return made;
    }();
    return stock;
}

HGDIOBJ Refused() {
    SetLastError(ERROR_INVALID_PARAMETER);
    return nullptr;
}

template <class T>
int CopyOut(const T& whole, int size, LPVOID buffer) {
    constexpr int kWhole = sizeof(T);
    if (buffer == nullptr) return kWhole;
    const int copied = std::clamp(size, 0, kWhole);
    std::memcpy(buffer, &whole, static_cast<size_t>(copied));
    return copied;
}

int Describe(const BitmapObject& object, int size, LPVOID buffer) {
    const SIZE extent = object.canvas->Size();
    const PixelView pixels = object.canvas->Pixels();
    DIBSECTION section{};
    BITMAP& bitmap = section.dsBm;
    bitmap.bmWidth = extent.cx, bitmap.bmHeight = extent.cy;
    bitmap.bmPlanes = 1;
    bitmap.bmBitsPixel = object.canvas->IsMonochrome() ? 1 : 32;
    bitmap.bmWidthBytes = object.canvas->IsMonochrome() ? (extent.cx + 15) / 16 * 2 : extent.cx * 4;
    if (object.section) bitmap.bmBits = object.topDown ? pixels.bits : pixels.Row(extent.cy - 1);
    if (!object.section || size < static_cast<int>(sizeof(DIBSECTION))) return CopyOut(bitmap, size, buffer);
    BITMAPINFOHEADER& header = section.dsBmih;
    header.biSize = sizeof header;
    header.biWidth = extent.cx, header.biHeight = object.topDown ? -extent.cy : extent.cy;
    header.biPlanes = 1, header.biBitCount = 32;
    header.biSizeImage = static_cast<DWORD>(extent.cx) * 4u * static_cast<DWORD>(extent.cy);
    return CopyOut(section, size, buffer);
}

LONG SmallestPenWidth(LONG width) { return std::max<LONG>(1, width < 0 ? -std::max<LONG>(width, -32767) : width); }
}  // namespace

namespace orvik::detail {
HGDIOBJ AddGdiObject(std::shared_ptr<GdiObject> object) {
    Table& table = TheTable();
    const std::lock_guard guard(table.lock);
    const auto handle = reinterpret_cast<HGDIOBJ>(table.last += 4);
    table.objects.emplace(handle, std::move(object));
    return handle;
}

std::shared_ptr<GdiObject> FindGdiObject(HGDIOBJ handle) {
    Table& table = TheTable();
    const std::lock_guard guard(table.lock);
    const auto found = table.objects.find(handle);
    return found != table.objects.end() ? found->second : nullptr;
}

bool RemoveGdiObject(HGDIOBJ handle) {
    Table& table = TheTable();
    std::shared_ptr<GdiObject> last;  // goes without the lock: a DC lets go of its objects
    const std::lock_guard guard(table.lock);
    const auto found = table.objects.find(handle);
    if (found == table.objects.end()) return false;
    last = std::move(found->second);
    table.objects.erase(found);
    return true;
}

void CountSelection(GdiObject& object) {
    const std::lock_guard guard(TheTable().lock);
    ++object.selections;
}

void UncountSelection(HGDIOBJ handle, GdiObject& object) {
    Table& table = TheTable();
    const std::lock_guard guard(table.lock);
    // The caller still holds the object.
    if (--object.selections == 0 && object.doomed) table.objects.erase(handle);
}

std::shared_ptr<PenObject> FindPen(HGDIOBJ handle) {
    std::shared_ptr<GdiObject> found = FindGdiObject(handle);
    if (found == nullptr || (found->type != OBJ_PEN && found->type != OBJ_EXTPEN)) return nullptr;
    return std::static_pointer_cast<PenObject>(std::move(found));
}

std::shared_ptr<BrushObject> FindBrush(HBRUSH brush) {
    const auto number = reinterpret_cast<uintptr_t>(brush);
    if (number > 0 && number <= COLOR_MENUBAR + 1) brush = GetSysColorBrush(static_cast<int>(number) - 1);
    return FindGdi<BrushObject>(brush, OBJ_BRUSH);
}
}  // namespace orvik::detail

HPEN CreatePen(int style, int width, COLORREF color) {
    auto pen = std::make_shared<PenObject>(OBJ_PEN);
    pen->width = SmallestPenWidth(width);
    if (style < PS_SOLID || style > PS_INSIDEFRAME) style = PS_SOLID;
    const bool dashed = style >= PS_DASH && style <= PS_DASHDOTDOT;
    pen->style = static_cast<DWORD>(dashed && pen->width > 1 ? PS_SOLID : style);
    pen->color = color & 0xFFFFFF;
    return static_cast<HPEN>(AddGdiObject(std::move(pen)));
}

HPEN CreatePenIndirect(const LOGPEN* pen) {
    if (pen == nullptr) return static_cast<HPEN>(Refused());
    return CreatePen(static_cast<int>(pen->lopnStyle), pen->lopnWidth.x, pen->lopnColor);
}

HPEN ExtCreatePen(DWORD style, DWORD width, const LOGBRUSH* brush, DWORD entries, const DWORD* lengths) {
    const DWORD line = style & PS_STYLE_MASK;
    const bool geometric = (style & PS_TYPE_MASK) == PS_GEOMETRIC;
    if (brush == nullptr || entries != 0 || lengths != nullptr || line > PS_INSIDEFRAME || brush->lbStyle != BS_SOLID ||
        (!geometric && width != 1) || (style & PS_ENDCAP_MASK) > PS_ENDCAP_FLAT || (style & PS_JOIN_MASK) > PS_JOIN_MITER ||
        width > 32767)
        return static_cast<HPEN>(Refused());
    auto pen = std::make_shared<PenObject>(OBJ_EXTPEN);
    pen->style = style;
    pen->width = SmallestPenWidth(static_cast<LONG>(width));
    pen->color = brush->lbColor & 0xFFFFFF;
    return static_cast<HPEN>(AddGdiObject(std::move(pen)));
}

HBRUSH CreateSolidBrush(COLORREF color) {
    auto brush = std::make_shared<BrushObject>();
    brush->color = color & 0xFFFFFF;
    return static_cast<HBRUSH>(AddGdiObject(std::move(brush)));
}

HBRUSH CreateHatchBrush(int hatch, COLORREF color) {
    if (hatch < HS_HORIZONTAL || hatch > HS_DIAGCROSS) return static_cast<HBRUSH>(Refused());
    auto brush = std::make_shared<BrushObject>();
    brush->style = BS_HATCHED;
    brush->hatch = hatch;
    brush->color = color & 0xFFFFFF;
    return static_cast<HBRUSH>(AddGdiObject(std::move(brush)));
}

HBRUSH CreatePatternBrush(HBITMAP bitmap) {
    const auto source = FindGdi<BitmapObject>(bitmap, OBJ_BITMAP);
    if (source == nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    const PixelView pixels = source->canvas->Pixels();
    auto brush = std::make_shared<BrushObject>();
    brush->style = BS_PATTERN;
    brush->pattern = bitmap;
    brush->tileWidth = pixels.width, brush->tileHeight = pixels.height;
    brush->tileMonochrome = source->canvas->IsMonochrome();
    for (int y = 0; y < pixels.height; ++y) brush->tile.insert(brush->tile.end(), pixels.Row(y), pixels.Row(y) + pixels.width);
    return static_cast<HBRUSH>(AddGdiObject(std::move(brush)));
}

HBRUSH CreateBrushIndirect(const LOGBRUSH* brush) {
    if (brush == nullptr) return static_cast<HBRUSH>(Refused());
    switch (brush->lbStyle) {
        case BS_SOLID:
            return CreateSolidBrush(brush->lbColor);
        case BS_HATCHED:
            return CreateHatchBrush(static_cast<int>(brush->lbHatch), brush->lbColor);
        case BS_PATTERN:
            return CreatePatternBrush(reinterpret_cast<HBITMAP>(brush->lbHatch));
        case BS_NULL: {
            auto hollow = std::make_shared<BrushObject>();
            hollow->style = BS_NULL;
            return static_cast<HBRUSH>(AddGdiObject(std::move(hollow)));
        }
        default:
            return static_cast<HBRUSH>(Refused());
    }
}

HFONT CreateFontIndirectA(const LOGFONTA* font) {
    if (font == nullptr) return static_cast<HFONT>(Refused());
    auto made = std::make_shared<FontObject>();
    made->description = *font;
    made->description.lfFaceName[LF_FACESIZE - 1] = 0;
    return static_cast<HFONT>(AddGdiObject(std::move(made)));
}

HFONT CreateFontA(int height, int width, int escapement, int orientation, int weight, DWORD italic, DWORD underline,
                  DWORD strikeOut, DWORD charSet, DWORD outPrecision, DWORD clipPrecision, DWORD quality, DWORD pitchAndFamily,
                  LPCSTR face) {
    const auto byte = [](DWORD value) { return static_cast<BYTE>(value); };
    LOGFONTA font{height,
                  width,
                  escapement,
                  orientation,
                  weight,
                  byte(italic != 0),
                  byte(underline != 0),
                  byte(strikeOut != 0),
                  byte(charSet),
                  byte(outPrecision),
                  byte(clipPrecision),
                  byte(quality),
                  byte(pitchAndFamily),
                  {}};
    if (face != nullptr) std::strncpy(font.lfFaceName, face, LF_FACESIZE - 1);
    return CreateFontIndirectA(&font);
}

HGDIOBJ GetStockObject(int index) {
    return index >= 0 && index < kStockObjects ? StockObjects()[static_cast<size_t>(index)] : nullptr;
}

DWORD GetObjectType(HGDIOBJ object) {
    const auto found = FindGdiObject(object);
    if (found == nullptr) SetLastError(ERROR_INVALID_HANDLE);
    return found != nullptr ? found->type : 0;
}

int GetObjectA(HANDLE object, int size, LPVOID buffer) {
    const std::shared_ptr<GdiObject> found = FindGdiObject(object);
    switch (found != nullptr ? found->type : 0) {
        case OBJ_FONT:
            return CopyOut(static_cast<const FontObject&>(*found).description, size, buffer);
        case OBJ_PEN:
        case OBJ_EXTPEN: {
            const auto& pen = static_cast<const PenObject&>(*found);
            return CopyOut(LOGPEN{pen.style, {pen.width, 0}, pen.color}, size, buffer);
        }
        case OBJ_BRUSH: {
            const auto& brush = static_cast<const BrushObject&>(*found);
            const ULONG_PTR hatch =
                brush.style == BS_PATTERN ? reinterpret_cast<ULONG_PTR>(brush.pattern) : static_cast<ULONG_PTR>(brush.hatch);
            return CopyOut(LOGBRUSH{brush.style, brush.Colour(), hatch}, size, buffer);
        }
        case OBJ_BITMAP:
            return Describe(static_cast<const BitmapObject&>(*found), size, buffer);
        default:
            SetLastError(ERROR_INVALID_HANDLE);
            return 0;
    }
}

BOOL GdiFlush() { return TRUE; }

BOOL DeleteObject(HGDIOBJ object) {
    if (const DWORD type = object != nullptr ? GetObjectType(object) : 0; type == OBJ_DC || type == OBJ_MEMDC)
        return DeleteDC(static_cast<HDC>(object));
    Table& table = TheTable();
    std::shared_ptr<GdiObject> last;  // goes without the lock
    const std::lock_guard guard(table.lock);
    const auto found = table.objects.find(object);
    if (found == table.objects.end()) return Finish(ERROR_INVALID_HANDLE);
    if (found->second->system) return TRUE;
    if (found->second->selections > 0) {
        found->second->doomed = true;
        return TRUE;
    }
    last = std::move(found->second);
    table.objects.erase(found);
    return TRUE;
}
