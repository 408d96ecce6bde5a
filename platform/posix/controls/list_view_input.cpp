// Where the rows of a list view are, how it scrolls, and what keys and the mouse do.
#include <algorithm>

#include "platform/posix/controls/list_view_internal.h"
#include "platform/posix/text/text.h"

namespace orvik::detail {

int ListView::RowHeight() const { return LineHeight() + Scaled(2); }

int ListView::ContentWidth() const {
    int width = 0;
    for (const Column& column : m_columns) width += column.width;
    return width;
}

ListView::Layout ListView::Places() const {
    Layout out{};
    const RECT area = Shrunk(Client(), FrameWidth());
    const int height = RowHeight(), bar = BarWidth();
    out.header = area;
    out.header.bottom = Style() & LVS_NOCOLUMNHEADER ? area.top : std::min<LONG>(area.top + height + Scaled(4), area.bottom);
    out.rows = area;
    out.rows.top = out.header.bottom;
    const int content = ContentWidth();
    // Each bar takes room from the other's direction.
    for (int turn = 0; turn < 2; ++turn) {
        if (!out.hasAcross && content > out.rows.right - out.rows.left) out.hasAcross = true, out.rows.bottom -= bar;
        if (!out.hasDown && Count() > std::max(0, static_cast<int>(out.rows.bottom - out.rows.top) / height))
            out.hasDown = true, out.rows.right -= bar;
    }
    out.rows.right = std::max(out.rows.left, out.rows.right);
    out.rows.bottom = std::max(out.rows.top, out.rows.bottom);
    out.down.place = {out.rows.right, out.header.bottom, out.rows.right + bar, out.rows.bottom};
    out.down.most = Count() - 1;
    out.down.page = std::max(1, static_cast<int>(out.rows.bottom - out.rows.top) / height);
    out.down.position = m_top;
    out.across.vertical = false;
    out.across.place = {out.rows.left, out.rows.bottom, out.rows.right, out.rows.bottom + bar};
    out.across.most = content - 1;
    out.across.page = out.rows.right - out.rows.left;
    out.across.position = m_shift;
    return out;
}

int ListView::PerPage() const {
    const Layout places = Places();
    return static_cast<int>(places.rows.bottom - places.rows.top) / RowHeight();
}

RECT ListView::RowRect(int row) const {
    const Layout places = Places();
    const LONG top = places.rows.top + (row - m_top) * RowHeight(), left = places.rows.left - m_shift;
    return {left, top, left + ContentWidth(), top + RowHeight()};
}

RECT ListView::CellRect(int row, int column) const {
    RECT cell = RowRect(row);
    for (int i = 0; i < column; ++i) cell.left += m_columns[static_cast<size_t>(i)].width;
    if (column < static_cast<int>(m_columns.size())) cell.right = cell.left + m_columns[static_cast<size_t>(column)].width;
    return cell;
}

LRESULT ListView::HitTest(LVHITTESTINFO& info, bool subItems) const {
    const Layout places = Places();
    const POINT at = info.pt;
    const RECT client = Client();
    info.iItem = -1;
    info.iSubItem = 0;
    info.flags = LVHT_NOWHERE;
    if (!PtInRect(&client, at)) {
        info.flags = (at.y < client.top       ? LVHT_ABOVE
                      : at.y >= client.bottom ? LVHT_BELOW
                                              : 0u) |
                     (at.x < client.left     ? LVHT_TOLEFT
                      : at.x >= client.right ? LVHT_TORIGHT
                                             : 0u);
        return -1;
    }
    const int row = m_top + (at.y - places.rows.top) / RowHeight();
    if (!PtInRect(&places.rows, at) || !Has(row)) return -1;
    const bool whole = subItems || (m_extended & LVS_EX_FULLROWSELECT) != 0;
    for (int column = 0; column < static_cast<int>(m_columns.size()); ++column) {
        const RECT cell = CellRect(row, column);
        if (!PtInRect(&cell, at)) continue;
        if (column > 0 && !whole) return -1;
        info.iItem = row;
        info.iSubItem = column;
        info.flags = column == 0 || subItems ? LVHT_ONITEMLABEL : LVHT_ONITEM;
        return row;
    }
    return -1;
}

void ListView::InvalidateRow(int row) const {
    RECT area = RowRect(row);
    const Layout places = Places();
    area.left = places.rows.left;
    area.right = places.rows.right;
    if (area.bottom > places.rows.top && area.top < places.rows.bottom) Invalidate(area);
}

void ListView::ScrollTo(int top, int shift) {
    const Layout places = Places();
    top = places.hasDown ? places.down.Limited(top) : 0;
    shift = places.hasAcross ? places.across.Limited(shift) : 0;
    if (top == m_top && shift == m_shift) return;
    m_top = top;
    m_shift = shift;
    Arrange();
}

// Puts header, scrolling and picture in accord with what there is.
void ListView::Arrange() {
    const Layout places = Places();
    m_top = places.hasDown ? places.down.Limited(m_top) : 0;
    m_shift = places.hasAcross ? places.across.Limited(m_shift) : 0;
    if (m_header != nullptr && !(Style() & LVS_NOCOLUMNHEADER)) {
        const LONG width = places.header.right - places.header.left + m_shift;
        SetWindowPos(m_header, nullptr, places.header.left - m_shift, places.header.top, width,
                     places.header.bottom - places.header.top, SWP_NOZORDER | SWP_NOACTIVATE);
    }
    Invalidate();
}

LRESULT ListView::EnsureVisible(int row, bool) {
    if (!Has(row)) return FALSE;
    const int page = std::max(1, PerPage());
    if (row < m_top)
        ScrollTo(row, m_shift);
    else if (row >= m_top + page)
        ScrollTo(row - page + 1, m_shift);
    return TRUE;
}

// ---- Keys.
void ListView::MoveTo(int row, bool extend, bool keep) {
    if (!Has(row)) return;
    const bool single = (Style() & LVS_SINGLESEL) != 0;
    if (extend && !single) {
        if (m_mark < 0) m_mark = std::max(m_focused, 0);
        SelectOnly(m_mark, row);
    } else if (!keep || single) {
        SelectOnly(row, row);
        m_mark = row;
    }
    FocusRow(row);
    EnsureVisible(row, false);
}

LRESULT ListView::Key(WPARAM key) {
    NMLVKEYDOWN told{};
    told.wVKey = static_cast<WORD>(key);
    Notify(told.hdr, LVN_KEYDOWN);
    if (!IsWindow(m_window)) return 0;
    const bool shift = GetKeyState(VK_SHIFT) < 0, control = GetKeyState(VK_CONTROL) < 0;
    const int at = m_focused, page = std::max(1, PerPage()), last = Count() - 1;
    int to = -1;
    switch (key) {
        case VK_UP:
            to = at - 1;
            break;
        case VK_DOWN:
            to = at + 1;
            break;
        case VK_HOME:
            to = 0;
            break;
        case VK_END:
            to = last;
            break;
        case VK_PRIOR:
            // First to the top of the page, from there page by page.
            to = at > m_top ? m_top : std::max(0, at - page + 1);
            break;
        case VK_NEXT:
            to = at < m_top + page - 1 ? std::min(last, m_top + page - 1) : std::min(last, at + page - 1);
            break;
        case VK_LEFT:
            ScrollTo(m_top, m_shift - Scaled(10));
            return 0;
        case VK_RIGHT:
            ScrollTo(m_top, m_shift + Scaled(10));
            return 0;
        case VK_SPACE:
            if (Has(at) && control) {
                const UINT state = m_rows[static_cast<size_t>(at)].state;
                SetState(at, ~state, LVIS_SELECTED);
                m_mark = at;
            } else if (Has(at)) {
                MoveTo(at, shift, false);
            }
            return 0;
        case VK_RETURN:
            Activate();
            return 0;
        default:
            return 0;
    }
    if (Has(to) && (to != at || !(m_rows[static_cast<size_t>(to)].state & LVIS_SELECTED))) MoveTo(to, shift, control);
    return 0;
}

// A letter leads to the next row that begins with it.
LRESULT ListView::Letter(const std::string& typed) {
    if (typed.empty() || typed == "\r" || typed == " " || Count() == 0) return 0;
    LVFINDINFOA find{};
    find.flags = LVFI_PARTIAL | LVFI_STRING | LVFI_WRAP;
    find.psz = typed.c_str();
    MoveTo(static_cast<int>(FindItem(m_focused, find)), false, false);
    return 0;
}

void ListView::Activate() {
    NMHDR told{};
    Notify(told, NM_RETURN);
    if (IsWindow(m_window)) Tell(LVN_ITEMACTIVATE, m_focused, 0);
}

// ---- Mouse.
LRESULT ListView::Press(WPARAM keys, POINT at, bool second) {
    const Layout places = Places();
    if (!Focused()) SetFocus(m_window);
    if (places.hasDown && PtInRect(&places.down.place, at)) {
        const int code = places.down.CodeAt(at);
        m_grip = at.y - places.down.Thumb().top;
        if (code == SB_THUMBTRACK)
            m_dragged = 1, SetCapture(m_window);
        else
            ScrollTo(places.down.After(code), m_shift);
        return 0;
    }
    if (places.hasAcross && PtInRect(&places.across.place, at)) {
        const int code = places.across.CodeAt(at);
        m_grip = at.x - places.across.Thumb().left;
        if (code == SB_THUMBTRACK)
            m_dragged = 2, SetCapture(m_window);
        else
            ScrollTo(m_top, code == SB_LINEUP     ? m_shift - Scaled(10)
                            : code == SB_LINEDOWN ? m_shift + Scaled(10)
                                                  : places.across.After(code));
        return 0;
    }
    LVHITTESTINFO hit{};
    hit.pt = at;
    const auto row = static_cast<int>(HitTest(hit, false));
    if (second) {
        Tell(NM_DBLCLK, row, hit.iSubItem, 0, 0, 0, at);
        if (row >= 0 && IsWindow(m_window)) Tell(LVN_ITEMACTIVATE, row, hit.iSubItem, 0, 0, 0, at);
        return 0;
    }
    m_dragged = 3;
    SetCapture(m_window);
    if (row < 0) {
        if ((keys & (MK_CONTROL | MK_SHIFT)) == 0) SetState(-1, 0, LVIS_SELECTED);
        return 0;
    }
    if (keys & MK_CONTROL && !(Style() & LVS_SINGLESEL)) {
        SetState(row, ~m_rows[static_cast<size_t>(row)].state, LVIS_SELECTED);
        m_mark = row;
        FocusRow(row);
    } else {
        MoveTo(row, (keys & MK_SHIFT) != 0, false);
    }
    return 0;
}

LRESULT ListView::RightPress(WPARAM keys, POINT at) {
    LVHITTESTINFO hit{};
    hit.pt = at;
    const auto row = static_cast<int>(HitTest(hit, false));
    if (!Focused()) SetFocus(m_window);
    if (row >= 0 && (keys & (MK_CONTROL | MK_SHIFT)) == 0 && !(m_rows[static_cast<size_t>(row)].state & LVIS_SELECTED))
        MoveTo(row, false, false);
    else if (row >= 0)
        FocusRow(row);
    return 0;
}

LRESULT ListView::Drag(POINT at) {
    const Layout places = Places();
    if (m_dragged == 1) ScrollTo(places.down.PositionAt(at.y - places.down.place.top - m_grip), m_shift);
    if (m_dragged == 2) ScrollTo(m_top, places.across.PositionAt(at.x - places.across.place.left - m_grip));
    return 0;
}

LRESULT ListView::Release(POINT at) {
    const int dragged = std::exchange(m_dragged, 0);
    if (GetCapture() == m_window) ReleaseCapture();
    if (dragged != 3) return 0;
    LVHITTESTINFO hit{};
    hit.pt = at;
    const auto row = static_cast<int>(HitTest(hit, false));
    Tell(NM_CLICK, row, hit.iSubItem, 0, 0, 0, at);
    return 0;
}

}  // namespace orvik::detail
