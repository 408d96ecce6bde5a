// Dialog data exchange: one call per control carries values into a dialog's controls, or reads and checks them back.
// An exchange object lives for one exchange, on the dialog's thread. The DDX_ functions are called from DoDataExchange.
#pragma once

#include "afx/string.h"

class CWnd;

class ORVIK_API CDataExchange {
public:
    CDataExchange(CWnd* pDlgWnd, BOOL bSaveAndValidate) : m_bSaveAndValidate(bSaveAndValidate), m_pDlgWnd(pDlgWnd) {}

    BOOL m_bSaveAndValidate;  // TRUE: from the controls to the variables
    CWnd* m_pDlgWnd;

    // The control, which Fail will go to if something is wrong with it. Without such a control the exchange ends with the
    // not-supported exception.
    HWND PrepareCtrl(int nIDC);
    HWND PrepareEditCtrl(int nIDC);  // for a control whose text Fail is to select
    // Ends the exchange with the user exception: while saving, after the focus has gone to the control prepared last, its text
    // selected if it is an edit control. The user has been told why before.
    [[noreturn]] void Fail();

    HWND m_hWndLastControl = nullptr;
    BOOL m_bEditLastControl = FALSE;
};

// Text as it stands, and whole numbers. What is no number of the type tells the user (string resource 845) and fails; an empty
// text does so too.
ORVIK_API void DDX_Text(CDataExchange* pDX, int nIDC, CString& value);
ORVIK_API void DDX_Text(CDataExchange* pDX, int nIDC, int& value);
ORVIK_API void DDX_Text(CDataExchange* pDX, int nIDC, UINT& value);
// 0, 1 or 2 (neither); anything else is shown as 0.
ORVIK_API void DDX_Check(CDataExchange* pDX, int nIDC, int& value);
// The number, from 0, of the button that is on in the group that begins with nIDC; -1 for none.
ORVIK_API void DDX_Radio(CDataExchange* pDX, int nIDC, int& value);
ORVIK_API void DDX_CBIndex(CDataExchange* pDX, int nIDC, int& index);
ORVIK_API void DDX_LBIndex(CDataExchange* pDX, int nIDC, int& index);
// Ties the object to the control at the first exchange.
ORVIK_API void DDX_Control(CDataExchange* pDX, int nIDC, CWnd& rControl);
