// A window behind a C++ object. The object belongs to the window's thread: that thread makes it, sends it messages and destroys
// it; only PostMessage, and SendMessage from other threads as the system has it, may be called from elsewhere. The window dies
// with the object and the object forgets a window that dies first; it is not deleted then (PostNcDestroy may).
// Members that have a function of the system of their name do what that does with the window. Coordinates are pixels, of the
// client area unless a member says otherwise. Pointers to other windows, menus and contexts are for use at once (FromHandle).
// Lines for message maps (ON_WM_SIZE() and so on) are in afx/message_map.h.
#pragma once

#include "afx/cmd_target.h"
#include "afx/geometry.h"
#include "afx/string.h"

class CDataExchange;
class CDC;
class CFont;
class CMenu;
class CRgn;
class CScrollBar;

class ORVIK_API CWnd : public CCmdTarget {
    DECLARE_DYNCREATE(CWnd)

public:
    CWnd() = default;
    explicit CWnd(HWND hWnd) : m_hWnd(hWnd), m_temporary(true) {}  // for use at once, without owning it
    ~CWnd() override;

    // For SetWindowPos.
    static const CWnd wndTop, wndBottom, wndTopMost, wndNoTopMost;

    HWND m_hWnd = nullptr;
    operator HWND() const { return m_hWnd; }
    HWND GetSafeHwnd() const { return m_hWnd; }

    // The object of a window: the one that made or attached it; otherwise, for FromHandle, a temporary one of the calling thread,
    // which is for use at once and does not own the window.
    static CWnd* FromHandle(HWND hWnd);
    static CWnd* FromHandlePermanent(HWND hWnd);
    // Takes over a window that is there, and its messages; 0 for null or for a window that has an object.
    BOOL Attach(HWND hWndNew);
    // Lets the window go, alive.
    HWND Detach();

    virtual BOOL CreateEx(DWORD dwExStyle, LPCSTR lpszClassName, LPCSTR lpszWindowName, DWORD dwStyle, int x, int y, int nWidth,
                          int nHeight, HWND hWndParent, HMENU nIDorHMenu, LPVOID lpParam = nullptr);
    BOOL CreateEx(DWORD dwExStyle, LPCSTR lpszClassName, LPCSTR lpszWindowName, DWORD dwStyle, const RECT& rect, CWnd* pParentWnd,
                  UINT nID, LPVOID lpParam = nullptr);
    // May change what the window is made with; 0 gives up.
    virtual BOOL PreCreateWindow(CREATESTRUCTA& cs);
    virtual BOOL DestroyWindow();

    // A child window; `rect` in the parent's client area.
    virtual BOOL Create(LPCSTR lpszClassName, LPCSTR lpszWindowName, DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID,
                        void* pContext = nullptr);
    // Takes over the messages of a window that is there, as Attach does; the second, of a control of a window.
    BOOL SubclassWindow(HWND hWnd);
    BOOL SubclassDlgItem(UINT nID, CWnd* pParent);
    HWND UnsubclassWindow() { return Detach(); }
    // May be called before SubclassWindow.
    virtual void PreSubclassWindow() {}
    // Before a message of this window or of one below it is dispatched; non-zero keeps it from there.
    virtual BOOL PreTranslateMessage(MSG* pMsg);
    // Asks the window of the message and all above it, up to hWndStop.
    static BOOL WalkPreTranslateTree(HWND hWndStop, MSG* pMsg);

