#include "platform/posix/files/files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "platform/posix/files/fail_internal.h"
#include "platform/posix/files/path_internal.h"
#include "platform/posix/kernel/handle_table_internal.h"
#include "platform/posix/text/text_internal.h"

using namespace orvik::detail;

namespace {
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

// A search reads its folder as it goes.
struct Search : KernelObject {
    static constexpr Kind kKind = kSearch;
    Search() : KernelObject(kSearch) {}
    ~Search() override {
        if (folder != nullptr) closedir(folder);
    }
    std::mutex lock;
    DIR* folder = nullptr;
    std::string pattern;
    bool basic = false;  // names and what kind of entry, as far as the folder itself tells
};

// "*" any run, "?" any one character; the case of letters is that of the pattern or not. No recursion, and time is bounded by the
// product of the two lengths.
bool MatchesPattern(std::string_view pattern, std::string_view name) {
    const bool plain = !HouseIsUtf8() && IsBeyond1252(name);
    const auto take = [plain](std::string_view rest, char32_t& character) {
        if (HouseIsUtf8()) {
            character = LowerCase(TakeHouse(rest));
        } else {
            const char byte = rest.front();
            character = static_cast<unsigned char>(plain && (byte & 0x80) ? byte : LowerCase1252(byte));
            rest.remove_prefix(1);
        }
        return rest;
    };
    std::string_view star, from;
    bool starred = false;
    while (!name.empty()) {
        char32_t of = 0, wanted = 0;
        const std::string_view after = take(name, of);
        if (!pattern.empty() && pattern.front() == '*') {
            pattern.remove_prefix(1);
            star = pattern, from = name, starred = true;
            continue;
        }
        const std::string_view behind = pattern.empty() ? pattern : take(pattern, wanted);
        if (!pattern.empty() && (pattern.front() == '?' || wanted == of)) {
            pattern = behind, name = after;
        } else if (starred) {
            pattern = star;  // the last run takes one more
            name = from = take(from, of);
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*') == pattern.npos;
}

// The pattern as documented: without a wildcard it is a name, and names are exact here; ".*" at the end is also matched by a name
// without extension.
bool Matches(std::string_view pattern, std::string_view name) {
    if (pattern.find_first_of("*?") == std::string_view::npos) return pattern == name;
    if (MatchesPattern(pattern, name)) return true;
    constexpr std::string_view kAnyExtension = ".*";
    return pattern.size() > 2 && pattern.substr(pattern.size() - 2) == kAnyExtension &&
           name.find('.') == std::string_view::npos && MatchesPattern(pattern.substr(0, pattern.size() - 2), name);
}

DWORD TakeNext(Search& search, WIN32_FIND_DATAA* data) {
    if (data == nullptr) return ERROR_INVALID_PARAMETER;
    const std::lock_guard lock(search.lock);
    while (const dirent* entry = readdir(search.folder)) {
        const std::string name = HousePath(entry->d_name);
        // What could not be named back is passed over.
        if (name.size() >= MAX_PATH || name.find('\\') != std::string::npos || !Matches(search.pattern, name)) continue;
        struct stat info;
        if (search.basic && entry->d_type != DT_UNKNOWN && entry->d_type != DT_LNK) {
            info = {};
            info.st_mode = (entry->d_type == DT_DIR ? S_IFDIR : S_IFREG) | S_IWUSR;
            *data = {};
            data->dwFileAttributes = AttributesOf(info, IsHiddenName(entry->d_name));
            name.copy(data->cFileName, name.size());
            return ERROR_SUCCESS;
        }
        const int folder = dirfd(search.folder);
        // A dangling link is still an entry; one that vanished meanwhile is not.
        if (fstatat(folder, entry->d_name, &info, 0) != 0 && fstatat(folder, entry->d_name, &info, AT_SYMLINK_NOFOLLOW) != 0)
            continue;
        *data = {};
        Describe(info, IsHiddenName(entry->d_name), *data);
        name.copy(data->cFileName, name.size());
        return ERROR_SUCCESS;
    }
    return ERROR_NO_MORE_FILES;
}
}  // namespace

DWORD GetFileAttributesA(LPCSTR name) {
    WIN32_FILE_ATTRIBUTE_DATA data{};
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

DWORD GetTempPathA(DWORD size, LPSTR out) {
    const char* set = std::getenv("TMPDIR");
    std::string folder = set != nullptr && *set != 0 ? set : "/tmp";
    if (folder.back() != '/') folder += '/';
    return DeliverText(HousePath(folder), size, out);
}

HANDLE FindFirstFileA(LPCSTR pattern, WIN32_FIND_DATAA* data) {
    return FindFirstFileExA(pattern, FindExInfoStandard, data, FindExSearchNameMatch, nullptr, 0);
}

HANDLE FindFirstFileExA(LPCSTR pattern, FINDEX_INFO_LEVELS level, LPVOID data, FINDEX_SEARCH_OPS operation, LPVOID filter,
                        DWORD flags) {
    if (level > FindExInfoBasic || operation != FindExSearchNameMatch || filter != nullptr || flags != 0) {
        Fail(ERROR_INVALID_PARAMETER);
        return INVALID_HANDLE_VALUE;
    }
    std::string path;
    if (!TakeName(pattern, path)) return INVALID_HANDLE_VALUE;
    const size_t slash = path.find_last_of('/');
    const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    auto search = std::make_shared<Search>();
    search->pattern = HousePath(slash == std::string::npos ? path : path.substr(slash + 1));
    if (search->pattern == "*.*") search->pattern = "*";
    search->folder = opendir(folder.c_str());
    if (search->folder == nullptr) {
        Fail(errno == ENOENT || errno == ENOTDIR ? ERROR_PATH_NOT_FOUND : ErrorFromErrno(errno));
        return INVALID_HANDLE_VALUE;
    }
    search->basic = level == FindExInfoBasic;
    const DWORD error = TakeNext(*search, static_cast<WIN32_FIND_DATAA*>(data));
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
