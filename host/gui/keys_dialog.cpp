#include "host/gui/keys_dialog.h"

#include "host/words/texts.h"
#include "res/ids.h"

KeysDialog::KeysDialog(CWnd* parent) : CBCGPDialog(IDD_HOST_KEYS, parent) {}

// The page has the keys at once, so that arrows scroll it.
BOOL KeysDialog::OnInitDialog() {
    CBCGPDialog::OnInitDialog();
    std::string page;
    for (const char letter : Say(Text::KeysPage)) {
        if (letter == '\n') page += '\r';
        page += letter;
    }
    CWnd* const field = GetDlgItem(IDC_HOST_KEYS);
    field->SetWindowText(page.c_str());
    CenterWindow();
    field->SetFocus();
    field->SendMessage(EM_SETSEL, 0, 0);
    return FALSE;
}
