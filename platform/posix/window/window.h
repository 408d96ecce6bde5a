// Windows in memory: a class, a procedure, a text, a style and a place in the tree, without a screen. Where they are is told in
// window_place.h, how they are painted in paint.h.
// A window belongs to the thread that made it; only that thread destroys it, and it goes when the thread ends (without being
// told). Reading from other threads is safe.
#pragma once

#include "platform/posix/window/messages.h"

#define WS_OVERLAPPED 0x00000000u
#define WS_POPUP 0x80000000u
#define WS_CHILD 0x40000000u
#define WS_MINIMIZE 0x20000000u
#define WS_VISIBLE 0x10000000u
#define WS_DISABLED 0x08000000u
#define WS_CLIPSIBLINGS 0x04000000u
#define WS_CLIPCHILDREN 0x02000000u
#define WS_CAPTION 0x00C00000u
#define WS_BORDER 0x00800000u
#define WS_DLGFRAME 0x00400000u
#define WS_MAXIMIZE 0x01000000u
#define WS_THICKFRAME 0x00040000u
#define WS_SIZEBOX WS_THICKFRAME
#define WS_MINIMIZEBOX 0x00020000u
#define WS_MAXIMIZEBOX 0x00010000u
#define WS_OVERLAPPEDWINDOW (WS_OVERLAPPED | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_MINIMIZEBOX | WS_MAXIMIZEBOX)
#define WS_POPUPWINDOW (WS_POPUP | WS_BORDER | WS_SYSMENU)
#define WS_VSCROLL 0x00200000u
#define WS_HSCROLL 0x00100000u
#define WS_SYSMENU 0x00080000u
#define WS_GROUP 0x00020000u
#define WS_TABSTOP 0x00010000u

#define WS_EX_DLGMODALFRAME 0x00000001u
#define WS_EX_NOPARENTNOTIFY 0x00000004u
#define WS_EX_TOPMOST 0x00000008u
#define WS_EX_ACCEPTFILES 0x00000010u
#define WS_EX_TRANSPARENT 0x00000020u
#define WS_EX_TOOLWINDOW 0x00000080u
#define WS_EX_WINDOWEDGE 0x00000100u
#define WS_EX_CLIENTEDGE 0x00000200u
#define WS_EX_CONTROLPARENT 0x00010000u
#define WS_EX_STATICEDGE 0x00020000u
#define WS_EX_NOACTIVATE 0x08000000u

#define CS_VREDRAW 0x0001u
#define CS_HREDRAW 0x0002u
#define CS_DBLCLKS 0x0008u
#define CS_OWNDC 0x0020u
#define CS_PARENTDC 0x0080u
#define CS_SAVEBITS 0x0800u
#define CS_GLOBALCLASS 0x4000u

#define GCLP_HBRBACKGROUND (-10)
#define GCLP_HCURSOR (-12)
#define GCLP_HICON (-14)
#define GCLP_HMODULE (-16)
#define GCL_CBWNDEXTRA (-18)
#define GCLP_WNDPROC (-24)
#define GCL_STYLE (-26)

#define GWLP_WNDPROC (-4)
#define GWLP_HINSTANCE (-6)
#define GWLP_HWNDPARENT (-8)
#define GWLP_ID (-12)
#define GWL_STYLE (-16)
#define GWL_EXSTYLE (-20)
#define GWLP_USERDATA (-21)

#define CW_USEDEFAULT (static_cast<int>(0x80000000u))
#define HWND_MESSAGE (reinterpret_cast<HWND>(static_cast<LONG_PTR>(-3)))

using WNDPROC = LRESULT(CALLBACK*)(HWND, UINT, WPARAM, LPARAM);

struct WNDCLASSA {
    UINT style;
    WNDPROC lpfnWndProc;
    int cbClsExtra;
    int cbWndExtra;
    HINSTANCE hInstance;
    HICON hIcon;
    HCURSOR hCursor;
    HBRUSH hbrBackground;
    LPCSTR lpszMenuName;
    LPCSTR lpszClassName;
};
using LPWNDCLASSA = WNDCLASSA*;

struct WNDCLASSEXA {
    UINT cbSize;
    UINT style;
    WNDPROC lpfnWndProc;
    int cbClsExtra;
    int cbWndExtra;
    HINSTANCE hInstance;
    HICON hIcon;
    HCURSOR hCursor;
    HBRUSH hbrBackground;
    LPCSTR lpszMenuName;
    LPCSTR lpszClassName;
    HICON hIconSm;
};