    LRESULT SendMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);
    BOOL PostMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);
    // Periods in milliseconds. With a null procedure the window gets WM_TIMER.
    UINT_PTR SetTimer(UINT_PTR nIDEvent, UINT nElapse, TIMERPROC lpfnTimer = nullptr);
    BOOL KillTimer(UINT_PTR nIDEvent);
    void SetWindowText(LPCSTR lpszString);
    void GetWindowText(CString& rString) const;
    int GetWindowText(LPSTR lpszString, int nMaxCount) const { return ::GetWindowTextA(m_hWnd, lpszString, nMaxCount); }
    int GetWindowTextLength() const { return ::GetWindowTextLengthA(m_hWnd); }
    BOOL EnableWindow(BOOL bEnable = TRUE);
    BOOL IsWindowEnabled() const;

    // Relations.
    CWnd* GetParent() const { return FromHandle(::GetParent(m_hWnd)); }
    CWnd* SetParent(CWnd* pWndNewParent) { return FromHandle(::SetParent(m_hWnd, HandleOf(pWndNewParent))); }
    CWnd* GetOwner() const { return FromHandle(m_hWndOwner != nullptr ? m_hWndOwner : ::GetParent(m_hWnd)); }
    void SetOwner(CWnd* pOwnerWnd) { m_hWndOwner = HandleOf(pOwnerWnd); }
    CWnd* GetTopLevelParent() const { return FromHandle(::GetAncestor(m_hWnd, GA_ROOTOWNER)); }
    // The top-level window that a dialog for pParent is owned by: pParent's own one, or the application's main window; null if
    // there is neither.
    static CWnd* GetSafeOwner(CWnd* pParent = nullptr, HWND* pWndTop = nullptr);
    CWnd* GetDlgItem(int nID) const { return FromHandle(::GetDlgItem(m_hWnd, nID)); }
    int GetDlgCtrlID() const { return ::GetDlgCtrlID(m_hWnd); }
    int SetDlgCtrlID(int nID) { return static_cast<int>(::SetWindowLongPtrA(m_hWnd, GWLP_ID, nID)); }
    CWnd* GetWindow(UINT nCmd) const { return FromHandle(::GetWindow(m_hWnd, nCmd)); }
    CWnd* GetTopWindow() const { return FromHandle(::GetTopWindow(m_hWnd)); }
    BOOL IsChild(const CWnd* pWnd) const { return ::IsChild(m_hWnd, HandleOf(pWnd)); }
    CWnd* ChildWindowFromPoint(POINT point) const { return FromHandle(::ChildWindowFromPoint(m_hWnd, point)); }
    static CWnd* WindowFromPoint(POINT point) { return FromHandle(::WindowFromPoint(point)); }
    static CWnd* GetDesktopWindow() { return FromHandle(::GetDesktopWindow()); }

    DWORD GetStyle() const { return static_cast<DWORD>(::GetWindowLongPtrA(m_hWnd, GWL_STYLE)); }
    DWORD GetExStyle() const { return static_cast<DWORD>(::GetWindowLongPtrA(m_hWnd, GWL_EXSTYLE)); }
    // Non-zero if that changed anything. nFlags other than 0 are SWP_ flags with which the window is placed anew, where it is.
    BOOL ModifyStyle(DWORD dwRemove, DWORD dwAdd, UINT nFlags = 0) { return ChangeStyle(GWL_STYLE, dwRemove, dwAdd, nFlags); }
    BOOL ModifyStyleEx(DWORD dwRemove, DWORD dwAdd, UINT nFlags = 0) { return ChangeStyle(GWL_EXSTYLE, dwRemove, dwAdd, nFlags); }

    // Place.
    void GetClientRect(LPRECT lpRect) const { ::GetClientRect(m_hWnd, lpRect); }
    void GetWindowRect(LPRECT lpRect) const { ::GetWindowRect(m_hWnd, lpRect); }
    void MoveWindow(int x, int y, int nWidth, int nHeight, BOOL bRepaint = TRUE) {
        ::MoveWindow(m_hWnd, x, y, nWidth, nHeight, bRepaint);
    }
    void MoveWindow(LPCRECT lpRect, BOOL bRepaint = TRUE) {
        MoveWindow(lpRect->left, lpRect->top, lpRect->right - lpRect->left, lpRect->bottom - lpRect->top, bRepaint);
    }
    BOOL SetWindowPos(const CWnd* pWndInsertAfter, int x, int y, int cx, int cy, UINT nFlags) {
        return ::SetWindowPos(m_hWnd, HandleOf(pWndInsertAfter), x, y, cx, cy, nFlags);
    }
    BOOL ShowWindow(int nCmdShow) { return ::ShowWindow(m_hWnd, nCmdShow); }
    BOOL IsWindowVisible() const { return ::IsWindowVisible(m_hWnd); }
    BOOL IsIconic() const { return ::IsIconic(m_hWnd); }
    BOOL IsZoomed() const { return ::IsZoomed(m_hWnd); }
    void BringWindowToTop() { ::BringWindowToTop(m_hWnd); }
    void ClientToScreen(LPPOINT lpPoint) const { ::ClientToScreen(m_hWnd, lpPoint); }
    void ClientToScreen(LPRECT lpRect) const;
    void ScreenToClient(LPPOINT lpPoint) const { ::ScreenToClient(m_hWnd, lpPoint); }
    void ScreenToClient(LPRECT lpRect) const;
    void MapWindowPoints(CWnd* pwndTo, LPPOINT lpPoint, UINT nCount) const {
        ::MapWindowPoints(m_hWnd, HandleOf(pwndTo), lpPoint, nCount);
    }
    void MapWindowPoints(CWnd* pwndTo, LPRECT lpRect) const { MapWindowPoints(pwndTo, reinterpret_cast<LPPOINT>(lpRect), 2); }
    // In the middle of another window, by default of the parent or owner; of the desktop if that is hidden. Never beyond the
    // desktop's work area.
    void CenterWindow(CWnd* pAlternateOwner = nullptr);

    // Painting.
    CDC* GetDC();
    CDC* GetWindowDC();
    int ReleaseDC(CDC* pDC);
    CDC* BeginPaint(PAINTSTRUCT* lpPaint);
    void EndPaint(PAINTSTRUCT* lpPaint) { ::EndPaint(m_hWnd, lpPaint); }
    void Invalidate(BOOL bErase = TRUE) { ::InvalidateRect(m_hWnd, nullptr, bErase); }
    void InvalidateRect(LPCRECT lpRect, BOOL bErase = TRUE) { ::InvalidateRect(m_hWnd, lpRect, bErase); }
    void InvalidateRgn(CRgn* pRgn, BOOL bErase = TRUE);
    void ValidateRect(LPCRECT lpRect) { ::ValidateRect(m_hWnd, lpRect); }
    void UpdateWindow() { ::UpdateWindow(m_hWnd); }
    BOOL GetUpdateRect(LPRECT lpRect, BOOL bErase = FALSE) { return ::GetUpdateRect(m_hWnd, lpRect, bErase); }
    BOOL RedrawWindow(LPCRECT lpRectUpdate = nullptr, CRgn* prgnUpdate = nullptr,
                      UINT flags = RDW_INVALIDATE | RDW_UPDATENOW | RDW_ERASE);
    void SetRedraw(BOOL bRedraw = TRUE) { ::SendMessageA(m_hWnd, WM_SETREDRAW, static_cast<WPARAM>(bRedraw), 0); }
    void ScrollWindow(int xAmount, int yAmount, LPCRECT lpRect = nullptr, LPCRECT lpClipRect = nullptr) {
        ::ScrollWindow(m_hWnd, xAmount, yAmount, lpRect, lpClipRect);
    }
    void SetFont(CFont* pFont, BOOL bRedraw = TRUE);
    CFont* GetFont() const;

    // Input.
    CWnd* SetCapture() { return FromHandle(::SetCapture(m_hWnd)); }
    static CWnd* GetCapture() { return FromHandle(::GetCapture()); }
    CWnd* SetFocus() { return FromHandle(::SetFocus(m_hWnd)); }
    static CWnd* GetFocus() { return FromHandle(::GetFocus()); }
    CWnd* SetActiveWindow() { return FromHandle(::SetActiveWindow(m_hWnd)); }
    static CWnd* GetActiveWindow() { return FromHandle(::GetActiveWindow()); }
    BOOL SetForegroundWindow() { return ::SetForegroundWindow(m_hWnd); }
    static CWnd* GetForegroundWindow() { return FromHandle(::GetForegroundWindow()); }

    // Menus and scroll bars.
    CMenu* GetMenu() const;
    BOOL SetMenu(CMenu* pMenu);
    void DrawMenuBar() { ::DrawMenuBar(m_hWnd); }
    BOOL SetScrollInfo(int nBar, SCROLLINFO* lpScrollInfo, BOOL bRedraw = TRUE);
    BOOL GetScrollInfo(int nBar, SCROLLINFO* lpScrollInfo, UINT nMask = SIF_ALL);
    int SetScrollPos(int nBar, int nPos, BOOL bRedraw = TRUE) { return ::SetScrollPos(m_hWnd, nBar, nPos, bRedraw); }
    int GetScrollPos(int nBar) const { return ::GetScrollPos(m_hWnd, nBar); }
    void SetScrollRange(int nBar, int nMinPos, int nMaxPos, BOOL bRedraw = TRUE) {
        ::SetScrollRange(m_hWnd, nBar, nMinPos, nMaxPos, bRedraw);
    }
    void ShowScrollBar(UINT nBar, BOOL bShow = TRUE) { ::ShowScrollBar(m_hWnd, static_cast<int>(nBar), bShow); }

    int MessageBox(LPCSTR lpszText, LPCSTR lpszCaption = nullptr, UINT nType = MB_OK) {
        return ::MessageBoxA(m_hWnd, lpszText, lpszCaption, nType);
    }
    void SetDlgItemText(int nID, LPCSTR lpszString) { ::SetWindowTextA(::GetDlgItem(m_hWnd, nID), lpszString); }
    int GetDlgItemText(int nID, CString& rString) const;

    LRESULT SendDlgItemMessage(int nID, UINT message, WPARAM wParam = 0, LPARAM lParam = 0) {
        return ::SendDlgItemMessageA(m_hWnd, nID, message, wParam, lParam);
    }
    void CheckDlgButton(int nIDButton, UINT nCheck) { ::CheckDlgButton(m_hWnd, nIDButton, nCheck); }
    UINT IsDlgButtonChecked(int nIDButton) const { return ::IsDlgButtonChecked(m_hWnd, nIDButton); }
    void CheckRadioButton(int nIDFirst, int nIDLast, int nIDCheck) { ::CheckRadioButton(m_hWnd, nIDFirst, nIDLast, nIDCheck); }
    void SetDlgItemInt(int nID, UINT nValue, BOOL bSigned = TRUE) { ::SetDlgItemInt(m_hWnd, nID, nValue, bSigned); }
    UINT GetDlgItemInt(int nID, BOOL* lpTrans = nullptr, BOOL bSigned = TRUE) const {
        return ::GetDlgItemInt(m_hWnd, nID, lpTrans, bSigned);
    }
    // Exchanges data between the controls and the object's variables by DoDataExchange; out of the controls for TRUE. 0 when that
    // was stopped, after the user has been told why.
    BOOL UpdateData(BOOL bSaveAndValidate = TRUE);

    // A command goes to the window's own members. Views and frames may pass it on.
    BOOL OnCmdMsg(UINT nID, int nCode, void* pExtra, AFX_CMDHANDLERINFO* pHandlerInfo) override;

