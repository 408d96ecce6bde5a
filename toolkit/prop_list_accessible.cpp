// The grid for who does not see it: a row for each property in sight, with its name and its value.
#include <algorithm>
#include <string>

#include "toolkit/prop_list_internal.h"

LRESULT CBCGPPropList::OnDescribe(WPARAM, LPARAM lParam) {
    OrvikAccessible& said = OrvikDescribed(lParam);
    said.role = OrvikRole::Table;
    said.columns = 2;
    said.of = GetRowCount();
    said.Set(OrvikAccessible::kFocusable);
    const bool focused = ::GetFocus() == m_hWnd;
    for (int at = m_nTop; at < std::min(GetRowCount(), m_nTop + VisibleRows()); ++at) {
        const CBCGPProp& prop = *Rows()[static_cast<size_t>(at)].prop;
        const std::string name = prop.GetName().GetString(), value = prop.IsGroup() ? "" : prop.FormatProperty().GetString();
        OrvikAccessible& row = said.parts.emplace_back();
        row.role = OrvikRole::TableRow;
        row.name = value.empty() ? name : name + ", " + value;
        row.description = prop.GetDescription().GetString();
        row.place = GetPropertyRect(&prop);
        row.part = static_cast<unsigned>(at) * 3 + 1;
        row.at = at;
        row.of = GetRowCount();
        row.Set(OrvikAccessible::kSelectable);
        row.Set(OrvikAccessible::kPressable);
        row.Set(OrvikAccessible::kSelected, &prop == m_pSel);
        row.Set(OrvikAccessible::kFocused, &prop == m_pSel && focused);
        row.Set(OrvikAccessible::kDisabled, !prop.IsEnabled());
        row.Set(OrvikAccessible::kExpandable, prop.GetSubItemsCount() > 0);
        row.Set(OrvikAccessible::kExpanded, prop.GetSubItemsCount() > 0 && prop.IsExpanded());
        for (const bool isName : {true, false}) {
            OrvikAccessible& cell = row.parts.emplace_back();
            cell.role = OrvikRole::TableCell;
            cell.name = isName ? name : value;
            cell.part = row.part + (isName ? 1 : 2);
            cell.at = isName ? 0 : 1;
            cell.of = 2;
            cell.place = row.place;
            const LONG divider = row.place.left + NameWidth();
            (isName ? cell.place.right : cell.place.left) = divider;
        }
    }
    return TRUE;
}

LRESULT CBCGPPropList::OnAct(WPARAM, LPARAM lParam) {
    const OrvikAccessibleAct& act = OrvikAsked(lParam);
    const int row = act.part == 0 ? -1 : static_cast<int>((act.part - 1) / 3);
    if (row < 0 || row >= GetRowCount()) return FALSE;
    const HWND self = m_hWnd;
    if (!LeaveEditor() || !::IsWindow(self) || row >= GetRowCount()) return FALSE;
    CBCGPProp& prop = *Rows()[static_cast<size_t>(row)].prop;
    SetFocus();
    SetCurSel(&prop);
    if (act.kind != OrvikAccessibleAct::Kind::Press) return TRUE;
    // As Enter does, later: what it asks may take a while.
    return ::PostMessageA(m_hWnd, WM_KEYDOWN, VK_RETURN, 0);
}

// The field is called as its property is.
LRESULT CPropEdit::OnDescribe(WPARAM wParam, LPARAM lParam) {
    DefWindowProc(OrvikDescribeMessage(), wParam, lParam);
    if (m_list.m_pEdited != nullptr) OrvikDescribed(lParam).name = m_list.m_pEdited->GetName().GetString();
    return TRUE;
}
