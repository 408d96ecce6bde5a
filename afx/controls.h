// The standard controls as objects: thin faces over their messages, which the system documents. Made with Create, or tied to a
// control that is there with Attach, SubclassDlgItem or DDX_Control. On their window's thread.
#pragma once

#include "afx/wnd.h"

class ORVIK_API CStatic : public CWnd {
    DECLARE_DYNAMIC(CStatic)

public:
    virtual BOOL Create(LPCSTR lpszText, DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID = 0xFFFF);
    HICON SetIcon(HICON hIcon) { return reinterpret_cast<HICON>(SendMessage(STM_SETICON, reinterpret_cast<WPARAM>(hIcon))); }
    HICON GetIcon() const { return reinterpret_cast<HICON>(::SendMessageA(m_hWnd, STM_GETICON, 0, 0)); }
};

class ORVIK_API CButton : public CWnd {
    DECLARE_DYNAMIC(CButton)

public:
    virtual BOOL Create(LPCSTR lpszCaption, DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID);
    UINT GetState() const { return static_cast<UINT>(::SendMessageA(m_hWnd, BM_GETSTATE, 0, 0)); }
    void SetState(BOOL bHighlight) { SendMessage(BM_SETSTATE, static_cast<WPARAM>(bHighlight)); }
    int GetCheck() const { return static_cast<int>(::SendMessageA(m_hWnd, BM_GETCHECK, 0, 0)); }
    void SetCheck(int nCheck) { SendMessage(BM_SETCHECK, static_cast<WPARAM>(nCheck)); }
    UINT GetButtonStyle() const { return static_cast<UINT>(::GetWindowLongPtrA(m_hWnd, GWL_STYLE)) & 0xFF; }
    void SetButtonStyle(UINT nStyle, BOOL bRedraw = TRUE) { SendMessage(BM_SETSTYLE, nStyle, bRedraw); }
    void Click() { SendMessage(BM_CLICK); }
};

class ORVIK_API CEdit : public CWnd {
    DECLARE_DYNAMIC(CEdit)

public:
    virtual BOOL Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID);
    void GetSel(int& nStartChar, int& nEndChar) const;
    void SetSel(int nStartChar, int nEndChar, BOOL bNoScroll = FALSE);
    void ReplaceSel(LPCSTR lpszNewText, BOOL bCanUndo = FALSE);
    void SetLimitText(UINT nMax) { SendMessage(EM_SETLIMITTEXT, nMax); }
    void LimitText(int nChars = 0) { SendMessage(EM_LIMITTEXT, static_cast<WPARAM>(nChars)); }
    UINT GetLimitText() const { return static_cast<UINT>(::SendMessageA(m_hWnd, EM_GETLIMITTEXT, 0, 0)); }
    BOOL SetReadOnly(BOOL bReadOnly = TRUE) { return SendMessage(EM_SETREADONLY, static_cast<WPARAM>(bReadOnly)) != 0; }
    BOOL GetModify() const { return ::SendMessageA(m_hWnd, EM_GETMODIFY, 0, 0) != 0; }
    void SetModify(BOOL bModified = TRUE) { SendMessage(EM_SETMODIFY, static_cast<WPARAM>(bModified)); }
    BOOL CanUndo() const { return ::SendMessageA(m_hWnd, EM_CANUNDO, 0, 0) != 0; }
    BOOL Undo() { return SendMessage(EM_UNDO) != 0; }
    void EmptyUndoBuffer() { SendMessage(EM_EMPTYUNDOBUFFER); }
    int GetLineCount() const { return static_cast<int>(::SendMessageA(m_hWnd, EM_GETLINECOUNT, 0, 0)); }
    int LineIndex(int nLine = -1) const;
    int LineLength(int nIndex = -1) const;
    int LineFromChar(int nIndex = -1) const;
    // Into a buffer of nMaxLength bytes, without a final 0 when the line fills it: the characters copied.
    int GetLine(int nIndex, LPSTR lpszBuffer, int nMaxLength) const;
    void SetPasswordChar(char ch) { SendMessage(EM_SETPASSWORDCHAR, static_cast<unsigned char>(ch)); }
    void Cut() { SendMessage(WM_CUT); }
    void Copy() { SendMessage(WM_COPY); }
    void Paste() { SendMessage(WM_PASTE); }
    void Clear() { SendMessage(WM_CLEAR); }
};

