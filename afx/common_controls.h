// The common controls as objects: progress bar, header and list in report view; thin faces over their messages, which the system
// documents. On their window's thread.
#pragma once

#include "afx/wnd.h"

class ORVIK_API CProgressCtrl : public CWnd {
    DECLARE_DYNAMIC(CProgressCtrl)

public:
    virtual BOOL Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID);
    void SetRange(short nLower, short nUpper) { SetRange32(nLower, nUpper); }
    void SetRange32(int nLower, int nUpper) { SendMessage(PBM_SETRANGE32, static_cast<WPARAM>(nLower), nUpper); }
    void GetRange(int& nLower, int& nUpper) const;
    int GetPos() const { return static_cast<int>(::SendMessageA(m_hWnd, PBM_GETPOS, 0, 0)); }
    // Each gives the position (the step) before.
    int SetPos(int nPos) { return static_cast<int>(SendMessage(PBM_SETPOS, static_cast<WPARAM>(nPos))); }
    int OffsetPos(int nPos) { return static_cast<int>(SendMessage(PBM_DELTAPOS, static_cast<WPARAM>(nPos))); }
    int SetStep(int nStep) { return static_cast<int>(SendMessage(PBM_SETSTEP, static_cast<WPARAM>(nStep))); }
    int StepIt() { return static_cast<int>(SendMessage(PBM_STEPIT)); }
};

class ORVIK_API CHeaderCtrl : public CWnd {
    DECLARE_DYNAMIC(CHeaderCtrl)

public:
    virtual BOOL Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID);
    int GetItemCount() const { return static_cast<int>(::SendMessageA(m_hWnd, HDM_GETITEMCOUNT, 0, 0)); }
    int InsertItem(int nPos, HDITEMA* phdi);
    BOOL DeleteItem(int nPos) { return SendMessage(HDM_DELETEITEM, static_cast<WPARAM>(nPos)) != 0; }
    BOOL GetItem(int nPos, HDITEMA* pHeaderItem) const;
    BOOL SetItem(int nPos, HDITEMA* pHeaderItem);
    BOOL GetItemRect(int nIndex, LPRECT lpRect) const;
};

class ORVIK_API CListCtrl : public CWnd {
    DECLARE_DYNAMIC(CListCtrl)

public:
    virtual BOOL Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID);

    COLORREF GetBkColor() const { return static_cast<COLORREF>(::SendMessageA(m_hWnd, LVM_GETBKCOLOR, 0, 0)); }
    BOOL SetBkColor(COLORREF cr) { return SendMessage(LVM_SETBKCOLOR, 0, static_cast<LPARAM>(cr)) != 0; }
    COLORREF GetTextColor() const { return static_cast<COLORREF>(::SendMessageA(m_hWnd, LVM_GETTEXTCOLOR, 0, 0)); }
    BOOL SetTextColor(COLORREF cr) { return SendMessage(LVM_SETTEXTCOLOR, 0, static_cast<LPARAM>(cr)) != 0; }
    COLORREF GetTextBkColor() const { return static_cast<COLORREF>(::SendMessageA(m_hWnd, LVM_GETTEXTBKCOLOR, 0, 0)); }
    BOOL SetTextBkColor(COLORREF cr) { return SendMessage(LVM_SETTEXTBKCOLOR, 0, static_cast<LPARAM>(cr)) != 0; }
    DWORD SetExtendedStyle(DWORD dwNewStyle);
    DWORD GetExtendedStyle() const { return static_cast<DWORD>(::SendMessageA(m_hWnd, LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0)); }
    // The header belongs to the list.
    CHeaderCtrl* GetHeaderCtrl() const;

    int InsertColumn(int nCol, const LVCOLUMNA* pColumn);
    int InsertColumn(int nCol, LPCSTR lpszColumnHeading, int nFormat = LVCFMT_LEFT, int nWidth = -1, int nSubItem = -1);
    BOOL DeleteColumn(int nCol) { return SendMessage(LVM_DELETECOLUMN, static_cast<WPARAM>(nCol)) != 0; }
    BOOL GetColumn(int nCol, LVCOLUMNA* pColumn) const;
    int GetColumnWidth(int nCol) const {
        return static_cast<int>(::SendMessageA(m_hWnd, LVM_GETCOLUMNWIDTH, static_cast<WPARAM>(nCol), 0));
    }
    BOOL SetColumnWidth(int nCol, int cx);

    int GetItemCount() const { return static_cast<int>(::SendMessageA(m_hWnd, LVM_GETITEMCOUNT, 0, 0)); }
    void SetItemCount(int nItems) { SendMessage(LVM_SETITEMCOUNT, static_cast<WPARAM>(nItems)); }
    int InsertItem(const LVITEMA* pItem) {
        return static_cast<int>(SendMessage(LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(pItem)));
    }
    int InsertItem(int nItem, LPCSTR lpszItem);
    BOOL DeleteItem(int nItem) { return SendMessage(LVM_DELETEITEM, static_cast<WPARAM>(nItem)) != 0; }
    BOOL DeleteAllItems() { return SendMessage(LVM_DELETEALLITEMS) != 0; }
    BOOL GetItem(LVITEMA* pItem) const { return ::SendMessageA(m_hWnd, LVM_GETITEMA, 0, reinterpret_cast<LPARAM>(pItem)) != 0; }
    BOOL SetItem(const LVITEMA* pItem) { return SendMessage(LVM_SETITEMA, 0, reinterpret_cast<LPARAM>(pItem)) != 0; }
    BOOL SetItemText(int nItem, int nSubItem, LPCSTR lpszText);
    CString GetItemText(int nItem, int nSubItem) const;
    DWORD_PTR GetItemData(int nItem) const;
    BOOL SetItemData(int nItem, DWORD_PTR dwData);
    UINT GetItemState(int nItem, UINT nMask) const;
    BOOL SetItemState(int nItem, UINT nState, UINT nMask);
    int GetNextItem(int nItem, int nFlags) const;
    int GetSelectedCount() const { return static_cast<int>(::SendMessageA(m_hWnd, LVM_GETSELECTEDCOUNT, 0, 0)); }
    int FindItem(LVFINDINFOA* pFindInfo, int nStart = -1) const;
    BOOL SortItems(PFNLVCOMPARE pfnCompare, DWORD_PTR dwData);

    int GetTopIndex() const { return static_cast<int>(::SendMessageA(m_hWnd, LVM_GETTOPINDEX, 0, 0)); }
    int GetCountPerPage() const { return static_cast<int>(::SendMessageA(m_hWnd, LVM_GETCOUNTPERPAGE, 0, 0)); }
    BOOL EnsureVisible(int nItem, BOOL bPartialOK) {
        return SendMessage(LVM_ENSUREVISIBLE, static_cast<WPARAM>(nItem), bPartialOK) != 0;
    }
    BOOL GetItemRect(int nItem, LPRECT lpRect, UINT nCode) const;
    BOOL GetSubItemRect(int iItem, int iSubItem, int nArea, LPRECT lpRect) const;
    int HitTest(LVHITTESTINFO* pHitTestInfo) const;
    int SubItemHitTest(LVHITTESTINFO* pInfo);
    BOOL RedrawItems(int nFirst, int nLast) { return SendMessage(LVM_REDRAWITEMS, static_cast<WPARAM>(nFirst), nLast) != 0; }
    BOOL Update(int nItem) { return SendMessage(LVM_UPDATE, static_cast<WPARAM>(nItem)) != 0; }

private:
    mutable CHeaderCtrl m_header;
};
