// DCs of windows. A window's DC draws into the picture of its top-level window, shifted to the window and clipped to what can be
// seen of it; windows in memory have no frame, so the whole window is its client area. The DC belongs to the thread that asked
// for it and goes back with ReleaseDC or EndPaint.
#pragma once

#include "platform/posix/drawing/dc.h"

struct PAINTSTRUCT {
    HDC hdc;
    BOOL fErase;
    RECT rcPaint;
    BOOL fRestore;
    BOOL fIncUpdate;
    BYTE rgbReserved[32];
};
using LPPAINTSTRUCT = PAINTSTRUCT*;

// Of a null window: the screen, which has no pixels to see.
ORVIK_API HDC WINAPI GetDC(HWND window);
ORVIK_API HDC WINAPI GetWindowDC(HWND window);
ORVIK_API int WINAPI ReleaseDC(HWND window, HDC dc);  // 0 for a DC that is not one of the window's
ORVIK_API HDC WINAPI BeginPaint(HWND window, LPPAINTSTRUCT paint);
ORVIK_API BOOL WINAPI EndPaint(HWND window, const PAINTSTRUCT* paint);
ORVIK_API HWND WINAPI WindowFromDC(HDC dc);  // null for a DC of no window
