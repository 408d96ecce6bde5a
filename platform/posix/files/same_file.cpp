#include <sys/stat.h>

#include "platform/posix/files/path_internal.h"
#include "platform/same_file_internal.h"
#include "platform/win32.h"

namespace orvik::detail {
std::optional<FileIdentity> IdentityOf(const std::string& path) {
    struct stat info;
    if (stat(SystemPath(path).c_str(), &info) != 0) return std::nullopt;
    return FileIdentity{static_cast<uint64_t>(info.st_dev), static_cast<uint64_t>(info.st_ino)};
}

bool IsSameName(const std::string& one, const std::string& other) { return one == other; }
}  // namespace orvik::detail
