#include "afx/controls.h"

#include <cstring>

IMPLEMENT_DYNAMIC(CStatic, CWnd)
IMPLEMENT_DYNAMIC(CButton, CWnd)
IMPLEMENT_DYNAMIC(CEdit, CWnd)
IMPLEMENT_DYNAMIC(CListBox, CWnd)
IMPLEMENT_DYNAMIC(CComboBox, CWnd)
IMPLEMENT_DYNAMIC(CScrollBar, CWnd)

BOOL CStatic::Create(LPCSTR lpszText, DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID) {
    return CreateEx(0, "Static", lpszText, dwStyle | WS_CHILD, rect, pParentWnd, nID);
}
BOOL CButton::Create(LPCSTR lpszCaption, DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID) {
    return CreateEx(0, "Button", lpszCaption, dwStyle | WS_CHILD, rect, pParentWnd, nID);
}
BOOL CEdit::Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID) {
    return CreateEx(0, "Edit", nullptr, dwStyle | WS_CHILD, rect, pParentWnd, nID);
}
BOOL CListBox::Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID) {
    return CreateEx(0, "ListBox", nullptr, dwStyle | WS_CHILD, rect, pParentWnd, nID);
}
BOOL CComboBox::Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID) {
    return CreateEx(0, "ComboBox", nullptr, dwStyle | WS_CHILD, rect, pParentWnd, nID);
}
BOOL CScrollBar::Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID) {
    return CreateEx(0, "ScrollBar", nullptr, dwStyle | WS_CHILD, rect, pParentWnd, nID);
}

void CEdit::GetSel(int& nStartChar, int& nEndChar) const {
    DWORD from = 0, to = 0;
    ::SendMessageA(m_hWnd, EM_GETSEL, reinterpret_cast<WPARAM>(&from), reinterpret_cast<LPARAM>(&to));
    nStartChar = static_cast<int>(from);
    nEndChar = static_cast<int>(to);
}
void CEdit::SetSel(int nStartChar, int nEndChar, BOOL bNoScroll) {
    SendMessage(EM_SETSEL, static_cast<WPARAM>(nStartChar), nEndChar);
    if (!bNoScroll) SendMessage(EM_SCROLLCARET);
}
void CEdit::ReplaceSel(LPCSTR lpszNewText, BOOL bCanUndo) {
    SendMessage(EM_REPLACESEL, static_cast<WPARAM>(bCanUndo), reinterpret_cast<LPARAM>(lpszNewText));
}
int CEdit::LineIndex(int nLine) const {
    return static_cast<int>(::SendMessageA(m_hWnd, EM_LINEINDEX, static_cast<WPARAM>(nLine), 0));
}
int CEdit::LineLength(int nIndex) const {
    return static_cast<int>(::SendMessageA(m_hWnd, EM_LINELENGTH, static_cast<WPARAM>(nIndex), 0));
}
int CEdit::LineFromChar(int nIndex) const {
    return static_cast<int>(::SendMessageA(m_hWnd, EM_LINEFROMCHAR, static_cast<WPARAM>(nIndex), 0));
}
int CEdit::GetLine(int nIndex, LPSTR lpszBuffer, int nMaxLength) const {
    // The message is told the buffer's size in its first two bytes.
    if (nMaxLength < static_cast<int>(sizeof(WORD))) return 0;
    const auto room = static_cast<WORD>(nMaxLength > 0xFFFF ? 0xFFFF : nMaxLength);
    std::memcpy(lpszBuffer, &room, sizeof room);
    return static_cast<int>(
        ::SendMessageA(m_hWnd, EM_GETLINE, static_cast<WPARAM>(nIndex), reinterpret_cast<LPARAM>(lpszBuffer)));
}

