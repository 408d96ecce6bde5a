// What CWnd adds to the system's functions.
#include <algorithm>

#include "afx/app.h"
#include "afx/dc.h"
#include "afx/gdi.h"
#include "afx/menu.h"
#include "afx/wnd.h"

BOOL CWnd::Create(LPCSTR lpszClassName, LPCSTR lpszWindowName, DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID,
                  void* pContext) {
    return CreateEx(0, lpszClassName, lpszWindowName, dwStyle | WS_CHILD, rect, pParentWnd, nID, pContext);
}

BOOL CWnd::SubclassWindow(HWND hWnd) {
    if (!Attach(hWnd)) return FALSE;
    PreSubclassWindow();
    return TRUE;
}

BOOL CWnd::SubclassDlgItem(UINT nID, CWnd* pParent) {
    const HWND control = ::GetDlgItem(HandleOf(pParent), static_cast<int>(nID));
    return control != nullptr && SubclassWindow(control);
}

BOOL CWnd::ChangeStyle(int index, DWORD remove, DWORD add, UINT flags) {
    const auto before = static_cast<DWORD>(::GetWindowLongPtrA(m_hWnd, index));
    const DWORD after = (before & ~remove) | add;
    if (before == after) return FALSE;
    // A style has 32 bits of its own, the sign bit among them.
    ::SetWindowLongPtrA(m_hWnd, index, static_cast<LONG_PTR>(static_cast<LONG>(after)));
    if (flags != 0) ::SetWindowPos(m_hWnd, nullptr, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE | flags);
    return TRUE;
}

CWnd* CWnd::GetSafeOwner(CWnd* pParent, HWND* pWndTop) {
    HWND owner = HandleOf(pParent);
    if (owner == nullptr && AfxGetApp() != nullptr) owner = HandleOf(AfxGetApp()->m_pMainWnd);
    // A child window cannot own one.
    if (owner != nullptr) owner = ::GetAncestor(owner, GA_ROOT);
    if (pWndTop != nullptr) *pWndTop = nullptr;
    return FromHandle(owner);
}

void CWnd::ClientToScreen(LPRECT lpRect) const { ::MapWindowPoints(m_hWnd, nullptr, reinterpret_cast<LPPOINT>(lpRect), 2); }
void CWnd::ScreenToClient(LPRECT lpRect) const { ::MapWindowPoints(nullptr, m_hWnd, reinterpret_cast<LPPOINT>(lpRect), 2); }

void CWnd::CenterWindow(CWnd* pAlternateOwner) {
    const bool child = (GetStyle() & WS_CHILD) != 0;
    const HWND about = pAlternateOwner != nullptr ? pAlternateOwner->m_hWnd : ::GetWindow(m_hWnd, GW_OWNER);
    RECT area{}, within{}, own{};
    GetWindowRect(&own);
    if (child) {
        ::GetClientRect(::GetParent(m_hWnd), &area);
        within = area;
    } else {
        SystemParametersInfoA(SPI_GETWORKAREA, 0, &area, 0);
        within = area;
        if (about != nullptr && ::IsWindowVisible(about)) ::GetWindowRect(about, &within);
    }
    const LONG width = own.right - own.left, height = own.bottom - own.top;
    LONG left = (within.left + within.right) / 2 - width / 2, top = (within.top + within.bottom) / 2 - height / 2;
    left = std::max(area.left, std::min(left, area.right - width));
    top = std::max(area.top, std::min(top, area.bottom - height));
    ::SetWindowPos(m_hWnd, nullptr, left, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

CDC* CWnd::GetDC() { return CDC::FromHandle(::GetDC(m_hWnd)); }
CDC* CWnd::GetWindowDC() { return CDC::FromHandle(::GetWindowDC(m_hWnd)); }
int CWnd::ReleaseDC(CDC* pDC) { return ::ReleaseDC(m_hWnd, pDC != nullptr ? pDC->m_hDC : nullptr); }
CDC* CWnd::BeginPaint(PAINTSTRUCT* lpPaint) { return CDC::FromHandle(::BeginPaint(m_hWnd, lpPaint)); }

void CWnd::InvalidateRgn(CRgn* pRgn, BOOL bErase) {
    ::InvalidateRgn(m_hWnd, pRgn != nullptr ? static_cast<HRGN>(pRgn->m_hObject) : nullptr, bErase);
}

BOOL CWnd::RedrawWindow(LPCRECT lpRectUpdate, CRgn* prgnUpdate, UINT flags) {
    return ::RedrawWindow(m_hWnd, lpRectUpdate, prgnUpdate != nullptr ? static_cast<HRGN>(prgnUpdate->m_hObject) : nullptr,
                          flags);
}

void CWnd::SetFont(CFont* pFont, BOOL bRedraw) {
    ::SendMessageA(m_hWnd, WM_SETFONT, reinterpret_cast<WPARAM>(pFont != nullptr ? pFont->m_hObject : nullptr), bRedraw != FALSE);
}

CFont* CWnd::GetFont() const { return CFont::FromHandle(reinterpret_cast<HFONT>(::SendMessageA(m_hWnd, WM_GETFONT, 0, 0))); }

CMenu* CWnd::GetMenu() const { return CMenu::FromHandle(::GetMenu(m_hWnd)); }
BOOL CWnd::SetMenu(CMenu* pMenu) { return ::SetMenu(m_hWnd, pMenu != nullptr ? pMenu->m_hMenu : nullptr); }

BOOL CWnd::SetScrollInfo(int nBar, SCROLLINFO* lpScrollInfo, BOOL bRedraw) {
    lpScrollInfo->cbSize = sizeof(SCROLLINFO);
    ::SetScrollInfo(m_hWnd, nBar, lpScrollInfo, bRedraw);
    return TRUE;
}

BOOL CWnd::GetScrollInfo(int nBar, SCROLLINFO* lpScrollInfo, UINT nMask) {
    lpScrollInfo->cbSize = sizeof(SCROLLINFO);
    lpScrollInfo->fMask = nMask;
    return ::GetScrollInfo(m_hWnd, nBar, lpScrollInfo);
}

int CWnd::GetDlgItemText(int nID, CString& rString) const {
    rString.Empty();
    if (CWnd* control = GetDlgItem(nID)) control->GetWindowText(rString);
    return rString.GetLength();
}

CScrollBar* AfxScrollBarOf(LPARAM lParam) {
    // The class is not known here, and not asked: the object stands for its window.
    return reinterpret_cast<CScrollBar*>(CWnd::FromHandle(reinterpret_cast<HWND>(lParam)));
}
