// The caret: where letters are typed. Who has it draws it by itself; the place is what an input method needs for its list.
// A thread has one; it belongs to a window of the thread.
#pragma once

#include "platform/posix/window/messages.h"

// Null `look`: a bar of that size. Error 87 for a picture, which is not supported.
ORVIK_API BOOL WINAPI CreateCaret(HWND window, HBITMAP look, int width, int height);
ORVIK_API BOOL WINAPI SetCaretPos(int x, int y);  // in the client area; FALSE without a caret, so for the others
ORVIK_API BOOL WINAPI GetCaretPos(POINT* point);
ORVIK_API BOOL WINAPI DestroyCaret();
