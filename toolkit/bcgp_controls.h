// The toolkit's own faces of the standard controls: what they add is the switch that lets them follow the toolkit's looks on
// a dialog that does. On their window's thread.
#pragma once

#include "afx/common_controls.h"
#include "afx/controls.h"

class ORVIK_API CBCGPStatic : public CStatic {
    DECLARE_DYNAMIC(CBCGPStatic)

public:
    BOOL m_bVisualManagerStyle = FALSE;
};

class ORVIK_API CBCGPButton : public CButton {
    DECLARE_DYNAMIC(CBCGPButton)

public:
    BOOL m_bVisualManagerStyle = FALSE;
};

class ORVIK_API CBCGPProgressCtrl : public CProgressCtrl {
    DECLARE_DYNAMIC(CBCGPProgressCtrl)

public:
    BOOL m_bVisualManagerStyle = FALSE;
};
