// How controls look: flat faces with thin frames and round corners, from the scheme of the desktop alone. Sizes that are given as
// pixels at 96 dots an inch are scaled by `dpi`. For the thread that paints; a DC's state stays as it was.
#pragma once

#include "platform/contrast.h"
#include "platform/posix/drawing/gdi.h"

namespace orvik::detail {

struct FlatState {
    bool enabled = true, hot = false, pressed = false, focused = false;
    bool on = false;     // checked, chosen
    bool third = false;  // neither on nor off
    bool main = false;   // what Enter presses
};

// Colours between those of the scheme.
COLORREF FrameInk();  // frames of fields and buttons: visible on every ground
COLORREF ButtonFace(const FlatState& state);
COLORREF ButtonInk(const FlatState& state);  // readable on that face

// Filled, with round corners, smooth.
void FillRounded(HDC dc, const RECT& place, float radius, COLORREF colour);
// The ring of who has the keys, two pixels wide, just inside `place`.
void PaintFocusRing(HDC dc, const RECT& place, UINT dpi);
// The thin line around the row of a list that has the keys.
void PaintRowFocus(HDC dc, const RECT& row, bool chosen, UINT dpi);

void PaintButtonFace(HDC dc, const RECT& place, const FlatState& state, UINT dpi);
void PaintCheckBox(HDC dc, const RECT& box, const FlatState& state, UINT dpi);
void PaintRadioButton(HDC dc, const RECT& box, const FlatState& state, UINT dpi);
// The frame of a field or a list over its paper; `focused` in the accent.
void PaintFieldFrame(HDC dc, const RECT& place, const FlatState& state, UINT dpi);
// A small arrow head in the middle of `place`. dx, dy: where it points to (one of them is 0, the other 1 or -1).
void PaintChevron(HDC dc, const RECT& place, int dx, int dy, COLORREF ink, UINT dpi);

}  // namespace orvik::detail
