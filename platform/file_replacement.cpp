#include "platform/file_replacement.h"

#include <algorithm>
#include <atomic>
#include <utility>
#include <vector>

namespace orvik::detail {
namespace {

// The existing file's name with every link followed; empty on failure.
std::string FinalName(const std::string& path) {
    constexpr DWORD kQueryOnly = 0;
    const HANDLE handle = CreateFileA(path.c_str(), kQueryOnly, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return "";
    std::string name(MAX_PATH, '\0');
    DWORD length = 0;
    for (;;) {
        length = GetFinalPathNameByHandleA(handle, name.data(), static_cast<DWORD>(name.size()), FILE_NAME_NORMALIZED);
        if (length < name.size()) break;
        name.resize(length + 1);
    }
    const DWORD error = GetLastError();
    CloseHandle(handle);
    SetLastError(error);
    name.resize(length);
    return name;
}

// Best effort: some file systems know no permissions, and nobody may give files to others.
void CopyPermissions(const std::string& from, const std::string& to) {
    DWORD size = 0;
    GetFileSecurityA(from.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    if (size == 0) return;
    std::vector<BYTE> descriptor(size);
    if (GetFileSecurityA(from.c_str(), DACL_SECURITY_INFORMATION, descriptor.data(), size, &size))
        SetFileSecurityA(to.c_str(), DACL_SECURITY_INFORMATION, descriptor.data());
}

// A new file in the target's folder; the error of the folder if there can be none.
HANDLE OpenBeside(const std::string& target, std::string& name) {
    static std::atomic<unsigned> s_count = 0;                                      // several threads may write files at once
    const std::string folder = target.substr(0, target.find_last_of("\\/:") + 1);  // npos + 1 is 0
    for (int attempt = 0;; ++attempt) {
        static const char kDigits[] = "0123456789abcdef";
        const unsigned number = static_cast<unsigned>(GetTickCount()) * 2654435761u + ++s_count;
        name = folder + "~orv";
        for (int shift = 28; shift >= 0; shift -= 4) name += kDigits[number >> shift & 15];
        name += ".tmp";
        const HANDLE handle =
            CreateFileA(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (handle != INVALID_HANDLE_VALUE) return handle;
        const DWORD error = GetLastError();
        if ((error != ERROR_FILE_EXISTS && error != ERROR_ALREADY_EXISTS) || attempt == 100) return handle;
    }
}

DWORD Write(HANDLE file, std::string_view content) {
    while (!content.empty()) {
        constexpr size_t kPart = 1 << 24;
        DWORD written = 0;
        if (!WriteFile(file, content.data(), static_cast<DWORD>(std::min(content.size(), kPart)), &written, nullptr))
            return GetLastError();
        if (written == 0) return ERROR_DISK_FULL;
        content.remove_prefix(written);
    }
    return ERROR_SUCCESS;
}
}  // namespace

FileReplacement::~FileReplacement() {
    if (m_file == INVALID_HANDLE_VALUE) return;
    Close();
    DeleteFileA(m_new.c_str());
}

DWORD FileReplacement::Begin(std::string path) {
    const DWORD attributes = GetFileAttributesA(path.c_str());
    m_replaces = attributes != INVALID_FILE_ATTRIBUTES;
    if (m_replaces) {
        if ((attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE | FILE_ATTRIBUTE_READONLY)) != 0)
            return ERROR_ACCESS_DENIED;
        path = FinalName(path);
        if (path.empty()) return GetLastError();
    }
    m_target = std::move(path);
    m_file = OpenBeside(m_target, m_new);
    if (m_file == INVALID_HANDLE_VALUE) return GetLastError();
    if (m_replaces) CopyPermissions(m_target, m_new);
    return ERROR_SUCCESS;
}

DWORD FileReplacement::Close() {
    return CloseHandle(std::exchange(m_file, INVALID_HANDLE_VALUE)) ? ERROR_SUCCESS : GetLastError();
}

DWORD FileReplacement::Commit() {
    DWORD error = FlushFileBuffers(m_file) ? ERROR_SUCCESS : GetLastError();
    const DWORD unclosed = Close();
    if (error == ERROR_SUCCESS) error = unclosed;
    // Where there was no file there must be none now: a link that leads nowhere, or somebody else's new file, is not ours to
    // replace.
    const DWORD flags = MOVEFILE_WRITE_THROUGH | (m_replaces ? MOVEFILE_REPLACE_EXISTING : 0u);
    if (error == ERROR_SUCCESS && !MoveFileExA(m_new.c_str(), m_target.c_str(), flags)) error = GetLastError();
    if (error != ERROR_SUCCESS) DeleteFileA(m_new.c_str());
    return error;
}

DWORD ReplaceWholeFile(const std::string& path, std::string_view content) {
    FileReplacement replacement;
    DWORD error = replacement.Begin(path);
    if (error == ERROR_SUCCESS) error = Write(replacement.File(), content);
    if (error == ERROR_SUCCESS) error = replacement.Commit();
    return error;
}
}  // namespace orvik::detail
