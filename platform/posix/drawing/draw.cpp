#include "platform/posix/drawing/draw.h"

#include <algorithm>

#include "platform/posix/drawing/dc_internal.h"
#include "platform/posix/kernel/handle_table_internal.h"
#include "platform/posix/resources/images_internal.h"

using namespace orvik::detail;

namespace {

// Draws lines with the DC's pen, if it has a mark. Dashes begin anew with every call.
void DrawLines(Dc& dc, std::span<const POINT> points, std::span<const DWORD> counts) {
    const std::optional<LineLook> look = dc.Line();
    if (!look.has_value() || look->rop2 == R2_NOP) return;
    int dash = 0;
    dc.place.canvas->Lines(points, counts, *look, dash, dc.Clip());
}

std::vector<POINT> OnCanvas(const Dc& dc, std::span<const POINT> points) {
    std::vector<POINT> moved(points.size());
    std::transform(points.begin(), points.end(), moved.begin(), [&](POINT point) { return dc.ToCanvas(point); });
    return moved;
}

void FillWith(Dc& dc, std::span<const RECT> rects, const std::optional<FillLook>& look, DWORD operation) {
    if (look.has_value()) dc.place.canvas->Fill(rects, *look, operation, dc.Clip());
}

}  // namespace

BOOL MoveToEx(HDC dc, int x, int y, LPPOINT before) {
    const auto found = FindDc(dc);
    if (found == nullptr) return FALSE;
    if (before != nullptr) *before = found->state.position;
    found->state.position = {x, y};
    return TRUE;
}

BOOL GetCurrentPositionEx(HDC dc, LPPOINT position) {
    const auto found = FindDc(dc);
    if (found == nullptr || position == nullptr) return FALSE;
    *position = found->state.position;
    return TRUE;
}

BOOL LineTo(HDC dc, int x, int y) {
    const auto found = FindDc(dc);
    if (found == nullptr) return FALSE;
    const POINT line[] = {found->ToCanvas(found->state.position), found->ToCanvas(POINT{x, y})};
    const DWORD count = 2;
    DrawLines(*found, line, {&count, 1});
    found->state.position = {x, y};
    return TRUE;
}

BOOL Polyline(HDC dc, const POINT* points, int count) {
    const DWORD all = static_cast<DWORD>(std::max(count, 0));
    return PolyPolyline(dc, points, &all, 1);
}

BOOL PolylineTo(HDC dc, const POINT* points, DWORD count) {
    const auto found = FindDc(dc);
    if (found == nullptr) return FALSE;
    if (points == nullptr) return Finish(ERROR_INVALID_PARAMETER);
    if (count == 0) return TRUE;
    std::vector<POINT> figure = {found->state.position};
    figure.insert(figure.end(), points, points + count);
    const DWORD all = count + 1;
    DrawLines(*found, OnCanvas(*found, figure), {&all, 1});
    found->state.position = points[count - 1];
    return TRUE;
}

BOOL PolyPolyline(HDC dc, const POINT* points, const DWORD* counts, DWORD figures) {
    const auto found = FindDc(dc);
    if (found == nullptr) return FALSE;
    size_t total = 0;
    for (DWORD i = 0; i < figures; ++i) {
        if (points == nullptr || counts[i] < 2) return Finish(ERROR_INVALID_PARAMETER);
        total += counts[i];
    }
    if (total == 0) return Finish(ERROR_INVALID_PARAMETER);
    DrawLines(*found, OnCanvas(*found, {points, total}), {counts, figures});
    return TRUE;
}

