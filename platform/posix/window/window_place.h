// Where windows are: rectangles, the order in which they lie upon each other, showing, activation and focus.
// The desktop in memory measures 1920 by 1080 pixels; every top-level window lies on it and has a picture of its own, so windows
// of the desktop do not hide each other. There are no frames: a window is its client area, whatever its style says, and above
// that the bar of its menu if it has one. Any thread may ask. A window is moved, shown and focused by the thread that owns it.
#pragma once

#include "platform/posix/window/window.h"

#define SWP_NOSIZE 0x0001u
#define SWP_NOMOVE 0x0002u
#define SWP_NOZORDER 0x0004u
#define SWP_NOREDRAW 0x0008u
#define SWP_NOACTIVATE 0x0010u
#define SWP_FRAMECHANGED 0x0020u
#define SWP_DRAWFRAME SWP_FRAMECHANGED
#define SWP_SHOWWINDOW 0x0040u
#define SWP_HIDEWINDOW 0x0080u
#define SWP_NOCOPYBITS 0x0100u
#define SWP_NOOWNERZORDER 0x0200u
#define SWP_NOREPOSITION SWP_NOOWNERZORDER
#define SWP_NOSENDCHANGING 0x0400u
#define SWP_DEFERERASE 0x2000u
#define SWP_ASYNCWINDOWPOS 0x4000u

#define HWND_TOP (static_cast<HWND>(nullptr))
#define HWND_BOTTOM (reinterpret_cast<HWND>(static_cast<LONG_PTR>(1)))
#define HWND_TOPMOST (reinterpret_cast<HWND>(static_cast<LONG_PTR>(-1)))
#define HWND_NOTOPMOST (reinterpret_cast<HWND>(static_cast<LONG_PTR>(-2)))

#define SW_HIDE 0
#define SW_SHOWNORMAL 1
#define SW_NORMAL 1
#define SW_SHOWMINIMIZED 2
#define SW_SHOWMAXIMIZED 3
#define SW_SHOWNOACTIVATE 4
#define SW_SHOW 5
#define SW_MINIMIZE 6
#define SW_SHOWMINNOACTIVE 7
#define SW_SHOWNA 8
#define SW_RESTORE 9
#define SW_SHOWDEFAULT 10

#define SIZE_RESTORED 0
#define SIZE_MINIMIZED 1
#define SIZE_MAXIMIZED 2
#define WA_INACTIVE 0
#define WA_ACTIVE 1
#define WA_CLICKACTIVE 2

#define GW_HWNDFIRST 0u
#define GW_HWNDLAST 1u
#define GW_HWNDNEXT 2u
#define GW_HWNDPREV 3u
#define GW_OWNER 4u
#define GW_CHILD 5u
#define GA_PARENT 1u
#define GA_ROOT 2u
#define GA_ROOTOWNER 3u

#define CWP_ALL 0x0000u
#define CWP_SKIPINVISIBLE 0x0001u
#define CWP_SKIPDISABLED 0x0002u
#define CWP_SKIPTRANSPARENT 0x0004u

#define MA_ACTIVATE 1
#define MA_ACTIVATEANDEAT 2
#define MA_NOACTIVATE 3
#define MA_NOACTIVATEANDEAT 4
#define SC_CLOSE 0xF060
#define SC_MOUSEMENU 0xF090
#define SC_KEYMENU 0xF100

#define HTERROR (-2)
#define HTTRANSPARENT (-1)
#define HTNOWHERE 0
#define HTCLIENT 1
#define HTCAPTION 2
#define HTMENU 5

#define SM_CXSCREEN 0
#define SM_CYSCREEN 1
#define SM_CXVSCROLL 2
#define SM_CYHSCROLL 3
#define SM_CYCAPTION 4
#define SM_CXBORDER 5
#define SM_CYBORDER 6
#define SM_CXDLGFRAME 7
#define SM_CYDLGFRAME 8
#define SM_CYVTHUMB 9
#define SM_CXHTHUMB 10
#define SM_CXICON 11
#define SM_CYICON 12
#define SM_CXCURSOR 13
#define SM_CYCURSOR 14
#define SM_CYMENU 15
#define SM_CXFULLSCREEN 16
#define SM_CYFULLSCREEN 17
#define SM_MOUSEPRESENT 19
#define SM_CYVSCROLL 20
#define SM_CXHSCROLL 21
#define SM_CXFRAME 32
#define SM_CYFRAME 33
#define SM_CXDOUBLECLK 36
#define SM_CYDOUBLECLK 37
#define SM_CXEDGE 45
#define SM_CYEDGE 46
#define SM_CXSMICON 49
#define SM_CYSMICON 50
#define SM_CXDRAG 68
#define SM_CYDRAG 69
#define SM_MOUSEWHEELPRESENT 75
#define SM_XVIRTUALSCREEN 76
#define SM_YVIRTUALSCREEN 77
#define SM_CXVIRTUALSCREEN 78
#define SM_CYVIRTUALSCREEN 79