protected:
    // Every message of the window: through the message map first, else what the window's class does. An exception of the
    // framework that escapes from here is shown to the user and the message answers 0.
    virtual LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    // Non-zero, with *pResult, when the message map has a member for the message.
    virtual BOOL OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* pResult);
    // WM_COMMAND of a menu, an accelerator or a control; a control may answer its notification itself (ON_CONTROL_REFLECT).
    virtual BOOL OnCommand(WPARAM wParam, LPARAM lParam);
    virtual BOOL OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* pResult);
    virtual void DoDataExchange(CDataExchange* pDX);  // nothing to exchange
    // What a parent hands back to its control; non-zero ends it there.
    virtual BOOL OnChildNotify(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* pLResult);
    // What the window does with the message at hand if it is left alone; for members that answer messages.
    LRESULT Default();
    static const MSG* GetCurrentMessage();

    // What maps call by ON_WM_ lines, for classes that override one and call the base.
    afx_msg int OnCreate(LPCREATESTRUCT) { return static_cast<int>(Default()); }
    afx_msg void OnDestroy() { Default(); }
    afx_msg void OnNcDestroy() { Default(); }
    afx_msg void OnClose() { Default(); }
    afx_msg void OnPaint() { Default(); }
    afx_msg BOOL OnEraseBkgnd(CDC*) { return static_cast<BOOL>(Default()); }
    afx_msg void OnSize(UINT, int, int) { Default(); }
    afx_msg void OnMove(int, int) { Default(); }
    afx_msg void OnShowWindow(BOOL, UINT) { Default(); }
    afx_msg void OnEnable(BOOL) { Default(); }
    afx_msg void OnWindowPosChanging(WINDOWPOS*) { Default(); }
    afx_msg void OnWindowPosChanged(WINDOWPOS*) { Default(); }
    afx_msg void OnActivate(UINT, CWnd*, BOOL) { Default(); }
    afx_msg void OnSetFocus(CWnd*) { Default(); }
    afx_msg void OnKillFocus(CWnd*) { Default(); }
    afx_msg void OnCaptureChanged(CWnd*) { Default(); }
    afx_msg void OnCancelMode() { Default(); }
    afx_msg void OnSysColorChange() { Default(); }
    afx_msg void OnTimer(UINT_PTR) { Default(); }
    afx_msg void OnMouseMove(UINT, CPoint) { Default(); }
    afx_msg void OnLButtonDown(UINT, CPoint) { Default(); }
    afx_msg void OnLButtonUp(UINT, CPoint) { Default(); }
    afx_msg void OnLButtonDblClk(UINT, CPoint) { Default(); }
    afx_msg void OnRButtonDown(UINT, CPoint) { Default(); }
    afx_msg void OnRButtonUp(UINT, CPoint) { Default(); }
    afx_msg void OnRButtonDblClk(UINT, CPoint) { Default(); }
    afx_msg void OnMButtonDown(UINT, CPoint) { Default(); }
    afx_msg void OnMButtonUp(UINT, CPoint) { Default(); }
    afx_msg BOOL OnMouseWheel(UINT, short, CPoint) { return static_cast<BOOL>(Default()); }
    afx_msg void OnKeyDown(UINT, UINT, UINT) { Default(); }
    afx_msg void OnKeyUp(UINT, UINT, UINT) { Default(); }
    afx_msg void OnChar(UINT, UINT, UINT) { Default(); }
    afx_msg void OnSysKeyDown(UINT, UINT, UINT) { Default(); }
    afx_msg void OnSysKeyUp(UINT, UINT, UINT) { Default(); }
    afx_msg BOOL OnSetCursor(CWnd*, UINT, UINT) { return static_cast<BOOL>(Default()); }
    afx_msg LRESULT OnNcHitTest(CPoint) { return Default(); }
    afx_msg int OnMouseActivate(CWnd*, UINT, UINT) { return static_cast<int>(Default()); }
    afx_msg UINT OnGetDlgCode() { return static_cast<UINT>(Default()); }
    afx_msg void OnHScroll(UINT, UINT, CScrollBar*) { Default(); }
    afx_msg void OnVScroll(UINT, UINT, CScrollBar*) { Default(); }
    afx_msg HBRUSH OnCtlColor(CDC*, CWnd*, UINT) { return reinterpret_cast<HBRUSH>(Default()); }
    afx_msg void OnInitMenuPopup(CMenu*, UINT, BOOL) { Default(); }
    afx_msg void OnContextMenu(CWnd*, CPoint) { Default(); }
    afx_msg void OnSysCommand(UINT, LPARAM) { Default(); }

    // After the window's last message; m_hWnd is null already. A class whose objects are on the heap may delete itself here.
    virtual void PostNcDestroy();

    DECLARE_MESSAGE_MAP()

