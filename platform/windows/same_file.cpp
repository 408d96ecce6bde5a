#include "platform/same_file_internal.h"
#include "platform/win32.h"

namespace orvik::detail {
std::optional<FileIdentity> IdentityOf(const std::string& path) {
    constexpr DWORD kQueryOnly = 0, kAnyShare = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const HANDLE file =
        CreateFileA(path.c_str(), kQueryOnly, kAnyShare, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (file == INVALID_HANDLE_VALUE) return std::nullopt;
    BY_HANDLE_FILE_INFORMATION info = {};
    const BOOL told = GetFileInformationByHandle(file, &info);
    CloseHandle(file);
    if (!told) return std::nullopt;
    return FileIdentity{info.dwVolumeSerialNumber, uint64_t{info.nFileIndexHigh} << 32 | info.nFileIndexLow};
}

bool IsSameName(const std::string& one, const std::string& other) {
    return CompareStringA(LOCALE_INVARIANT, NORM_IGNORECASE, one.c_str(), -1, other.c_str(), -1) == CSTR_EQUAL;
}
}  // namespace orvik::detail
