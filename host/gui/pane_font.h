// The fonts of the window: the chart's, which is that of its files, by its height in pixels; and the desktop's for what stands
// around it. Any thread.
#pragma once

#include <cstring>

#include "platform/dpi.h"
#include "platform/win32.h"
#include "toolkit/global_data.h"

inline LOGFONTA PaneFont(LONG height) {
    LOGFONTA font = {};
    font.lfHeight = -height;
    font.lfWeight = FW_NORMAL;
    font.lfCharSet = ANSI_CHARSET;
    font.lfQuality = ANTIALIASED_QUALITY;
    font.lfPitchAndFamily = VARIABLE_PITCH | FF_SWISS;
    std::strcpy(font.lfFaceName, "DejaVu Sans");
    return font;
}

inline LOGFONTA DesktopFont(HWND window) {
    constexpr LONG kUsual = 13;
    NONCLIENTMETRICSA metrics = {};
    if (!globalData.GetNonClientMetrics(metrics)) return PaneFont(OrvikScale(kUsual, OrvikDpiOf(window)));
    LOGFONTA font = metrics.lfMessageFont;
    font.lfHeight = ::MulDiv(font.lfHeight, static_cast<int>(OrvikDpiOf(window)), static_cast<int>(OrvikDpiOf(nullptr)));
    return font;
}
