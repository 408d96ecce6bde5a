// Rows and columns of a list view, and the states of rows.
#include <algorithm>
#include <cstring>

#include "platform/house_text_internal.h"
#include "platform/posix/controls/list_items_internal.h"
#include "platform/posix/controls/list_view_internal.h"
#include "platform/posix/text/letters_internal.h"
#include "platform/posix/text/text.h"

namespace orvik::detail {

void ListView::Put(Cell& cell, LPCSTR text) {
    cell.asked = text == LPSTR_TEXTCALLBACKA;
    cell.text = cell.asked || text == nullptr ? "" : text;
}

void ListView::Fill(LPSTR out, int size, const std::string& text) {
    if (out != LPSTR_TEXTCALLBACKA && size > 0) CopyLetters(text, out, static_cast<size_t>(size));
}

LRESULT ListView::Tell(UINT code, int row, int subItem, UINT newState, UINT oldState, UINT changed, POINT at) const {
    NMITEMACTIVATE told{};  // begins like every notification of a list view
    told.iItem = row;
    told.iSubItem = subItem;
    told.uNewState = newState;
    told.uOldState = oldState;
    told.uChanged = changed;
    told.ptAction = at;
    if (Has(row)) told.lParam = m_rows[static_cast<size_t>(row)].parameter;
    return Notify(told.hdr, code);
}

LRESULT ListView::InsertItem(const LVITEMA& item) {
    if (item.iSubItem != 0 || item.iItem < 0) return -1;
    Row row;
    row.cells.resize(1);
    if (item.mask & LVIF_TEXT) Put(row.cells[0], item.pszText);
    if (item.mask & LVIF_PARAM) row.parameter = item.lParam;
    int at = std::min(item.iItem, Count());
    const DWORD order = Style() & (LVS_SORTASCENDING | LVS_SORTDESCENDING);
    if (order != 0) {
        const auto after = std::upper_bound(m_rows.begin(), m_rows.end(), row, [&](const Row& a, const Row& b) {
            const int compared = CompareInLists(a.cells[0].text.c_str(), b.cells[0].text.c_str());
            return order & LVS_SORTASCENDING ? compared < 0 : compared > 0;
        });
        at = static_cast<int>(after - m_rows.begin());
    }
    m_rows.insert(m_rows.begin() + at, std::move(row));
    if (m_focused >= at) ++m_focused;
    if (m_mark >= at) ++m_mark;
    if (item.mask & LVIF_STATE) SetState(at, item.state, item.stateMask);
    Tell(LVN_INSERTITEM, at, 0);
    Arrange();
    return at;
}

LRESULT ListView::SetItem(const LVITEMA& item) {
    if (!Has(item.iItem) || item.iSubItem < 0) return FALSE;
    if (item.iSubItem != 0 && (item.mask & ~LVIF_TEXT) != 0) return FALSE;
    if (item.mask & LVIF_TEXT) SetText(item.iItem, item);
    if (item.mask & LVIF_PARAM && Has(item.iItem)) m_rows[static_cast<size_t>(item.iItem)].parameter = item.lParam;
    if (item.mask & LVIF_STATE) SetState(item.iItem, item.state, item.stateMask);
    return TRUE;
}

LRESULT ListView::SetText(int row, const LVITEMA& item) {
    if (!Has(row) || item.iSubItem < 0 || (item.iSubItem > 0 && item.iSubItem >= static_cast<int>(m_columns.size())))
        return FALSE;
    auto& cells = m_rows[static_cast<size_t>(row)].cells;
    const auto at = static_cast<size_t>(item.iSubItem);
    if (at >= cells.size()) cells.resize(at + 1);
    Put(cells[at], item.pszText);
    InvalidateRow(row);
    return TRUE;
}

LRESULT ListView::GetItem(LVITEMA& item) const {
    if (!Has(item.iItem) || item.iSubItem < 0) return FALSE;
    const Row& row = m_rows[static_cast<size_t>(item.iItem)];
    if (item.mask & LVIF_TEXT) Fill(item.pszText, item.cchTextMax, TextOf(item.iItem, item.iSubItem));
    if (item.iSubItem != 0) return TRUE;
    if (item.mask & LVIF_PARAM) item.lParam = row.parameter;
    if (item.mask & LVIF_STATE) item.state = row.state & item.stateMask;
    return TRUE;
}

std::string ListView::TextOf(int row, int subItem) const {
    const auto& cells = m_rows[static_cast<size_t>(row)].cells;
    const auto at = static_cast<size_t>(subItem);
    if (at >= cells.size()) return {};
    if (!cells[at].asked) return cells[at].text;
    char text[260] = "";
    NMLVDISPINFOA asked{};
    asked.item.mask = LVIF_TEXT;
    asked.item.iItem = row;
    asked.item.iSubItem = subItem;
    asked.item.pszText = text;
    asked.item.cchTextMax = sizeof text;
    asked.item.lParam = m_rows[static_cast<size_t>(row)].parameter;
    Notify(asked.hdr, LVN_GETDISPINFOA);
    return asked.item.pszText != nullptr ? asked.item.pszText : "";
}

LRESULT ListView::DeleteItem(int row) {
    if (!Has(row)) return FALSE;
    // Its states go first, so that counts and parents know.
    SetState(row, 0, LVIS_SELECTED | LVIS_FOCUSED);
    if (!Has(row)) return FALSE;
    const bool focused = m_focused == row;
    Tell(LVN_DELETEITEM, row, 0);
    if (!Has(row)) return FALSE;
    if (m_rows[static_cast<size_t>(row)].state & LVIS_SELECTED) --m_selected;
    m_rows.erase(m_rows.begin() + row);
    if (m_focused > row) --m_focused;
    if (focused) m_focused = -1;
    if (m_mark > row)
        --m_mark;
    else if (m_mark == row)
        m_mark = -1;
    Arrange();
    return TRUE;
}

LRESULT ListView::DeleteAll() {
    const bool quiet = Tell(LVN_DELETEALLITEMS, -1, 0) != 0;
    for (int row = Count() - 1; row >= 0 && !quiet; --row) Tell(LVN_DELETEITEM, row, 0);
    m_rows.clear();
    m_focused = m_mark = -1;
    m_selected = m_top = 0;
    Arrange();
    return TRUE;
}

LRESULT ListView::NextItem(int start, UINT flags) const {
    const UINT wanted = flags & (LVNI_FOCUSED | LVNI_SELECTED | LVIS_CUT | LVIS_DROPHILITED);
    if (start < -1 || start >= Count()) return -1;
    const bool up = (flags & LVNI_ABOVE) != 0;
    // The one focused row is known, and where nothing is selected there is nothing to look for.
    if (wanted & LVNI_FOCUSED && !up) {
        const bool fits = m_focused > start && (m_rows[static_cast<size_t>(m_focused)].state & wanted) == wanted;
        return fits ? m_focused : -1;
    }
    if (wanted & LVNI_SELECTED && m_selected == 0) return -1;
    for (int row = up ? start - 1 : start + 1; Has(row); row += up ? -1 : 1)
        if ((m_rows[static_cast<size_t>(row)].state & wanted) == wanted) return row;
    return -1;
}

LRESULT ListView::FindItem(int start, const LVFINDINFOA& find) const {
    const auto matches = [&](int row) {
        if (find.flags & LVFI_PARAM) return m_rows[static_cast<size_t>(row)].parameter == find.lParam;
        if (!(find.flags & (LVFI_STRING | LVFI_PARTIAL)) || find.psz == nullptr) return false;
        const std::string text = TextOf(row, 0);
        return find.flags & LVFI_PARTIAL ? BeginsNoCase(text, find.psz) : lstrcmpiA(text.c_str(), find.psz) == 0;
    };
    for (int row = std::max(start, -1) + 1; row < Count(); ++row)
        if (matches(row)) return row;
    for (int row = 0; find.flags & LVFI_WRAP && row <= start && row < Count(); ++row)
        if (matches(row)) return row;
    return -1;
}

LRESULT ListView::Sort(PFNLVCOMPARE compare, LPARAM parameter) {
    if (compare == nullptr) return FALSE;
    // The focus and the mark stay with their rows.
    const auto tag = [&](int row) { return Has(row) ? &m_rows[static_cast<size_t>(row)] : nullptr; };
    std::vector<std::pair<Row, int>> rows;
    rows.reserve(m_rows.size());
    const Row *focused = tag(m_focused), *mark = tag(m_mark);
    for (Row& row : m_rows) rows.emplace_back(std::move(row), (&row == focused ? 1 : 0) | (&row == mark ? 2 : 0));
    std::stable_sort(rows.begin(), rows.end(),
                     [&](const auto& a, const auto& b) { return compare(a.first.parameter, b.first.parameter, parameter) < 0; });
    m_focused = m_mark = -1;
    for (size_t i = 0; i < rows.size(); ++i) {
        m_rows[i] = std::move(rows[i].first);
        if (rows[i].second & 1) m_focused = static_cast<int>(i);
        if (rows[i].second & 2) m_mark = static_cast<int>(i);
    }
    Invalidate();
    return TRUE;
}

// One row's state; false when the parent forbids the change.
bool ListView::ChangeState(int row, UINT state, UINT mask) {
    if (!Has(row)) return false;
    const UINT before = m_rows[static_cast<size_t>(row)].state, after = (before & ~mask) | (state & mask);
    if (before == after) return true;
    if (Tell(LVN_ITEMCHANGING, row, 0, after, before, LVIF_STATE) != 0) return false;
    if (!Has(row)) return false;
    m_rows[static_cast<size_t>(row)].state = after;
    if ((before ^ after) & LVIS_SELECTED) m_selected += after & LVIS_SELECTED ? 1 : -1;
    if ((before ^ after) & LVIS_FOCUSED) m_focused = after & LVIS_FOCUSED ? row : -1;
    InvalidateRow(row);
    Tell(LVN_ITEMCHANGED, row, 0, after, before, LVIF_STATE);
    return true;
}

LRESULT ListView::SetState(int row, UINT state, UINT mask) {
    if (row == -1) {
        // For all rows; only one of them can have the focus.
        bool all = true;
        if (state & mask & LVIS_FOCUSED) mask &= ~LVIS_FOCUSED;
        if (Style() & LVS_SINGLESEL && state & mask & LVIS_SELECTED) return FALSE;
        for (int each = 0; each < Count(); ++each) all = ChangeState(each, state, mask) && all;
        return all;
    }
    if (!Has(row)) return FALSE;
    if (state & mask & LVIS_FOCUSED && m_focused != row && m_focused >= 0) ChangeState(m_focused, 0, LVIS_FOCUSED);
    if (state & mask & LVIS_SELECTED && Style() & LVS_SINGLESEL && m_selected > 0)
        for (int each = 0; each < Count(); ++each)
            if (each != row) ChangeState(each, 0, LVIS_SELECTED);
    const bool done = ChangeState(row, state, mask);
    if (state & mask & LVIS_SELECTED && m_mark < 0) m_mark = row;
    return done;
}

void ListView::SelectOnly(int first, int last) {
    if (first > last) std::swap(first, last);
    for (int row = 0; row < Count() && m_selected > 0; ++row)
        if (row < first || row > last) ChangeState(row, 0, LVIS_SELECTED);
    for (int row = first; row <= last; ++row) ChangeState(row, LVIS_SELECTED, LVIS_SELECTED);
}

// ---- Columns, which the header shows.
void ListView::ShowColumn(int at, bool insert) {
    Column& column = m_columns[static_cast<size_t>(at)];
    HDITEMA item{};
    item.mask = HDI_WIDTH | HDI_TEXT | HDI_FORMAT;
    item.cxy = column.width;
    item.fmt = column.format & LVCFMT_JUSTIFYMASK;
    item.pszText = column.text.data();
    SendMessageA(m_header, insert ? HDM_INSERTITEMA : HDM_SETITEMA, static_cast<WPARAM>(at), reinterpret_cast<LPARAM>(&item));
    Arrange();
}

LRESULT ListView::InsertColumn(int at, const LVCOLUMNA& from) {
    if (at < 0) return -1;
    at = std::min(at, static_cast<int>(m_columns.size()));
    Column column;
    column.subItem = at;
    if (from.mask & LVCF_FMT) column.format = at == 0 ? LVCFMT_LEFT : from.fmt;  // the first column is always left-aligned
    if (from.mask & LVCF_WIDTH) column.width = std::max(0, from.cx);
    if (from.mask & LVCF_TEXT && from.pszText != nullptr) column.text = from.pszText;
    m_columns.insert(m_columns.begin() + at, std::move(column));
    for (Row& row : m_rows)
        if (static_cast<size_t>(at) < row.cells.size() && at > 0) row.cells.insert(row.cells.begin() + at, Cell{});
    ShowColumn(at, true);
    return at;
}

LRESULT ListView::SetColumn(int at, const LVCOLUMNA& from) {
    if (at < 0 || at >= static_cast<int>(m_columns.size())) return FALSE;
    Column& column = m_columns[static_cast<size_t>(at)];
    if (from.mask & LVCF_FMT && at > 0) column.format = from.fmt;
    if (from.mask & LVCF_WIDTH) column.width = std::max(0, from.cx);
    if (from.mask & LVCF_TEXT) column.text = from.pszText != nullptr ? from.pszText : "";
    ShowColumn(at, false);
    return TRUE;
}

LRESULT ListView::GetColumn(int at, LVCOLUMNA& to) const {
    if (at < 0 || at >= static_cast<int>(m_columns.size())) return FALSE;
    const Column& column = m_columns[static_cast<size_t>(at)];
    if (to.mask & LVCF_FMT) to.fmt = column.format;
    if (to.mask & LVCF_WIDTH) to.cx = column.width;
    if (to.mask & LVCF_SUBITEM) to.iSubItem = column.subItem;
    if (to.mask & LVCF_TEXT) Fill(to.pszText, to.cchTextMax, column.text);
    return TRUE;
}

LRESULT ListView::DeleteColumn(int at) {
    if (at < 0 || at >= static_cast<int>(m_columns.size())) return FALSE;
    m_columns.erase(m_columns.begin() + at);
    for (Row& row : m_rows)
        if (static_cast<size_t>(at) < row.cells.size() && row.cells.size() > 1) row.cells.erase(row.cells.begin() + at);
    SendMessageA(m_header, HDM_DELETEITEM, static_cast<WPARAM>(at), 0);
    Arrange();
    return TRUE;
}

LRESULT ListView::SetColumnWidth(int at, int width) {
    if (at < 0 || at >= static_cast<int>(m_columns.size())) return FALSE;
    if (width == LVSCW_AUTOSIZE || width == LVSCW_AUTOSIZE_USEHEADER) {
        const bool header = width == LVSCW_AUTOSIZE_USEHEADER;
        width = header ? Measure(m_columns[static_cast<size_t>(at)].text).cx + 16 : 12;
        const MeasuringDc dc(m_window, m_font);
        for (int row = 0; row < Count(); ++row) {
            const std::string text = TextOf(row, at);
            width = std::max(width, dc.Width(text.data(), text.size()) + 12);
        }
    }
    m_columns[static_cast<size_t>(at)].width = std::max(0, width);
    ShowColumn(at, false);
    return TRUE;
}

}  // namespace orvik::detail
