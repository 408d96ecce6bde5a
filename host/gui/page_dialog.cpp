#include "host/gui/page_dialog.h"

#include "res/ids.h"

PageDialog::PageDialog(CWnd* parent, const std::string& title, const std::string& page)
    : CBCGPDialog(IDD_HOST_KEYS, parent), m_title(title) {
    for (const char letter : page) {
        if (letter == '\n') m_page += '\r';
        m_page += letter;
    }
}

// The page has the keys at once, so that arrows scroll it.
BOOL PageDialog::OnInitDialog() {
    CBCGPDialog::OnInitDialog();
    if (!m_title.empty()) SetWindowText(m_title.c_str());
    CWnd* const field = GetDlgItem(IDC_HOST_KEYS);
    field->SetWindowText(m_page.c_str());
    CenterWindow();
    field->SetFocus();
    field->SendMessage(EM_SETSEL, 0, 0);
    return FALSE;
}
