// The window that is disabled while a modeless dialog is open, so that the dialog behaves as a modal one. On the window's thread.
#pragma once

#include "afx/wnd.h"

namespace orvik::detail {

class ORVIK_API DisabledOwner {
public:
    // Nothing for null, and for a window that is disabled already.
    void Disable(CWnd* owner);
    void Enable();

private:
    HWND m_window = nullptr;
};

}  // namespace orvik::detail
