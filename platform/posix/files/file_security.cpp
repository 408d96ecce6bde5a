#include "platform/posix/files/file_security.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "platform/posix/files/path_internal.h"
#include "platform/posix/kernel/errors_internal.h"

namespace {
struct Descriptor {
    uid_t owner;
    gid_t group;
    mode_t mode;
};

BOOL Fail(DWORD error) {
    SetLastError(error);
    return FALSE;
}
BOOL FailErrno() { return Fail(orvik::detail::ErrorFromErrno(errno)); }
}  // namespace

BOOL GetFileSecurityA(LPCSTR name, SECURITY_INFORMATION, PSECURITY_DESCRIPTOR descriptor, DWORD size, LPDWORD needed) {
    if (name == nullptr || needed == nullptr) return Fail(ERROR_INVALID_PARAMETER);
    struct stat info;
    if (stat(orvik::detail::SystemPath(name).c_str(), &info) != 0) return FailErrno();
    *needed = sizeof(Descriptor);
    if (descriptor == nullptr || size < sizeof(Descriptor)) return Fail(ERROR_INSUFFICIENT_BUFFER);
    const Descriptor found{info.st_uid, info.st_gid, info.st_mode & 07777};
    std::memcpy(descriptor, &found, sizeof found);
    return TRUE;
}

BOOL SetFileSecurityA(LPCSTR name, SECURITY_INFORMATION parts, PSECURITY_DESCRIPTOR descriptor) {
    if (name == nullptr || descriptor == nullptr) return Fail(ERROR_INVALID_PARAMETER);
    const std::string path = orvik::detail::SystemPath(name);
    Descriptor wanted;
    std::memcpy(&wanted, descriptor, sizeof wanted);
    // The owner first: changing it takes the set-user bits off.
    const uid_t owner = parts & OWNER_SECURITY_INFORMATION ? wanted.owner : static_cast<uid_t>(-1);
    const gid_t group = parts & GROUP_SECURITY_INFORMATION ? wanted.group : static_cast<gid_t>(-1);
    if (chown(path.c_str(), owner, group) != 0) return FailErrno();
    if ((parts & DACL_SECURITY_INFORMATION) != 0 && chmod(path.c_str(), wanted.mode) != 0) return FailErrno();
    return TRUE;
}
