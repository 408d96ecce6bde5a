// Painting of windows: what is to be painted anew, and the device contexts to do it with.
// Every top-level window has a picture of its client area, made when it is first drawn on; its children draw into it. A device
// context of a window is clipped to what can be seen of it, and follows the window when that changes.
// Invalidating is for any thread; a device context is used and released by the thread that got it.
#pragma once

#include "platform/posix/drawing/paint.h"
#include "platform/posix/window/window_place.h"

#define RDW_INVALIDATE 0x0001u
#define RDW_INTERNALPAINT 0x0002u
#define RDW_ERASE 0x0004u
#define RDW_VALIDATE 0x0008u
#define RDW_NOINTERNALPAINT 0x0010u
#define RDW_NOERASE 0x0020u
#define RDW_NOCHILDREN 0x0040u
#define RDW_ALLCHILDREN 0x0080u
#define RDW_UPDATENOW 0x0100u
#define RDW_ERASENOW 0x0200u
#define RDW_FRAME 0x0400u
#define RDW_NOFRAME 0x0800u

#define DCX_WINDOW 0x00000001u
#define DCX_CACHE 0x00000002u
#define DCX_CLIPCHILDREN 0x00000008u
#define DCX_CLIPSIBLINGS 0x00000010u
#define DCX_PARENTCLIP 0x00000020u
#define DCX_EXCLUDERGN 0x00000040u
#define DCX_INTERSECTRGN 0x00000080u
#define DCX_LOCKWINDOWUPDATE 0x00000400u

#define SW_SCROLLCHILDREN 0x0001u
#define SW_INVALIDATE 0x0002u
#define SW_ERASE 0x0004u

// A null rectangle or region is the whole client area. A null window is every window, where a function allows it.
// A window that cannot be seen has nothing to paint. Children take part unless the window clips them.
ORVIK_API BOOL WINAPI InvalidateRect(HWND window, LPCRECT rectangle, BOOL erase);
ORVIK_API BOOL WINAPI ValidateRect(HWND window, LPCRECT rectangle);
ORVIK_API BOOL WINAPI InvalidateRgn(HWND window, HRGN region, BOOL erase);
ORVIK_API BOOL WINAPI RedrawWindow(HWND window, LPCRECT rectangle, HRGN region, UINT flags);
ORVIK_API BOOL WINAPI UpdateWindow(HWND window);  // sends WM_PAINT now, if there is something to paint
ORVIK_API BOOL WINAPI GetUpdateRect(HWND window, LPRECT rectangle, BOOL erase);
ORVIK_API int WINAPI GetUpdateRgn(HWND window, HRGN region, BOOL erase);

// BeginPaint (paint.h) validates what was to be painted, clips its context to that and erases the background (WM_ERASEBKGND)
// where that was asked for.
ORVIK_API HDC WINAPI GetDCEx(HWND window, HRGN region, DWORD flags);  // the region becomes the system's

// Moves the picture of the scrolled rectangle within the clipping rectangle (the client area for null) and invalidates what comes
// to light, if SW_INVALIDATE asks for it. `update` gets what came to light.
ORVIK_API int WINAPI ScrollWindowEx(HWND window, int dx, int dy, LPCRECT scroll, LPCRECT clip, HRGN updateRegion, LPRECT update,
                                    UINT flags);
ORVIK_API BOOL WINAPI ScrollWindow(HWND window, int dx, int dy, LPCRECT scroll, LPCRECT clip);
