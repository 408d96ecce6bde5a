// Lines, figures and the looks of controls, with the pen, brush and raster operation of a DC.
// A line has its first pixel and not its last. A rectangle's right and bottom are outside. Dotted and dashed lines of width 1
// have the background colour in their gaps unless the background mode is TRANSPARENT.
#pragma once

#include "platform/posix/drawing/dc.h"
#include "platform/posix/resources/resources.h"

ORVIK_API BOOL WINAPI MoveToEx(HDC dc, int x, int y, LPPOINT before);
ORVIK_API BOOL WINAPI GetCurrentPositionEx(HDC dc, LPPOINT position);
ORVIK_API BOOL WINAPI LineTo(HDC dc, int x, int y);
ORVIK_API BOOL WINAPI Polyline(HDC dc, const POINT* points, int count);
ORVIK_API BOOL WINAPI PolylineTo(HDC dc, const POINT* points, DWORD count);
ORVIK_API BOOL WINAPI PolyPolyline(HDC dc, const POINT* points, const DWORD* counts, DWORD figures);

// Outline with the pen, inside with the brush.
ORVIK_API BOOL WINAPI Polygon(HDC dc, const POINT* points, int count);
ORVIK_API BOOL WINAPI Rectangle(HDC dc, int left, int top, int right, int bottom);
ORVIK_API BOOL WINAPI Ellipse(HDC dc, int left, int top, int right, int bottom);

// The brush may also be a COLOR_ number + 1. Neither pen nor raster operation counts.
ORVIK_API int WINAPI FillRect(HDC dc, const RECT* rect, HBRUSH brush);
ORVIK_API int WINAPI FrameRect(HDC dc, const RECT* rect, HBRUSH brush);  // one pixel wide
ORVIK_API BOOL WINAPI InvertRect(HDC dc, const RECT* rect);
ORVIK_API BOOL WINAPI FillRgn(HDC dc, HRGN region, HBRUSH brush);
// Inverts every other pixel of the frame: drawn twice it is gone.
ORVIK_API BOOL WINAPI DrawFocusRect(HDC dc, const RECT* rect);

#define BDR_RAISEDOUTER 0x0001u
#define BDR_SUNKENOUTER 0x0002u
#define BDR_RAISEDINNER 0x0004u
#define BDR_SUNKENINNER 0x0008u
#define EDGE_RAISED (BDR_RAISEDOUTER | BDR_RAISEDINNER)
#define EDGE_SUNKEN (BDR_SUNKENOUTER | BDR_SUNKENINNER)
#define EDGE_ETCHED (BDR_SUNKENOUTER | BDR_RAISEDINNER)
#define EDGE_BUMP (BDR_RAISEDOUTER | BDR_SUNKENINNER)
#define BF_LEFT 0x0001u
#define BF_TOP 0x0002u
#define BF_RIGHT 0x0004u
#define BF_BOTTOM 0x0008u
#define BF_RECT (BF_LEFT | BF_TOP | BF_RIGHT | BF_BOTTOM)
#define BF_MIDDLE 0x0800u
#define BF_SOFT 0x1000u
#define BF_ADJUST 0x2000u
#define BF_FLAT 0x4000u
#define BF_MONO 0x8000u

#define DFC_CAPTION 1u
#define DFC_MENU 2u
#define DFC_SCROLL 3u
#define DFC_BUTTON 4u
#define DFCS_BUTTONCHECK 0x0000u
#define DFCS_BUTTONRADIO 0x0004u
#define DFCS_BUTTON3STATE 0x0008u
#define DFCS_BUTTONPUSH 0x0010u
#define DFCS_INACTIVE 0x0100u
#define DFCS_PUSHED 0x0200u
#define DFCS_CHECKED 0x0400u
#define DFCS_ADJUSTRECT 0x2000u
#define DFCS_FLAT 0x4000u
#define DFCS_MONO 0x8000u

ORVIK_API BOOL WINAPI DrawEdge(HDC dc, LPRECT rect, UINT edge, UINT flags);
// DFC_BUTTON alone: push button, check box (two and three states), radio button. Other kinds: 0 with error 87.
ORVIK_API BOOL WINAPI DrawFrameControl(HDC dc, LPRECT rect, UINT type, UINT state);

#define DI_MASK 0x0001u
#define DI_IMAGE 0x0002u
#define DI_NORMAL 0x0003u
#define DI_DEFAULTSIZE 0x0008u
// Sizes of 0 are the icon's own, or 32 with DI_DEFAULTSIZE.
ORVIK_API BOOL WINAPI DrawIconEx(HDC dc, int x, int y, HICON icon, int width, int height, UINT step, HBRUSH flickerFree,
                                 UINT flags);
ORVIK_API BOOL WINAPI DrawIcon(HDC dc, int x, int y, HICON icon);
