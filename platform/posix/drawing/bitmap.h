// Bitmaps and copying of pixels. Every bitmap here has 32 bits a pixel, 0x00RRGGBB, or is black and white (1 bit, as far as its
// user can see). A bitmap can be selected into one DC at a time; while it is, that DC's thread is the one that may touch it.
#pragma once

#include "platform/posix/drawing/gdi.h"

#define SRCCOPY 0x00CC0020u
#define SRCPAINT 0x00EE0086u
#define SRCAND 0x008800C6u
#define SRCINVERT 0x00660046u
#define SRCERASE 0x00440328u
#define NOTSRCCOPY 0x00330008u
#define NOTSRCERASE 0x001100A6u
#define MERGECOPY 0x00C000CAu
#define MERGEPAINT 0x00BB0226u
#define PATCOPY 0x00F00021u
#define PATPAINT 0x00FB0A09u
#define PATINVERT 0x005A0049u
#define DSTINVERT 0x00550009u
#define BLACKNESS 0x00000042u
#define WHITENESS 0x00FF0062u

#define BI_RGB 0u
#define DIB_RGB_COLORS 0u

#define BLACKONWHITE 1
#define WHITEONBLACK 2
#define COLORONCOLOR 3
#define HALFTONE 4

struct BITMAP {
    LONG bmType, bmWidth, bmHeight;
    LONG bmWidthBytes;
    WORD bmPlanes, bmBitsPixel;
    LPVOID bmBits;  // of a DIB section, else null
};
struct BITMAPINFOHEADER {
    DWORD biSize;
    LONG biWidth, biHeight;  // a negative height: rows from the top
    WORD biPlanes, biBitCount;
    DWORD biCompression, biSizeImage;
    LONG biXPelsPerMeter, biYPelsPerMeter;
    DWORD biClrUsed, biClrImportant;
};
static_assert(sizeof(BITMAPINFOHEADER) == 40);
struct RGBQUAD {
    BYTE rgbBlue, rgbGreen, rgbRed, rgbReserved;
};
struct BITMAPINFO {
    BITMAPINFOHEADER bmiHeader;
    RGBQUAD bmiColors[1];
};
struct DIBSECTION {
    BITMAP dsBm;
    BITMAPINFOHEADER dsBmih;
    DWORD dsBitfields[3];
    HANDLE dshSection;
    DWORD dsOffset;
};

// 32 or 1 bits a pixel; `bits` (rows from the top, each a whole number of 16-bit words) may be null: black.
ORVIK_API HBITMAP WINAPI CreateBitmap(int width, int height, UINT planes, UINT bitsPerPixel, const void* bits);
// As deep as what the DC draws on: black and white for a memory DC without a bitmap of its own.
ORVIK_API HBITMAP WINAPI CreateCompatibleBitmap(HDC dc, int width, int height);
// 32 bits and BI_RGB only; no section handle, and offset 0. `bits` gets the pixels, which live as long as the bitmap.
ORVIK_API HBITMAP WINAPI CreateDIBSection(HDC dc, const BITMAPINFO* info, UINT usage, void** bits, HANDLE section, DWORD offset);

// Raster operations: all 256, by the truth table in the third byte of the code. The source may overlap the destination. From a
// page (PDF, SVG), which has no pixels, nothing can be copied: error 6.
ORVIK_API BOOL WINAPI BitBlt(HDC to, int x, int y, int width, int height, HDC from, int fromX, int fromY, DWORD operation);
// Takes the nearest pixel. Negative extents mirror.
ORVIK_API BOOL WINAPI StretchBlt(HDC to, int x, int y, int width, int height, HDC from, int fromX, int fromY, int fromWidth,
                                 int fromHeight, DWORD operation);
ORVIK_API BOOL WINAPI PatBlt(HDC dc, int x, int y, int width, int height, DWORD operation);
ORVIK_API int WINAPI SetStretchBltMode(HDC dc, int mode);  // kept, and answered; the nearest pixel is taken in every mode
ORVIK_API int WINAPI GetStretchBltMode(HDC dc);
ORVIK_API COLORREF WINAPI GetPixel(HDC dc, int x, int y);  // CLR_INVALID outside the clip region and on a page
ORVIK_API COLORREF WINAPI SetPixel(HDC dc, int x, int y, COLORREF color);
ORVIK_API BOOL WINAPI SetPixelV(HDC dc, int x, int y, COLORREF color);
