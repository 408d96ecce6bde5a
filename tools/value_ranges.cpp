// Draws the axes of 200 ranges into a picture, to be looked at: value_ranges PICTURE.png
#include "tests/host/value_ranges.h"

#include <cstdio>

#include "afx/dc.h"
#include "host/chart/value_axis.h"
#include "platform/picture.h"
#include "time/locale_cache.h"

int main(int count, char** words) {
    constexpr int kColumns = 20, kRows = 10, kWidth = 140, kHeight = 170, kLine = 13;
    if (count != 2) return std::fputs("value_ranges PICTURE.png\n", stderr), 1;
    NlsToolsRegister();
    const HDC picture = OrvikBeginPicture(words[1], kColumns * kWidth, kRows * kHeight);
    if (picture == nullptr) return 1;
    CDC dc;
    dc.Attach(picture);
    CFont font;
    font.CreateFont(-11, 0, 0, 0, FW_NORMAL, 0, 0, 0, ANSI_CHARSET, 0, 0, 0, 0, "DejaVu Sans");
    CFont* const before = dc.SelectObject(&font);
    const auto ranges = ValueRanges(kColumns * kRows);
    for (int i = 0; i < kColumns * kRows; ++i) {
        const ValueRange& range = ranges[static_cast<size_t>(i)];
        const bool left = i % 2 == 0;
        const LONG x = i % kColumns * kWidth, y = i / kColumns * kHeight;
        CValueAxis axis(range.unit);
        axis.SetRange(range.low, range.high);
        left ? axis.SetAlignRight() : axis.SetAlignLeft();
        // Axes of every second row are a third as long, where labels are fewest.
        axis.SetPosition(left ? x + kWidth - 30 : x, y + 2 * kLine, y + (i / kColumns % 2 == 0 ? kHeight - kLine : 8 * kLine));
        axis.Render(&dc);
        char text[80];
        std::snprintf(text, sizeof text, "%.10g  %.2g %s", range.low, range.high - range.low, range.unit.c_str());
        if (left) dc.TextOut(x, y + kHeight - kLine, text);
    }
    dc.SelectObject(before);
    dc.Detach();
    return OrvikEndPicture(picture, TRUE) ? 0 : 1;
}
