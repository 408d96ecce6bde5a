// What the host is, and which version of the module it runs on, as the module's version resource has it; where modules have none,
// as the module's header has it. House text. User-interface thread.
#pragma once

#include "toolkit/bcgp_dialog.h"

class AboutDialog : public CBCGPDialog {
public:
    explicit AboutDialog(CWnd* parent);

protected:
    BOOL OnInitDialog() override;
};
