// Sizes that follow the dots an inch of the screen. Any thread.
// Measures are written down in pixels at 96 dots an inch, at which they come out as they are. A window asks for its own dots each
// time it lays itself out, since it may come to another screen; it hears of that by WM_DPICHANGED.
#pragma once

#include "platform/win32.h"

// Of the screen that the window is on; the system's for null and for a window that is gone. A Windows before 10 (1607) has one
// number for all screens.
ORVIK_API UINT OrvikDpiOf(HWND window);

// Pixels at 96 dots an inch as pixels at `dpi`, to the nearest; and back.
inline int OrvikScale(int pixels, UINT dpi) { return MulDiv(pixels, static_cast<int>(dpi), USER_DEFAULT_SCREEN_DPI); }
inline int OrvikUnscale(int pixels, UINT dpi) { return MulDiv(pixels, USER_DEFAULT_SCREEN_DPI, static_cast<int>(dpi)); }

// As GetSystemMetrics, at these dots.
ORVIK_API int OrvikMetric(int index, UINT dpi);
