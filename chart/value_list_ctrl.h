// A list in report view with one value a row, each row in the colour of its state (CValueState): its text while it is not
// selected, its background under white text while it is. On the user-interface thread.
// An item's data is a CValueState that belongs to whoever fills the list and must outlive the item, or null: such a row has the
// list's own colours.
#pragma once

#include "chart/value_state.h"
#include "toolkit/bcgp_list_ctrl.h"

class ORVIK_API CValueListCtrl : public CBCGPListCtrl {
    DECLARE_DYNAMIC(CValueListCtrl)

public:
    // Selects one more item; nothing for an index that there is not. Neither of these touches the focus.
    void SelectItem(int nItem);
    void ClearSelection();
    BOOL IsItemSelected(int nItem) const;

    // The same for all columns.
    COLORREF OnGetCellTextColor(int nRow, int nColumn) override;
    COLORREF OnGetCellBkColor(int nRow, int nColumn) override;

    DECLARE_MESSAGE_MAP()

private:
    const CValueState* StateOf(int nItem) const;
};
