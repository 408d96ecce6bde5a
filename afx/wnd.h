// A window behind a C++ object. The object belongs to the window's thread: that thread makes it, sends it messages and destroys
// it; only PostMessage, and SendMessage from other threads as the system has it, may be called from elsewhere. The window dies
// with the object and the object forgets a window that dies first; it is not deleted then (PostNcDestroy may).
#pragma once

#include "afx/cmd_target.h"
#include "afx/string.h"

class ORVIK_API CWnd : public CCmdTarget {
    DECLARE_DYNCREATE(CWnd)

public:
    CWnd() = default;
    ~CWnd() override;

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

    LRESULT SendMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);
    BOOL PostMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);
    // Periods in milliseconds. With a null procedure the window gets WM_TIMER.
    UINT_PTR SetTimer(UINT_PTR nIDEvent, UINT nElapse, TIMERPROC lpfnTimer = nullptr);
    BOOL KillTimer(UINT_PTR nIDEvent);
    void SetWindowText(LPCSTR lpszString);
    void GetWindowText(CString& rString) const;
    BOOL EnableWindow(BOOL bEnable = TRUE);
    BOOL IsWindowEnabled() const;

protected:
    // Every message of the window: through the message map first, else what the window's class does. An exception of the
    // framework that escapes from here is shown to the user and the message answers 0.
    virtual LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    // Non-zero, with *pResult, when the message map has a member for the message.
    virtual BOOL OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* pResult);
    // After the window's last message; m_hWnd is null already. A class whose objects are on the heap may delete itself here.
    virtual void PostNcDestroy();

    DECLARE_MESSAGE_MAP()

private:
    friend struct CWndAccess;
    void Subclass(HWND window);
    void Forget();

    WNDPROC m_pfnSuper = nullptr;  // what a window of a foreign class did before
    bool m_temporary = false;
};

// The name of a window class for these properties, registered for the application's instance at the first call and valid until
// the module ends. A failed registration raises the resource exception.
ORVIK_API LPCSTR AfxRegisterWndClass(UINT nClassStyle, HCURSOR hCursor = nullptr, HBRUSH hbrBackground = nullptr,
                                     HICON hIcon = nullptr);
