#include "platform/file_replacement.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "platform/new_file_internal.h"

namespace orvik::detail {
namespace {
constexpr DWORD kPart = 1 << 20;

// Best effort: some file systems know no permissions, and only administrators may give files to others.
void CopySecurity(const std::string& from, const std::string& to, bool owner) {
    constexpr SECURITY_INFORMATION kOwner = OWNER_SECURITY_INFORMATION, kGroup = GROUP_SECURITY_INFORMATION, kRights = DACL_SECURITY_INFORMATION;
    DWORD size = 0;
    GetFileSecurityA(from.c_str(), kOwner | kGroup | kRights, nullptr, 0, &size);
    if (size == 0) return;
    std::vector<BYTE> descriptor(size);
    if (!GetFileSecurityA(from.c_str(), kOwner | kGroup | kRights, descriptor.data(), size, &size)) return;
    for (const SECURITY_INFORMATION part : {kOwner, kGroup, kRights}) {
        if (owner || part == kRights) SetFileSecurityA(to.c_str(), part, descriptor.data());
    }
}

DWORD Write(HANDLE file, std::string_view content) {
    while (!content.empty()) {
        DWORD written = 0;
        if (!WriteFile(file, content.data(), static_cast<DWORD>(std::min<size_t>(content.size(), kPart)), &written, nullptr))
            return GetLastError();
        if (written == 0) return ERROR_DISK_FULL;
        content.remove_prefix(written);
    }
    return ERROR_SUCCESS;
}

DWORD GoTo(HANDLE file, LONGLONG at) {
    LARGE_INTEGER place;
    place.QuadPart = at;
    return SetFilePointerEx(file, place, nullptr, FILE_BEGIN) ? DWORD{ERROR_SUCCESS} : GetLastError();
}

// `from` on, up to `end`.
DWORD CopyRange(HANDLE source, HANDLE target, LONGLONG from, LONGLONG end) {
    DWORD error = GoTo(source, from);
    if (error == ERROR_SUCCESS) error = GoTo(target, from);
    std::vector<char> part(kPart);
    while (error == ERROR_SUCCESS && from < end) {
        DWORD got = 0;
        if (!ReadFile(source, part.data(), static_cast<DWORD>(std::min<LONGLONG>(kPart, end - from)), &got, nullptr)) return GetLastError();
        if (got == 0) return ERROR_HANDLE_EOF;
        error = Write(target, {part.data(), got});
        from += got;
    }
    return error;
}

DWORD CutAt(HANDLE file, LONGLONG size) {
    const DWORD error = GoTo(file, size);
    if (error != ERROR_SUCCESS) return error;
    return SetEndOfFile(file) ? DWORD{ERROR_SUCCESS} : GetLastError();
}

// What is longer comes first: a full disk is met before anything of the old file is gone.
DWORD WriteOver(HANDLE source, const std::string& path) {
    // Where sharing is heeded, nobody may have it open.
    const HANDLE target = CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (target == INVALID_HANDLE_VALUE) return GetLastError();
    LARGE_INTEGER before = {}, after = {};
    DWORD error = GetFileSizeEx(target, &before) && GetFileSizeEx(source, &after) ? DWORD{ERROR_SUCCESS} : GetLastError();
    if (error == ERROR_SUCCESS) {
        error = CopyRange(source, target, std::min(before.QuadPart, after.QuadPart), after.QuadPart);
        if (error == ERROR_SUCCESS && !FlushFileBuffers(target)) error = GetLastError();
        if (error != ERROR_SUCCESS) {
            CutAt(target, before.QuadPart);
        } else {
            error = CopyRange(source, target, 0, std::min(before.QuadPart, after.QuadPart));
            if (error == ERROR_SUCCESS) error = CutAt(target, after.QuadPart);
            if (error == ERROR_SUCCESS && !FlushFileBuffers(target)) error = GetLastError();
        }
    }
    if (!CloseHandle(target) && error == ERROR_SUCCESS) error = GetLastError();
    return error;
}

bool IsRefusal(DWORD error) { return error == ERROR_ACCESS_DENIED || error == ERROR_WRITE_PROTECT || error == ERROR_NOT_SAME_DEVICE; }

bool IsWritable(const std::string& path) {
    const HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
    return file != INVALID_HANDLE_VALUE;
}

// A plain file stands there that may be replaced.
bool IsPlainFile(const std::string& path) {
    constexpr DWORD kOther = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE | FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_REPARSE_POINT;
    const DWORD attributes = GetFileAttributesA(path.c_str());
    std::string real = path;
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & kOther) == 0 && FollowLink(real) && real == path;
}
}  // namespace

FileReplacement::FileReplacement() = default;
FileReplacement::~FileReplacement() = default;

HANDLE FileReplacement::File() const { return m_new != nullptr ? m_new->File() : INVALID_HANDLE_VALUE; }

DWORD FileReplacement::Begin(std::string path) {
    const DWORD attributes = GetFileAttributesA(path.c_str());
    m_replaces = attributes != INVALID_FILE_ATTRIBUTES;
    if (m_replaces) {
        if ((attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE | FILE_ATTRIBUTE_READONLY)) != 0)
            return ERROR_ACCESS_DENIED;
        m_over = !FollowLink(path);
    }
    m_target = std::move(path);
    DWORD error = ERROR_ACCESS_DENIED;
    if (!m_over) m_new = NewFile::Make(m_target.substr(0, m_target.find_last_of("\\/:") + 1), m_target, error);  // npos + 1 is 0
    if (m_new == nullptr && IsRefusal(error) && m_replaces && IsWritable(m_target)) {
        char folder[MAX_PATH + 1] = "";
        GetTempPathA(sizeof folder, folder);
        m_over = true;
        m_new = NewFile::Make(folder, m_target, error);
    }
    if (m_new == nullptr) return error;
    // Before anything is written: what only its owner may read nobody else may read meanwhile.
    if (m_replaces) CopySecurity(m_target, m_new->Name(), !m_over);
    return ERROR_SUCCESS;
}

DWORD FileReplacement::Commit() {
    const std::unique_ptr<NewFile> made = std::move(m_new);
    if (m_over) return WriteOver(made->File(), m_target);
    if (!FlushFileBuffers(made->File())) return GetLastError();
    // Where there was no file there must be none now: a link that leads nowhere is not ours to replace. A file of somebody who was
    // faster is, as if he had begun earlier.
    const DWORD flags = MOVEFILE_WRITE_THROUGH | (m_replaces ? MOVEFILE_REPLACE_EXISTING : 0u);
    DWORD error = made->MoveTo(m_target, flags);
    if (!m_replaces && (error == ERROR_ALREADY_EXISTS || error == ERROR_FILE_EXISTS) && IsPlainFile(m_target))
        error = made->MoveTo(m_target, flags | MOVEFILE_REPLACE_EXISTING);
    return m_replaces && IsRefusal(error) ? WriteOver(made->File(), m_target) : error;
}

DWORD ReplaceWholeFile(const std::string& path, std::string_view content) {
    FileReplacement replacement;
    DWORD error = replacement.Begin(path);
    if (error == ERROR_SUCCESS) error = Write(replacement.File(), content);
    if (error == ERROR_SUCCESS) error = replacement.Commit();
    return error;
}
}  // namespace orvik::detail
