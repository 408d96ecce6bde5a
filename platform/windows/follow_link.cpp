#include "platform/new_file_internal.h"

namespace orvik::detail {
bool FollowLink(std::string& path) {
    const DWORD attributes = GetFileAttributesA(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) return true;
    constexpr DWORD kQueryOnly = 0, kAnyShare = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const HANDLE handle =
        CreateFileA(path.c_str(), kQueryOnly, kAnyShare, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return false;
    std::string name(MAX_PATH, '\0');
    DWORD length = 0;
    while ((length = GetFinalPathNameByHandleA(handle, name.data(), static_cast<DWORD>(name.size()), FILE_NAME_NORMALIZED)) >=
           name.size())
        name.resize(length + 1);
    CloseHandle(handle);
    name.resize(length);
    if (length > 0) path = name;
    return length > 0;
}
}  // namespace orvik::detail