BOOL Polygon(HDC dc, const POINT* points, int count) {
    const auto found = FindDc(dc);
    if (found == nullptr) return FALSE;
    if (points == nullptr || count < 2) return Finish(ERROR_INVALID_PARAMETER);
    std::vector<POINT> figure = OnCanvas(*found, {points, static_cast<size_t>(count)});
    DWORD all = static_cast<DWORD>(count);
    if (const auto look = found->Inside(); look.has_value() && found->state.rop2 != R2_NOP)
        found->place.canvas->Polygons(figure, {&all, 1}, found->state.polyFillMode, *look, found->state.rop2, found->Clip());
    if (figure.front().x != figure.back().x || figure.front().y != figure.back().y) figure.push_back(figure.front()), ++all;
    DrawLines(*found, figure, {&all, 1});
    return TRUE;
}

BOOL Rectangle(HDC dc, int left, int top, int right, int bottom) {
    const auto found = FindDc(dc);
    if (found == nullptr) return FALSE;
    RECT rect = Normalised(found->ToCanvas(RECT{left, top, right, bottom}));
    if (IsRectEmpty(&rect)) return TRUE;
    const std::optional<LineLook> outline = found->Line();
    RECT inside = rect;
    if (!outline.has_value()) {  // without a pen the right and bottom edge are missing
        --inside.right, --inside.bottom;
    } else {
        const int width = outline->width;
        const bool within = (found->state.pen->style & PS_STYLE_MASK) == PS_INSIDEFRAME && width > 1;
        // The pen's middle runs through the outermost pixels; one that stays inside the frame moves in by half its width.
        if (within) rect.left += width / 2, rect.top += width / 2, rect.right -= (width - 1) / 2, rect.bottom -= (width - 1) / 2;
        inside = {rect.left + (width + 1) / 2, rect.top + (width + 1) / 2, rect.right - 1 - width / 2,
                  rect.bottom - 1 - width / 2};
    }
    if (found->state.rop2 != R2_NOP && !IsRectEmpty(&inside))
        FillWith(*found, {&inside, 1}, found->Inside(), OperationOf(found->state.rop2));
    const LONG last = rect.right - 1, low = rect.bottom - 1;
    const POINT corners[] = {{last, rect.top}, {rect.left, rect.top}, {rect.left, low}, {last, low}, {last, rect.top}};
    const DWORD count = 5;
    DrawLines(*found, corners, {&count, 1});
    return TRUE;
}

BOOL Ellipse(HDC dc, int left, int top, int right, int bottom) {
    const auto found = FindDc(dc);
    if (found == nullptr) return FALSE;
    const RECT rect = Normalised(found->ToCanvas(RECT{left, top, right, bottom}));
    if (IsRectEmpty(&rect) || found->state.rop2 == R2_NOP) return TRUE;
    const std::optional<FillLook> inside = found->Inside();
    const std::optional<LineLook> outline = found->Line();
    found->place.canvas->Ellipse(rect, inside.has_value() ? &*inside : nullptr, outline.has_value() ? &*outline : nullptr,
                                 found->state.rop2, found->Clip());
    return TRUE;
}

int FillRect(HDC dc, const RECT* rect, HBRUSH brush) {
    const auto found = FindDc(dc);
    const auto chosen = FindBrush(brush);
    if (found == nullptr) return 0;
    if (rect == nullptr || chosen == nullptr) return Finish(chosen == nullptr ? ERROR_INVALID_HANDLE : ERROR_INVALID_PARAMETER);
    const RECT place = FillExtent(found->ToCanvas(*rect));
    FillWith(*found, {&place, 1}, found->LookOf(*chosen), PATCOPY);
    return 1;
}

int FrameRect(HDC dc, const RECT* rect, HBRUSH brush) {
    const auto found = FindDc(dc);
    const auto chosen = FindBrush(brush);
    if (found == nullptr) return 0;
    if (rect == nullptr || chosen == nullptr) return Finish(chosen == nullptr ? ERROR_INVALID_HANDLE : ERROR_INVALID_PARAMETER);
    const RECT place = found->ToCanvas(*rect);
    if (place.right <= place.left || place.bottom <= place.top) return 0;
    const RECT sides[] = {{place.left, place.top, place.left + 1, place.bottom},
                          {place.right - 1, place.top, place.right, place.bottom},
                          {place.left, place.top, place.right, place.top + 1},
                          {place.left, place.bottom - 1, place.right, place.bottom}};
    FillWith(*found, sides, found->LookOf(*chosen), PATCOPY);
    return 1;
}

