#include "platform/posix/files/file_security.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "platform/posix/files/fail_internal.h"
#include "platform/posix/files/path_internal.h"

using namespace orvik::detail;

namespace {
struct SecurityParts {
    uid_t owner;
    gid_t group;
    mode_t mode;
};
}  // namespace

BOOL GetFileSecurityA(LPCSTR name, SECURITY_INFORMATION, PSECURITY_DESCRIPTOR descriptor, DWORD size, LPDWORD needed) {
    if (name == nullptr || needed == nullptr) return Fail(ERROR_INVALID_PARAMETER);
    struct stat info;
    if (stat(SystemPath(name).c_str(), &info) != 0) return FailErrno();
    *needed = sizeof(SecurityParts);
    if (descriptor == nullptr || size < sizeof(SecurityParts)) return Fail(ERROR_INSUFFICIENT_BUFFER);
    const SecurityParts found{info.st_uid, info.st_gid, info.st_mode & 07777};
    std::memcpy(descriptor, &found, sizeof found);
    return TRUE;
}

BOOL SetFileSecurityA(LPCSTR name, SECURITY_INFORMATION parts, PSECURITY_DESCRIPTOR descriptor) {
    if (name == nullptr || descriptor == nullptr) return Fail(ERROR_INVALID_PARAMETER);
    const std::string path = SystemPath(name);
    SecurityParts wanted;
    std::memcpy(&wanted, descriptor, sizeof wanted);
    // The owner first: changing it takes the set-user bits off.
    const uid_t owner = parts & OWNER_SECURITY_INFORMATION ? wanted.owner : static_cast<uid_t>(-1);
    const gid_t group = parts & GROUP_SECURITY_INFORMATION ? wanted.group : static_cast<gid_t>(-1);
    if (chown(path.c_str(), owner, group) != 0) return FailErrno();
    if ((parts & DACL_SECURITY_INFORMATION) != 0 && chmod(path.c_str(), wanted.mode) != 0) return FailErrno();
    return TRUE;
}
