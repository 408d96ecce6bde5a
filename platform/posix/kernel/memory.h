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

// Global memory, which is what a clipboard keeps. Error 6 for a handle that is none.
#define GMEM_FIXED 0x0000u
#define GMEM_MOVEABLE 0x0002u
#define GMEM_ZEROINIT 0x0040u
#define GHND (GMEM_MOVEABLE | GMEM_ZEROINIT)
ORVIK_API HGLOBAL WINAPI GlobalAlloc(UINT flags, SIZE_T bytes);  // with or without GMEM_MOVEABLE the block stays where it is
ORVIK_API LPVOID WINAPI GlobalLock(HGLOBAL block);               // its place; any number of times
ORVIK_API BOOL WINAPI GlobalUnlock(HGLOBAL block);               // FALSE and error 0: nobody else has it locked
ORVIK_API SIZE_T WINAPI GlobalSize(HGLOBAL block);               // as asked for; 0 for a bad handle
ORVIK_API HGLOBAL WINAPI GlobalFree(HGLOBAL block);              // null: freed, or nothing to free
