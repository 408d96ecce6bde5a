// Shared libraries: loading, looking up, and where a module lies.
// The names are Windows-1252 paths; a loaded module's handle is the system's own reference. Any thread.
#pragma once

#include "platform/api.h"
#include "platform/posix/types.h"

using FARPROC = INT_PTR (*)();

// Null on failure: 2 or 3 missing, 5 not readable, 11 not a library of this machine, 126 one of its own libraries is missing.
// All its symbols are resolved at once, so a library that does not fit fails here and not in the middle of a call.
ORVIK_API HMODULE WINAPI LoadLibraryA(LPCSTR path);
ORVIK_API BOOL WINAPI FreeLibrary(HMODULE module);
ORVIK_API FARPROC WINAPI GetProcAddress(HMODULE module, LPCSTR name);
// The path of the running program (null module) or of a loaded library; 0 on failure, 122 when it does not fit (the text is then
// cut).
ORVIK_API DWORD WINAPI GetModuleFileNameA(HMODULE module, LPSTR out, DWORD size);
