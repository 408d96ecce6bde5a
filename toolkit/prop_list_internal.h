// Parts of the property grid that its files share.
#pragma once

#include "afx/controls.h"
#include "platform/accessible.h"
#include "toolkit/prop_list.h"

// Where everything stands in the client area.
struct CBCGPPropList::Places {
    bool frame = false;  // the border is drawn inside
    CRect header, rows, bar, description;
};

// The editor of a value's text, over its cell.
class CPropEdit : public CEdit {
public:
    explicit CPropEdit(CBCGPPropList& list) : m_list(list) {}

protected:
    afx_msg UINT OnGetDlgCode();
    afx_msg void OnKeyDown(UINT nChar, UINT nRepCnt, UINT nFlags);
    afx_msg void OnSysKeyDown(UINT nChar, UINT nRepCnt, UINT nFlags);
    afx_msg void OnChar(UINT nChar, UINT nRepCnt, UINT nFlags);
    afx_msg void OnKillFocus(CWnd* pNewWnd);
    LRESULT OnDescribe(WPARAM wParam, LPARAM lParam);
    DECLARE_MESSAGE_MAP()

private:
    CBCGPPropList& m_list;
};

// A property's choices, under or over its cell.
class CPropChoices : public CListBox {
public:
    explicit CPropChoices(CBCGPPropList& list) : m_list(list) {}

protected:
    afx_msg UINT OnGetDlgCode();
    afx_msg void OnKeyDown(UINT nChar, UINT nRepCnt, UINT nFlags);
    afx_msg void OnSysKeyDown(UINT nChar, UINT nRepCnt, UINT nFlags);
    afx_msg void OnLButtonUp(UINT nFlags, CPoint point);
    afx_msg void OnKillFocus(CWnd* pNewWnd);
    DECLARE_MESSAGE_MAP()

private:
    CBCGPPropList& m_list;
};