int CListBox::InsertString(int nIndex, LPCSTR lpszItem) {
    return static_cast<int>(SendMessage(LB_INSERTSTRING, static_cast<WPARAM>(nIndex), reinterpret_cast<LPARAM>(lpszItem)));
}
void CListBox::GetText(int nIndex, CString& rString) const {
    const int length = GetTextLen(nIndex);
    if (length < 0) return rString.Empty();
    ::SendMessageA(m_hWnd, LB_GETTEXT, static_cast<WPARAM>(nIndex), reinterpret_cast<LPARAM>(rString.GetBuffer(length)));
    rString.ReleaseBuffer();
}
int CListBox::FindStringExact(int nIndexStart, LPCSTR lpszFind) const {
    return static_cast<int>(
        ::SendMessageA(m_hWnd, LB_FINDSTRINGEXACT, static_cast<WPARAM>(nIndexStart), reinterpret_cast<LPARAM>(lpszFind)));
}
DWORD_PTR CListBox::GetItemData(int nIndex) const {
    return static_cast<DWORD_PTR>(::SendMessageA(m_hWnd, LB_GETITEMDATA, static_cast<WPARAM>(nIndex), 0));
}
int CListBox::SetItemData(int nIndex, DWORD_PTR dwItemData) {
    return static_cast<int>(SendMessage(LB_SETITEMDATA, static_cast<WPARAM>(nIndex), static_cast<LPARAM>(dwItemData)));
}

int CComboBox::InsertString(int nIndex, LPCSTR lpszString) {
    return static_cast<int>(SendMessage(CB_INSERTSTRING, static_cast<WPARAM>(nIndex), reinterpret_cast<LPARAM>(lpszString)));
}
int CComboBox::GetLBTextLen(int nIndex) const {
    return static_cast<int>(::SendMessageA(m_hWnd, CB_GETLBTEXTLEN, static_cast<WPARAM>(nIndex), 0));
}
void CComboBox::GetLBText(int nIndex, CString& rString) const {
    const int length = GetLBTextLen(nIndex);
    if (length < 0) return rString.Empty();
    ::SendMessageA(m_hWnd, CB_GETLBTEXT, static_cast<WPARAM>(nIndex), reinterpret_cast<LPARAM>(rString.GetBuffer(length)));
    rString.ReleaseBuffer();
}
int CComboBox::FindStringExact(int nIndexStart, LPCSTR lpszFind) const {
    return static_cast<int>(
        ::SendMessageA(m_hWnd, CB_FINDSTRINGEXACT, static_cast<WPARAM>(nIndexStart), reinterpret_cast<LPARAM>(lpszFind)));
}
int CComboBox::SelectString(int nStartAfter, LPCSTR lpszString) {
    return static_cast<int>(SendMessage(CB_SELECTSTRING, static_cast<WPARAM>(nStartAfter), reinterpret_cast<LPARAM>(lpszString)));
}
DWORD_PTR CComboBox::GetItemData(int nIndex) const {
    return static_cast<DWORD_PTR>(::SendMessageA(m_hWnd, CB_GETITEMDATA, static_cast<WPARAM>(nIndex), 0));
}
int CComboBox::SetItemData(int nIndex, DWORD_PTR dwItemData) {
    return static_cast<int>(SendMessage(CB_SETITEMDATA, static_cast<WPARAM>(nIndex), static_cast<LPARAM>(dwItemData)));
}

int CScrollBar::SetScrollPos(int nPos, BOOL bRedraw) {
    return static_cast<int>(SendMessage(SBM_SETPOS, static_cast<WPARAM>(nPos), bRedraw));
}
void CScrollBar::SetScrollRange(int nMinPos, int nMaxPos, BOOL bRedraw) {
    SendMessage(bRedraw ? SBM_SETRANGEREDRAW : SBM_SETRANGE, static_cast<WPARAM>(nMinPos), nMaxPos);
}
BOOL CScrollBar::SetScrollInfo(LPSCROLLINFO lpScrollInfo, BOOL bRedraw) {
    lpScrollInfo->cbSize = sizeof(SCROLLINFO);
    SendMessage(SBM_SETSCROLLINFO, static_cast<WPARAM>(bRedraw), reinterpret_cast<LPARAM>(lpScrollInfo));
    return TRUE;
}
BOOL CScrollBar::GetScrollInfo(LPSCROLLINFO lpScrollInfo, UINT nMask) {
    lpScrollInfo->cbSize = sizeof(SCROLLINFO);
    lpScrollInfo->fMask = nMask;
    return SendMessage(SBM_GETSCROLLINFO, 0, reinterpret_cast<LPARAM>(lpScrollInfo)) != 0;
}
