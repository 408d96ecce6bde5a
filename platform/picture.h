// Picture files: whoever draws on a DC can draw into a PNG, SVG or PDF file with the same calls.
//
//     HDC dc = OrvikBeginPicture("chart.svg", 1600, 900);   // null: GetLastError tells why
//     ...draw...
//     if (!OrvikEndPicture(dc, TRUE)) ...                   // the file is written here, in one step
//
// Thread rule: a picture belongs to the thread that began it, as a DC does; threads may have pictures of their own at the same
// time. Ownership: the DC belongs to the picture. Select the caller's own objects out before the end, and never delete or release
// it.
//
// The page is white, its origin the upper left corner, its unit a pixel at 96 dots an inch; mapping is MM_TEXT with any origin.
// In SVG and PDF pictures, which are drawn as lines, areas and text and not as pixels:
// - drawing covers what is there: pens and patterns under a raster operation other than copying, black, white or nothing leave no
//   mark, since what lies below them is not known;
// - bitmaps and clip paths are not supported: the picture's end fails with 50, so that nothing is missing unnoticed;
// - gaps of broken lines are left open, whatever the background mode;
// - nothing can be read back: GetPixel fails, and so does BitBlt out of the picture.
#pragma once

#include "platform/win32.h"

// A point between pixels: (3.0, 5.0) is the middle of the pixel (3, 5).
struct ORVIK_CURVE_POINT {
    float x, y;
};

// Sides of a picture in pixels, and the pixels of a PNG in all (256 MB of memory).
constexpr int kOrvikPictureSide = 16384;
constexpr int kOrvikPicturePixels = 64 * 1024 * 1024;

// Begins a picture in memory; nothing is written yet. The end of `path` says which kind: ".png", ".svg" or ".pdf", in any case of
// letters. Null and the last error: 87 for another ending or a side outside 1..16384, 8 for a PNG of too many pixels and when
// memory is short.
ORVIK_API HDC OrvikBeginPicture(LPCSTR path, int width, int height);

// Ends the picture and its DC, whatever the result. With `keep` the file is written beside its place, flushed to the disk and
// renamed, so that the name holds the previous file or the whole new one at every moment; without it nothing is written. FALSE
// and the last error, the previous file intact: 6 no picture's DC; 3 no such folder; 5 not allowed, or the name is a folder's;
// 112 disk full; 50 something was drawn that the picture cannot hold (see above).
ORVIK_API BOOL OrvikEndPicture(HDC dc, BOOL keep);

// Non-zero for the DC of a PDF picture, or of a page to be printed (platform/print.h): one that is drawn for paper.
ORVIK_API BOOL OrvikIsPrinting(HDC dc);

// Draws an antialiased line through `count` points in logical units, with round joins and ends, `width` pixels wide (0.1..100).
// A point with a NaN ends a piece, and the next one begins another; a piece of one point is a dot. Points beyond +-1,000,000 are
// drawn as if they lay there. Clipping and origins of the DC hold, on any DC: a picture's, a window's, a bitmap's; in SVG and PDF
// it is a line with exact corners. FALSE and the last error: 87 for a bad number or width, 6 for a bad DC.
ORVIK_API BOOL OrvikSmoothPolyline(HDC dc, const ORVIK_CURVE_POINT* points, int count, COLORREF colour, float width);

// Saves the pixels of a DC as a PNG file, replaced as above: of a window, a bitmap, a PNG picture under way. `area` is in logical
// units. FALSE and the last error: 87 for an area that is empty or too large, or an ending other than ".png"; else as above.
ORVIK_API BOOL OrvikSavePixels(HDC dc, const RECT* area, LPCSTR path);