class ORVIK_API CListBox : public CWnd {
    DECLARE_DYNAMIC(CListBox)

public:
    virtual BOOL Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID);
    int GetCount() const { return static_cast<int>(::SendMessageA(m_hWnd, LB_GETCOUNT, 0, 0)); }
    int GetCurSel() const { return static_cast<int>(::SendMessageA(m_hWnd, LB_GETCURSEL, 0, 0)); }
    int SetCurSel(int nSelect) { return static_cast<int>(SendMessage(LB_SETCURSEL, static_cast<WPARAM>(nSelect))); }
    int AddString(LPCSTR lpszItem) { return static_cast<int>(SendMessage(LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(lpszItem))); }
    int InsertString(int nIndex, LPCSTR lpszItem);
    int DeleteString(UINT nIndex) { return static_cast<int>(SendMessage(LB_DELETESTRING, nIndex)); }
    void ResetContent() { SendMessage(LB_RESETCONTENT); }
    int GetTextLen(int nIndex) const {
        return static_cast<int>(::SendMessageA(m_hWnd, LB_GETTEXTLEN, static_cast<WPARAM>(nIndex), 0));
    }
    void GetText(int nIndex, CString& rString) const;
    int FindStringExact(int nIndexStart, LPCSTR lpszFind) const;
    DWORD_PTR GetItemData(int nIndex) const;
    int SetItemData(int nIndex, DWORD_PTR dwItemData);
};

class ORVIK_API CComboBox : public CWnd {
    DECLARE_DYNAMIC(CComboBox)

public:
    virtual BOOL Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID);
    int GetCount() const { return static_cast<int>(::SendMessageA(m_hWnd, CB_GETCOUNT, 0, 0)); }
    int GetCurSel() const { return static_cast<int>(::SendMessageA(m_hWnd, CB_GETCURSEL, 0, 0)); }
    int SetCurSel(int nSelect) { return static_cast<int>(SendMessage(CB_SETCURSEL, static_cast<WPARAM>(nSelect))); }
    int AddString(LPCSTR lpszString) {
        return static_cast<int>(SendMessage(CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(lpszString)));
    }
    int InsertString(int nIndex, LPCSTR lpszString);
    int DeleteString(UINT nIndex) { return static_cast<int>(SendMessage(CB_DELETESTRING, nIndex)); }
    void ResetContent() { SendMessage(CB_RESETCONTENT); }
    int GetLBTextLen(int nIndex) const;
    void GetLBText(int nIndex, CString& rString) const;
    int FindStringExact(int nIndexStart, LPCSTR lpszFind) const;
    int SelectString(int nStartAfter, LPCSTR lpszString);
    DWORD_PTR GetItemData(int nIndex) const;
    int SetItemData(int nIndex, DWORD_PTR dwItemData);
    void ShowDropDown(BOOL bShowIt = TRUE) { SendMessage(CB_SHOWDROPDOWN, static_cast<WPARAM>(bShowIt)); }
    BOOL GetDroppedState() const { return ::SendMessageA(m_hWnd, CB_GETDROPPEDSTATE, 0, 0) != 0; }
};

class ORVIK_API CScrollBar : public CWnd {
    DECLARE_DYNAMIC(CScrollBar)

public:
    virtual BOOL Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID);
    int GetScrollPos() const { return static_cast<int>(::SendMessageA(m_hWnd, SBM_GETPOS, 0, 0)); }
    int SetScrollPos(int nPos, BOOL bRedraw = TRUE);
    void SetScrollRange(int nMinPos, int nMaxPos, BOOL bRedraw = TRUE);
    BOOL SetScrollInfo(LPSCROLLINFO lpScrollInfo, BOOL bRedraw = TRUE);
    BOOL GetScrollInfo(LPSCROLLINFO lpScrollInfo, UINT nMask = SIF_ALL);
};
