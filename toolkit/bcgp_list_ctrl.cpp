#include "toolkit/bcgp_list_ctrl.h"

#include "afx/message_map.h"
#include "toolkit/global_data.h"

IMPLEMENT_DYNAMIC(CBCGPListCtrl, CListCtrl)

BEGIN_MESSAGE_MAP(CBCGPListCtrl, CListCtrl)
ON_NOTIFY_REFLECT(NM_CUSTOMDRAW, OnCustomDraw)
END_MESSAGE_MAP()

bool CBCGPListCtrl::ShowsSelected(int nRow) const {
    if (GetItemState(nRow, LVIS_SELECTED) == 0) return false;
    return (GetStyle() & LVS_SHOWSELALWAYS) != 0 || ::GetFocus() == m_hWnd;
}

COLORREF CBCGPListCtrl::OnGetCellTextColor(int nRow, int) {
    return ShowsSelected(nRow) ? globalData.clrTextHilite : GetTextColor();
}

COLORREF CBCGPListCtrl::OnGetCellBkColor(int nRow, int) { return ShowsSelected(nRow) ? globalData.clrHilite : GetTextBkColor(); }

// The whole cell: of the first column the system would fill no more than the text takes.
void CBCGPListCtrl::FillCell(HDC dc, int nRow, int nColumn, COLORREF color) {
    CRect cell;
    if (color == CLR_NONE || color == CLR_DEFAULT || !GetSubItemRect(nRow, nColumn, LVIR_BOUNDS, cell)) return;
    cell.right = cell.left + GetColumnWidth(nColumn);
    CDC::FromHandle(dc)->FillSolidRect(cell, color);
}

void CBCGPListCtrl::OnCustomDraw(NMHDR* pNMHDR, LRESULT* pResult) {
    auto& draw = *reinterpret_cast<NMLVCUSTOMDRAW*>(pNMHDR);
    *pResult = CDRF_DODEFAULT;
    switch (draw.nmcd.dwDrawStage) {
        case CDDS_PREPAINT:
            *pResult = CDRF_NOTIFYITEMDRAW;
            break;
        case CDDS_ITEMPREPAINT:
            *pResult = CDRF_NOTIFYSUBITEMDRAW;
            break;
        case CDDS_ITEMPREPAINT | CDDS_SUBITEM: {
            const int row = static_cast<int>(draw.nmcd.dwItemSpec);
            draw.clrText = OnGetCellTextColor(row, draw.iSubItem);
            draw.clrTextBk = OnGetCellBkColor(row, draw.iSubItem);
            FillCell(draw.nmcd.hdc, row, draw.iSubItem, draw.clrTextBk);
            // The colours say what is selected; the system would put its own over them.
            draw.nmcd.uItemState &= ~static_cast<UINT>(CDIS_SELECTED);
            break;
        }
        default:
            break;
    }
}