struct WINDOWPOS {
    HWND hwnd;
    HWND hwndInsertAfter;
    int x, y, cx, cy;
    UINT flags;
};
using LPWINDOWPOS = WINDOWPOS*;

struct MINMAXINFO {
    POINT ptReserved, ptMaxSize, ptMaxPosition, ptMinTrackSize, ptMaxTrackSize;
};

using WNDENUMPROC = BOOL(CALLBACK*)(HWND, LPARAM);

// Rectangles. Points and rectangles beyond a window's edge are as good as others.
ORVIK_API BOOL WINAPI GetClientRect(HWND window, LPRECT rectangle);
ORVIK_API BOOL WINAPI GetWindowRect(HWND window, LPRECT rectangle);  // on the desktop
ORVIK_API BOOL WINAPI ClientToScreen(HWND window, LPPOINT point);
ORVIK_API BOOL WINAPI ScreenToClient(HWND window, LPPOINT point);
// Null stands for the desktop. The result holds the two shifts as signed 16-bit numbers, x in the low word.
ORVIK_API int WINAPI MapWindowPoints(HWND from, HWND to, LPPOINT points, UINT count);
ORVIK_API BOOL WINAPI AdjustWindowRectEx(LPRECT rectangle, DWORD style, BOOL menu, DWORD exStyle);  // a bar of one row
// Sends WM_WINDOWPOSCHANGING, which may change what will be, and then, if anything came to change, WM_WINDOWPOSCHANGED; the
// default answer to that sends WM_MOVE and WM_SIZE. Sizes below 0 are 0.
ORVIK_API BOOL WINAPI SetWindowPos(HWND window, HWND insertAfter, int x, int y, int width, int height, UINT flags);
ORVIK_API BOOL WINAPI MoveWindow(HWND window, int x, int y, int width, int height, BOOL repaint);
ORVIK_API BOOL WINAPI BringWindowToTop(HWND window);
ORVIK_API BOOL WINAPI ShowWindow(HWND window, int command);  // whether it was visible before
ORVIK_API BOOL WINAPI IsIconic(HWND window);                 // never: nothing is minimised here
ORVIK_API BOOL WINAPI IsZoomed(HWND window);

// Relations. GetWindow and EnumWindows go from the top of the order to its bottom.
ORVIK_API HWND WINAPI GetWindow(HWND window, UINT command);
ORVIK_API HWND WINAPI GetTopWindow(HWND window);  // its top child; of the desktop for null
ORVIK_API HWND WINAPI GetAncestor(HWND window, UINT flags);
ORVIK_API BOOL WINAPI EnumChildWindows(HWND parent, WNDENUMPROC procedure, LPARAM parameter);  // children of children too
ORVIK_API BOOL WINAPI EnumThreadWindows(DWORD thread, WNDENUMPROC procedure, LPARAM parameter);
ORVIK_API HWND WINAPI GetDesktopWindow();  // has a rectangle, belongs to no thread
ORVIK_API HWND WINAPI WindowFromPoint(POINT screen);
ORVIK_API HWND WINAPI ChildWindowFromPoint(HWND parent, POINT client);  // the parent itself where no child is; null outside
ORVIK_API HWND WINAPI ChildWindowFromPointEx(HWND parent, POINT client, UINT flags);

// Activation and focus belong to the calling thread's windows. Activating tells both windows (WM_NCACTIVATE, WM_ACTIVATE); the
// default answer gives the focus to the active window. Focus changes send WM_KILLFOCUS and WM_SETFOCUS. A hidden, disabled or
// foreign window is refused.
ORVIK_API HWND WINAPI GetActiveWindow();
ORVIK_API HWND WINAPI SetActiveWindow(HWND window);  // the one that was active; null on failure
ORVIK_API HWND WINAPI GetForegroundWindow();
ORVIK_API BOOL WINAPI SetForegroundWindow(HWND window);
ORVIK_API HWND WINAPI GetFocus();
ORVIK_API HWND WINAPI SetFocus(HWND window);  // null takes the focus from everyone

ORVIK_API int WINAPI GetSystemMetrics(int index);  // pixels at the system's dots an inch (dpi.h); 0 for what is not known
