// Files and folders.
#include "platform/windows/door_text_internal.h"

#include <cerrno>
#include <cstring>

using namespace orvik::detail;

namespace {
// False for an entry that cannot be named: its own name is too long, and it has no short one.
bool Put(const WIN32_FIND_DATAW& found, WIN32_FIND_DATAA& out) {
    const bool fits = NarrowLength(found.cFileName) < MAX_PATH;
    if (!fits && found.cAlternateFileName[0] == 0) return false;
    out = {};
    out.dwFileAttributes = found.dwFileAttributes;
    out.ftCreationTime = found.ftCreationTime;
    out.ftLastAccessTime = found.ftLastAccessTime;
    out.ftLastWriteTime = found.ftLastWriteTime;
    out.nFileSizeHigh = found.nFileSizeHigh;
    out.nFileSizeLow = found.nFileSizeLow;
    out.dwReserved0 = found.dwReserved0;
    out.dwReserved1 = found.dwReserved1;
    PutCut(fits ? found.cFileName : found.cAlternateFileName, out.cFileName, sizeof out.cFileName);
    PutCut(found.cAlternateFileName, out.cAlternateFileName, sizeof out.cAlternateFileName);
    return true;
}

HANDLE FirstOf(HANDLE search, const WIN32_FIND_DATAW& found, WIN32_FIND_DATAA* out) {
    if (search == INVALID_HANDLE_VALUE || Put(found, *out) || OrvikFindNextFileA(search, out)) return search;
    FindClose(search);
    SetLastError(ERROR_FILE_NOT_FOUND);
    return INVALID_HANDLE_VALUE;
}
}  // namespace

HANDLE WINAPI OrvikCreateFileA(LPCSTR name, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD creation,
                               DWORD flags, HANDLE model) {
    if (!HouseIsUtf8()) return CreateFileA(name, access, share, security, creation, flags, model);
    return CreateFileW(WideArgument(name), access, share, security, creation, flags, model);
}

BOOL WINAPI OrvikDeleteFileA(LPCSTR name) { return HouseIsUtf8() ? DeleteFileW(WideArgument(name)) : DeleteFileA(name); }

BOOL WINAPI OrvikMoveFileExA(LPCSTR from, LPCSTR to, DWORD flags) {
    return HouseIsUtf8() ? MoveFileExW(WideArgument(from), WideArgument(to), flags) : MoveFileExA(from, to, flags);
}

BOOL WINAPI OrvikCopyFileA(LPCSTR source, LPCSTR target, BOOL failIfExists) {
    return HouseIsUtf8() ? CopyFileW(WideArgument(source), WideArgument(target), failIfExists)
                         : CopyFileA(source, target, failIfExists);
}

BOOL WINAPI OrvikCreateDirectoryA(LPCSTR name, LPSECURITY_ATTRIBUTES security) {
    return HouseIsUtf8() ? CreateDirectoryW(WideArgument(name), security) : CreateDirectoryA(name, security);
}

BOOL WINAPI OrvikRemoveDirectoryA(LPCSTR name) {
    return HouseIsUtf8() ? RemoveDirectoryW(WideArgument(name)) : RemoveDirectoryA(name);
}

DWORD WINAPI OrvikGetFileAttributesA(LPCSTR name) {
    return HouseIsUtf8() ? GetFileAttributesW(WideArgument(name)) : GetFileAttributesA(name);
}

BOOL WINAPI OrvikGetFileAttributesExA(LPCSTR name, GET_FILEEX_INFO_LEVELS level, LPVOID data) {
    return HouseIsUtf8() ? GetFileAttributesExW(WideArgument(name), level, data) : GetFileAttributesExA(name, level, data);
}

BOOL WINAPI OrvikSetFileAttributesA(LPCSTR name, DWORD attributes) {
    return HouseIsUtf8() ? SetFileAttributesW(WideArgument(name), attributes) : SetFileAttributesA(name, attributes);
}

HANDLE WINAPI OrvikFindFirstFileA(LPCSTR pattern, LPWIN32_FIND_DATAA out) {
    if (!HouseIsUtf8()) return FindFirstFileA(pattern, out);
    WIN32_FIND_DATAW found;
    return FirstOf(FindFirstFileW(WideArgument(pattern), &found), found, out);
}

HANDLE WINAPI OrvikFindFirstFileExA(LPCSTR pattern, FINDEX_INFO_LEVELS level, LPVOID out, FINDEX_SEARCH_OPS kind, LPVOID filter,
                                    DWORD flags) {
    if (!HouseIsUtf8()) return FindFirstFileExA(pattern, level, out, kind, filter, flags);
    WIN32_FIND_DATAW found;
    // The names are told apart by their length, so the short ones are needed, whatever was asked for.
    const HANDLE search = FindFirstFileExW(WideArgument(pattern), FindExInfoStandard, &found, kind, filter, flags);
    return FirstOf(search, found, static_cast<WIN32_FIND_DATAA*>(out));
}

