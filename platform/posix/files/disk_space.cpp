#include <sys/statvfs.h>

#include <cerrno>
#include <string>

#include "platform/posix/files/fail_internal.h"
#include "platform/posix/files/files.h"
#include "platform/posix/files/path_internal.h"
#include "platform/posix/text/text_internal.h"

using namespace orvik::detail;

namespace {
// A drive's root, or the system's.
bool IsRoot(const std::string& name) {
    const std::string rest = HasDrive(name) ? name.substr(2) : name;
    return rest == "/" || rest == "\\";
}

bool Measure(LPCSTR folder, struct statvfs& space) {
    const std::string path = folder == nullptr ? "." : SystemPath(folder);
    if (statvfs(path.c_str(), &space) == 0) return true;
    Fail(errno == ENOENT ? ERROR_PATH_NOT_FOUND : ErrorFromErrno(errno));
    return false;
}
}  // namespace

BOOL GetDiskFreeSpaceA(LPCSTR root, LPDWORD sectorsPerCluster, LPDWORD bytesPerSector, LPDWORD freeClusters, LPDWORD clusters) {
    if (root != nullptr && !IsRoot(root)) return Fail(ERROR_DIR_NOT_ROOT);
    struct statvfs space;
    if (!Measure(root, space)) return FALSE;
    constexpr ULONGLONG kSector = 512;
    const ULONGLONG block = space.f_frsize != 0 ? space.f_frsize : space.f_bsize;
    const ULONGLONG sector = block % kSector == 0 ? kSector : block;
    ULONGLONG sectors = block / sector, free = space.f_bavail, all = space.f_blocks;
    while (all > MAXDWORD || free > MAXDWORD) sectors *= 2, free /= 2, all /= 2;
    if (sectorsPerCluster != nullptr) *sectorsPerCluster = static_cast<DWORD>(sectors);
    if (bytesPerSector != nullptr) *bytesPerSector = static_cast<DWORD>(sector);
    if (freeClusters != nullptr) *freeClusters = static_cast<DWORD>(free);
    if (clusters != nullptr) *clusters = static_cast<DWORD>(all);
    return TRUE;
}

BOOL GetDiskFreeSpaceExA(LPCSTR folder, ULARGE_INTEGER* freeForCaller, ULARGE_INTEGER* all, ULARGE_INTEGER* free) {
    struct statvfs space;
    if (!Measure(folder, space)) return FALSE;
    const ULONGLONG block = space.f_frsize != 0 ? space.f_frsize : space.f_bsize;
    if (freeForCaller != nullptr) freeForCaller->QuadPart = block * space.f_bavail;
    if (all != nullptr) all->QuadPart = block * space.f_blocks;
    if (free != nullptr) free->QuadPart = block * space.f_bfree;
    return TRUE;
}
