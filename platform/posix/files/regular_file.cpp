// Regular files behind CreateFileA. Share modes are not enforced between programs here, as nothing on this system would obey
// them.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <mutex>
#include <string>

#include "platform/posix/files/files.h"
#include "platform/posix/files/path_internal.h"
#include "platform/posix/kernel/io_internal.h"

namespace orvik::detail {
namespace {

class RegularFile final : public IoObject {
public:
    static constexpr Kind kKind = kFile;
    explicit RegularFile(int fd) : m_fd(fd) {}
    // A lock ends here and not with the last descriptor: a child that another thread has just forked has them all until it
    // becomes a program of its own.
    ~RegularFile() override {
        struct flock all = {};
        all.l_type = F_UNLCK;
        all.l_whence = SEEK_SET;
        if (m_locked) fcntl(m_fd, F_OFD_SETLK, &all);
        close(m_fd);
    }

    // At the end of the file a read succeeds with 0 bytes. An OVERLAPPED gives the position, as documented for files; nothing
    // pends.
    DWORD Read(void* buffer, DWORD length, DWORD& moved, OVERLAPPED* overlapped) override {
        return Move(
            overlapped, moved,
            [&](off_t at, DWORD done) {
                char* to = static_cast<char*>(buffer) + done;
                return overlapped ? pread(m_fd, to, length - done, at + done) : read(m_fd, to, length - done);
            },
            length, /*stopAtZero=*/true);
    }
    DWORD Write(const void* buffer, DWORD length, DWORD& moved, OVERLAPPED* overlapped) override {
        return Move(
            overlapped, moved,
            [&](off_t at, DWORD done) {
                const char* from = static_cast<const char*>(buffer) + done;
                return overlapped ? pwrite(m_fd, from, length - done, at + done) : write(m_fd, from, length - done);
            },
            length, /*stopAtZero=*/false);
    }

    DWORD Seek(LONGLONG distance, DWORD method, LONGLONG& position) {
        const off_t at = lseek(m_fd, distance, method == FILE_BEGIN ? SEEK_SET : method == FILE_CURRENT ? SEEK_CUR : SEEK_END);
        if (at < 0) return errno == EINVAL ? ERROR_NEGATIVE_SEEK : ErrorFromErrno(errno);
        position = at;
        return ERROR_SUCCESS;
    }
    DWORD Size(LONGLONG& size) {
        struct stat info;
        if (fstat(m_fd, &info) != 0) return ErrorFromErrno(errno);
        size = info.st_size;
        return ERROR_SUCCESS;
    }
    DWORD Identify(BY_HANDLE_FILE_INFORMATION& out) {
        struct stat info;
        if (fstat(m_fd, &info) != 0) return ErrorFromErrno(errno);
        out = {};
        out.nFileSizeHigh = static_cast<DWORD>(static_cast<ULONGLONG>(info.st_size) >> 32);
        out.nFileSizeLow = static_cast<DWORD>(info.st_size);
        out.dwVolumeSerialNumber = static_cast<DWORD>(info.st_dev ^ info.st_dev >> 32);
        out.nNumberOfLinks = static_cast<DWORD>(info.st_nlink);
        out.nFileIndexHigh = static_cast<DWORD>(static_cast<ULONGLONG>(info.st_ino) >> 32);
        out.nFileIndexLow = static_cast<DWORD>(info.st_ino);
        return ERROR_SUCCESS;
    }
    DWORD CutHere() {
        const off_t at = lseek(m_fd, 0, SEEK_CUR);
        if (at >= 0 && ftruncate(m_fd, at) == 0) return ERROR_SUCCESS;
        // EINVAL from a regular file at a position that is there: it was opened for reading only.
        return errno == EBADF || errno == EINVAL ? ERROR_ACCESS_DENIED : ErrorFromErrno(errno);
    }
    DWORD Flush() { return fsync(m_fd) == 0 || errno == EINVAL || errno == EROFS ? ERROR_SUCCESS : ErrorFromErrno(errno); }
    // Of this open file, not of the process: a second opening within the same program is refused as well.
    DWORD Lock(ULONGLONG at, ULONGLONG size, bool exclusive) {
        struct flock range = {};
        range.l_type = exclusive ? F_WRLCK : F_RDLCK;
        range.l_whence = SEEK_SET;
        range.l_start = static_cast<off_t>(at);
        range.l_len = static_cast<off_t>(size);
        if (fcntl(m_fd, F_OFD_SETLK, &range) == 0) {
            m_locked = true;
            return ERROR_SUCCESS;
        }
        return errno == EAGAIN || errno == EACCES ? DWORD{ERROR_LOCK_VIOLATION} : ErrorFromErrno(errno);
    }
    std::string FinalName() {
        char name[PATH_MAX];
        const ssize_t length = readlink(("/proc/self/fd/" + std::to_string(m_fd)).c_str(), name, sizeof name);
        return length > 0 ? std::string(name, static_cast<size_t>(length)) : std::string();
    }

private:
    template <class Step>
    DWORD Move(OVERLAPPED* overlapped, DWORD& moved, Step step, DWORD length, bool stopAtZero) {
        moved = 0;
        const off_t at =
            overlapped ? static_cast<off_t>(static_cast<ULONGLONG>(overlapped->OffsetHigh) << 32 | overlapped->Offset) : 0;
        while (moved < length) {
            const ssize_t count = step(at, moved);
            if (count < 0 && errno == EINTR) continue;
            // The descriptor is good as long as this object lives: it was opened for the other direction only.
            if (count < 0) return errno == EBADF ? ERROR_ACCESS_DENIED : ErrorFromErrno(errno);
            if (count == 0 && stopAtZero) break;
            moved += static_cast<DWORD>(count);
        }
        if (overlapped != nullptr) {
            overlapped->Internal = ERROR_SUCCESS;
            overlapped->InternalHigh = moved;
        }
        return ERROR_SUCCESS;
    }