BOOL WINAPI OrvikFindNextFileA(HANDLE search, LPWIN32_FIND_DATAA out) {
    if (!HouseIsUtf8()) return FindNextFileA(search, out);
    WIN32_FIND_DATAW found;
    while (FindNextFileW(search, &found)) {
        if (Put(found, *out)) return TRUE;
    }
    return FALSE;
}

DWORD WINAPI OrvikGetFullPathNameA(LPCSTR name, DWORD size, LPSTR out, LPSTR* filePart) {
    if (!HouseIsUtf8()) return GetFullPathNameA(name, size, out, filePart);
    const WideArgument wide(name);
    const DWORD length =
        PutPath(WholePath([&](LPWSTR buffer, DWORD room) { return GetFullPathNameW(wide, room, buffer, nullptr); }), out, size);
    if (filePart != nullptr && length > 0 && length < size) {
        const char* const cut = std::strrchr(out, '\\');
        *filePart = cut != nullptr && cut[1] != 0 ? out + (cut + 1 - out) : nullptr;
    }
    return length;
}

DWORD WINAPI OrvikGetTempPathA(DWORD size, LPSTR out) {
    if (!HouseIsUtf8()) return GetTempPathA(size, out);
    return PutPath(WholePath([](LPWSTR buffer, DWORD room) { return GetTempPathW(room, buffer); }), out, size);
}

DWORD WINAPI OrvikGetFinalPathNameByHandleA(HANDLE file, LPSTR out, DWORD size, DWORD flags) {
    if (!HouseIsUtf8()) return GetFinalPathNameByHandleA(file, out, size, flags);
    return PutPath(WholePath([&](LPWSTR buffer, DWORD room) { return GetFinalPathNameByHandleW(file, buffer, room, flags); }),
                   out, size);
}

BOOL WINAPI OrvikGetDiskFreeSpaceA(LPCSTR root, LPDWORD sectors, LPDWORD bytes, LPDWORD freeClusters, LPDWORD clusters) {
    return HouseIsUtf8() ? GetDiskFreeSpaceW(WideArgument(root), sectors, bytes, freeClusters, clusters)
                         : GetDiskFreeSpaceA(root, sectors, bytes, freeClusters, clusters);
}

BOOL WINAPI OrvikGetDiskFreeSpaceExA(LPCSTR folder, PULARGE_INTEGER mine, PULARGE_INTEGER all, PULARGE_INTEGER freeBytes) {
    return HouseIsUtf8() ? GetDiskFreeSpaceExW(WideArgument(folder), mine, all, freeBytes)
                         : GetDiskFreeSpaceExA(folder, mine, all, freeBytes);
}

BOOL WINAPI OrvikGetFileSecurityA(LPCSTR name, SECURITY_INFORMATION what, PSECURITY_DESCRIPTOR out, DWORD size, LPDWORD needed) {
    return HouseIsUtf8() ? GetFileSecurityW(WideArgument(name), what, out, size, needed)
                         : GetFileSecurityA(name, what, out, size, needed);
}

BOOL WINAPI OrvikSetFileSecurityA(LPCSTR name, SECURITY_INFORMATION what, PSECURITY_DESCRIPTOR security) {
    return HouseIsUtf8() ? SetFileSecurityW(WideArgument(name), what, security) : SetFileSecurityA(name, what, security);
}

int Orvik_access(const char* name, int mode) { return HouseIsUtf8() ? _waccess(WideArgument(name), mode) : _access(name, mode); }

int Orvik_chdir(const char* name) { return HouseIsUtf8() ? _wchdir(WideArgument(name)) : _chdir(name); }

char* Orvik_getcwd(char* out, int size) {
    if (!HouseIsUtf8() || out == nullptr) return _getcwd(out, size);
    const std::wstring folder = WholePath([](LPWSTR buffer, DWORD room) { return GetCurrentDirectoryW(room, buffer); });
    if (size > 0 && PutWhole(folder, out, size) > 0) return out;
    errno = ERANGE;
    return nullptr;
}

// As documented: the number of names, the length of one, or as much of it as there is room for.
UINT WINAPI OrvikDragQueryFileA(HDROP drop, UINT index, LPSTR name, UINT size) {
    if (!HouseIsUtf8() || index == 0xFFFFFFFFu) return DragQueryFileA(drop, index, name, size);
    std::wstring path(DragQueryFileW(drop, index, nullptr, 0), L'\0');
    path.resize(DragQueryFileW(drop, index, path.data(), static_cast<UINT>(path.size() + 1)));
    return static_cast<UINT>(name == nullptr ? NarrowLength(path)
                                             : static_cast<size_t>(PutCut(path, name, static_cast<int>(size))));
}
