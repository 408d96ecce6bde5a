#include "platform/module_entry.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID);
extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) { return orvik::detail::ModuleEntry(module, reason); }
