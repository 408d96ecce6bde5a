// A file of either home, told by its first bytes.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "platform/posix/files/path_internal.h"
#include "platform/posix/kernel/errors_internal.h"
#include "platform/posix/resources/version_internal.h"

namespace orvik::detail {

VersionSource::VersionSource(const std::string& path) : m_fd(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY)) {}
VersionSource::~VersionSource() {
    if (m_fd >= 0) close(m_fd);
}

DWORD VersionSource::Check() const {
    struct stat info;
    if (m_fd < 0 || fstat(m_fd, &info) != 0) return ErrorFromErrno(errno);
    return S_ISREG(info.st_mode) ? ERROR_SUCCESS : S_ISDIR(info.st_mode) ? ERROR_ACCESS_DENIED : ERROR_BAD_FORMAT;
}

bool VersionSource::Read(ULONGLONG at, unsigned char* out, size_t size) const {
    while (size > 0) {
        const ssize_t got = pread(m_fd, out, size, static_cast<off_t>(at));
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) return false;
        out += got, size -= static_cast<size_t>(got), at += static_cast<ULONGLONG>(got);
    }
    return true;
}

DWORD ReadVersionResource(LPCSTR name, std::vector<unsigned char>& bytes) {
    const VersionSource file(SystemPath(name));
    if (const DWORD error = file.Check()) return error;
    unsigned char magic[4];
    const bool elf = file.Read(0, magic, sizeof magic) && std::memcmp(magic,
                                                                      "\x7F"
                                                                      "ELF",
                                                                      sizeof magic) == 0;
    return elf ? ReadElfVersion(file, bytes) : ReadPeVersion(file, bytes);
}

}  // namespace orvik::detail
