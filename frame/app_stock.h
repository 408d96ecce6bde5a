// The cursors, icons and the font that all windows of the system share.
// User-interface thread. The module owns the handles from LoadAppStock to FreeAppStock; nobody else destroys them. Before, and
// for a resource that failed to load, a handle is null; after FreeAppStock the handles keep their old values and must not be
// used.
#pragma once

#include "platform/win32.h"

extern ORVIK_API HCURSOR hZoomCursor;  // never loaded: always null, and its users cope with that
extern ORVIK_API HCURSOR hZoomXCursor;
extern ORVIK_API HCURSOR hZoomYCursor;
extern ORVIK_API HCURSOR hCursorCursor;
extern ORVIK_API HCURSOR hDragCursor;
extern ORVIK_API HCURSOR hZoomInCursor;
extern ORVIK_API HCURSOR hMoveXCursor;
extern ORVIK_API HCURSOR hMoveXExtCursor;
extern ORVIK_API HCURSOR hMoveXOrgCursor;
extern ORVIK_API HCURSOR hMoveYCursor;
extern ORVIK_API HCURSOR hMoveYOrgCursor;
extern ORVIK_API HCURSOR hMoveYExtCursor;
extern ORVIK_API HCURSOR hTextCursor;
extern ORVIK_API HCURSOR hTextSelectCursor;
extern ORVIK_API HCURSOR hTextMoveCursor;
extern ORVIK_API HCURSOR hTextSnapCursor;
extern ORVIK_API HCURSOR hCurVSplitter;
extern ORVIK_API HCURSOR hCurSizeColumn;
extern ORVIK_API HCURSOR hCurHSplitter;

// The system's own, never destroyed.
extern ORVIK_API HCURSOR hCursorWait;
extern ORVIK_API HCURSOR hCursorHand;
extern ORVIK_API HCURSOR hSizeAllCursor;
extern ORVIK_API HCURSOR hSizeNSCursor;
extern ORVIK_API HCURSOR hSizeWECursor;
extern ORVIK_API HCURSOR hSizeNWSECursor;
extern ORVIK_API HCURSOR hSizeNESWCursor;

// 32 x 32 pixels.
extern ORVIK_API HICON hIconWarning;
extern ORVIK_API HICON hIconQuestion;
extern ORVIK_API HICON hIconThumbUp;
extern ORVIK_API HICON hIconThumbDown;
extern ORVIK_API HICON hIconHourGlass;
extern ORVIK_API HICON hIconError;
extern ORVIK_API HICON hIconInformation;

// The desktop's menu font, drawn with sub-pixel smoothing.
extern ORVIK_API LOGFONTA g_lfAppStock;

// The host calls these once after its start-up and once before its end. LoadAppStock also registers the window class "flipwnd".
ORVIK_API void LoadAppStock();
ORVIK_API void FreeAppStock();
