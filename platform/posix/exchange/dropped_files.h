// Files that a user drags from elsewhere and lets go over a window.
// WM_DROPFILES brings an HDROP, which is the receiver's to end. Any thread; a drop is used by one at a time. Names are this
// house's text.
#pragma once

#include "platform/api.h"
#include "platform/posix/types.h"

#define WM_DROPFILES 0x0233u

using HDROP = struct HDROP__*;

ORVIK_API void WINAPI DragAcceptFiles(HWND window, BOOL accept);  // the same as WS_EX_ACCEPTFILES
// The number of files for the index 0xFFFFFFFF. Else the length of a name, which is put into the buffer, cut where it is too
// small; 0 for a bad index or handle.
ORVIK_API UINT WINAPI DragQueryFileA(HDROP drop, UINT index, LPSTR name, UINT size);
// Where, in the client area of the window; FALSE outside of it.
ORVIK_API BOOL WINAPI DragQueryPoint(HDROP drop, POINT* point);
ORVIK_API void WINAPI DragFinish(HDROP drop);
