// Opening, reading and writing ports and files, and collecting overlapped results.
// Any thread. An operation that cannot end at once on a handle opened with FILE_FLAG_OVERLAPPED fails with 997 and is pending:
// its OVERLAPPED and buffer stay in use until it has ended, which its event tells.
#pragma once

#include "platform/posix/kernel/handles.h"

#define GENERIC_READ 0x80000000u
#define GENERIC_WRITE 0x40000000u
#define DELETE 0x00010000u  // nobody needs it here to move or delete a file
#define FILE_SHARE_READ 0x00000001u
#define FILE_SHARE_WRITE 0x00000002u
#define FILE_SHARE_DELETE 0x00000004u
#define CREATE_NEW 1u
#define CREATE_ALWAYS 2u
#define OPEN_EXISTING 3u
#define OPEN_ALWAYS 4u
#define TRUNCATE_EXISTING 5u
#define FILE_FLAG_WRITE_THROUGH 0x80000000u
#define FILE_FLAG_OVERLAPPED 0x40000000u

#define STATUS_PENDING 0x00000103u

struct OVERLAPPED {
    ULONG_PTR Internal;      // STATUS_PENDING while pending, then the Win32 code of the result
    ULONG_PTR InternalHigh;  // bytes moved
    __extension__ union {
        __extension__ struct {
            DWORD Offset;
            DWORD OffsetHigh;
        };
        PVOID Pointer;
    };
    HANDLE hEvent;
};
using LPOVERLAPPED = OVERLAPPED*;

// A name that begins with "\\.\", and the plain names COM1 to COM9, mean a serial port (docs/ports.md); any other a file.
// INVALID_HANDLE_VALUE on failure: error 2 for a missing port, 5 for one that somebody holds or that may not be opened.
ORVIK_API HANDLE WINAPI CreateFileA(LPCSTR name, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD disposition,
                                    DWORD flags, HANDLE templateFile);
ORVIK_API BOOL WINAPI ReadFile(HANDLE file, LPVOID buffer, DWORD length, LPDWORD read, LPOVERLAPPED overlapped);
ORVIK_API BOOL WINAPI WriteFile(HANDLE file, LPCVOID buffer, DWORD length, LPDWORD written, LPOVERLAPPED overlapped);
// Error 996 while the operation is pending and `wait` is FALSE; then the operation's own error, 995 for an aborted one.
ORVIK_API BOOL WINAPI GetOverlappedResult(HANDLE file, LPOVERLAPPED overlapped, LPDWORD moved, BOOL wait);
// Aborts what the calling thread has pending on the handle; each such operation ends with 995.
ORVIK_API BOOL WINAPI CancelIo(HANDLE file);
