// Text of the house in the DC's font, text colour and alignment. Fonts come from the machine through fontconfig; a face that
// is not there is replaced by the likest one, DejaVu Sans if there is none. A machine without any font has empty texts of the
// height asked for.
// In a UTF-8 process letters (text/letters_internal.h) that the font lacks come from other fonts of the machine, on the same base
// line; marks sit on their letters, and runs that are read from the right stand so within a line that is read from the left. A
// byte that belongs to no character shows as Windows-1252. No letter is ever cut: not by wrapping, nor by an ellipsis.
// Widths are whole pixels. The extent of a text is the sum of its letters' widths; scripts whose letters join may give a letter
// another width at the end of a piece than within the whole. Lengths and counts are bytes. One thread at a time for a DC.
#pragma once

#include "platform/posix/drawing/dc.h"

#define TA_NOUPDATECP 0u
#define TA_UPDATECP 1u
#define TA_LEFT 0u
#define TA_RIGHT 2u
#define TA_CENTER 6u
#define TA_TOP 0u
#define TA_BOTTOM 8u
#define TA_BASELINE 24u
#define GDI_ERROR 0xFFFFFFFFu

#define ETO_OPAQUE 0x0002u
#define ETO_CLIPPED 0x0004u

#define DT_TOP 0x00000000u
#define DT_LEFT 0x00000000u
#define DT_CENTER 0x00000001u
#define DT_RIGHT 0x00000002u
#define DT_VCENTER 0x00000004u
#define DT_BOTTOM 0x00000008u
#define DT_WORDBREAK 0x00000010u
#define DT_SINGLELINE 0x00000020u
#define DT_EXPANDTABS 0x00000040u
#define DT_NOCLIP 0x00000100u
#define DT_EXTERNALLEADING 0x00000200u
#define DT_CALCRECT 0x00000400u
#define DT_NOPREFIX 0x00000800u
#define DT_END_ELLIPSIS 0x00008000u
#define DT_HIDEPREFIX 0x00100000u

#define TMPF_FIXED_PITCH 0x01  // set for a font whose widths differ, as documented
#define TMPF_VECTOR 0x02
#define TMPF_TRUETYPE 0x04

struct TEXTMETRICA {
    LONG tmHeight, tmAscent, tmDescent, tmInternalLeading, tmExternalLeading, tmAveCharWidth, tmMaxCharWidth, tmWeight,
        tmOverhang, tmDigitizedAspectX, tmDigitizedAspectY;
    BYTE tmFirstChar, tmLastChar, tmDefaultChar, tmBreakChar, tmItalic, tmUnderlined, tmStruckOut, tmPitchAndFamily, tmCharSet;
};
using TEXTMETRIC = TEXTMETRICA;
using LPTEXTMETRICA = TEXTMETRICA*;

ORVIK_API UINT WINAPI SetTextAlign(HDC dc, UINT align);
ORVIK_API UINT WINAPI GetTextAlign(HDC dc);
ORVIK_API BOOL WINAPI TextOutA(HDC dc, int x, int y, LPCSTR text, int length);
// `widths`, where given, holds for each byte its part of the distance from its letter to the next: a letter of several bytes has
// their sum.
ORVIK_API BOOL WINAPI ExtTextOutA(HDC dc, int x, int y, UINT options, const RECT* rect, LPCSTR text, UINT length,
                                  const int* widths);
// The height of the text in logical units, 0 on failure. A length of -1: up to the zero byte.
ORVIK_API int WINAPI DrawTextA(HDC dc, LPCSTR text, int length, LPRECT rect, UINT format);
ORVIK_API BOOL WINAPI GetTextExtentPoint32A(HDC dc, LPCSTR text, int length, SIZE* size);
// `fit` is in bytes and ends with a letter. In `widths` each byte has the extent up to the end of its letter.
ORVIK_API BOOL WINAPI GetTextExtentExPointA(HDC dc, LPCSTR text, int length, int maximum, int* fit, int* widths, SIZE* size);
// Of characters by their number, which is Unicode's in a UTF-8 process.
ORVIK_API BOOL WINAPI GetCharWidth32A(HDC dc, UINT first, UINT last, int* widths);
ORVIK_API BOOL WINAPI GetTextMetricsA(HDC dc, LPTEXTMETRICA metrics);
// Characters with the terminator; with a null buffer the room needed; 0 on failure. The name of the font in use, not of the one
// asked for.
ORVIK_API int WINAPI GetTextFaceA(HDC dc, int size, LPSTR name);
