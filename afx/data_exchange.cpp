#include "afx/data_exchange.h"

#include <climits>

#include "afx/exception.h"
#include "afx/message_box.h"
#include "afx/module.h"
#include "afx/wnd.h"
#include "res/ids.h"

HWND CDataExchange::PrepareCtrl(int nIDC) {
    const HWND control = ::GetDlgItem(m_pDlgWnd->GetSafeHwnd(), nIDC);
    if (control == nullptr) AfxThrowNotSupportedException();
    m_hWndLastControl = control;
    m_bEditLastControl = FALSE;
    return control;
}

HWND CDataExchange::PrepareEditCtrl(int nIDC) {
    const HWND control = PrepareCtrl(nIDC);
    m_bEditLastControl = TRUE;
    return control;
}

void CDataExchange::Fail() {
    if (m_bSaveAndValidate && m_hWndLastControl != nullptr) {
        ::SetFocus(m_hWndLastControl);
        if (m_bEditLastControl) ::SendMessageA(m_hWndLastControl, EM_SETSEL, 0, -1);
    }
    AfxThrowUserException();
}

void CWnd::DoDataExchange(CDataExchange*) {}

BOOL CWnd::UpdateData(BOOL bSaveAndValidate) {
    CDataExchange exchange(this, bSaveAndValidate);
    try {
        DoDataExchange(&exchange);
        return TRUE;
    } catch (CUserException* stopped) {
        stopped->Delete();  // the user knows already
    } catch (CException* failure) {
        failure->ReportError(MB_ICONEXCLAMATION);
        failure->Delete();
    }
    return FALSE;
}

namespace {
CString TextOf(HWND control) {
    CString text;
    const int length = ::GetWindowTextLengthA(control);
    const int got = ::GetWindowTextA(control, text.GetBuffer(length), length + 1);
    text.ReleaseBuffer(got);
    return text;
}

// Blanks, a sign, digits, blanks; within the range.
bool ReadWhole(const char* at, long long least, long long most, long long& value) {
    while (*at == ' ' || *at == '\t') ++at;
    const bool minus = *at == '-';
    if (minus || *at == '+') ++at;
    if (*at < '0' || *at > '9') return false;
    long long read = 0;
    for (; *at >= '0' && *at <= '9'; ++at) {
        read = read * 10 + (*at - '0');
        if (read > 1LL + UINT_MAX) return false;
    }
    while (*at == ' ' || *at == '\t') ++at;
    if (minus) read = -read;
    if (*at != 0 || read < least || read > most) return false;
    value = read;
    return true;
}

template <class T>
void ExchangeWhole(CDataExchange* pDX, int nIDC, T& value, long long least, long long most, const char* format) {
    const HWND control = pDX->PrepareEditCtrl(nIDC);
    if (!pDX->m_bSaveAndValidate) {
        CString text;
        text.Format(format, value);
        ::SetWindowTextA(control, text);
        return;
    }
    long long read = 0;
    if (!ReadWhole(TextOf(control), least, most, read)) {
        char text[256];
        AfxLoadString(IDS_NOT_WHOLE, text, sizeof text);
        AfxMessageBox(text, MB_ICONEXCLAMATION);
        pDX->Fail();
    }
    value = static_cast<T>(read);
}

void ExchangeIndex(CDataExchange* pDX, int nIDC, int& index, UINT get, UINT set) {
    const HWND control = pDX->PrepareCtrl(nIDC);
    if (pDX->m_bSaveAndValidate)
        index = static_cast<int>(::SendMessageA(control, get, 0, 0));
    else
        ::SendMessageA(control, set, static_cast<WPARAM>(index), 0);
}
}  // namespace

void DDX_Text(CDataExchange* pDX, int nIDC, CString& value) {
    const HWND control = pDX->PrepareEditCtrl(nIDC);
    if (pDX->m_bSaveAndValidate)
        value = TextOf(control);
    else
        ::SetWindowTextA(control, value);
}
void DDX_Text(CDataExchange* pDX, int nIDC, int& value) { ExchangeWhole(pDX, nIDC, value, INT_MIN, INT_MAX, "%d"); }
void DDX_Text(CDataExchange* pDX, int nIDC, UINT& value) { ExchangeWhole(pDX, nIDC, value, 0, UINT_MAX, "%u"); }

void DDX_Check(CDataExchange* pDX, int nIDC, int& value) {
    const HWND control = pDX->PrepareCtrl(nIDC);
    if (pDX->m_bSaveAndValidate) {
        value = static_cast<int>(::SendMessageA(control, BM_GETCHECK, 0, 0));
        return;
    }
    ::SendMessageA(control, BM_SETCHECK, static_cast<WPARAM>(value < 0 || value > 2 ? 0 : value), 0);
}

void DDX_Radio(CDataExchange* pDX, int nIDC, int& value) {
    HWND control = pDX->PrepareCtrl(nIDC);
    if (pDX->m_bSaveAndValidate) value = -1;
    // The group's radio buttons are numbered as they follow each other; what else stands among them is passed over.
    int number = 0;
    do {
        if (::SendMessageA(control, WM_GETDLGCODE, 0, 0) & DLGC_RADIOBUTTON) {
            if (!pDX->m_bSaveAndValidate)
                ::SendMessageA(control, BM_SETCHECK, number == value, 0);
            else if (::SendMessageA(control, BM_GETCHECK, 0, 0) != 0)
                value = number;
            ++number;
        }
        control = ::GetWindow(control, GW_HWNDNEXT);
    } while (control != nullptr && (::GetWindowLongPtrA(control, GWL_STYLE) & WS_GROUP) == 0);
}

void DDX_CBIndex(CDataExchange* pDX, int nIDC, int& index) { ExchangeIndex(pDX, nIDC, index, CB_GETCURSEL, CB_SETCURSEL); }
void DDX_LBIndex(CDataExchange* pDX, int nIDC, int& index) { ExchangeIndex(pDX, nIDC, index, LB_GETCURSEL, LB_SETCURSEL); }

void DDX_Control(CDataExchange* pDX, int nIDC, CWnd& rControl) {
    if (rControl.m_hWnd != nullptr) return;
    if (!rControl.Attach(pDX->PrepareCtrl(nIDC))) AfxThrowNotSupportedException();
}
