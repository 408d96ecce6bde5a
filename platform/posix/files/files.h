// Files, folders and disks under their Win32 calls. Names are this house's text: "/" and backslash
// separate folders, drive letters are understood (docs/files.md). Names that are given back are the system's own, with "/".
// CreateFileA, ReadFile and WriteFile serve ports and files alike and stand in io.h. Any thread.
#pragma once

#include "platform/api.h"
#include "platform/posix/types.h"

#define INVALID_FILE_ATTRIBUTES 0xFFFFFFFFu
#define FILE_ATTRIBUTE_READONLY 0x1u
#define FILE_ATTRIBUTE_HIDDEN 0x2u
#define FILE_ATTRIBUTE_DIRECTORY 0x10u
#define FILE_ATTRIBUTE_ARCHIVE 0x20u
#define FILE_ATTRIBUTE_DEVICE 0x40u  // neither a file nor a folder: a device, a pipe, a socket
#define FILE_ATTRIBUTE_NORMAL 0x80u
#define FILE_ATTRIBUTE_REPARSE_POINT 0x400u

#define FILE_BEGIN 0u
#define FILE_CURRENT 1u
#define FILE_END 2u

#define MOVEFILE_REPLACE_EXISTING 0x1u
#define MOVEFILE_COPY_ALLOWED 0x2u
#define MOVEFILE_WRITE_THROUGH 0x8u

#define FILE_NAME_NORMALIZED 0x0u
#define VOLUME_NAME_DOS 0x0u

struct OVERLAPPED;

enum GET_FILEEX_INFO_LEVELS { GetFileExInfoStandard };

struct WIN32_FILE_ATTRIBUTE_DATA {
    DWORD dwFileAttributes;
    FILETIME ftCreationTime, ftLastAccessTime, ftLastWriteTime;
    DWORD nFileSizeHigh, nFileSizeLow;
};

struct WIN32_FIND_DATAA {
    DWORD dwFileAttributes;
    FILETIME ftCreationTime, ftLastAccessTime, ftLastWriteTime;
    DWORD nFileSizeHigh, nFileSizeLow, dwReserved0, dwReserved1;
    CHAR cFileName[MAX_PATH];
    CHAR cAlternateFileName[14];
};

// Attributes follow symbolic links. Failures: 2 or 3 missing, 5 not allowed.
ORVIK_API DWORD WINAPI GetFileAttributesA(LPCSTR name);
ORVIK_API BOOL WINAPI GetFileAttributesExA(LPCSTR name, GET_FILEEX_INFO_LEVELS level, LPVOID data);
// Only the read-only attribute has a meaning here: the write permissions.
ORVIK_API BOOL WINAPI SetFileAttributesA(LPCSTR name, DWORD attributes);

ORVIK_API BOOL WINAPI DeleteFileA(LPCSTR name);
// Without MOVEFILE_REPLACE_EXISTING an existing target is error 183. A replaced file is replaced in one step: at every moment the
// name holds the old file or the new one. MOVEFILE_WRITE_THROUGH also flushes the folder, so that the step survives a power cut.
ORVIK_API BOOL WINAPI MoveFileExA(LPCSTR from, LPCSTR to, DWORD flags);
ORVIK_API BOOL WINAPI CreateDirectoryA(LPCSTR name, LPVOID security);

// The absolute name, "." and ".." resolved in the text alone; nothing is looked up. Length, or the size needed, or 0.
ORVIK_API DWORD WINAPI GetFullPathNameA(LPCSTR name, DWORD size, LPSTR out, LPSTR* filePart);
ORVIK_API DWORD WINAPI GetTempPathA(DWORD size, LPSTR out);

// Copies a file's bytes, permissions and time of last change to a name that nothing has yet; `failIfExists` FALSE is refused with
// error
// 50. The target appears when it is complete, under its own name or not at all. Failures: 2 or 3 the source or the target's
// folder is missing, 5 not allowed, 50 the source is no file, 80 the target exists, 112 the disk is full.
ORVIK_API BOOL WINAPI CopyFileA(LPCSTR source, LPCSTR target, BOOL failIfExists);

