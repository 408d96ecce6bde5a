// Device contexts: what drawing goes to, and with what. A DC draws on a memory bitmap, on a window in memory, or on a page (PDF,
// SVG); canvas_internal.h has what lies beneath. One thread at a time for one DC and for what it draws on. A handle that is no
// DC is refused with error 6. Logical units are pixels, shifted by the window and viewport origins (MM_TEXT alone).
#pragma once

#include "platform/posix/drawing/bitmap.h"
#include "platform/posix/drawing/colors.h"
#include "platform/posix/drawing/rect.h"
#include "platform/posix/drawing/region.h"

#define R2_BLACK 1
#define R2_NOTMERGEPEN 2
#define R2_MASKNOTPEN 3
#define R2_NOTCOPYPEN 4
#define R2_MASKPENNOT 5
#define R2_NOT 6
#define R2_XORPEN 7
#define R2_NOTMASKPEN 8
#define R2_MASKPEN 9
#define R2_NOTXORPEN 10
#define R2_NOP 11
#define R2_MERGENOTPEN 12
#define R2_COPYPEN 13
#define R2_MERGEPENNOT 14
#define R2_MERGEPEN 15
#define R2_WHITE 16

#define TRANSPARENT 1
#define OPAQUE 2

#define ALTERNATE 1
#define WINDING 2

#define MM_TEXT 1

#define DRIVERVERSION 0
#define TECHNOLOGY 2
#define HORZSIZE 4  // mm
#define VERTSIZE 6
#define HORZRES 8
#define VERTRES 10
#define BITSPIXEL 12
#define PLANES 14
#define NUMCOLORS 24
#define RASTERCAPS 38
#define LOGPIXELSX 88
#define LOGPIXELSY 90
#define PHYSICALWIDTH 110
#define PHYSICALHEIGHT 111
#define PHYSICALOFFSETX 112
#define PHYSICALOFFSETY 113
#define DT_PLOTTER 0
#define DT_RASDISPLAY 1
#define DT_RASPRINTER 2
#define RC_BITBLT 1
#define RC_STRETCHBLT 0x0800

// `dc` may be null: a DC for memory, with a black and white bitmap of one pixel until one is selected.
ORVIK_API HDC WINAPI CreateCompatibleDC(HDC dc);
// "DISPLAY" alone: a DC that tells of the display and draws on one pixel of its own. Other drivers: error 1801.
struct DEVMODEA;  // settings of a printer; there are none here
ORVIK_API HDC WINAPI CreateDCA(LPCSTR driver, LPCSTR device, LPCSTR output, const DEVMODEA* mode);
ORVIK_API BOOL WINAPI DeleteDC(HDC dc);  // not for one that belongs to a window: 0
// The levels count from 1; RestoreDC takes a level, or a negative number of steps back.
ORVIK_API int WINAPI SaveDC(HDC dc);
ORVIK_API BOOL WINAPI RestoreDC(HDC dc, int saved);

// What was selected before; for a region how it looks (SelectClipRgn). Null (HGDI_ERROR for a region) for a bad handle, and for
// a bitmap that another DC has or that goes to a DC which is not a memory DC.
ORVIK_API HGDIOBJ WINAPI SelectObject(HDC dc, HGDIOBJ object);
#define HGDI_ERROR (reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(-1)))
ORVIK_API HGDIOBJ WINAPI GetCurrentObject(HDC dc, UINT type);

ORVIK_API int WINAPI GetDeviceCaps(HDC dc, int index);
ORVIK_API int WINAPI SetMapMode(HDC dc, int mode);  // MM_TEXT; 0 for every other
ORVIK_API int WINAPI GetMapMode(HDC dc);

// Each returns what was before: 0 (CLR_INVALID for colours) for a bad handle or value, and leaves things as they were.
ORVIK_API int WINAPI SetROP2(HDC dc, int mode);
ORVIK_API int WINAPI GetROP2(HDC dc);
ORVIK_API int WINAPI SetBkMode(HDC dc, int mode);
ORVIK_API int WINAPI GetBkMode(HDC dc);
ORVIK_API int WINAPI SetPolyFillMode(HDC dc, int mode);
ORVIK_API int WINAPI GetPolyFillMode(HDC dc);
ORVIK_API COLORREF WINAPI SetBkColor(HDC dc, COLORREF color);
ORVIK_API COLORREF WINAPI GetBkColor(HDC dc);
ORVIK_API COLORREF WINAPI SetTextColor(HDC dc, COLORREF color);
ORVIK_API COLORREF WINAPI GetTextColor(HDC dc);
ORVIK_API COLORREF WINAPI SetDCPenColor(HDC dc, COLORREF color);
ORVIK_API BOOL WINAPI SetBrushOrgEx(HDC dc, int x, int y, LPPOINT before);

ORVIK_API BOOL WINAPI SetWindowOrgEx(HDC dc, int x, int y, LPPOINT before);
ORVIK_API BOOL WINAPI GetWindowOrgEx(HDC dc, LPPOINT origin);
ORVIK_API BOOL WINAPI OffsetWindowOrgEx(HDC dc, int dx, int dy, LPPOINT before);
ORVIK_API BOOL WINAPI SetViewportOrgEx(HDC dc, int x, int y, LPPOINT before);
ORVIK_API BOOL WINAPI GetViewportOrgEx(HDC dc, LPPOINT origin);
ORVIK_API BOOL WINAPI OffsetViewportOrgEx(HDC dc, int dx, int dy, LPPOINT before);
ORVIK_API BOOL WINAPI LPtoDP(HDC dc, LPPOINT points, int count);
ORVIK_API BOOL WINAPI DPtoLP(HDC dc, LPPOINT points, int count);

// The clip region is in device units; rectangles are logical. Answers are those of region.h.
ORVIK_API int WINAPI IntersectClipRect(HDC dc, int left, int top, int right, int bottom);
ORVIK_API int WINAPI ExcludeClipRect(HDC dc, int left, int top, int right, int bottom);
ORVIK_API int WINAPI SelectClipRgn(HDC dc, HRGN region);  // null: no clip region
ORVIK_API int WINAPI ExtSelectClipRgn(HDC dc, HRGN region, int mode);
ORVIK_API int WINAPI OffsetClipRgn(HDC dc, int dx, int dy);
ORVIK_API int WINAPI GetClipBox(HDC dc, LPRECT box);
ORVIK_API BOOL WINAPI PtVisible(HDC dc, int x, int y);
ORVIK_API BOOL WINAPI RectVisible(HDC dc, const RECT* rect);
