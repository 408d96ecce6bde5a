#include "platform/posix/drawing/bitmap.h"

#include <algorithm>
#include <cstring>

#include "platform/posix/drawing/dc_internal.h"
#include "platform/posix/drawing/raster_internal.h"
#include "platform/posix/kernel/handle_table_internal.h"

namespace orvik::detail {

HBITMAP DefaultBitmap() {
    static const HGDIOBJ bitmap = [] {
        auto object = std::make_shared<BitmapObject>();
        object->canvas = MakePixelCanvas(1, 1, false, true);
        object->system = true;
        return AddGdiObject(std::move(object));
    }();
    return static_cast<HBITMAP>(bitmap);
}

}  // namespace orvik::detail

using namespace orvik::detail;

namespace {

constexpr uint32_t kWhite = 0xFFFFFF;

HBITMAP NewBitmap(int width, int height, bool monochrome, bool section = false, bool topDown = false) {
    if (width < 1 || height < 1) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    auto bitmap = std::make_shared<BitmapObject>();
    bitmap->canvas = MakePixelCanvas(width, height, section && !topDown, monochrome);
    bitmap->section = section, bitmap->topDown = topDown;
    if (bitmap->canvas == nullptr) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    return static_cast<HBITMAP>(AddGdiObject(std::move(bitmap)));
}

std::shared_ptr<BitmapObject> FindBitmap(HBITMAP bitmap) {
    auto found = FindGdi<BitmapObject>(bitmap, OBJ_BITMAP);
    if (found == nullptr) SetLastError(ERROR_INVALID_HANDLE);
    return found;
}

// The part of an image that a rectangle names.
PixelView PartOf(const PixelView& image, const RECT& rect) {
    return {image.Row(rect.top) + rect.left, rect.right - rect.left, rect.bottom - rect.top, image.stride};
}

// Scan lines of a device-independent bitmap, from the bottom as they are counted.
struct ScanLines {
    int width, height;
    size_t bytesPerPixel, stride;
    bool topDown;
};

bool ReadHeader(const BITMAPINFO* info, UINT usage, ScanLines& lines) {
    if (info == nullptr || usage != DIB_RGB_COLORS) return false;
    const BITMAPINFOHEADER& header = info->bmiHeader;
    if (header.biSize < sizeof header || header.biPlanes != 1 || (header.biBitCount != 32 && header.biBitCount != 24) ||
        header.biCompression != BI_RGB || header.biWidth < 1 || header.biHeight == 0 || header.biHeight == INT32_MIN ||
        header.biWidth > 32767)
        return false;
    lines.width = header.biWidth;
    lines.topDown = header.biHeight < 0;
    lines.height = lines.topDown ? -header.biHeight : header.biHeight;
    lines.bytesPerPixel = header.biBitCount / 8u;
    lines.stride = (static_cast<size_t>(lines.width) * lines.bytesPerPixel + 3) / 4 * 4;
    return true;
}

}  // namespace

