// The base of the module's resizable popup dialogs: the toolkit's dialog in the toolkit's looks, with a layout. On the
// user-interface thread.
#pragma once

#include "toolkit/bcgp_dialog.h"

class ORVIK_API CPopupDialog : public CBCGPDialog {
    DECLARE_DYNAMIC(CPopupDialog)

public:
    explicit CPopupDialog(UINT nIDTemplate, CWnd* parent = nullptr) : CBCGPDialog(nIDTemplate, parent) {
        EnableVisualManagerStyle();
        EnableLayout();
    }
};
