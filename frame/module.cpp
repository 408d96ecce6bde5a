#include "frame/module.h"

#include "afx/module.h"
#include "platform/house_text_internal.h"
#include "platform/module_entry.h"

namespace {
constinit AFX_EXTENSION_MODULE g_extensionModule = {};
}

namespace orvik::detail {
int ModuleEntry(HINSTANCE module, DWORD reason) {
    if (reason == DLL_PROCESS_ATTACH) {
        if (!AfxInitExtensionModule(g_extensionModule, module)) return 0;
        new CDynLinkLibrary(g_extensionModule);  // the framework's from here on
    } else if (reason == DLL_PROCESS_DETACH) {
        AfxTermExtensionModule(g_extensionModule);
    }
    return 1;
}
}  // namespace orvik::detail

void OrvikShared_InitModule() {
    orvik::detail::FixHouseText();
    // Made with the system flag and then without it, so that the library is searched like any other.
    auto* library = new CDynLinkLibrary(g_extensionModule, TRUE);
    library->m_bSystem = FALSE;
    AFX_MODULE_STATE* state = AfxGetModuleState();
    if (!state->m_pApplicationSetting) state->m_pApplicationSetting = AfxGetAppModuleState()->m_pApplicationSetting;
}
