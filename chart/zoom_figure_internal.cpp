#include "chart/zoom_figure_internal.h"

#include <algorithm>

#include "chart/tracker.h"

namespace orvik::detail {

RECT Normalised(const RECT& rect) {
    return {std::min(rect.left, rect.right), std::min(rect.top, rect.bottom), std::max(rect.left, rect.right),
            std::max(rect.top, rect.bottom)};
}

ZoomFigure FigureOf(const RECT& rect) {
    const RECT r = Normalised(rect);
    const bool wide = static_cast<long long>(r.right) - r.left >= CTracker::iMinSelection;
    const bool high = static_cast<long long>(r.bottom) - r.top >= CTracker::iMinSelection;
    if (wide) return high ? ZoomFigure::Region : ZoomFigure::Columns;
    return high ? ZoomFigure::Rows : ZoomFigure::Nothing;
}

BOOL SelectionOf(const RECT& rect, const RECT& plot, RECT* selection) {
    RECT r = Normalised(rect);
    switch (FigureOf(rect)) {
        case ZoomFigure::Nothing:
            return FALSE;
        case ZoomFigure::Region:
            break;
        case ZoomFigure::Columns:
            r.top = plot.top;
            r.bottom = plot.bottom;
            break;
        case ZoomFigure::Rows:
            r.left = plot.left;
            r.right = plot.right;
            break;
    }
    *selection = r;
    return TRUE;
}

}  // namespace orvik::detail