private:
    friend struct CWndAccess;
    void Subclass(HWND window);
    void Forget();
    static HWND HandleOf(const CWnd* window) { return window != nullptr ? window->m_hWnd : nullptr; }
    BOOL ChangeStyle(int index, DWORD remove, DWORD add, UINT flags);
    BOOL HandBack(HWND control, UINT message, WPARAM wParam, LPARAM lParam, LRESULT* answer);

    WNDPROC m_pfnSuper = nullptr;  // what a window of a foreign class did before
    HWND m_hWndOwner = nullptr;
    bool m_temporary = false;
};

// The scroll bar control of a WM_HSCROLL or WM_VSCROLL message; null for a window's own bar.
ORVIK_API CScrollBar* AfxScrollBarOf(LPARAM lParam);
// Every control's colour message as one for message maps; maps get the kind of control with it.
#ifndef WM_CTLCOLOR
#define WM_CTLCOLOR 0x0019u
#endif

// The name of a window class for these properties, registered for the application's instance at the first call and valid until
// the module ends. A failed registration raises the resource exception.
ORVIK_API LPCSTR AfxRegisterWndClass(UINT nClassStyle, HCURSOR hCursor = nullptr, HBRUSH hbrBackground = nullptr,
                                     HICON hIcon = nullptr);
