// What else is kept with a window: scroll bars as numbers.
// A window's own scroll bars take no room and are not drawn. Any thread.
#pragma once

#include "platform/posix/window/window_place.h"

#define SB_HORZ 0
#define SB_VERT 1
#define SB_CTL 2
#define SB_BOTH 3

#define SB_LINEUP 0
#define SB_LINELEFT 0
#define SB_LINEDOWN 1
#define SB_LINERIGHT 1
#define SB_PAGEUP 2
#define SB_PAGELEFT 2
#define SB_PAGEDOWN 3
#define SB_PAGERIGHT 3
#define SB_THUMBPOSITION 4
#define SB_THUMBTRACK 5
#define SB_TOP 6
#define SB_LEFT 6
#define SB_BOTTOM 7
#define SB_RIGHT 7
#define SB_ENDSCROLL 8

#define SIF_RANGE 0x0001u
#define SIF_PAGE 0x0002u
#define SIF_POS 0x0004u
#define SIF_DISABLENOSCROLL 0x0008u
#define SIF_TRACKPOS 0x0010u
#define SIF_ALL (SIF_RANGE | SIF_PAGE | SIF_POS | SIF_TRACKPOS)

#define SBM_SETPOS 0x00E0u
#define SBM_GETPOS 0x00E1u
#define SBM_SETRANGE 0x00E2u
#define SBM_GETRANGE 0x00E3u
#define SBM_SETSCROLLINFO 0x00E9u
#define SBM_GETSCROLLINFO 0x00EAu

struct SCROLLINFO {
    UINT cbSize;
    UINT fMask;
    int nMin, nMax;
    UINT nPage;
    int nPos, nTrackPos;
};
using LPSCROLLINFO = SCROLLINFO*;
using LPCSCROLLINFO = const SCROLLINFO*;

// The page is at most the range's length, the position within nMin .. nMax - max(nPage - 1, 0). A scroll bar control (SB_CTL) is
// asked by SBM_ messages.
ORVIK_API int WINAPI SetScrollInfo(HWND window, int bar, LPCSCROLLINFO info, BOOL redraw);  // the position that is now
ORVIK_API BOOL WINAPI GetScrollInfo(HWND window, int bar, LPSCROLLINFO info);
ORVIK_API int WINAPI SetScrollPos(HWND window, int bar, int position, BOOL redraw);  // the position before
ORVIK_API int WINAPI GetScrollPos(HWND window, int bar);
ORVIK_API BOOL WINAPI SetScrollRange(HWND window, int bar, int least, int most, BOOL redraw);
ORVIK_API BOOL WINAPI ShowScrollBar(HWND window, int bar, BOOL show);  // sets or clears WS_HSCROLL, WS_VSCROLL
