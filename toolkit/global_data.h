// The toolkit's global data: what its windows share of the user's desktop. On the user-interface thread. Colours are those of the
// desktop when the module was loaded, until UpdateSysColors takes them anew.
#pragma once

#include "platform/win32.h"

class ORVIK_API CBCGPGlobalData {
public:
    CBCGPGlobalData();
    // The host calls this when the desktop's colours have changed (WM_SYSCOLORCHANGE).
    void UpdateSysColors();

    COLORREF clrBtnFace, clrBtnShadow, clrBtnHilite, clrBtnText;
    COLORREF clrBarFace, clrBarText;  // of everything that is not a plain window: as buttons
    COLORREF clrWindow, clrWindowText, clrWindowFrame;
    COLORREF clrHilite, clrTextHilite, clrGrayedText;

    // The desktop's fonts and sizes for everything outside client areas. Non-zero for success; `info` is all zero otherwise but
    // for its size.
    BOOL GetNonClientMetrics(NONCLIENTMETRICSA& info) const;
};

extern ORVIK_API CBCGPGlobalData globalData;
