#include "afx/common_controls.h"

IMPLEMENT_DYNAMIC(CProgressCtrl, CWnd)
IMPLEMENT_DYNAMIC(CHeaderCtrl, CWnd)
IMPLEMENT_DYNAMIC(CListCtrl, CWnd)

namespace {
// The system registers its common controls when it is asked to.
void NeedClasses() {
    static const bool s_there = [] {
        INITCOMMONCONTROLSEX classes = {};
        classes.dwSize = sizeof classes;
        classes.dwICC = ICC_LISTVIEW_CLASSES | ICC_PROGRESS_CLASS;
        return ::InitCommonControlsEx(&classes) != FALSE;
    }();
    static_cast<void>(s_there);
}

LRESULT Ask(HWND window, UINT message, int index, const void* record) {
    return ::SendMessageA(window, message, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(record));
}
}  // namespace

BOOL CProgressCtrl::Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID) {
    NeedClasses();
    return CreateEx(0, "msctls_progress32", nullptr, dwStyle | WS_CHILD, rect, pParentWnd, nID);
}
void CProgressCtrl::GetRange(int& nLower, int& nUpper) const {
    PBRANGE range = {};
    ::SendMessageA(m_hWnd, PBM_GETRANGE, TRUE, reinterpret_cast<LPARAM>(&range));
    nLower = range.iLow;
    nUpper = range.iHigh;
}

BOOL CHeaderCtrl::Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID) {
    NeedClasses();
    return CreateEx(0, "SysHeader32", nullptr, dwStyle | WS_CHILD, rect, pParentWnd, nID);
}
int CHeaderCtrl::InsertItem(int nPos, HDITEMA* phdi) { return static_cast<int>(Ask(m_hWnd, HDM_INSERTITEMA, nPos, phdi)); }
BOOL CHeaderCtrl::GetItem(int nPos, HDITEMA* pHeaderItem) const { return Ask(m_hWnd, HDM_GETITEMA, nPos, pHeaderItem) != 0; }
BOOL CHeaderCtrl::SetItem(int nPos, HDITEMA* pHeaderItem) { return Ask(m_hWnd, HDM_SETITEMA, nPos, pHeaderItem) != 0; }
BOOL CHeaderCtrl::GetItemRect(int nIndex, LPRECT lpRect) const { return Ask(m_hWnd, HDM_GETITEMRECT, nIndex, lpRect) != 0; }

BOOL CListCtrl::Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID) {
    NeedClasses();
    return CreateEx(0, "SysListView32", nullptr, dwStyle | WS_CHILD, rect, pParentWnd, nID);
}
DWORD CListCtrl::SetExtendedStyle(DWORD dwNewStyle) {
    return static_cast<DWORD>(SendMessage(LVM_SETEXTENDEDLISTVIEWSTYLE, 0, static_cast<LPARAM>(dwNewStyle)));
}
CHeaderCtrl* CListCtrl::GetHeaderCtrl() const {
    const auto header = reinterpret_cast<HWND>(::SendMessageA(m_hWnd, LVM_GETHEADER, 0, 0));
    if (header == nullptr) return nullptr;
    if (m_header.m_hWnd != header) {
        m_header.Detach();
        if (!m_header.Attach(header)) return nullptr;
    }
    return &m_header;
}

int CListCtrl::InsertColumn(int nCol, const LVCOLUMNA* pColumn) {
    return static_cast<int>(Ask(m_hWnd, LVM_INSERTCOLUMNA, nCol, pColumn));
}
int CListCtrl::InsertColumn(int nCol, LPCSTR lpszColumnHeading, int nFormat, int nWidth, int nSubItem) {
    LVCOLUMNA column = {};
    column.mask = LVCF_TEXT | LVCF_FMT;
    column.pszText = const_cast<LPSTR>(lpszColumnHeading);
    column.fmt = nFormat;
    if (nWidth != -1) {
        column.mask |= LVCF_WIDTH;
        column.cx = nWidth;
    }
    if (nSubItem != -1) {
        column.mask |= LVCF_SUBITEM;
        column.iSubItem = nSubItem;
    }
    return InsertColumn(nCol, &column);
}
BOOL CListCtrl::GetColumn(int nCol, LVCOLUMNA* pColumn) const { return Ask(m_hWnd, LVM_GETCOLUMNA, nCol, pColumn) != 0; }
BOOL CListCtrl::SetColumnWidth(int nCol, int cx) {
    return SendMessage(LVM_SETCOLUMNWIDTH, static_cast<WPARAM>(nCol), MAKELPARAM(cx, 0)) != 0;
}

