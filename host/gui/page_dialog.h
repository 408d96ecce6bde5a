// Text on a page that scrolls: what the window's keys and gestures do, which readings are missing. House text. User-interface
// thread.
#pragma once

#include <string>

#include "toolkit/bcgp_dialog.h"

class PageDialog : public CBCGPDialog {
public:
    // Lines end in '\n'. Without a title it has the one for keys.
    PageDialog(CWnd* parent, const std::string& title, const std::string& page);

protected:
    BOOL OnInitDialog() override;

private:
    const std::string m_title;
    std::string m_page;
};