struct STYLESTRUCT {
    DWORD styleOld, styleNew;
};
using LPSTYLESTRUCT = STYLESTRUCT*;

struct NMHDR {
    HWND hwndFrom;
    UINT_PTR idFrom;
    UINT code;
};
using LPNMHDR = NMHDR*;

struct CREATESTRUCTA {
    LPVOID lpCreateParams;
    HINSTANCE hInstance;
    HMENU hMenu;
    HWND hwndParent;
    int cy;
    int cx;
    int y;
    int x;
    LONG style;
    LPCSTR lpszName;
    LPCSTR lpszClass;
    DWORD dwExStyle;
};
using LPCREATESTRUCTA = CREATESTRUCTA*;
using CREATESTRUCT = CREATESTRUCTA;
using LPCREATESTRUCT = CREATESTRUCTA*;

// Class names are taken in any case, or as the atom that the registration gave. Registering a name twice for one instance is
// error 1410; an unknown class is 1411 (1407 for CreateWindowExA); a class with windows cannot go (1412). The system class
// "static" is there.
ORVIK_API ATOM WINAPI RegisterClassA(const WNDCLASSA* windowClass);
ORVIK_API ATOM WINAPI RegisterClassExA(const WNDCLASSEXA* windowClass);
ORVIK_API BOOL WINAPI UnregisterClassA(LPCSTR name, HINSTANCE instance);
ORVIK_API BOOL WINAPI GetClassInfoA(HINSTANCE instance, LPCSTR name, LPWNDCLASSA windowClass);
ORVIK_API BOOL WINAPI GetClassInfoExA(HINSTANCE instance, LPCSTR name, WNDCLASSEXA* windowClass);
// GCL_STYLE, GCLP_HBRBACKGROUND, GCLP_HCURSOR, GCLP_HICON, GCLP_HMODULE, GCL_CBWNDEXTRA, GCLP_WNDPROC; error 1413 for others. The
// new value holds for all windows of the class.
ORVIK_API ULONG_PTR WINAPI GetClassLongPtrA(HWND window, int index);
ORVIK_API ULONG_PTR WINAPI SetClassLongPtrA(HWND window, int index, LONG_PTR value);
ORVIK_API int WINAPI GetClassNameA(HWND window, LPSTR out, int size);

// Sends WM_NCCREATE and WM_CREATE; a window that refuses either is gone, and the result null. `menu` is the id of a child.
ORVIK_API HWND WINAPI CreateWindowExA(DWORD exStyle, LPCSTR className, LPCSTR text, DWORD style, int x, int y, int width,
                                      int height, HWND parent, HMENU menu, HINSTANCE instance, LPVOID parameter);
// Its children and the windows it owns go with it; what is still queued for them is dropped. Error 5 from another thread.
ORVIK_API BOOL WINAPI DestroyWindow(HWND window);
ORVIK_API BOOL WINAPI IsWindow(HWND window);
ORVIK_API BOOL WINAPI IsChild(HWND parent, HWND window);
ORVIK_API LRESULT WINAPI DefWindowProcA(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
ORVIK_API LRESULT WINAPI CallWindowProcA(WNDPROC procedure, HWND window, UINT message, WPARAM wParam, LPARAM lParam);

// Indexes as documented: a GWLP_ or GWL_ number, or an offset into the window's extra bytes (error 1413 outside them).
ORVIK_API LONG_PTR WINAPI GetWindowLongPtrA(HWND window, int index);
ORVIK_API LONG_PTR WINAPI SetWindowLongPtrA(HWND window, int index, LONG_PTR value);
ORVIK_API DWORD WINAPI GetWindowThreadProcessId(HWND window, LPDWORD processId);

ORVIK_API HWND WINAPI GetParent(HWND window);  // a child's parent or a popup's owner; null for a message-only window's root
ORVIK_API HWND WINAPI SetParent(HWND window, HWND parent);
ORVIK_API int WINAPI GetDlgCtrlID(HWND window);
ORVIK_API HWND WINAPI GetDlgItem(HWND window, int id);
ORVIK_API BOOL WINAPI SetWindowTextA(HWND window, LPCSTR text);
ORVIK_API int WINAPI GetWindowTextA(HWND window, LPSTR out, int size);
ORVIK_API int WINAPI GetWindowTextLengthA(HWND window);
ORVIK_API BOOL WINAPI EnableWindow(HWND window, BOOL enable);  // whether it was disabled before
ORVIK_API BOOL WINAPI IsWindowEnabled(HWND window);
ORVIK_API BOOL WINAPI IsWindowVisible(HWND window);
