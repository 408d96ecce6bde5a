// What of a list view is in sight, for who does not see it: rows with a cell for each column.
#include "platform/posix/controls/list_view_internal.h"

namespace orvik::detail {

void ListView::Describe(OrvikAccessible& out) const {
    out.role = OrvikRole::Table;
    out.name.clear();
    out.columns = static_cast<int>(m_columns.size());
    out.of = Count();
    const Layout places = Places();
    for (int at = m_top; at < Count() && RowRect(at).top < places.rows.bottom; ++at) {
        std::string name;
        for (int column = 0; column < out.columns; ++column) {
            const std::string text = TextOf(at, column);
            if (!text.empty()) name += (name.empty() ? "" : ", ") + text;
        }
        const UINT state = m_rows[static_cast<size_t>(at)].state;
        OrvikAccessible& row = AddRow(out, OrvikRole::TableRow, at, Count(), name, RowRect(at));
        row.part = static_cast<unsigned>(at) * static_cast<unsigned>(out.columns + 1) + 1;
        row.Set(OrvikAccessible::kSelected, (state & LVIS_SELECTED) != 0);
        row.Set(OrvikAccessible::kFocused, Focused() && at == m_focused);
        row.Set(OrvikAccessible::kPressable);
        for (int column = 0; column < out.columns; ++column) {
            OrvikAccessible& cell =
                AddRow(row, OrvikRole::TableCell, column, out.columns, TextOf(at, column), CellRect(at, column));
            cell.part = row.part + 1 + static_cast<unsigned>(column);
            cell.states = 0;
        }
    }
}

bool ListView::Act(const OrvikAccessibleAct& act) {
    const int row = act.part == 0 ? -1 : static_cast<int>((act.part - 1) / (m_columns.size() + 1));
    if (!Has(row)) return false;
    if (act.kind == OrvikAccessibleAct::Kind::Focus) SetFocus(m_window);
    MoveTo(row, false, false);
    // What Enter or a double click does.
    if (act.kind == OrvikAccessibleAct::Kind::Press) return PostMessageA(m_window, WM_KEYDOWN, VK_RETURN, 0);
    return true;
}

}  // namespace orvik::detail
