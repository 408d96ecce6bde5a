// Win32 error codes, the calling thread's last error, and the one translator from errno.
#pragma once

#include "platform/api.h"
#include "platform/posix/types.h"

#define ERROR_SUCCESS 0u
#define NO_ERROR 0u
#define ERROR_INVALID_FUNCTION 1u
#define ERROR_FILE_NOT_FOUND 2u
#define ERROR_PATH_NOT_FOUND 3u
#define ERROR_TOO_MANY_OPEN_FILES 4u
#define ERROR_ACCESS_DENIED 5u
#define ERROR_INVALID_HANDLE 6u
#define ERROR_NOT_ENOUGH_MEMORY 8u
#define ERROR_BAD_FORMAT 11u
#define ERROR_INVALID_DATA 13u
#define ERROR_OUTOFMEMORY 14u
#define ERROR_WRITE_PROTECT 19u
#define ERROR_NO_MORE_FILES 18u
#define ERROR_NOT_READY 21u
#define ERROR_GEN_FAILURE 31u
#define ERROR_SHARING_VIOLATION 32u
#define ERROR_HANDLE_EOF 38u
#define ERROR_NOT_SUPPORTED 50u
#define ERROR_FILE_EXISTS 80u
#define ERROR_INVALID_PARAMETER 87u
#define ERROR_BROKEN_PIPE 109u
#define ERROR_DISK_FULL 112u
#define ERROR_CALL_NOT_IMPLEMENTED 120u
#define ERROR_INSUFFICIENT_BUFFER 122u
#define ERROR_INVALID_NAME 123u
#define ERROR_MOD_NOT_FOUND 126u
#define ERROR_PROC_NOT_FOUND 127u
#define ERROR_DIRECTORY 267u
#define ERROR_NEGATIVE_SEEK 131u
#define ERROR_DIR_NOT_EMPTY 145u
#define ERROR_ALREADY_EXISTS 183u
#define ERROR_FILENAME_EXCED_RANGE 206u
#define ERROR_MORE_DATA 234u
#define ERROR_NO_MORE_ITEMS 259u
#define ERROR_OPERATION_ABORTED 995u
#define ERROR_IO_INCOMPLETE 996u
#define ERROR_IO_PENDING 997u
#define ERROR_INVALID_FLAGS 1004u
#define ERROR_NO_UNICODE_TRANSLATION 1113u
#define ERROR_ALREADY_INITIALIZED 1247u
#define ERROR_INVALID_WINDOW_HANDLE 1400u
#define ERROR_CLASS_ALREADY_EXISTS 1410u
#define ERROR_CLASS_DOES_NOT_EXIST 1411u
#define ERROR_INVALID_THREAD_ID 1444u
#define ERROR_TIMEOUT 1460u
#define ERROR_NOT_ENOUGH_QUOTA 1816u
#define ERROR_CANNOT_FIND_WND_CLASS 1407u
#define ERROR_CLASS_HAS_WINDOWS 1412u
#define ERROR_INVALID_INDEX 1413u
#define ERROR_RESOURCE_TYPE_NOT_FOUND 1813u
#define ERROR_RESOURCE_NAME_NOT_FOUND 1814u

#define S_OK (static_cast<HRESULT>(0))
#define E_FAIL (static_cast<HRESULT>(0x80004005u))
#define E_INVALIDARG (static_cast<HRESULT>(0x80070057u))
#define E_OUTOFMEMORY (static_cast<HRESULT>(0x8007000Eu))
#define SUCCEEDED(hr) (static_cast<HRESULT>(hr) >= 0)
#define FAILED(hr) (static_cast<HRESULT>(hr) < 0)

ORVIK_API DWORD WINAPI GetLastError();
ORVIK_API void WINAPI SetLastError(DWORD code);

namespace orvik::detail {
// The Win32 code for an errno value; 31 (general failure) for one that has no better.
DWORD ErrorFromErrno(int error);
}  // namespace orvik::detail