HBITMAP CreateBitmap(int width, int height, UINT planes, UINT bitsPerPixel, const void* bits) {
    const bool monochrome = bitsPerPixel == 1;
    if (planes != 1 || (!monochrome && bitsPerPixel != 32)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    const HBITMAP made = NewBitmap(width, height, monochrome);
    if (made == nullptr || bits == nullptr) return made;
    const PixelView pixels = FindBitmap(made)->canvas->Pixels();
    const auto* bytes = static_cast<const unsigned char*>(bits);
    const size_t stride = monochrome ? static_cast<size_t>(width + 15) / 16 * 2 : static_cast<size_t>(width) * 4;
    for (int y = 0; y < height; ++y, bytes += stride) {
        uint32_t* row = pixels.Row(y);
        if (!monochrome) std::memcpy(row, bytes, stride);
        for (int x = 0; x < width; ++x)
            row[x] = monochrome ? ((bytes[x / 8] >> (7 - x % 8) & 1) != 0 ? kWhite : 0) : row[x] & kWhite;
    }
    return made;
}

HBITMAP CreateCompatibleBitmap(HDC dc, int width, int height) {
    const auto found = FindDc(dc);
    return found != nullptr ? NewBitmap(width, height, found->place.canvas->IsMonochrome()) : nullptr;
}

HBITMAP CreateDIBSection(HDC, const BITMAPINFO* info, UINT usage, void** bits, HANDLE section, DWORD) {
    ScanLines lines{};
    if (bits != nullptr) *bits = nullptr;
    if (section != nullptr || !ReadHeader(info, usage, lines) || lines.bytesPerPixel != 4) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    const HBITMAP made = NewBitmap(lines.width, lines.height, false, true, lines.topDown);
    if (made == nullptr || bits == nullptr) return made;
    const PixelView pixels = FindBitmap(made)->canvas->Pixels();
    *bits = lines.topDown ? pixels.bits : pixels.Row(pixels.height - 1);
    return made;
}

BOOL BitBlt(HDC to, int x, int y, int width, int height, HDC from, int fromX, int fromY, DWORD operation) {
    return StretchBlt(to, x, y, width, height, from, fromX, fromY, width, height, operation);
}

BOOL StretchBlt(HDC to, int x, int y, int width, int height, HDC from, int fromX, int fromY, int fromWidth, int fromHeight,
                DWORD operation) {
    const DWORD code = operation >> 16 & 0xFF;
    if (!raster::ReadsSource(code)) return PatBlt(to, x, y, width, height, operation);
    const auto dc = FindDc(to), source = FindDc(from);
    if (dc == nullptr || source == nullptr) return FALSE;
    const PixelView pixels = source->place.canvas->Pixels();
    if (pixels.bits == nullptr) return Finish(ERROR_INVALID_HANDLE);
    if (width == 0 || height == 0 || fromWidth == 0 || fromHeight == 0) return TRUE;
    RECT wanted = source->ToCanvas(RECT{fromX, fromY, fromX + fromWidth, fromY + fromHeight});
    RECT place = dc->ToCanvas(RECT{x, y, x + width, y + height});
    // An extent below zero goes backwards from the named pixel; where only one of the two does, the picture is mirrored.
    const bool mirrorX = (wanted.left > wanted.right) != (place.left > place.right),
               mirrorY = (wanted.top > wanted.bottom) != (place.top > place.bottom);
    wanted = FillExtent(wanted), place = FillExtent(place);
    if (mirrorX) std::swap(place.left, place.right);
    if (mirrorY) std::swap(place.top, place.bottom);
    const RECT whole = {0, 0, pixels.width, pixels.height};
    RECT there;
    if (!IntersectRect(&there, &wanted, &whole)) return TRUE;
    if (!EqualRect(&there, &wanted)) {  // what lies outside of the source is not copied
        const auto shrink = [](LONG& low, LONG& high, LONG cutLow, LONG cutHigh, LONG extent) {
            const LONG lowBefore = low, length = high - low;
            low = lowBefore + static_cast<LONG>(int64_t{length} * cutLow / extent);
            high = lowBefore + static_cast<LONG>(int64_t{length} * (extent - cutHigh) / extent);
        };
        shrink(place.left, place.right, there.left - wanted.left, wanted.right - there.right, wanted.right - wanted.left);
        shrink(place.top, place.bottom, there.top - wanted.top, wanted.bottom - there.bottom, wanted.bottom - wanted.top);
    }
    PixelView view = PartOf(pixels, there);
    std::vector<uint32_t> copy;
    const bool fromMono = source->place.canvas->IsMonochrome(), toMono = dc->place.canvas->IsMonochrome();
    const bool plain = code == 0xCC && place.right - place.left == view.width && place.bottom - place.top == view.height &&
                       dc->Clip().Rects().size() <= 1;
    const bool same = source->place.canvas == dc->place.canvas;
    if (fromMono != toMono || (same && !plain)) {
        copy.reserve(static_cast<size_t>(view.width) * static_cast<size_t>(view.height));
        for (int row = 0; row < view.height; ++row) copy.insert(copy.end(), view.Row(row), view.Row(row) + view.width);
        view = {copy.data(), view.width, view.height, view.width};
        const uint32_t text = PixelOf(dc->state.textColor), ground = PixelOf(dc->state.bkColor),
                       paper = PixelOf(source->state.bkColor);
        if (fromMono != toMono)
            for (uint32_t& pixel : copy)
                pixel = fromMono ? (pixel == 0 ? text : ground) : ((pixel & kWhite) == paper ? kWhite : 0);
    }
    const std::optional<FillLook> pattern = dc->Inside();
    if (!pattern.has_value() && raster::ReadsPattern(code)) return TRUE;
    dc->place.canvas->Image(view, place, operation, pattern.value_or(FillLook{}), dc->Clip());
    return TRUE;
}

BOOL PatBlt(HDC dc, int x, int y, int width, int height, DWORD operation) {
    const auto found = FindDc(dc);
    if (found == nullptr) return FALSE;
    const DWORD code = operation >> 16 & 0xFF;
    if (raster::ReadsSource(code)) return Finish(ERROR_INVALID_PARAMETER);
    const std::optional<FillLook> pattern = found->Inside();
    if (!pattern.has_value() && raster::ReadsPattern(code)) return TRUE;
    const RECT rect = FillExtent(found->ToCanvas(RECT{x, y, x + width, y + height}));
    found->place.canvas->Fill({&rect, 1}, pattern.value_or(FillLook{}), operation, found->Clip());
    return TRUE;
}

COLORREF GetPixel(HDC dc, int x, int y) {
    const auto found = FindDc(dc);
    if (found == nullptr) return CLR_INVALID;
    const PixelView pixels = found->place.canvas->Pixels();
    const POINT point = found->ToCanvas(POINT{x, y});
    if (pixels.bits == nullptr || !found->Clip().Contains(point.x, point.y)) return CLR_INVALID;
    const uint32_t pixel = pixels.Row(point.y)[point.x];
    return RGB(pixel >> 16, pixel >> 8, pixel);
}

BOOL SetPixelV(HDC dc, int x, int y, COLORREF color) { return SetPixel(dc, x, y, color) != CLR_INVALID; }

COLORREF SetPixel(HDC dc, int x, int y, COLORREF color) {
    const auto found = FindDc(dc);
    if (found == nullptr) return CLR_INVALID;
    const POINT point = found->ToCanvas(POINT{x, y});
    if (!found->Clip().Contains(point.x, point.y)) return CLR_INVALID;
    FillLook look;
    look.color = color & 0xFFFFFF;
    const RECT rect = {point.x, point.y, point.x + 1, point.y + 1};
    found->place.canvas->Fill({&rect, 1}, look, PATCOPY, found->Clip());
    return found->place.canvas->Pixels().bits != nullptr ? GetPixel(dc, x, y) : look.color;
}