int CListCtrl::InsertItem(int nItem, LPCSTR lpszItem) {
    LVITEMA item = {};
    item.mask = LVIF_TEXT;
    item.iItem = nItem;
    item.pszText = const_cast<LPSTR>(lpszItem);
    return InsertItem(&item);
}
BOOL CListCtrl::SetItemText(int nItem, int nSubItem, LPCSTR lpszText) {
    LVITEMA item = {};
    item.iSubItem = nSubItem;
    item.pszText = const_cast<LPSTR>(lpszText);
    return Ask(m_hWnd, LVM_SETITEMTEXTA, nItem, &item) != 0;
}
CString CListCtrl::GetItemText(int nItem, int nSubItem) const {
    CString text;
    // The message cuts to the buffer: a text that fills it, but for a part of a character, may be longer.
    constexpr int kMostOfCharacter = 3;
    for (int room = 128;; room *= 2) {
        LVITEMA item = {};
        item.iSubItem = nSubItem;
        item.cchTextMax = room;
        item.pszText = text.GetBufferSetLength(room);
        const auto length = static_cast<int>(Ask(m_hWnd, LVM_GETITEMTEXTA, nItem, &item));
        text.ReleaseBuffer(length);
        if (length < room - 1 - kMostOfCharacter) return text;
    }
}
DWORD_PTR CListCtrl::GetItemData(int nItem) const {
    LVITEMA item = {};
    item.mask = LVIF_PARAM;
    item.iItem = nItem;
    GetItem(&item);
    return static_cast<DWORD_PTR>(item.lParam);
}
BOOL CListCtrl::SetItemData(int nItem, DWORD_PTR dwData) {
    LVITEMA item = {};
    item.mask = LVIF_PARAM;
    item.iItem = nItem;
    item.lParam = static_cast<LPARAM>(dwData);
    return SetItem(&item);
}
UINT CListCtrl::GetItemState(int nItem, UINT nMask) const {
    return static_cast<UINT>(::SendMessageA(m_hWnd, LVM_GETITEMSTATE, static_cast<WPARAM>(nItem), static_cast<LPARAM>(nMask)));
}
BOOL CListCtrl::SetItemState(int nItem, UINT nState, UINT nMask) {
    LVITEMA item = {};
    item.state = nState;
    item.stateMask = nMask;
    return Ask(m_hWnd, LVM_SETITEMSTATE, nItem, &item) != 0;
}
int CListCtrl::GetNextItem(int nItem, int nFlags) const {
    return static_cast<int>(::SendMessageA(m_hWnd, LVM_GETNEXTITEM, static_cast<WPARAM>(nItem), MAKELPARAM(nFlags, 0)));
}
int CListCtrl::FindItem(LVFINDINFOA* pFindInfo, int nStart) const {
    return static_cast<int>(Ask(m_hWnd, LVM_FINDITEMA, nStart, pFindInfo));
}
BOOL CListCtrl::SortItems(PFNLVCOMPARE pfnCompare, DWORD_PTR dwData) {
    return SendMessage(LVM_SORTITEMS, dwData, reinterpret_cast<LPARAM>(pfnCompare)) != 0;
}

BOOL CListCtrl::GetItemRect(int nItem, LPRECT lpRect, UINT nCode) const {
    lpRect->left = static_cast<LONG>(nCode);
    return Ask(m_hWnd, LVM_GETITEMRECT, nItem, lpRect) != 0;
}
BOOL CListCtrl::GetSubItemRect(int iItem, int iSubItem, int nArea, LPRECT lpRect) const {
    lpRect->top = iSubItem;
    lpRect->left = nArea;
    return Ask(m_hWnd, LVM_GETSUBITEMRECT, iItem, lpRect) != 0;
}
int CListCtrl::HitTest(LVHITTESTINFO* pHitTestInfo) const { return static_cast<int>(Ask(m_hWnd, LVM_HITTEST, 0, pHitTestInfo)); }
int CListCtrl::SubItemHitTest(LVHITTESTINFO* pInfo) { return static_cast<int>(Ask(m_hWnd, LVM_SUBITEMHITTEST, 0, pInfo)); }