BOOL InvertRect(HDC dc, const RECT* rect) {
    const auto found = FindDc(dc);
    if (found == nullptr || rect == nullptr) return FALSE;
    return PatBlt(dc, rect->left, rect->top, rect->right - rect->left, rect->bottom - rect->top, DSTINVERT);
}

BOOL FillRgn(HDC dc, HRGN region, HBRUSH brush) {
    const auto found = FindDc(dc);
    const auto area = FindGdi<RegionObject>(region, OBJ_REGION);
    const auto chosen = FindBrush(brush);
    if (found == nullptr) return FALSE;
    if (area == nullptr || chosen == nullptr) return Finish(ERROR_INVALID_HANDLE);
    PixelRegion pixels = area->pixels;
    const POINT origin = found->ToCanvas(POINT{0, 0});
    pixels.Offset(origin.x, origin.y);
    FillWith(*found, pixels.Rects(), found->LookOf(*chosen), PATCOPY);
    return TRUE;
}

BOOL DrawFocusRect(HDC dc, const RECT* rect) {
    const auto found = FindDc(dc);
    if (found == nullptr || rect == nullptr) return FALSE;
    const RECT place = found->ToCanvas(*rect);
    if (IsRectEmpty(&place)) return TRUE;
    std::vector<RECT> dots;
    const RECT box = found->Clip().Box();
    // Every other pixel around, as a pen of one dot would leave them from the right upper corner on.
    const auto add = [&](LONG x, LONG y) {
        if ((place.right - 1 - x + y - place.top) % 2 == 0) dots.push_back({x, y, x + 1, y + 1});
    };
    for (LONG x = std::max(place.left, box.left); x < std::min(place.right, box.right); ++x) {
        add(x, place.top);
        if (place.bottom - 1 > place.top) add(x, place.bottom - 1);
    }
    for (LONG y = std::max(place.top + 1, box.top); y < std::min(place.bottom - 1, box.bottom); ++y) {
        add(place.left, y);
        if (place.right - 1 > place.left) add(place.right - 1, y);
    }
    found->place.canvas->Fill(dots, FillLook{}, DSTINVERT, found->Clip());
    return TRUE;
}

BOOL DrawIconEx(HDC dc, int x, int y, HICON icon, int width, int height, UINT, HBRUSH flickerFree, UINT flags) {
    constexpr int kDefaultSize = 32;
    const auto found = FindDc(dc);
    const IconImage* image = ImageOf(icon);
    if (found == nullptr) return FALSE;
    if (image == nullptr) return Finish(ERROR_INVALID_HANDLE);
    if (width == 0) width = (flags & DI_DEFAULTSIZE) != 0 ? kDefaultSize : image->width;
    if (height == 0) height = (flags & DI_DEFAULTSIZE) != 0 ? kDefaultSize : image->height;
    const RECT rect = {x, y, x + width, y + height};
    if (flickerFree != nullptr) FillRect(dc, &rect, flickerFree);
    if (image->pixels.empty() || (flags & DI_IMAGE) == 0) return TRUE;  // a system cursor has no picture here
    // The image is only read.
    const PixelView source = {const_cast<uint32_t*>(image->pixels.data()), image->width, image->height, image->width};
    found->place.canvas->Overlay(source, found->ToCanvas(rect), found->Clip());
    return TRUE;
}

BOOL DrawIcon(HDC dc, int x, int y, HICON icon) {
    return DrawIconEx(dc, x, y, icon, 0, 0, 0, nullptr, DI_NORMAL | DI_DEFAULTSIZE);
}
