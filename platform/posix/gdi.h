// GDI objects as far as they are kept without drawing: fonts, and the metrics that name the menu font.
// Any thread. A handle of a deleted or foreign object is refused.
#pragma once

#include "platform/posix/handles.h"

#define FW_NORMAL 400
#define FW_BOLD 700
#define ANSI_CHARSET 0
#define DEFAULT_CHARSET 1
#define OUT_DEFAULT_PRECIS 0
#define CLIP_DEFAULT_PRECIS 0
#define DEFAULT_QUALITY 0
#define ANTIALIASED_QUALITY 4
#define CLEARTYPE_QUALITY 5
#define DEFAULT_PITCH 0
#define VARIABLE_PITCH 2
#define FF_DONTCARE 0
#define FF_SWISS 0x20

#define SYSTEM_FONT 13
#define DEFAULT_GUI_FONT 17

#define SPI_GETNONCLIENTMETRICS 0x0029u

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

ORVIK_API HFONT WINAPI CreateFontIndirectA(const LOGFONTA* font);
// Fonts that belong to the system; deleting one does nothing. Null for a number other than the two above.
ORVIK_API HGDIOBJ WINAPI GetStockObject(int index);
// Bytes copied, at most `size`; with a null buffer the bytes there are; 0 for a bad handle.
ORVIK_API int WINAPI GetObjectA(HANDLE object, int size, LPVOID buffer);
ORVIK_API BOOL WINAPI DeleteObject(HGDIOBJ object);
// Only SPI_GETNONCLIENTMETRICS, in both documented sizes (344 bytes, and 340 without the padded border): other queries are
// error 87.
ORVIK_API BOOL WINAPI SystemParametersInfoA(UINT action, UINT parameter, PVOID data, UINT winIni);
