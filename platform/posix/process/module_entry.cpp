#include "platform/module_entry.h"

#include <cstdio>
#include <cstdlib>

// The loader runs these when the shared object is mapped and unmapped. It cannot be told that a load failed, so a failure ends
// the process, as a failed start of the program itself would.
namespace {
__attribute__((constructor)) void Attach() {
    if (orvik::detail::ModuleEntry(GetModuleHandleA("OrvikShared"), DLL_PROCESS_ATTACH)) return;
    std::fputs("OrvikShared: the module could not be initialised\n", stderr);
    std::abort();
}
__attribute__((destructor)) void Detach() { orvik::detail::ModuleEntry(GetModuleHandleA("OrvikShared"), DLL_PROCESS_DETACH); }
}  // namespace
