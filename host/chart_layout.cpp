#include "host/chart_layout.h"

#include <algorithm>

namespace {
constexpr LONG kAxisMargin = 4;      // what an axis leaves between its line and its labels
constexpr LONG kLeastPlotLines = 4;  // the plot is at least so many lines high before anything else is shown
constexpr LONG kSmallestFont = 9, kLargestFont = 26;

LONG Width(const RECT& rect) { return rect.right - rect.left; }

// Entries in rows from the left; how many rows that takes. The rectangles lie relative to (0, 0).
LONG FlowLegend(const std::vector<LONG>& widths, LONG swatch, LONG gap, LONG line, LONG room, std::vector<RECT>& entries) {
    LONG x = 0, row = 0;
    entries.clear();
    for (const LONG text : widths) {
        const LONG width = std::min(swatch + text, room);
        if (x > 0 && x + width > room) x = 0, ++row;
        entries.push_back({x, row * line, x + width, (row + 1) * line});
        x += width + gap;
    }
    return widths.empty() ? 0 : row + 1;
}
}  // namespace

LONG ChartFontHeight(LONG width, LONG height) {
    const LONG side = std::min(width, static_cast<LONG>(static_cast<long long>(height) * 16 / 9));
    return std::clamp<LONG>(9 + side / 230, kSmallestFont, kLargestFont);
}

ChartLayout LayoutChart(const RECT& bounds, const ChartTextSizes& sizes) {
    ChartLayout layout;
    layout.plot = bounds;
    layout.axes.resize(sizes.axes.size());
    layout.legend.resize(sizes.legend.size());
    const LONG line = std::max<LONG>(sizes.line, 1), margin = std::max<LONG>(line / 2, 2);
    layout.swatch = 2 * line;
    const LONG width = Width(bounds) - 2 * margin, height = bounds.bottom - bounds.top - 2 * margin;
    if (width <= 0 || height <= 0) return layout;

    // From top to bottom: what is shown is decided by the height that is left for the plot.
    const LONG legendLine = line + line / 3, timeHeight = kAxisMargin + 2 * line, unitHeight = line + 2 * kAxisMargin;
    std::vector<RECT> entries;
    const LONG legendRows = FlowLegend(sizes.legend, layout.swatch, line, legendLine, width, entries);
    LONG left = height - kLeastPlotLines * line;
    const auto take = [&left](LONG wanted) {
        if (wanted <= 0 || wanted > left) return false;
        left -= wanted;
        return true;
    };
    const bool timeShown = take(timeHeight), axesShown = take(unitHeight),
               titleShown = sizes.titleLine > 0 && take(sizes.titleLine + margin / 2);
    const bool legendShown = legendRows * legendLine * 4 <= height && take(legendRows * legendLine + margin / 2);
    const bool subtitleShown = sizes.subtitle && titleShown && take(line);

    LONG y = bounds.top + margin;
    const LONG x = bounds.left + margin;
    if (titleShown) {
        layout.title = {x, y, x + width, y + sizes.titleLine};
        y = layout.title.bottom;
        if (subtitleShown) {
            layout.subtitle = {x, y, x + width, y + line};
            y += line;
        }
        y += margin / 2;
    }
    if (legendShown) {
        for (size_t i = 0; i < entries.size(); ++i)
            layout.legend[i] = {x + entries[i].left, y + entries[i].top, x + entries[i].right, y + entries[i].bottom};
        y += legendRows * legendLine + margin / 2;
    }
    if (axesShown) y += unitHeight;
    const LONG bottom = bounds.bottom - margin - (timeShown ? timeHeight : 0);

    // From the sides inwards: the widths of the axes first, then their places.
    LONG sides[2] = {0, 0};
    for (size_t i = 0; i < sizes.axes.size() && axesShown; ++i) {
        const LONG wanted = sizes.axes[i] + kAxisMargin + (i >= 2 ? line : 0);
        if (sides[0] + sides[1] + wanted > width / 2) break;
        sides[i % 2] += wanted;
        layout.axes[i].shown = true;
    }
    // Half of the last time label stands out.
    if (timeShown) {
        for (LONG& side : sides) side = std::max(side, std::min(sizes.timeLabel / 2, width / 8));
    }
    layout.plot = {x + sides[0], y, x + width - sides[1], bottom};
    LONG at[2] = {layout.plot.left, layout.plot.right - 1};
    for (size_t i = 0; i < layout.axes.size() && layout.axes[i].shown; ++i) {
        ChartLayout::Axis& axis = layout.axes[i];
        axis.left = i % 2 == 0;
        const LONG reach = sizes.axes[i] + kAxisMargin;
        LONG& place = at[i % 2];
        if (i >= 2) place += axis.left ? -line : line;
        axis.position = place;
        axis.area = {axis.left ? place - reach : place - kAxisMargin, y - unitHeight,
                     axis.left ? place + kAxisMargin : place + reach, bottom + line / 2};
        place += axis.left ? -reach : reach;
    }
    // Beside value axes, whose lowest labels reach below the plot, the time axis keeps to its own width.
    const auto shown = [&](size_t i) { return i < layout.axes.size() && layout.axes[i].shown; };
    if (timeShown) {
        layout.timeArea = {shown(0) ? layout.plot.left - kAxisMargin : bounds.left, bottom,
                           shown(1) ? layout.plot.right + kAxisMargin : bounds.right, bounds.bottom - margin};
    }
    return layout;
}
