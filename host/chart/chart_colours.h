// What a chart is drawn with beside the colours of its channels. In files and on paper it is always the first: black on white.
// A plain value; any thread.
#pragma once

#include "platform/contrast.h"

struct ChartColours {
    COLORREF paper = RGB(255, 255, 255), ink = RGB(0, 0, 0), quiet = RGB(90, 90, 90), raster = RGB(224, 224, 224);

    // As the desktop's windows are now.
    static ChartColours OfWindow() {
        const COLORREF paper = ::GetSysColor(COLOR_WINDOW), ink = ::GetSysColor(COLOR_WINDOWTEXT);
        return {paper, ink, orvik::Mixed(ink, paper, 35), orvik::Mixed(paper, ink, 12)};
    }
    // A channel's line, and its name in a list: the channel's own colour, as much lighter or darker as the paper asks for.
    COLORREF Line(COLORREF colour) const { return orvik::ReadableOn(paper, colour, orvik::kVisibleShape); }
    COLORREF Name(COLORREF colour) const { return orvik::ReadableOn(paper, colour, orvik::kReadableText); }
};
