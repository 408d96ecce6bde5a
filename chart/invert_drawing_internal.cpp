#include "chart/invert_drawing_internal.h"

#include "chart/zoom_figure_internal.h"

namespace orvik::detail {

InvertDrawing::InvertDrawing(CDC* pDC, int penStyle, COLORREF color) : m_dc(pDC), m_saved(pDC->SaveDC()) {
    m_pen.CreatePen(penStyle, 1, color);
    Begin(m_pen);
}

InvertDrawing::InvertDrawing(CDC* pDC, CPen& pen) : m_dc(pDC), m_saved(pDC->SaveDC()) { Begin(pen); }

InvertDrawing::~InvertDrawing() { m_dc->RestoreDC(m_saved); }

void InvertDrawing::Begin(CPen& pen) {
    m_dc->SelectObject(&pen);
    m_dc->SetBkMode(TRANSPARENT);
    m_dc->SetROP2(R2_NOT);
}

void InvertDrawing::HorizontalLine(LONG y, LONG left, LONG right) {
    m_dc->MoveTo(left, y);
    m_dc->LineTo(right, y);
}

void InvertDrawing::VerticalLine(LONG x, LONG top, LONG bottom) {
    m_dc->MoveTo(x, top);
    m_dc->LineTo(x, bottom);
}

void InvertDrawing::Outline(const RECT& rect) {
    m_dc->MoveTo(rect.left, rect.top);
    m_dc->LineTo(rect.right, rect.top);
    m_dc->LineTo(rect.right, rect.bottom);
    m_dc->LineTo(rect.left, rect.bottom);
    m_dc->LineTo(rect.left, rect.top);
}

void DrawZoomFigure(CDC* pDC, const RECT& rect, const RECT& plot) {
    const ZoomFigure figure = FigureOf(rect);
    if (figure == ZoomFigure::Nothing) return;
    InvertDrawing drawing(pDC, PS_DOT, RGB(255, 255, 255));
    switch (figure) {
        case ZoomFigure::Region:
            drawing.Outline(rect);
            break;
        case ZoomFigure::Columns:
            drawing.VerticalLine(rect.left, plot.top, plot.bottom);
            drawing.VerticalLine(rect.right, plot.top, plot.bottom);
            break;
        case ZoomFigure::Rows:
            drawing.HorizontalLine(rect.top, plot.left, plot.right);
            drawing.HorizontalLine(rect.bottom, plot.left, plot.right);
            break;
        case ZoomFigure::Nothing:
            break;
    }
}

}  // namespace orvik::detail
