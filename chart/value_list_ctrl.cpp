#include "chart/value_list_ctrl.h"

#include "afx/message_map.h"

IMPLEMENT_DYNAMIC(CValueListCtrl, CBCGPListCtrl)

BEGIN_MESSAGE_MAP(CValueListCtrl, CBCGPListCtrl)
END_MESSAGE_MAP()

void CValueListCtrl::SelectItem(int nItem) {
    // An index of -1 would mean every item to the list.
    if (nItem >= 0 && nItem < GetItemCount()) SetItemState(nItem, LVIS_SELECTED, LVIS_SELECTED);
}

void CValueListCtrl::ClearSelection() {
    for (int item = GetNextItem(-1, LVNI_SELECTED); item >= 0; item = GetNextItem(item, LVNI_SELECTED))
        SetItemState(item, 0, LVIS_SELECTED);
}

BOOL CValueListCtrl::IsItemSelected(int nItem) const {
    // The walk over the selected items, begun right before the one in question.
    return nItem >= 0 && GetNextItem(nItem - 1, LVNI_SELECTED) == nItem;
}

const CValueState* CValueListCtrl::StateOf(int nItem) const { return reinterpret_cast<const CValueState*>(GetItemData(nItem)); }

COLORREF CValueListCtrl::OnGetCellTextColor(int nRow, int nColumn) {
    const CValueState* state = StateOf(nRow);
    if (state == nullptr) return CBCGPListCtrl::OnGetCellTextColor(nRow, nColumn);
    return IsItemSelected(nRow) ? RGB(255, 255, 255) : state->GetColor();
}

COLORREF CValueListCtrl::OnGetCellBkColor(int nRow, int nColumn) {
    const CValueState* state = StateOf(nRow);
    if (state == nullptr) return CBCGPListCtrl::OnGetCellBkColor(nRow, nColumn);
    return IsItemSelected(nRow) ? state->GetColor() : static_cast<COLORREF>(::SendMessageA(m_hWnd, LVM_GETBKCOLOR, 0, 0));
}
