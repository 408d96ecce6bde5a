// The lines of message maps for the system's messages: ON_WM_SIZE() and its like, each for a member of the documented name and
// signature. They are for classes derived from CWnd; the base's members of these names do what the window did without them.
#pragma once

#include "afx/dc.h"
#include "afx/menu.h"
#include "afx/wnd.h"

#define ORVIK_X_OF(l) static_cast<int>(static_cast<short>(LOWORD(l)))
#define ORVIK_Y_OF(l) static_cast<int>(static_cast<short>(HIWORD(l)))
#define ORVIK_ON_WM(message, result, memberFxn, parameters, call) \
    ORVIK_ON_MESSAGE(message, result(ThisClass::*member) parameters, memberFxn, call)
#define ORVIK_ON_WM_MOUSE(message, memberFxn)             \
    ORVIK_ON_WM(message, void, memberFxn, (UINT, CPoint), \
                (self.*member)(static_cast<UINT>(args.wParam), CPoint(ORVIK_X_OF(args.lParam), ORVIK_Y_OF(args.lParam))))
#define ORVIK_ON_WM_KEY(message, memberFxn)                   \
    ORVIK_ON_WM(message, void, memberFxn, (UINT, UINT, UINT), \
                (self.*member)(static_cast<UINT>(args.wParam), LOWORD(args.lParam), HIWORD(args.lParam)))
#define ORVIK_ON_WM_PLAIN(message, memberFxn) ORVIK_ON_WM(message, void, memberFxn, (), (self.*member)())
#define ORVIK_ON_WM_SCROLL(message, memberFxn)                       \
    ORVIK_ON_WM(message, void, memberFxn, (UINT, UINT, CScrollBar*), \
                (self.*member)(LOWORD(args.wParam), HIWORD(args.wParam), AfxScrollBarOf(args.lParam)))
#define ORVIK_WND_OF(value) CWnd::FromHandle(reinterpret_cast<HWND>(value))

#define ON_WM_CREATE()                                      \
    ORVIK_ON_WM(WM_CREATE, int, OnCreate, (LPCREATESTRUCT), \
                answer = (self.*member)(reinterpret_cast<LPCREATESTRUCT>(args.lParam)))
#define ON_WM_DESTROY() ORVIK_ON_WM_PLAIN(WM_DESTROY, OnDestroy)
#define ON_WM_NCDESTROY() ORVIK_ON_WM_PLAIN(WM_NCDESTROY, OnNcDestroy)
#define ON_WM_CLOSE() ORVIK_ON_WM_PLAIN(WM_CLOSE, OnClose)
#define ON_WM_PAINT() ORVIK_ON_WM_PLAIN(WM_PAINT, OnPaint)
#define ON_WM_ERASEBKGND()                                 \
    ORVIK_ON_WM(WM_ERASEBKGND, BOOL, OnEraseBkgnd, (CDC*), \
                answer = (self.*member)(CDC::FromHandle(reinterpret_cast<HDC>(args.wParam))))
#define ON_WM_SIZE()                                     \
    ORVIK_ON_WM(WM_SIZE, void, OnSize, (UINT, int, int), \
                (self.*member)(static_cast<UINT>(args.wParam), LOWORD(args.lParam), HIWORD(args.lParam)))
#define ON_WM_MOVE() \
    ORVIK_ON_WM(WM_MOVE, void, OnMove, (int, int), (self.*member)(ORVIK_X_OF(args.lParam), ORVIK_Y_OF(args.lParam)))
#define ON_WM_SHOWWINDOW()                                       \
    ORVIK_ON_WM(WM_SHOWWINDOW, void, OnShowWindow, (BOOL, UINT), \
                (self.*member)(static_cast<BOOL>(args.wParam), static_cast<UINT>(args.lParam)))
#define ON_WM_ENABLE() ORVIK_ON_WM(WM_ENABLE, void, OnEnable, (BOOL), (self.*member)(static_cast<BOOL>(args.wParam)))
#define ON_WM_WINDOWPOSCHANGING()                                              \
    ORVIK_ON_WM(WM_WINDOWPOSCHANGING, void, OnWindowPosChanging, (WINDOWPOS*), \
                (self.*member)(reinterpret_cast<WINDOWPOS*>(args.lParam)))
#define ON_WM_WINDOWPOSCHANGED()                                             \
    ORVIK_ON_WM(WM_WINDOWPOSCHANGED, void, OnWindowPosChanged, (WINDOWPOS*), \
                (self.*member)(reinterpret_cast<WINDOWPOS*>(args.lParam)))
#define ON_WM_ACTIVATE()                                            \
    ORVIK_ON_WM(WM_ACTIVATE, void, OnActivate, (UINT, CWnd*, BOOL), \
                (self.*member)(LOWORD(args.wParam), ORVIK_WND_OF(args.lParam), HIWORD(args.wParam)))
#define ON_WM_SETFOCUS() ORVIK_ON_WM(WM_SETFOCUS, void, OnSetFocus, (CWnd*), (self.*member)(ORVIK_WND_OF(args.wParam)))
#define ON_WM_KILLFOCUS() ORVIK_ON_WM(WM_KILLFOCUS, void, OnKillFocus, (CWnd*), (self.*member)(ORVIK_WND_OF(args.wParam)))
#define ON_WM_CAPTURECHANGED() \
    ORVIK_ON_WM(WM_CAPTURECHANGED, void, OnCaptureChanged, (CWnd*), (self.*member)(ORVIK_WND_OF(args.lParam)))
