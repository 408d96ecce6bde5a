#include "platform/posix/files.h"

#include <dirent.h>
#include <fcntl.h>
#include <fnmatch.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "platform/posix/handle_table_internal.h"
#include "platform/posix/text.h"

using namespace orvik::detail;

namespace {
BOOL Fail(DWORD error) {
    SetLastError(error);
    return FALSE;
}
BOOL FailErrno() { return Fail(ErrorFromErrno(errno)); }

// Null and empty names are refused before the system sees them.
bool TakeName(LPCSTR name, std::string& path) {
    if (name == nullptr || *name == 0) {
        SetLastError(name == nullptr ? ERROR_INVALID_PARAMETER : ERROR_PATH_NOT_FOUND);
        return false;
    }
    path = SystemPath(name);
    return true;
}

// ENOENT is 2 for a missing file and 3 for a missing folder on the way to it.
BOOL FailOnPath(const std::string& path) {
    const int error = errno;
    if (error != ENOENT) return Fail(ErrorFromErrno(error));
    const size_t slash = path.find_last_of('/');
    struct stat folder;
    const bool hasFolder = slash == std::string::npos || slash == 0 || stat(path.substr(0, slash).c_str(), &folder) == 0;
    return Fail(hasFolder ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND);
}

// 100 ns steps since 1601, 11,644,473,600 s before the system's epoch.
FILETIME ToFileTime(const timespec& time) {
    const auto ticks = static_cast<ULONGLONG>((time.tv_sec + 11'644'473'600LL) * 10'000'000LL + time.tv_nsec / 100);
    return {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
}

DWORD AttributesOf(const struct stat& info, bool hidden) {
    DWORD attributes = S_ISDIR(info.st_mode)   ? FILE_ATTRIBUTE_DIRECTORY
                       : S_ISREG(info.st_mode) ? FILE_ATTRIBUTE_ARCHIVE
                                               : FILE_ATTRIBUTE_DEVICE;
    if ((info.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0) attributes |= FILE_ATTRIBUTE_READONLY;
    if (hidden) attributes |= FILE_ATTRIBUTE_HIDDEN;
    return attributes;
}

bool IsHiddenName(const std::string& path) {
    const size_t slash = path.find_last_of('/');
    const std::string last = slash == std::string::npos ? path : path.substr(slash + 1);
    return last.size() > 1 && last[0] == '.' && last != "..";
}

template <class Data>
void Describe(const struct stat& info, bool hidden, Data& data) {
    data.dwFileAttributes = AttributesOf(info, hidden);
    data.ftCreationTime = ToFileTime(info.st_ctim);
    data.ftLastAccessTime = ToFileTime(info.st_atim);
    data.ftLastWriteTime = ToFileTime(info.st_mtim);
    data.nFileSizeHigh = static_cast<DWORD>(static_cast<ULONGLONG>(info.st_size) >> 32);
    data.nFileSizeLow = static_cast<DWORD>(info.st_size);
}

DWORD DeliverText(const std::string& text, DWORD size, LPSTR out) {
    const DWORD length = static_cast<DWORD>(text.size());
    if (out == nullptr || size <= length) return length + 1;
    std::memcpy(out, text.c_str(), text.size() + 1);
    return length;
}

// Makes a rename durable: the folder's own entry is flushed.
void FlushFolderOf(const std::string& path) {
    const size_t slash = path.find_last_of('/');
    const std::string folder = slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
    const int fd = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return;
    fsync(fd);
    close(fd);
}

struct Search : KernelObject {
    static constexpr Kind kKind = kSearch;
    Search() : KernelObject(kSearch) {}
    std::vector<std::string> names;  // what is still to be given, last first
    std::string folder;
};

DWORD TakeNext(Search& search, WIN32_FIND_DATAA* data) {
    if (data == nullptr) return ERROR_INVALID_PARAMETER;
    while (!search.names.empty()) {
        const std::string name = std::move(search.names.back());
        search.names.pop_back();
        struct stat info;
        const std::string path = search.folder + name;
        // A dangling link is still an entry; one that vanished meanwhile is not.
        if (stat(path.c_str(), &info) != 0 && lstat(path.c_str(), &info) != 0) continue;
        *data = {};
        Describe(info, IsHiddenName(name), *data);
        const std::string shown = HousePath(name);  // shorter than MAX_PATH by choice of the names
        shown.copy(data->cFileName, shown.size());
        return ERROR_SUCCESS;
    }
    return ERROR_NO_MORE_FILES;
}
}  // namespace

DWORD GetFileAttributesA(LPCSTR name) {
    WIN32_FILE_ATTRIBUTE_DATA data;
    return GetFileAttributesExA(name, GetFileExInfoStandard, &data) ? data.dwFileAttributes : INVALID_FILE_ATTRIBUTES;
}

BOOL GetFileAttributesExA(LPCSTR name, GET_FILEEX_INFO_LEVELS level, LPVOID data) {
    std::string path;
    if (!TakeName(name, path)) return FALSE;
    if (level != GetFileExInfoStandard || data == nullptr) return Fail(ERROR_INVALID_PARAMETER);
    struct stat info;
    if (stat(path.c_str(), &info) != 0) return FailOnPath(path);
    Describe(info, IsHiddenName(path), *static_cast<WIN32_FILE_ATTRIBUTE_DATA*>(data));
    return TRUE;
}

BOOL SetFileAttributesA(LPCSTR name, DWORD attributes) {
    std::string path;
    if (!TakeName(name, path)) return FALSE;
    struct stat info;
    if (stat(path.c_str(), &info) != 0) return FailOnPath(path);
    const mode_t all = S_IWUSR | S_IWGRP | S_IWOTH;
    const mode_t mode = attributes & FILE_ATTRIBUTE_READONLY ? info.st_mode & ~all
                        : info.st_mode & all                 ? info.st_mode
                                                             : info.st_mode | S_IWUSR;
    return chmod(path.c_str(), mode & 07777) == 0 ? TRUE : FailErrno();
}

BOOL DeleteFileA(LPCSTR name) {
    std::string path;
    if (!TakeName(name, path)) return FALSE;
    return unlink(path.c_str()) == 0 ? TRUE : FailOnPath(path);
}

BOOL MoveFileExA(LPCSTR from, LPCSTR to, DWORD flags) {
    std::string source, target;
    if (!TakeName(from, source) || !TakeName(to, target)) return FALSE;
    if (flags & ~(MOVEFILE_REPLACE_EXISTING | MOVEFILE_COPY_ALLOWED | MOVEFILE_WRITE_THROUGH))
        return Fail(ERROR_INVALID_PARAMETER);
    const unsigned mode = flags & MOVEFILE_REPLACE_EXISTING ? 0u : RENAME_NOREPLACE;
    if (renameat2(AT_FDCWD, source.c_str(), AT_FDCWD, target.c_str(), mode) != 0) {
        if (errno == EEXIST) return Fail(ERROR_ALREADY_EXISTS);
        // Some file systems know no exclusive rename: look first, then rename.
        struct stat info;
        if (mode == 0 || errno != EINVAL) return FailOnPath(source);
        if (lstat(target.c_str(), &info) == 0) return Fail(ERROR_ALREADY_EXISTS);
        if (rename(source.c_str(), target.c_str()) != 0) return FailOnPath(source);
    }
    if (flags & MOVEFILE_WRITE_THROUGH) FlushFolderOf(target);
    return TRUE;
}

BOOL CreateDirectoryA(LPCSTR name, LPVOID) {
    std::string path;
    if (!TakeName(name, path)) return FALSE;
    if (mkdir(path.c_str(), 0777) == 0) return TRUE;
    return errno == EEXIST ? Fail(ERROR_ALREADY_EXISTS) : errno == ENOENT ? Fail(ERROR_PATH_NOT_FOUND) : FailErrno();
}

BOOL RemoveDirectoryA(LPCSTR name) {
    std::string path;
    if (!TakeName(name, path)) return FALSE;
    if (rmdir(path.c_str()) == 0) return TRUE;
    return errno == ENOTEMPTY ? Fail(ERROR_DIR_NOT_EMPTY) : errno == ENOTDIR ? Fail(ERROR_DIRECTORY) : FailOnPath(path);
}

DWORD GetFullPathNameA(LPCSTR name, DWORD size, LPSTR out, LPSTR* filePart) {
    std::string path;
    if (!TakeName(name, path)) return 0;
    if (path[0] != '/') {
        char folder[PATH_MAX];
        if (getcwd(folder, sizeof folder) == nullptr) return static_cast<DWORD>(FailErrno());
        path = std::string(folder) + '/' + path;
    }
    std::string whole;
    for (size_t at = 0; at < path.size();) {
        const size_t begin = path.find_first_not_of('/', at);
        if (begin == std::string::npos) break;
        at = std::min(path.find('/', begin), path.size());
        const std::string part = path.substr(begin, at - begin);
        if (part == "..") {
            whole.erase(whole.empty() ? 0 : whole.find_last_of('/'));
        } else if (part != ".") {
            whole += '/' + part;
        }
    }
    if (whole.empty() || path.back() == '/') whole += '/';
    const DWORD length = DeliverText(HousePath(whole), size, out);
    if (filePart != nullptr && out != nullptr && length < size) {
        char* slash = std::strrchr(out, '/');
        *filePart = slash == nullptr || slash[1] == 0 ? nullptr : slash + 1;
    }
    return length;
}

DWORD GetCurrentDirectoryA(DWORD size, LPSTR out) {
    char folder[PATH_MAX];
    if (getcwd(folder, sizeof folder) == nullptr) return static_cast<DWORD>(FailErrno());
    return DeliverText(HousePath(folder), size, out);
}

DWORD GetTempPathA(DWORD size, LPSTR out) {
    const char* set = std::getenv("TMPDIR");
    std::string folder = set != nullptr && *set != 0 ? set : "/tmp";
    if (folder.back() != '/') folder += '/';
    return DeliverText(HousePath(folder), size, out);
}

HANDLE FindFirstFileA(LPCSTR pattern, WIN32_FIND_DATAA* data) {
    std::string path;
    if (!TakeName(pattern, path)) return INVALID_HANDLE_VALUE;
    const size_t slash = path.find_last_of('/');
    auto search = std::make_shared<Search>();
    search->folder = slash == std::string::npos ? "./" : path.substr(0, slash + 1);
    std::string wanted = slash == std::string::npos ? path : path.substr(slash + 1);
    if (wanted == "*.*") wanted = "*";  // as documented: every name, with or without an extension
    std::string escaped;                // of the system's matcher only "*" and "?" are meant
    for (const char c : wanted) {
        if (c == '[' || c == ']' || c == '\\') escaped += '\\';
        escaped += c;
    }
    DIR* folder = opendir(search->folder.c_str());
    if (folder == nullptr) {
        Fail(errno == ENOENT || errno == ENOTDIR ? ERROR_PATH_NOT_FOUND : ErrorFromErrno(errno));
        return INVALID_HANDLE_VALUE;
    }
    while (const dirent* entry = readdir(folder)) {
        if (fnmatch(escaped.c_str(), entry->d_name, 0) == 0 && HousePath(entry->d_name).size() < MAX_PATH)
            search->names.emplace_back(entry->d_name);
    }
    closedir(folder);
    const DWORD error = TakeNext(*search, data);
    if (error != ERROR_SUCCESS) {
        Fail(error == ERROR_NO_MORE_FILES ? ERROR_FILE_NOT_FOUND : error);
        return INVALID_HANDLE_VALUE;
    }
    const HANDLE handle = NewHandle(std::move(search));
    return handle != nullptr ? handle : INVALID_HANDLE_VALUE;
}

BOOL FindNextFileA(HANDLE find, WIN32_FIND_DATAA* data) {
    const Pinned<Search> search(find);
    return Finish(search ? TakeNext(*search, data) : DWORD{ERROR_INVALID_HANDLE});
}

BOOL FindClose(HANDLE find) { return Pinned<Search>(find) ? Finish(RemoveHandle(find)) : Finish(ERROR_INVALID_HANDLE); }
