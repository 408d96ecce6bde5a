// Who may do what with a file, read from one file and given to another. The descriptor is opaque: here it holds the owner, the
// group and the permission bits, where Windows has access control lists. Any thread.
#pragma once

#include "platform/api.h"
#include "platform/posix/types.h"

#define OWNER_SECURITY_INFORMATION 0x1u
#define GROUP_SECURITY_INFORMATION 0x2u
#define DACL_SECURITY_INFORMATION 0x4u

using SECURITY_INFORMATION = DWORD;
using PSECURITY_DESCRIPTOR = PVOID;

// Symbolic links are followed. `needed` receives the descriptor's size; error 122 when `size` is less.
ORVIK_API BOOL WINAPI GetFileSecurityA(LPCSTR name, SECURITY_INFORMATION wanted, PSECURITY_DESCRIPTOR descriptor, DWORD size,
                                       LPDWORD needed);
// Sets the asked-for parts of a descriptor that GetFileSecurityA gave. Error 5 where the caller may not.
ORVIK_API BOOL WINAPI SetFileSecurityA(LPCSTR name, SECURITY_INFORMATION parts, PSECURITY_DESCRIPTOR descriptor);
