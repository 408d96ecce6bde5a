// The module's entry: what the loader of either home calls when the shared library is loaded and unloaded. The frame does the
// work. Internal. On the thread that loads or unloads, under the loader's lock: no waiting, no loading of other libraries.
#pragma once

#include "platform/win32.h"

#if !defined(DLL_PROCESS_ATTACH)
#define DLL_PROCESS_DETACH 0u
#define DLL_PROCESS_ATTACH 1u
#endif

namespace orvik::detail {
// `reason` is one of DLL_PROCESS_ATTACH and DLL_PROCESS_DETACH; every other one is a success without effect. 0 fails the load.
int ModuleEntry(HINSTANCE module, DWORD reason);
}  // namespace orvik::detail
