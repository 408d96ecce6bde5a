#include "host/gui/about_dialog.h"

#include "frame/version.h"
#include "host/words/texts.h"
#include "res/ids.h"
#include "ui/version_info.h"

AboutDialog::AboutDialog(CWnd* parent) : CBCGPDialog(IDD_HOST_ABOUT, parent) {}

BOOL AboutDialog::OnInitDialog() {
    const BOOL done = CBCGPDialog::OnInitDialog();
    std::string name = "OrvikShared", version = ORVIK_MODULE_VERSION, description;
    const HMODULE module = ::GetModuleHandleA("OrvikShared.dll");
    const CVersionInfo info(module);
    if (module != nullptr && info.IsValid()) {
        name = info.GetInternalName();
        version = info.GetFileVersion();
        description = info.GetFileDescription();
    }
    SetDlgItemText(IDC_HOST_VERSION, Say(Text::AboutVersion, {ToUtf8(name), ToUtf8(version)}).c_str());
    SetDlgItemText(IDC_HOST_WHAT, description.c_str());
    SetDlgItemText(IDC_HOST_PURPOSE, Say(Text::AboutText).c_str());
    CenterWindow();
    return done;
}
