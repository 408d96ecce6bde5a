// Events: the flags that threads wait for.
// Any thread. Security attributes are ignored, and names are refused (error 50): nothing here is shared between processes.
#pragma once

#include "platform/posix/kernel/handles.h"

// Null on failure. A manual-reset event stays signalled until ResetEvent; the other kind lets one wait through.
ORVIK_API HANDLE WINAPI CreateEventA(LPSECURITY_ATTRIBUTES security, BOOL manualReset, BOOL initialState, LPCSTR name);
ORVIK_API BOOL WINAPI SetEvent(HANDLE event);
ORVIK_API BOOL WINAPI ResetEvent(HANDLE event);
