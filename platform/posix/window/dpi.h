// Dots an inch, per window: what a screen has, and what follows it.
// Windows here behave as those of a program that says "per monitor, version 2". A top-level window has the dots of its screen,
// kept in it, and everything below it has the same; 96 where nobody said otherwise. A window that is made takes its owner's, or
// else the system's. Any thread may ask.
#pragma once

#include "platform/posix/drawing/gdi.h"
#include "platform/posix/drawing/rect.h"
#include "platform/posix/window/window_place.h"

#define USER_DEFAULT_SCREEN_DPI 96

// The new dots stand in both words of wParam; lParam is a const RECT*, where the window should stand now. The program moves it;
// DefWindowProcA does nothing. Dialogs made from templates scale font, controls and size by themselves (DefDlgProcA).
#define WM_DPICHANGED 0x02E0u
// To everything below the window, before and after it is told: from the bottom up, and from the top down. The dots are new
// already.
#define WM_DPICHANGED_BEFOREPARENT 0x02E2u
#define WM_DPICHANGED_AFTERPARENT 0x02E3u
// To the top-level window before all of them: wParam has the new dots, lParam is a SIZE* with the size that is going to be
// suggested. Whoever knows better writes there and answers non-zero.
#define WM_GETDPISCALEDSIZE 0x02E4u

ORVIK_API UINT WINAPI GetDpiForWindow(HWND window);  // 0 and error 1400 for none
ORVIK_API UINT WINAPI GetDpiForSystem();
// Of what has a size in pixels; all else is as GetSystemMetrics says, which tells the sizes for the system's dots. Edges,
// and how far a pointer may stray, have the same pixels everywhere.
ORVIK_API int WINAPI GetSystemMetricsForDpi(int index, UINT dpi);
// SPI_GETNONCLIENTMETRICS, with narrow text; other queries are error 87.
ORVIK_API BOOL WINAPI SystemParametersInfoForDpi(UINT action, UINT parameter, PVOID data, UINT winIni, UINT dpi);
ORVIK_API BOOL WINAPI AdjustWindowRectExForDpi(LPRECT rectangle, DWORD style, BOOL menu, DWORD exStyle, UINT dpi);  // no frame

// What a screen says. Dots are 48 to 960; others are error 87.
// The dots of windows made from now on, and what LOGPIXELSX tells of the display. Windows that are there keep theirs.
ORVIK_API BOOL OrvikSetSystemDpi(UINT dpi);
// The top-level window `root` has come to a screen of these dots: tells it and all below it, on its own thread (error 5
// otherwise), and has everything painted anew. `suggested` is where it should stand, on the desktop; null for its place in the
// new size. With the dots it has already nothing happens.
ORVIK_API BOOL OrvikSetWindowDpi(HWND root, UINT dpi, const RECT* suggested);
