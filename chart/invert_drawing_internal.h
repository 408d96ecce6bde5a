// Feedback that takes itself away: figures drawn by inverting what is there, so that the same figure drawn twice restores the
// window. User-interface thread.
#pragma once

#include "afx/dc.h"

namespace orvik::detail {

// Makes a DC invert under a pen of one pixel, transparent between its dots, and puts it right at the end.
class InvertDrawing {
public:
    InvertDrawing(CDC* pDC, int penStyle, COLORREF color);  // with a pen of its own
    InvertDrawing(CDC* pDC, CPen& pen);                     // with one that outlives it
    InvertDrawing(const InvertDrawing&) = delete;
    InvertDrawing& operator=(const InvertDrawing&) = delete;
    ~InvertDrawing();

    void HorizontalLine(LONG y, LONG left, LONG right);
    void VerticalLine(LONG x, LONG top, LONG bottom);
    // The outline through all four corners, right and bottom included, each inverted once.
    void Outline(const RECT& rect);

private:
    void Begin(CPen& pen);

    CPen m_pen;
    CDC* m_dc;
    int m_saved;
};

// What a dragged rectangle will select, as a dotted white figure (see chart/zoom_figure_internal.h): its outline, or the two
// lines of a band over the plot, or nothing.
void DrawZoomFigure(CDC* pDC, const RECT& rect, const RECT& plot);

}  // namespace orvik::detail
