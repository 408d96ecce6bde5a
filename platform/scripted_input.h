// What a user would do with mouse and keyboard, done by a script: the same on both homes, exact, and in order with posted
// messages. Each step is posted to the window's queue and becomes an ordinary mouse or key message when it is read: for the
// window that has the capture, or the one under the pointer, or the focus. Until then nothing has happened, so a script may post
// a whole gesture and then let a modal loop run. While the message is read, the pointer stands where the step says (GetCursorPos)
// and key states are as they would be (GetKeyState); the window under the pointer has been asked for its cursor (WM_SETCURSOR).
// For the thread that owns the window, and reads its messages.
#pragma once

#include "platform/win32.h"

// `message` is WM_MOUSEMOVE, a button message (WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK and those of the other buttons),
// WM_MOUSEWHEEL or WM_MOUSEHWHEEL, with `wheel` in units of WHEEL_DELTA parts. The point is in the client area of `window`, whose
// child may be the one that is meant; it may lie outside, on Linux also on the menu bar above (Windows' menus hear of no steps).
// A button that goes down activates the window. Windows of classes without CS_DBLCLKS get a plain press for a double one. FALSE
// with the error of PostMessageA; error 87 for another message, or a point beyond 16 bits.
ORVIK_API BOOL OrvikPostPointer(HWND window, UINT message, int x, int y, int wheel = 0);
// Key `key` (VK_) goes down or up: for the window with the focus, else for `window`. A character that TranslateMessage makes of
// it comes after all that is posted by then, as always.
ORVIK_API BOOL OrvikPostKey(HWND window, UINT key, BOOL down);
// The WM_CHAR messages of each character (platform/letters.h): for the window that has the focus by then, else for `window`.
ORVIK_API BOOL OrvikPostText(HWND window, LPCSTR text);
