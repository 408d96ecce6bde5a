// The font of charts and lists, by its height in pixels. Any thread.
#pragma once

#include <cstring>

#include "platform/win32.h"

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
