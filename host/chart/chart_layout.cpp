#include "host/chart/chart_layout.h"

#include <algorithm>

#include "platform/dpi.h"

namespace {
constexpr LONG kAxisMargin = 4;      // what an axis leaves between its line and its labels, at 96 dots an inch
constexpr LONG kLeastPlotLines = 4;  // the plot is at least so many lines high before anything else is shown
constexpr LONG kSmallestFont = 9, kLargestFont = 26;

LONG Width(const RECT& rect) { return rect.right - rect.left; }

// Entries in rows from the left, at most so many rows: as many as fit, and behind them the place that tells of more where not all
// do. The rectangles lie relative to (0, 0).
class Legend {
public:
    Legend(const ChartTextSizes& sizes, LONG swatch, LONG line, LONG room) : m_gap(sizes.line), m_line(line), m_room(room) {
        for (const LONG text : sizes.legend) entries.push_back(Next(swatch + text));
        m_more = sizes.more;
    }
    LONG Rows() const { return entries.empty() ? 0 : m_row + 1; }
    void CutTo(LONG rows) {
        if (Rows() <= rows) return;
        while (!entries.empty() && rows > 0) {
            entries.pop_back();
            m_row = entries.empty() ? 0 : entries.back().top / m_line;
            m_x = entries.empty() ? 0 : entries.back().right + m_gap;
            more = Next(m_more);
            if (m_row < rows) return;
        }
        entries.clear();
        more = {};
    }
    std::vector<RECT> entries;
    RECT more = {};

private:
    RECT Next(LONG width) {
        width = std::min(width, m_room);
        if (m_x > 0 && m_x + width > m_room) m_x = 0, ++m_row;
        const RECT entry = {m_x, m_row * m_line, m_x + width, (m_row + 1) * m_line};
        m_x += width + m_gap;
        return entry;
    }

    LONG m_gap, m_line, m_room, m_more = 0, m_x = 0, m_row = 0;
};
}  // namespace

LONG ChartFontHeight(LONG width, LONG height, UINT dpi) {
    const LONG side = OrvikUnscale(std::min(width, static_cast<LONG>(static_cast<long long>(height) * 16 / 9)), dpi);
    return OrvikScale(std::clamp<LONG>(9 + side / 230, kSmallestFont, kLargestFont), dpi);
}

ChartLayout LayoutChart(const RECT& bounds, const ChartTextSizes& sizes) {
    ChartLayout layout;
    layout.plot = bounds;
    layout.axes.resize(sizes.axes.size());
    layout.legend.resize(sizes.legend.size());
    const LONG line = std::max<LONG>(sizes.line, 1), margin = std::max<LONG>(line / 2, OrvikScale(2, sizes.dpi)),
               axisMargin = OrvikScale(kAxisMargin, sizes.dpi);
    layout.swatch = sizes.swatch * line;
    const LONG width = Width(bounds) - 2 * margin, height = bounds.bottom - bounds.top - 2 * margin;
    if (width <= 0 || height <= 0) return layout;

    // From top to bottom: what is shown is decided by the height that is left for the plot.
    const LONG legendLine = line + line / 3, timeHeight = axisMargin + 2 * line, unitHeight = sizes.axisHead + axisMargin;
    Legend legend(sizes, layout.swatch, legendLine, width);
    LONG left = height - kLeastPlotLines * line;
    const auto take = [&left](LONG wanted) {
        if (wanted <= 0 || wanted > left) return false;
        left -= wanted;
        return true;
    };
    const bool timeShown = take(timeHeight), axesShown = take(unitHeight),
               titleShown = sizes.titleLine > 0 && take(sizes.titleLine + margin / 2);
    legend.CutTo(std::min(height / 4, left - margin / 2) / legendLine);
    const LONG legendRows = std::max(legend.Rows(), legend.more.bottom / legendLine);
    const bool legendShown = legendRows > 0 && take(legendRows * legendLine + margin / 2);
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
        for (size_t i = 0; i < legend.entries.size(); ++i) {
            layout.legend[i] = legend.entries[i];
            OffsetRect(&layout.legend[i], x, y);
        }
        layout.more = legend.more;
        OffsetRect(&layout.more, x, y);
        y += legendRows * legendLine + margin / 2;
    }
    if (axesShown) y += unitHeight;
    const LONG bottom = bounds.bottom - margin - (timeShown ? timeHeight : 0);

    // From the sides inwards: the widths of the axes first, then their places.
    LONG sides[2] = {0, 0};
    for (size_t i = 0; i < sizes.axes.size() && axesShown; ++i) {
        const LONG wanted = sizes.axes[i] + axisMargin + (i >= 2 ? line : 0);
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
        const LONG reach = sizes.axes[i] + axisMargin;
        LONG& place = at[i % 2];
        if (i >= 2) place += axis.left ? -line : line;
        axis.position = place;
        axis.area = {axis.left ? place - reach : place - axisMargin, y - unitHeight,
                     axis.left ? place + axisMargin : place + reach, bottom + line / 2};
        place += axis.left ? -reach : reach;
    }
    if (axesShown && !layout.axes.empty() && !layout.axes.back().shown)
        layout.leftOut = {layout.plot.left + margin, y - unitHeight, layout.plot.right - margin, y - unitHeight + line};
    // Beside value axes, whose lowest labels reach below the plot, the time axis keeps to its own width.
    const auto shown = [&](size_t i) { return i < layout.axes.size() && layout.axes[i].shown; };
    if (timeShown) {
        layout.timeArea = {shown(0) ? layout.plot.left - axisMargin : bounds.left, bottom,
                           shown(1) ? layout.plot.right + axisMargin : bounds.right, bounds.bottom - margin};
    }
    return layout;
}
