// A DC's state and the way from a call to its canvas. A DC is used by one thread at a time, so nothing here locks but the table
// of handles. Coordinates: logical -> device (window and viewport origins) -> canvas (the place's origin).
#pragma once

#include <optional>
#include <vector>

#include "platform/posix/drawing/font_internal.h"
#include "platform/posix/drawing/gdi_internal.h"

namespace orvik::detail {

struct DcState {
    Selected<PenObject> pen;
    Selected<BrushObject> brush;
    Selected<FontObject> font;
    HBITMAP bitmap = nullptr;  // of a memory DC
    int rop2 = R2_COPYPEN, bkMode = OPAQUE, polyFillMode = ALTERNATE, stretchMode = BLACKONWHITE;
    COLORREF bkColor = RGB(255, 255, 255), textColor = RGB(0, 0, 0);
    COLORREF dcPenColor = RGB(0, 0, 0), dcBrushColor = RGB(255, 255, 255);
    UINT textAlign = TA_LEFT;
    POINT windowOrg = {0, 0}, viewportOrg = {0, 0}, brushOrg = {0, 0};
    POINT position = {0, 0};
    std::optional<PixelRegion> clip;  // device coordinates
};

struct Dc : GdiObject {
    explicit Dc(DWORD objectType) : GdiObject(objectType) {}
    ~Dc() override;

    CanvasPlace place;
    DcState state;
    std::vector<DcState> saved;
    std::shared_ptr<BitmapObject> bitmap;  // the selected one, null for the default one
    std::shared_ptr<const FontFace> face;  // of the selected font, once it was asked for
    HGDIOBJ faceOf = nullptr;

    // The visible and the clip region together, in canvas coordinates.
    const PixelRegion& Clip();
    void ClipChanged() { m_clip.reset(); }

    // Logical to canvas coordinates. What lies beyond 2^27 pixels, the limit of a device coordinate, is taken as lying there.
    POINT ToCanvas(POINT point) const;
    RECT ToCanvas(const RECT& rect) const;
    POINT ToDevice(POINT point) const;
    RECT ToDevice(const RECT& rect) const;
    POINT DeviceToLogical(POINT point) const;

    // The state's pen and brush as the canvas takes them; nothing for a null pen or a hollow brush.
    std::optional<LineLook> Line() const;
    std::optional<FillLook> Inside() const { return LookOf(*state.brush); }
    std::optional<FillLook> LookOf(const BrushObject& brush) const;

    const FontFace& Face();

private:
    std::optional<PixelRegion> m_clip;
    mutable std::vector<uint32_t> m_tile;  // a monochrome pattern in the colours of now
};

// Null, with error 6, for a handle that is no DC.
std::shared_ptr<Dc> FindDc(HDC dc);
HDC NewDc(DWORD type, CanvasPlace place);
// The operation of a PatBlt, in bits 16-23, that does with a pattern what the binary operation does with a pen.
DWORD OperationOf(int rop2);
// The pixels of a fill whose extent may be below zero: such a one goes from the named pixel backwards.
inline RECT FillExtent(const RECT& rect) {
    RECT pixels = rect;
    if (rect.left > rect.right) pixels.left = rect.right + 1, pixels.right = rect.left + 1;
    if (rect.top > rect.bottom) pixels.top = rect.bottom + 1, pixels.bottom = rect.top + 1;
    return pixels;
}
inline RECT Normalised(const RECT& rect) {
    return {rect.left < rect.right ? rect.left : rect.right, rect.top < rect.bottom ? rect.top : rect.bottom,
            rect.left < rect.right ? rect.right : rect.left, rect.top < rect.bottom ? rect.bottom : rect.top};
}

}  // namespace orvik::detail