// Of the disk whose root is given as "C:\\" or "/"; null is that of the working directory. What the caller may use counts as
// free. On disks beyond what the numbers can say the clusters are told as larger and fewer. Failures: 3 no such drive, 144 not a
// root.
ORVIK_API BOOL WINAPI GetDiskFreeSpaceA(LPCSTR root, LPDWORD sectorsPerCluster, LPDWORD bytesPerSector, LPDWORD freeClusters,
                                        LPDWORD clusters);
// Bytes free for the caller, of all, and free for anybody, on the disk that holds the folder; null numbers are not given.
ORVIK_API BOOL WINAPI GetDiskFreeSpaceExA(LPCSTR folder, ULARGE_INTEGER* freeForCaller, ULARGE_INTEGER* all,
                                          ULARGE_INTEGER* free);

// Entries of one folder whose name matches the last part of `pattern` ("*" any run, "?" any one character, "*.*" all), "." and
// ".." included as documented. A pattern with wildcards does not look at the case of letters, as on Windows; without one it is a
// name, and a name has its case. Entries that could not be named back are passed over: MAX_PATH bytes or more, or a backslash in
// the name.
ORVIK_API HANDLE WINAPI FindFirstFileA(LPCSTR pattern, WIN32_FIND_DATAA* data);
// With FindExInfoBasic only the name and the directory and hidden attributes are filled in, times and sizes are 0: this system
// would have to look up every single entry for them, which takes most of the time of a long list. No filter, no flags: 87
// otherwise.
enum FINDEX_INFO_LEVELS { FindExInfoStandard, FindExInfoBasic };
enum FINDEX_SEARCH_OPS { FindExSearchNameMatch };
ORVIK_API HANDLE WINAPI FindFirstFileExA(LPCSTR pattern, FINDEX_INFO_LEVELS level, LPVOID data, FINDEX_SEARCH_OPS operation,
                                         LPVOID filter, DWORD flags);
ORVIK_API BOOL WINAPI FindNextFileA(HANDLE find, WIN32_FIND_DATAA* data);
ORVIK_API BOOL WINAPI FindClose(HANDLE find);

// On handles of files from CreateFileA.
ORVIK_API BOOL WINAPI SetFilePointerEx(HANDLE file, LARGE_INTEGER distance, LARGE_INTEGER* position, DWORD method);
ORVIK_API BOOL WINAPI GetFileSizeEx(HANDLE file, LARGE_INTEGER* size);
ORVIK_API BOOL WINAPI SetEndOfFile(HANDLE file);
// Which file it is: the same serial number and index for every handle of one file. The number of links is 0 once the file has no
// name any more. Attributes and times are 0 here.
struct BY_HANDLE_FILE_INFORMATION {
    DWORD dwFileAttributes;
    FILETIME ftCreationTime, ftLastAccessTime, ftLastWriteTime;
    DWORD dwVolumeSerialNumber, nFileSizeHigh, nFileSizeLow, nNumberOfLinks, nFileIndexHigh, nFileIndexLow;
};
ORVIK_API BOOL WINAPI GetFileInformationByHandle(HANDLE file, BY_HANDLE_FILE_INFORMATION* info);
ORVIK_API BOOL WINAPI FlushFileBuffers(HANDLE file);  // to the disk, not only to the system
// A lock for one program against others, on a stretch of bytes that need not be there; it ends with the handle. Only such as do
// not wait (50 otherwise), shared or exclusive; error 33 where somebody has it. Reading and writing do not heed it here.
#define LOCKFILE_FAIL_IMMEDIATELY 0x1u
#define LOCKFILE_EXCLUSIVE_LOCK 0x2u
ORVIK_API BOOL WINAPI LockFileEx(HANDLE file, DWORD flags, DWORD reserved, DWORD sizeLow, DWORD sizeHigh, OVERLAPPED* place);
// The name with every symbolic link followed. Length without the terminator, or the size needed with it, or 0.
ORVIK_API DWORD WINAPI GetFinalPathNameByHandleA(HANDLE file, LPSTR out, DWORD size, DWORD flags);
