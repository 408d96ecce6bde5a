// Colours and the desktop's colour scheme: a light and a dark one, flat, in the accent that the desktop has
// (desktop_looks_internal.h). A program is told of a change by WM_SYSCOLORCHANGE. Any thread.
#pragma once

#include "platform/api.h"
#include "platform/posix/types.h"

#define RGB(r, g, b)                                                                                \
    (static_cast<COLORREF>(static_cast<BYTE>(r) | (static_cast<DWORD>(static_cast<BYTE>(g)) << 8) | \
                           (static_cast<DWORD>(static_cast<BYTE>(b)) << 16)))
#define GetRValue(rgb) (static_cast<BYTE>(rgb))
#define GetGValue(rgb) (static_cast<BYTE>((rgb) >> 8))
#define GetBValue(rgb) (static_cast<BYTE>((rgb) >> 16))
#define CLR_INVALID 0xFFFFFFFFu

#define COLOR_SCROLLBAR 0
#define COLOR_BACKGROUND 1
#define COLOR_ACTIVECAPTION 2
#define COLOR_INACTIVECAPTION 3
#define COLOR_MENU 4
#define COLOR_WINDOW 5
#define COLOR_WINDOWFRAME 6
#define COLOR_MENUTEXT 7
#define COLOR_WINDOWTEXT 8
#define COLOR_CAPTIONTEXT 9
#define COLOR_ACTIVEBORDER 10
#define COLOR_INACTIVEBORDER 11
#define COLOR_APPWORKSPACE 12
#define COLOR_HIGHLIGHT 13
#define COLOR_HIGHLIGHTTEXT 14
#define COLOR_BTNFACE 15
#define COLOR_BTNSHADOW 16
#define COLOR_GRAYTEXT 17
#define COLOR_BTNTEXT 18
#define COLOR_INACTIVECAPTIONTEXT 19
#define COLOR_BTNHIGHLIGHT 20
#define COLOR_3DDKSHADOW 21
#define COLOR_3DLIGHT 22
#define COLOR_INFOTEXT 23
#define COLOR_INFOBK 24
#define COLOR_HOTLIGHT 26
#define COLOR_GRADIENTACTIVECAPTION 27
#define COLOR_GRADIENTINACTIVECAPTION 28
#define COLOR_MENUHILIGHT 29
#define COLOR_MENUBAR 30
#define COLOR_3DFACE COLOR_BTNFACE
#define COLOR_3DSHADOW COLOR_BTNSHADOW
#define COLOR_3DHIGHLIGHT COLOR_BTNHIGHLIGHT
#define COLOR_3DHILIGHT COLOR_BTNHIGHLIGHT
#define COLOR_BTNHILIGHT COLOR_BTNHIGHLIGHT
#define COLOR_DESKTOP COLOR_BACKGROUND

// 0 (black) for a number without a colour, 25 among them.
ORVIK_API DWORD WINAPI GetSysColor(int index);
// A brush that belongs to the system; null for a number without a colour.
ORVIK_API HBRUSH WINAPI GetSysColorBrush(int index);
