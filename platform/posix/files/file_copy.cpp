// CopyFileA: written beside the target, given its name when complete.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "platform/posix/files/files.h"
#include "platform/posix/files/path_internal.h"
#include "platform/posix/kernel/errors_internal.h"

namespace {
using orvik::detail::ErrorFromErrno;

class Descriptor {
public:
    explicit Descriptor(int fd) : m_fd(fd) {}
    ~Descriptor() {
        if (m_fd >= 0) close(m_fd);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    explicit operator bool() const { return m_fd >= 0; }
    int Get() const { return m_fd; }
    // Whether all that was written has reached the file: some file systems find out late that the disk is full.
    bool Close() { return close(std::exchange(m_fd, -1)) == 0; }

private:
    int m_fd;
};

std::string FolderOf(const std::string& path) {
    const size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

// ENOENT is 2 for a missing file and 3 for a missing folder on the way to it.
DWORD ErrorOnPath(const std::string& path) {
    struct stat folder;
    const int error = errno;
    if (error == ENOENT && stat(FolderOf(path).c_str(), &folder) != 0) return ERROR_PATH_NOT_FOUND;
    return ErrorFromErrno(error);
}

DWORD CopyBytes(int from, int to) {
    std::vector<char> block(1 << 17);
    for (;;) {
        const ssize_t got = read(from, block.data(), block.size());
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return ErrorFromErrno(errno);
        if (got == 0) return ERROR_SUCCESS;
        for (ssize_t done = 0; done < got;) {
            const ssize_t count = write(to, block.data() + done, static_cast<size_t>(got - done));
            if (count < 0 && errno == EINTR) continue;
            if (count < 0) return ErrorFromErrno(errno);
            done += count;
        }
    }
}

// Gives the finished copy its name, unless somebody else took it meanwhile.
DWORD TakeTargetName(const std::string& copy, const std::string& target) {
    if (renameat2(AT_FDCWD, copy.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0) return ERROR_SUCCESS;
    if (errno == EINVAL) {  // a file system without exclusive renames
        struct stat info;
        if (lstat(target.c_str(), &info) == 0) return ERROR_FILE_EXISTS;
        if (rename(copy.c_str(), target.c_str()) == 0) return ERROR_SUCCESS;
    }
    return ErrorFromErrno(errno);
}

DWORD Copy(const std::string& source, const std::string& target) {
    // A pipe under this name must not make the opening wait.
    const Descriptor from(open(source.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!from) return ErrorOnPath(source);
    struct stat info;
    if (fstat(from.Get(), &info) != 0) return ErrorFromErrno(errno);
    if (S_ISDIR(info.st_mode)) return ERROR_ACCESS_DENIED;
    if (!S_ISREG(info.st_mode)) return ERROR_NOT_SUPPORTED;
    struct stat there;
    if (lstat(target.c_str(), &there) == 0) return ERROR_FILE_EXISTS;
    if (errno != ENOENT) return ErrorFromErrno(errno);
    if (target.back() == '/') return ERROR_PATH_NOT_FOUND;

    static std::atomic<unsigned> s_count{0};
    const std::string copy = FolderOf(target) + (target.find('/') == std::string::npos ? "/" : "") + ".orvik-copy-" +
                             std::to_string(getpid()) + '-' + std::to_string(++s_count);
    Descriptor to(open(copy.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, info.st_mode & 0777));
    if (!to) return ErrorOnPath(copy);
    DWORD error = CopyBytes(from.Get(), to.Get());
    const timespec times[2] = {info.st_atim, info.st_mtim};
    futimens(to.Get(), times);  // where a file system keeps no times there is nothing to tell
    if (!to.Close() && error == ERROR_SUCCESS) error = ErrorFromErrno(errno);
    if (error == ERROR_SUCCESS) error = TakeTargetName(copy, target);
    if (error != ERROR_SUCCESS) unlink(copy.c_str());
    return error;
}
}  // namespace

BOOL CopyFileA(LPCSTR source, LPCSTR target, BOOL failIfExists) {
    DWORD error = ERROR_SUCCESS;
    if (source == nullptr || target == nullptr) {
        error = ERROR_INVALID_PARAMETER;
    } else if (*source == 0 || *target == 0) {
        error = ERROR_PATH_NOT_FOUND;
    } else if (!failIfExists) {
        error = ERROR_NOT_SUPPORTED;
    } else {
        error = Copy(orvik::detail::SystemPath(source), orvik::detail::SystemPath(target));
    }
    SetLastError(error);
    return error == ERROR_SUCCESS;
}
