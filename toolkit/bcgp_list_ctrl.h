// A list in report view whose cells ask for their colours while they are drawn. On the user-interface thread.
// Its parent must be a CWnd: the system asks the parent, which hands the question back.
#pragma once

#include "afx/common_controls.h"

class ORVIK_API CBCGPListCtrl : public CListCtrl {
    DECLARE_DYNAMIC(CBCGPListCtrl)

public:
    // The base gives the list's own colours, for a selected row those of the desktop's selection while the list has the focus or
    // always shows its selection. Called for each cell that is drawn.
    virtual COLORREF OnGetCellTextColor(int nRow, int nColumn);
    virtual COLORREF OnGetCellBkColor(int nRow, int nColumn);

protected:
    afx_msg void OnCustomDraw(NMHDR* pNMHDR, LRESULT* pResult);

    DECLARE_MESSAGE_MAP()

private:
    bool ShowsSelected(int nRow) const;
    void FillCell(HDC dc, int nRow, int nColumn, COLORREF color);
};
