// Handles of kernel objects: events, threads, ports, files, registry keys.
// Any thread. A HANDLE names a slot of one table and the slot's generation, so a closed, foreign or made-up handle is
// refused with error 6 and never followed. The object lives until its handle is closed and the last call on it has returned.
#pragma once

#include "platform/api.h"
#include "platform/posix/types.h"

struct SECURITY_ATTRIBUTES {
    DWORD nLength;
    LPVOID lpSecurityDescriptor;
    BOOL bInheritHandle;
};
using LPSECURITY_ATTRIBUTES = SECURITY_ATTRIBUTES*;

// Closing a port aborts what is pending on it (error 995) and frees its lock before it returns, whoever waits on it.
ORVIK_API BOOL WINAPI CloseHandle(HANDLE handle);
