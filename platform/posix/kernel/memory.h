// The process heap and local memory. Any thread; blocks are freed by the function that matches the one that gave them.
#pragma once

#include "platform/posix/kernel/handles.h"

#define HEAP_ZERO_MEMORY 0x00000008u
#define LMEM_FIXED 0x0000u
#define LMEM_ZEROINIT 0x0040u
#define LPTR (LMEM_FIXED | LMEM_ZEROINIT)

ORVIK_API HANDLE WINAPI GetProcessHeap();
// Null without memory, or for a heap that is not the process heap (error 6).
ORVIK_API LPVOID WINAPI HeapAlloc(HANDLE heap, DWORD flags, SIZE_T bytes);
ORVIK_API BOOL WINAPI HeapFree(HANDLE heap, DWORD flags, LPVOID block);  // null is fine
ORVIK_API HLOCAL WINAPI LocalAlloc(UINT flags, SIZE_T bytes);
ORVIK_API HLOCAL WINAPI LocalFree(HLOCAL block);  // null: freed
