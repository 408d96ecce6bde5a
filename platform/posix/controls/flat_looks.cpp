#include "platform/posix/controls/flat_looks_internal.h"

#include <algorithm>

#include "platform/picture.h"
#include "platform/posix/controls/control_internal.h"

namespace orvik::detail {
namespace {
constexpr float kRadius = 4;

float Part(UINT dpi, float pixels) { return pixels * static_cast<float>(dpi) / USER_DEFAULT_SCREEN_DPI; }
int Line(UINT dpi) { return std::max(1, static_cast<int>(Part(dpi, 1))); }

void Dot(HDC dc, float x, float y, float width, COLORREF colour) {
    const ORVIK_CURVE_POINT point{x, y};
    OrvikSmoothPolyline(dc, &point, 1, colour, width);
}

COLORREF Accent() { return GetSysColor(COLOR_HIGHLIGHT); }

// The mark's ground and the frame around it.
struct MarkLook {
    COLORREF ground, frame, ink;
};
MarkLook LookOf(const FlatState& state) {
    const COLORREF paper = GetSysColor(state.enabled ? COLOR_WINDOW : COLOR_BTNFACE);
    if (!state.on)
        return {state.pressed ? GetSysColor(COLOR_BTNSHADOW) : paper, state.hot && state.enabled ? Accent() : FrameInk(), paper};
    const COLORREF ground = state.enabled ? state.pressed ? Mixed(Accent(), 0, 20) : Accent() : GetSysColor(COLOR_GRAYTEXT);
    return {ground, ground, ReadableOn(ground, GetSysColor(COLOR_HIGHLIGHTTEXT))};
}
}  // namespace

COLORREF FrameInk() { return ReadableOn(GetSysColor(COLOR_BTNFACE), GetSysColor(COLOR_BTNSHADOW), kVisibleShape); }

COLORREF ButtonFace(const FlatState& state) {
    const COLORREF face = GetSysColor(COLOR_BTNFACE), text = GetSysColor(COLOR_BTNTEXT);
    if (!state.enabled) return Mixed(face, text, 3);
    if (state.main)
        return state.pressed ? Mixed(Accent(), 0, 20) : state.hot ? Mixed(Accent(), RGB(255, 255, 255), 10) : Accent();
    if (state.pressed || state.on) return Mixed(face, text, 18);
    return state.hot ? Mixed(face, Accent(), 15) : GetSysColor(COLOR_BTNHIGHLIGHT);
}

COLORREF ButtonInk(const FlatState& state) {
    if (!state.enabled) return GetSysColor(COLOR_GRAYTEXT);
    return ReadableOn(ButtonFace(state), GetSysColor(state.main ? COLOR_HIGHLIGHTTEXT : COLOR_BTNTEXT));
}

void FillRounded(HDC dc, const RECT& place, float radius, COLORREF colour) {
    const float width = static_cast<float>(place.right - place.left), height = static_cast<float>(place.bottom - place.top);
    if (width <= 0 || height <= 0) return;
    radius = std::min({radius, width / 2, height / 2});
    const LONG inset = static_cast<LONG>(radius + 0.99f);
    FillColour(dc, {place.left + inset, place.top, place.right - inset, place.bottom}, colour);
    FillColour(dc, {place.left, place.top + inset, place.left + inset, place.bottom - inset}, colour);
    FillColour(dc, {place.right - inset, place.top + inset, place.right, place.bottom - inset}, colour);
    // Points of smooth lines lie in the middle of their pixels.
    const float left = static_cast<float>(place.left) + radius - 0.5f, right = static_cast<float>(place.right) - radius - 0.5f;
    const float top = static_cast<float>(place.top) + radius - 0.5f, bottom = static_cast<float>(place.bottom) - radius - 0.5f;
    for (const float x : {left, right})
        for (const float y : {top, bottom}) Dot(dc, x, y, 2 * radius, colour);
}

void PaintFocusRing(HDC dc, const RECT& place, UINT dpi) {
    const int width = 2 * Line(dpi);
    const COLORREF ink = ReadableOn(GetSysColor(COLOR_BTNFACE), Accent(), kVisibleShape);
    const RECT sides[] = {{place.left, place.top, place.right, place.top + width},
                          {place.left, place.bottom - width, place.right, place.bottom},
                          {place.left, place.top + width, place.left + width, place.bottom - width},
                          {place.right - width, place.top + width, place.right, place.bottom - width}};
    for (const RECT& each : sides) FillColour(dc, each, ink);
}

void PaintRowFocus(HDC dc, const RECT& row, bool chosen, UINT dpi) {
    RECT ring = row;
    for (int i = 0; i < Line(dpi); ++i, ring = Shrunk(ring, 1))
        FrameColour(dc, ring, chosen ? GetSysColor(COLOR_HIGHLIGHTTEXT) : FrameInk());
}

void PaintButtonFace(HDC dc, const RECT& place, const FlatState& state, UINT dpi) {
    const int line = Line(dpi);
    const float radius = Part(dpi, kRadius);
    RECT area = place;
    if (state.focused) {
        // The ring, a gap in the ground's colour, then the button.
        FillRounded(dc, area, radius + static_cast<float>(line), ReadableOn(GetSysColor(COLOR_BTNFACE), Accent(), kVisibleShape));
        area = Shrunk(area, 2 * line);
        if (state.main) {
            FillRounded(dc, area, radius, GetSysColor(COLOR_BTNFACE));
            area = Shrunk(area, line);
        }
        FillRounded(dc, area, radius - static_cast<float>(line), ButtonFace(state));
        return;
    }
    const bool framed = !state.main || !state.enabled;
    if (framed) {
        FillRounded(dc, area, radius, state.enabled ? FrameInk() : GetSysColor(COLOR_BTNSHADOW));
        area = Shrunk(area, line);
    }
    FillRounded(dc, area, radius - static_cast<float>(framed ? line : 0), ButtonFace(state));
}

void PaintCheckBox(HDC dc, const RECT& box, const FlatState& state, UINT dpi) {
    const MarkLook look = LookOf(state);
    const int line = Line(dpi);
    const float side = static_cast<float>(box.right - box.left);
    FillRounded(dc, box, side / 5, look.frame);
    FillRounded(dc, Shrunk(box, line), side / 5 - static_cast<float>(line), look.ground);
    if (!state.on) return;
    const auto at = [&](float x, float y) {
        return ORVIK_CURVE_POINT{static_cast<float>(box.left) + x * side - 0.5f, static_cast<float>(box.top) + y * side - 0.5f};
    };
    const ORVIK_CURVE_POINT check[] = {at(0.24f, 0.52f), at(0.43f, 0.70f), at(0.77f, 0.32f)};
    const ORVIK_CURVE_POINT bar[] = {at(0.27f, 0.5f), at(0.73f, 0.5f)};
    if (state.third)
        OrvikSmoothPolyline(dc, bar, 2, look.ink, side / 7);
    else
        OrvikSmoothPolyline(dc, check, 3, look.ink, side / 8);
}

void PaintRadioButton(HDC dc, const RECT& box, const FlatState& state, UINT dpi) {
    const MarkLook look = LookOf(state);
    const float side = static_cast<float>(box.right - box.left);
    const float x = static_cast<float>(box.left) + side / 2 - 0.5f, y = static_cast<float>(box.top) + side / 2 - 0.5f;
    Dot(dc, x, y, side, look.frame);
    Dot(dc, x, y, side - 2 * static_cast<float>(Line(dpi)), look.ground);
    if (state.on) Dot(dc, x, y, side * 0.42f, look.ink);
}

void PaintFieldFrame(HDC dc, const RECT& place, const FlatState& state, UINT dpi) {
    if (state.focused && state.enabled) return PaintFocusRing(dc, place, dpi);
    const COLORREF ink = !state.enabled ? GetSysColor(COLOR_BTNSHADOW) : state.hot ? Accent() : FrameInk();
    RECT ring = place;
    for (int i = 0; i < Line(dpi); ++i) {
        FrameColour(dc, ring, ink);
        ring = Shrunk(ring, 1);
    }
}

void PaintChevron(HDC dc, const RECT& place, int dx, int dy, COLORREF ink, UINT dpi) {
    const float x = static_cast<float>(place.left + place.right - 1) / 2,
                y = static_cast<float>(place.top + place.bottom - 1) / 2;
    const float reach = Part(dpi, 3.5f), half = reach / 2, fx = static_cast<float>(dx), fy = static_cast<float>(dy);
    // From one end of the wings over the tip to the other.
    const ORVIK_CURVE_POINT points[] = {{x - fx * half - fy * reach, y - fy * half - fx * reach},
                                        {x + fx * half, y + fy * half},
                                        {x - fx * half + fy * reach, y - fy * half + fx * reach}};
    OrvikSmoothPolyline(dc, points, 3, ink, Part(dpi, 1.4f));
}

}  // namespace orvik::detail
