// The framework's view: a window that shows a document.
// Belongs to its window's thread, and its object to whoever made it.
#pragma once

#include "afx/wnd.h"

class ORVIK_API CView : public CWnd {
    DECLARE_DYNAMIC(CView)

protected:
    CView() = default;
};
