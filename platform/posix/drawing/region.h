// Regions: sets of pixels as lists of rectangles. One thread at a time for one region.
#pragma once

#include "platform/posix/drawing/gdi.h"

#define NULLREGION 1
#define SIMPLEREGION 2
#define COMPLEXREGION 3

#define RGN_AND 1
#define RGN_OR 2
#define RGN_XOR 3
#define RGN_DIFF 4
#define RGN_COPY 5

// What the calls below answer: 0 on failure, or how the result looks.
ORVIK_API HRGN WINAPI CreateRectRgn(int left, int top, int right, int bottom);
ORVIK_API HRGN WINAPI CreateRectRgnIndirect(const RECT* rect);
ORVIK_API BOOL WINAPI SetRectRgn(HRGN region, int left, int top, int right, int bottom);
// `result` must be there already and may be one of the two; the second is not read for RGN_COPY.
ORVIK_API int WINAPI CombineRgn(HRGN result, HRGN first, HRGN second, int mode);
ORVIK_API int WINAPI OffsetRgn(HRGN region, int dx, int dy);
ORVIK_API int WINAPI GetRgnBox(HRGN region, LPRECT box);
ORVIK_API BOOL WINAPI EqualRgn(HRGN first, HRGN second);
ORVIK_API BOOL WINAPI PtInRegion(HRGN region, int x, int y);
ORVIK_API BOOL WINAPI RectInRegion(HRGN region, const RECT* rect);