#define ON_WM_CANCELMODE() ORVIK_ON_WM_PLAIN(WM_CANCELMODE, OnCancelMode)
#define ON_WM_SYSCOLORCHANGE() ORVIK_ON_WM_PLAIN(WM_SYSCOLORCHANGE, OnSysColorChange)
#define ON_WM_TIMER() ORVIK_ON_WM(WM_TIMER, void, OnTimer, (UINT_PTR), (self.*member)(args.wParam))
#define ON_WM_MOUSEMOVE() ORVIK_ON_WM_MOUSE(WM_MOUSEMOVE, OnMouseMove)
#define ON_WM_LBUTTONDOWN() ORVIK_ON_WM_MOUSE(WM_LBUTTONDOWN, OnLButtonDown)
#define ON_WM_LBUTTONUP() ORVIK_ON_WM_MOUSE(WM_LBUTTONUP, OnLButtonUp)
#define ON_WM_LBUTTONDBLCLK() ORVIK_ON_WM_MOUSE(WM_LBUTTONDBLCLK, OnLButtonDblClk)
#define ON_WM_RBUTTONDOWN() ORVIK_ON_WM_MOUSE(WM_RBUTTONDOWN, OnRButtonDown)
#define ON_WM_RBUTTONUP() ORVIK_ON_WM_MOUSE(WM_RBUTTONUP, OnRButtonUp)
#define ON_WM_RBUTTONDBLCLK() ORVIK_ON_WM_MOUSE(WM_RBUTTONDBLCLK, OnRButtonDblClk)
#define ON_WM_MBUTTONDOWN() ORVIK_ON_WM_MOUSE(WM_MBUTTONDOWN, OnMButtonDown)
#define ON_WM_MBUTTONUP() ORVIK_ON_WM_MOUSE(WM_MBUTTONUP, OnMButtonUp)
// The point is on the screen. Zero leaves the wheel to the parent.
#define ON_WM_MOUSEWHEEL()                                                                            \
    ORVIK_ON_WM(WM_MOUSEWHEEL, BOOL, OnMouseWheel, (UINT, short, CPoint),                             \
                answer = (self.*member)(LOWORD(args.wParam), static_cast<short>(HIWORD(args.wParam)), \
                                        CPoint(ORVIK_X_OF(args.lParam), ORVIK_Y_OF(args.lParam)));    \
                if (!answer) return FALSE)
#define ON_WM_KEYDOWN() ORVIK_ON_WM_KEY(WM_KEYDOWN, OnKeyDown)
#define ON_WM_KEYUP() ORVIK_ON_WM_KEY(WM_KEYUP, OnKeyUp)
#define ON_WM_CHAR() ORVIK_ON_WM_KEY(WM_CHAR, OnChar)
#define ON_WM_SYSKEYDOWN() ORVIK_ON_WM_KEY(WM_SYSKEYDOWN, OnSysKeyDown)
#define ON_WM_SYSKEYUP() ORVIK_ON_WM_KEY(WM_SYSKEYUP, OnSysKeyUp)
#define ON_WM_SETCURSOR()                                             \
    ORVIK_ON_WM(WM_SETCURSOR, BOOL, OnSetCursor, (CWnd*, UINT, UINT), \
                answer = (self.*member)(ORVIK_WND_OF(args.wParam), LOWORD(args.lParam), HIWORD(args.lParam)))
#define ON_WM_NCHITTEST()                                     \
    ORVIK_ON_WM(WM_NCHITTEST, LRESULT, OnNcHitTest, (CPoint), \
                answer = (self.*member)(CPoint(ORVIK_X_OF(args.lParam), ORVIK_Y_OF(args.lParam))))
#define ON_WM_MOUSEACTIVATE()                                                \
    ORVIK_ON_WM(WM_MOUSEACTIVATE, int, OnMouseActivate, (CWnd*, UINT, UINT), \
                answer = (self.*member)(ORVIK_WND_OF(args.wParam), LOWORD(args.lParam), HIWORD(args.lParam)))
#define ON_WM_GETDLGCODE() ORVIK_ON_WM(WM_GETDLGCODE, UINT, OnGetDlgCode, (), answer = static_cast<LRESULT>((self.*member)()))
#define ON_WM_HSCROLL() ORVIK_ON_WM_SCROLL(WM_HSCROLL, OnHScroll)
#define ON_WM_VSCROLL() ORVIK_ON_WM_SCROLL(WM_VSCROLL, OnVScroll)
// For all kinds of controls; the kind is a CTLCOLOR_ number.
#define ON_WM_CTLCOLOR()                                                                                               \
    ORVIK_ON_WM(WM_CTLCOLOR, HBRUSH, OnCtlColor, (CDC*, CWnd*, UINT),                                                  \
                answer = reinterpret_cast<LRESULT>((self.*member)(CDC::FromHandle(reinterpret_cast<HDC>(args.wParam)), \
                                                                  ORVIK_WND_OF(args.lParam), args.message - WM_CTLCOLORMSGBOX)))
#define ON_WM_INITMENUPOPUP()                                          \
    ORVIK_ON_WM(                                                       \
        WM_INITMENUPOPUP, void, OnInitMenuPopup, (CMenu*, UINT, BOOL), \
        (self.*member)(CMenu::FromHandle(reinterpret_cast<HMENU>(args.wParam)), LOWORD(args.lParam), HIWORD(args.lParam)))
// The point is on the screen; (-1, -1) from the keyboard.
#define ON_WM_CONTEXTMENU()                                           \
    ORVIK_ON_WM(WM_CONTEXTMENU, void, OnContextMenu, (CWnd*, CPoint), \
                (self.*member)(ORVIK_WND_OF(args.wParam), CPoint(ORVIK_X_OF(args.lParam), ORVIK_Y_OF(args.lParam))))
#define ON_WM_SYSCOMMAND() \
    ORVIK_ON_WM(WM_SYSCOMMAND, void, OnSysCommand, (UINT, LPARAM), (self.*member)(static_cast<UINT>(args.wParam), args.lParam))
