// GDI objects: pens, brushes, fonts; bitmaps (bitmap.h) and regions (region.h) have the same kind of handle.
// Any thread may make and delete; objects are constant once made, bitmaps and regions apart. A handle of a deleted or foreign
// object is refused with error 6. An object that a DC has selected is deleted when the DC lets it go; deleting one that belongs
// to the system does nothing. Colours are COLORREFs, sizes pixels.
#pragma once

#include "platform/posix/kernel/handles.h"

#define FW_DONTCARE 0
#define FW_THIN 100
#define FW_LIGHT 300
#define FW_NORMAL 400
#define FW_MEDIUM 500
#define FW_SEMIBOLD 600
#define FW_BOLD 700
#define FW_HEAVY 900
#define ANSI_CHARSET 0
#define DEFAULT_CHARSET 1
#define OUT_DEFAULT_PRECIS 0
#define CLIP_DEFAULT_PRECIS 0
#define DEFAULT_QUALITY 0
#define ANTIALIASED_QUALITY 4
#define CLEARTYPE_QUALITY 5
#define SYMBOL_CHARSET 2
#define OUT_TT_PRECIS 4
#define PROOF_QUALITY 2
#define NONANTIALIASED_QUALITY 3
#define DEFAULT_PITCH 0
#define FIXED_PITCH 1
#define VARIABLE_PITCH 2
#define FF_DONTCARE 0
#define FF_ROMAN 0x10
#define FF_SWISS 0x20
#define FF_MODERN 0x30

#define WHITE_BRUSH 0
#define LTGRAY_BRUSH 1
#define GRAY_BRUSH 2
#define DKGRAY_BRUSH 3
#define BLACK_BRUSH 4
#define NULL_BRUSH 5
#define HOLLOW_BRUSH NULL_BRUSH
#define WHITE_PEN 6
#define BLACK_PEN 7
#define NULL_PEN 8
#define OEM_FIXED_FONT 10
#define ANSI_FIXED_FONT 11
#define ANSI_VAR_FONT 12
#define SYSTEM_FONT 13
#define DEVICE_DEFAULT_FONT 14
#define SYSTEM_FIXED_FONT 16
#define DEFAULT_GUI_FONT 17
#define DC_BRUSH 18
#define DC_PEN 19

#define OBJ_PEN 1u
#define OBJ_BRUSH 2u
#define OBJ_DC 3u
#define OBJ_FONT 6u
#define OBJ_BITMAP 7u
#define OBJ_REGION 8u
#define OBJ_MEMDC 10u
#define OBJ_EXTPEN 11u

#define PS_SOLID 0
#define PS_DASH 1
#define PS_DOT 2
#define PS_DASHDOT 3
#define PS_DASHDOTDOT 4
#define PS_NULL 5
#define PS_INSIDEFRAME 6
#define PS_STYLE_MASK 0x0000000Fu
#define PS_ENDCAP_ROUND 0x00000000u
#define PS_ENDCAP_SQUARE 0x00000100u
#define PS_ENDCAP_FLAT 0x00000200u
#define PS_ENDCAP_MASK 0x00000F00u
#define PS_JOIN_ROUND 0x00000000u
#define PS_JOIN_BEVEL 0x00001000u
#define PS_JOIN_MITER 0x00002000u
#define PS_JOIN_MASK 0x0000F000u
#define PS_COSMETIC 0x00000000u
#define PS_GEOMETRIC 0x00010000u
#define PS_TYPE_MASK 0x000F0000u

#define BS_SOLID 0u
#define BS_NULL 1u
#define BS_HOLLOW BS_NULL
#define BS_HATCHED 2u
#define BS_PATTERN 3u

#define HS_HORIZONTAL 0
#define HS_VERTICAL 1
#define HS_FDIAGONAL 2
#define HS_BDIAGONAL 3
#define HS_CROSS 4
#define HS_DIAGCROSS 5

struct LOGPEN {
    UINT lopnStyle;
    POINT lopnWidth;  // y is not used
    COLORREF lopnColor;
};
struct LOGBRUSH {
    UINT lbStyle;
    COLORREF lbColor;
    ULONG_PTR lbHatch;
};

struct NONCLIENTMETRICSA {
    UINT cbSize;
    int iBorderWidth;
    int iScrollWidth;
    int iScrollHeight;
    int iCaptionWidth;
    int iCaptionHeight;
    LOGFONTA lfCaptionFont;
    int iSmCaptionWidth;
    int iSmCaptionHeight;
    LOGFONTA lfSmCaptionFont;
    int iMenuWidth;
    int iMenuHeight;
    LOGFONTA lfMenuFont;
    LOGFONTA lfStatusFont;
    LOGFONTA lfMessageFont;
    int iPaddedBorderWidth;
};
static_assert(sizeof(NONCLIENTMETRICSA) == 344);

// A pen wider than one pixel is solid whatever its style, as CreatePen has it; width 0 is one pixel.
ORVIK_API HPEN WINAPI CreatePen(int style, int width, COLORREF color);
ORVIK_API HPEN WINAPI CreatePenIndirect(const LOGPEN* pen);
// Cosmetic pens of width 1, and geometric ones with a solid brush and their caps and joins; no dashes of one's own
// (`entries` 0, `lengths` null), else error 87.
ORVIK_API HPEN WINAPI ExtCreatePen(DWORD style, DWORD width, const LOGBRUSH* brush, DWORD entries, const DWORD* lengths);
ORVIK_API HBRUSH WINAPI CreateSolidBrush(COLORREF color);
ORVIK_API HBRUSH WINAPI CreateHatchBrush(int hatch, COLORREF color);
// Repeats a copy of the bitmap, of any size.
ORVIK_API HBRUSH WINAPI CreatePatternBrush(HBITMAP bitmap);
ORVIK_API HBRUSH WINAPI CreateBrushIndirect(const LOGBRUSH* brush);
ORVIK_API HFONT WINAPI CreateFontIndirectA(const LOGFONTA* font);
ORVIK_API HFONT WINAPI CreateFontA(int height, int width, int escapement, int orientation, int weight, DWORD italic,
                                   DWORD underline, DWORD strikeOut, DWORD charSet, DWORD outPrecision, DWORD clipPrecision,
                                   DWORD quality, DWORD pitchAndFamily, LPCSTR face);
// Objects that belong to the system; deleting one does nothing. Null for a number without an object; there are no palettes.
ORVIK_API HGDIOBJ WINAPI GetStockObject(int index);
// An OBJ_ number; 0 for a bad handle.
ORVIK_API DWORD WINAPI GetObjectType(HGDIOBJ object);
// Bytes copied, at most `size` (a LOGPEN, LOGBRUSH, LOGFONTA, BITMAP or DIBSECTION); with a null buffer the bytes there are;
// 0 for a bad handle.
ORVIK_API int WINAPI GetObjectA(HANDLE object, int size, LPVOID buffer);
ORVIK_API BOOL WINAPI DeleteObject(HGDIOBJ object);
ORVIK_API BOOL WINAPI GdiFlush();  // what was drawn is in the pixels; here it always is