    const int m_fd;
    std::atomic<bool> m_locked = false;
};

}  // namespace

std::shared_ptr<IoObject> OpenRegularFile(const char* path, DWORD access, DWORD, DWORD disposition, DWORD flags, DWORD& error) {
    const bool reads = access & GENERIC_READ, writes = access & GENERIC_WRITE;
    int mode = O_CLOEXEC | (reads && writes ? O_RDWR : writes ? O_WRONLY : O_RDONLY);
    if (flags & FILE_FLAG_WRITE_THROUGH) mode |= O_SYNC;
    switch (disposition) {
        case CREATE_NEW:
            mode |= O_CREAT | O_EXCL;
            break;
        case CREATE_ALWAYS:
            mode |= O_CREAT | O_TRUNC;
            break;
        case OPEN_EXISTING:
            break;
        case OPEN_ALWAYS:
            mode |= O_CREAT;
            break;
        case TRUNCATE_EXISTING:
            mode |= O_TRUNC;
            break;
        default:
            error = ERROR_INVALID_PARAMETER;
            return nullptr;
    }
    if (*path == 0) {
        error = ERROR_PATH_NOT_FOUND;
        return nullptr;
    }
    const std::string name = SystemPath(path);
    // A pipe or terminal under this name must not make the opening wait.
    const int fd = open(name.c_str(), mode | O_NONBLOCK | O_NOCTTY, 0666);
    struct stat info;
    if (fd < 0) {
        error = ErrorFromErrno(errno);
        const size_t slash = name.find_last_of('/');
        if (error == ERROR_FILE_NOT_FOUND && slash != std::string::npos && slash > 0 &&
            stat(name.substr(0, slash).c_str(), &info) != 0)
            error = ERROR_PATH_NOT_FOUND;
        return nullptr;
    }
    if (fstat(fd, &info) != 0 || S_ISDIR(info.st_mode)) {
        close(fd);
        error = ERROR_ACCESS_DENIED;  // a folder is no file to read
        return nullptr;
    }
    fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) & ~O_NONBLOCK);
    error = ERROR_SUCCESS;
    return std::make_shared<RegularFile>(fd);
}

}  // namespace orvik::detail

using namespace orvik::detail;

BOOL SetFilePointerEx(HANDLE file, LARGE_INTEGER distance, LARGE_INTEGER* position, DWORD method) {
    const Pinned<RegularFile> pinned(file);
    if (!pinned) return Finish(ERROR_INVALID_HANDLE);
    if (method > FILE_END) return Finish(ERROR_INVALID_PARAMETER);
    LONGLONG at = 0;
    const DWORD error = pinned->Seek(distance.QuadPart, method, at);
    if (error == ERROR_SUCCESS && position != nullptr) position->QuadPart = at;
    return Finish(error);
}

BOOL GetFileSizeEx(HANDLE file, LARGE_INTEGER* size) {
    const Pinned<RegularFile> pinned(file);
    if (!pinned) return Finish(ERROR_INVALID_HANDLE);
    if (size == nullptr) return Finish(ERROR_INVALID_PARAMETER);
    return Finish(pinned->Size(size->QuadPart));
}

BOOL GetFileInformationByHandle(HANDLE file, BY_HANDLE_FILE_INFORMATION* info) {
    const Pinned<RegularFile> pinned(file);
    if (!pinned) return Finish(ERROR_INVALID_HANDLE);
    if (info == nullptr) return Finish(ERROR_INVALID_PARAMETER);
    return Finish(pinned->Identify(*info));
}

BOOL SetEndOfFile(HANDLE file) {
    const Pinned<RegularFile> pinned(file);
    return Finish(pinned ? pinned->CutHere() : DWORD{ERROR_INVALID_HANDLE});
}

BOOL FlushFileBuffers(HANDLE file) {
    const Pinned<RegularFile> pinned(file);
    return Finish(pinned ? pinned->Flush() : DWORD{ERROR_INVALID_HANDLE});
}

BOOL LockFileEx(HANDLE file, DWORD flags, DWORD, DWORD sizeLow, DWORD sizeHigh, OVERLAPPED* place) {
    const Pinned<RegularFile> pinned(file);
    if (!pinned) return Finish(ERROR_INVALID_HANDLE);
    if ((flags & ~static_cast<DWORD>(LOCKFILE_EXCLUSIVE_LOCK)) != LOCKFILE_FAIL_IMMEDIATELY) return Finish(ERROR_NOT_SUPPORTED);
    const auto join = [](DWORD low, DWORD high) { return static_cast<ULONGLONG>(high) << 32 | low; };
    return Finish(
        pinned->Lock(join(place->Offset, place->OffsetHigh), join(sizeLow, sizeHigh), (flags & LOCKFILE_EXCLUSIVE_LOCK) != 0));
}

DWORD GetFinalPathNameByHandleA(HANDLE file, LPSTR out, DWORD size, DWORD flags) {
    const Pinned<RegularFile> pinned(file);
    if (!pinned || flags != (FILE_NAME_NORMALIZED | VOLUME_NAME_DOS)) {
        SetLastError(pinned ? ERROR_INVALID_PARAMETER : ERROR_INVALID_HANDLE);
        return 0;
    }
    const std::string name = HousePath(pinned->FinalName());
    const DWORD length = static_cast<DWORD>(name.size());
    if (name.empty()) {
        SetLastError(ERROR_PATH_NOT_FOUND);
        return 0;
    }
    if (out == nullptr || size <= length) return length + 1;
    name.copy(out, length);
    out[length] = 0;
    return length;
}
