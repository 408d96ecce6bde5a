// Text of Windows-1252 in the DC's font, text colour and alignment. Fonts come from the machine through fontconfig; a face that
// is not there is replaced by the likest one, DejaVu Sans if there is none. A machine without any font has empty texts of the
// height asked for.
// Widths are whole pixels and add up: the extent of a text is the sum of its characters' widths. One thread at a time for a DC.
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
// `widths`, where given, holds the distance from each character to the next.
ORVIK_API BOOL WINAPI ExtTextOutA(HDC dc, int x, int y, UINT options, const RECT* rect, LPCSTR text, UINT length,
                                  const int* widths);
// The height of the text in logical units, 0 on failure. A length of -1: up to the zero byte.
ORVIK_API int WINAPI DrawTextA(HDC dc, LPCSTR text, int length, LPRECT rect, UINT format);
ORVIK_API BOOL WINAPI GetTextExtentPoint32A(HDC dc, LPCSTR text, int length, SIZE* size);
ORVIK_API BOOL WINAPI GetTextExtentExPointA(HDC dc, LPCSTR text, int length, int maximum, int* fit, int* widths, SIZE* size);
ORVIK_API BOOL WINAPI GetCharWidth32A(HDC dc, UINT first, UINT last, int* widths);
ORVIK_API BOOL WINAPI GetTextMetricsA(HDC dc, LPTEXTMETRICA metrics);
// Characters with the terminator; with a null buffer the room needed; 0 on failure. The name of the font in use, not of the one
// asked for.
ORVIK_API int WINAPI GetTextFaceA(HDC dc, int size, LPSTR name);
