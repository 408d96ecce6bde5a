// What the window's keys and gestures do, on a page that scrolls. House text. User-interface thread.
#pragma once

#include "toolkit/bcgp_dialog.h"

class KeysDialog : public CBCGPDialog {
public:
    explicit KeysDialog(CWnd* parent);

protected:
    BOOL OnInitDialog() override;
};
