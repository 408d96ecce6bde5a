// Where the parts of a chart lie: title, legend, axes on both sides, plot, time axis. Pure arithmetic on the sizes of its texts,
// so that it can be asked without a drawing context; any thread. Pixels, right and bottom edges outside.
//
// One axis a unit, the first to the left of the plot, the next to the right, and so on outwards. What does not fit is left out,
// the least important first: the second title, the legend's last entries, the title, the axes from the last one on, the time
// axis. There is a place to tell of entries and axes that are left out. A chart of one pixel is all plot.
#pragma once

#include <vector>

#include "platform/win32.h"

struct ChartTextSizes {
    LONG line = 0;             // height of a line of ordinary text
    LONG titleLine = 0;        // of the title; 0 without one
    bool subtitle = false;     // a line of ordinary text below the title
    std::vector<LONG> axes;    // of each value axis: its labels and unit, from its line outwards
    LONG axisHead = 0;         // height of the units above the axes
    std::vector<LONG> legend;  // widths of the entries' texts
    LONG more = 0;             // width of what tells that there are more entries
    LONG swatch = 2;           // of an entry's line, in heights of a line of text
    LONG timeLabel = 0;        // width of a label of the time axis
    UINT dpi = 96;             // dots an inch, which what does not follow from the texts follows
};

struct ChartLayout {
    struct Axis {
        bool shown = false;
        bool left = true;
        LONG position = 0;  // of its line
        RECT area = {};     // its labels and unit
    };
    RECT title = {}, subtitle = {};  // empty when left out
    RECT plot = {};                  // the outermost readings lie on its first and last pixels
    RECT timeArea = {};              // empty when left out
    std::vector<Axis> axes;
    std::vector<RECT> legend;  // an entry's swatch and text; empty for what is left out
    RECT more = {};            // behind the last entry, when some are left out
    RECT leftOut = {};         // above the plot, when axes are left out
    LONG swatch = 0;           // width of the swatch at an entry's left, its gap included
};

ChartLayout LayoutChart(const RECT& bounds, const ChartTextSizes& sizes);

// The height of ordinary text, in pixels, for a chart of this size, in pixels of so many dots an inch.
LONG ChartFontHeight(LONG width, LONG height, UINT dpi = 96);
