// The drawing of a list view, with the parent's say in colours (NM_CUSTOMDRAW).
#include <algorithm>

#include "platform/posix/controls/flat_looks_internal.h"
#include "platform/posix/controls/list_view_internal.h"

namespace orvik::detail {

LRESULT ListView::Ask(HDC dc, DWORD stage, int row, int subItem, const RECT& rectangle, NMLVCUSTOMDRAW& draw) const {
    draw.nmcd.dwDrawStage = stage;
    draw.nmcd.hdc = dc;
    draw.nmcd.rc = rectangle;
    draw.nmcd.dwItemSpec = static_cast<DWORD_PTR>(row);
    draw.iSubItem = subItem;
    if (Has(row)) draw.nmcd.lItemlParam = m_rows[static_cast<size_t>(row)].parameter;
    return Notify(draw.nmcd.hdr, NM_CUSTOMDRAW);
}

void ListView::Paint(HDC dc, const RECT& client) {
    const Layout places = Places();
    FillColour(dc, client, Back() == CLR_NONE ? GetSysColor(COLOR_WINDOW) : Back());
    PaintFrame(dc, client);
    NMLVCUSTOMDRAW draw{};
    draw.clrText = Ink();
    draw.clrTextBk = TextBack();
    const LRESULT answer = Ask(dc, CDDS_PREPAINT, 0, 0, places.rows, draw);
    if (answer & CDRF_SKIPDEFAULT) return;
    if (places.hasDown) places.down.Paint(dc);
    if (places.hasAcross) places.across.Paint(dc);
    if (places.hasDown && places.hasAcross)
        FillColour(dc, {places.rows.right, places.rows.bottom, places.down.place.right, places.across.place.bottom},
                   GetSysColor(COLOR_BTNFACE));
    const int state = SaveDC(dc);
    IntersectClipRect(dc, places.rows.left, places.rows.top, places.rows.right, places.rows.bottom);
    // Only the rows that are to be painted anew.
    RECT part{};
    if (GetClipBox(dc, &part) != 0) {
        const int height = RowHeight();
        const int first = m_top + std::max(0, static_cast<int>(part.top - places.rows.top) / height);
        for (int row = first; Has(row) && RowRect(row).top < part.bottom; ++row)
            PaintRow(dc, row, places, (answer & CDRF_NOTIFYITEMDRAW) != 0);
        if (m_extended & LVS_EX_GRIDLINES) {
            const COLORREF line = GetSysColor(COLOR_BTNFACE);
            for (int i = 0; i < static_cast<int>(m_columns.size()); ++i) {
                const LONG x = CellRect(m_top, i).right - 1;
                FillColour(dc, {x, places.rows.top, x + 1, places.rows.bottom}, line);
            }
            for (LONG y = places.rows.top + height - 1; y < places.rows.bottom; y += height)
                FillColour(dc, {places.rows.left, y, places.rows.right, y + 1}, line);
        }
    }
    RestoreDC(dc, state);
    if (answer & CDRF_NOTIFYPOSTPAINT) Ask(dc, CDDS_POSTPAINT, 0, 0, places.rows, draw);
}

void ListView::PaintRow(HDC dc, int row, const Layout& places, bool custom) {
    const UINT rowState = m_rows[static_cast<size_t>(row)].state;
    const bool focused = Focused(), whole = (m_extended & LVS_EX_FULLROWSELECT) != 0;
    const bool marked = (rowState & LVIS_SELECTED) != 0 && (focused || Style() & LVS_SHOWSELALWAYS);
    const RECT area = RowRect(row);
    const auto fresh = [&] {
        NMLVCUSTOMDRAW draw{};
        draw.clrText = Ink();
        draw.clrTextBk = TextBack();
        draw.nmcd.uItemState = (marked ? CDIS_SELECTED : 0u) | (focused && rowState & LVIS_FOCUSED ? CDIS_FOCUS : 0u);
        return draw;
    };
    NMLVCUSTOMDRAW rowDraw = fresh();
    const LRESULT answer = custom ? Ask(dc, CDDS_ITEMPREPAINT, row, 0, area, rowDraw) : CDRF_DODEFAULT;
    if (answer & CDRF_SKIPDEFAULT || !Has(row)) return;
    for (int column = 0; column < static_cast<int>(m_columns.size()); ++column) {
        RECT cell = CellRect(row, column);
        if (cell.right <= places.rows.left || cell.left >= places.rows.right) continue;
        // What the parent says of a cell begins with what it said of the row.
        NMLVCUSTOMDRAW draw = rowDraw;
        const HGDIOBJ font = GetCurrentObject(dc, OBJ_FONT);
        const LRESULT said =
            answer & CDRF_NOTIFYSUBITEMDRAW ? Ask(dc, CDDS_SUBITEM | CDDS_ITEMPREPAINT, row, column, cell, draw) : 0;
        if (said & CDRF_SKIPDEFAULT) continue;
        const bool selected = (draw.nmcd.uItemState & CDIS_SELECTED) != 0 && (whole || column == 0);
        COLORREF ink = draw.clrText, paper = draw.clrTextBk;
        if (selected) {
            ink = GetSysColor(focused ? COLOR_HIGHLIGHTTEXT : COLOR_BTNTEXT);
            paper = GetSysColor(focused ? COLOR_HIGHLIGHT : COLOR_BTNFACE);
        }
        if (ink == CLR_DEFAULT) ink = GetSysColor(COLOR_WINDOWTEXT);
        if (paper == CLR_DEFAULT) paper = GetSysColor(COLOR_WINDOW);
        if (!Enabled()) ink = GetSysColor(COLOR_GRAYTEXT);
        if (paper != CLR_NONE) FillColour(dc, cell, paper);
        SetTextColor(dc, ink);
        const int format = m_columns[static_cast<size_t>(column)].format & LVCFMT_JUSTIFYMASK;
        UINT flags = DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS;
        if (format == LVCFMT_RIGHT) flags |= DT_RIGHT;
        if (format == LVCFMT_CENTER) flags |= DT_CENTER;
        cell.left += Scaled(4);
        cell.right -= Scaled(4);
        const std::string text = TextOf(row, column);
        if (cell.left < cell.right) DrawTextA(dc, text.c_str(), static_cast<int>(text.size()), &cell, flags);
        if (said & CDRF_NEWFONT) SelectObject(dc, font);
        if (said & CDRF_NOTIFYPOSTPAINT) Ask(dc, CDDS_SUBITEM | CDDS_ITEMPOSTPAINT, row, column, CellRect(row, column), draw);
    }
    if (focused && rowState & LVIS_FOCUSED) {
        const RECT ring = whole ? area : CellRect(row, 0);
        PaintRowFocus(dc, ring, marked, Dpi());
    }
    if (answer & CDRF_NOTIFYPOSTPAINT) Ask(dc, CDDS_ITEMPOSTPAINT, row, 0, area, rowDraw);
}

}  // namespace orvik::detail
