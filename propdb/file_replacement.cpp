#include "propdb/file_replacement.h"

#include "afx/exception.h"
#include "platform/win32.h"

#include <atomic>
#include <string>
#include <vector>

namespace orvik::detail {
namespace {
[[noreturn]] void ThrowLastError(const CString& name) { CFileException::ThrowOsError(static_cast<LONG>(GetLastError()), name); }

// The existing file's name with every link followed.
CString FinalName(const CString& path) {
    constexpr DWORD kQueryOnly = 0;
    const DWORD share = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const HANDLE handle = CreateFileA(path, kQueryOnly, share, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) ThrowLastError(path);
    std::string name(MAX_PATH, '\0');
    DWORD length = 0;
    for (;;) {
        length = GetFinalPathNameByHandleA(handle, name.data(), static_cast<DWORD>(name.size()), FILE_NAME_NORMALIZED);
        if (length < name.size()) break;
        name.resize(length + 1);
    }
    const DWORD error = GetLastError();
    CloseHandle(handle);
    if (length == 0) CFileException::ThrowOsError(static_cast<LONG>(error), path);
    return CString(std::string_view(name).substr(0, length));
}

// Best effort: some file systems know no permissions, and nobody may give files to others.
void CopyPermissions(const CString& from, const CString& to) {
    DWORD size = 0;
    GetFileSecurityA(from, DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    if (size == 0) return;
    std::vector<BYTE> descriptor(size);
    if (!GetFileSecurityA(from, DACL_SECURITY_INFORMATION, descriptor.data(), size, &size)) return;
    SetFileSecurityA(to, DACL_SECURITY_INFORMATION, descriptor.data());
}
}  // namespace

FileReplacement::FileReplacement(const char* path) : m_target(path) {
    const DWORD attributes = GetFileAttributesA(m_target);
    if (attributes != INVALID_FILE_ATTRIBUTES) {
        if (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE | FILE_ATTRIBUTE_READONLY))
            AfxThrowFileException(CFileException::accessDenied, ERROR_ACCESS_DENIED, m_target);
        m_replaces = true;
        m_target = FinalName(m_target);
    }
    OpenBeside();
}

void FileReplacement::OpenBeside() {
    static std::atomic<unsigned> s_count = 0;  // databases of several threads may be stored at once
    const std::string_view target = m_target.GetView();
    const std::string_view folder = target.substr(0, target.find_last_of("\\/:") + 1);  // npos + 1 is 0
    for (int attempt = 0;; ++attempt) {
        CString name;
        name.Format("~odb%08x.tmp", static_cast<unsigned>(GetTickCount()) * 2654435761u + ++s_count);
        m_new = CString(folder) + name;
        const HANDLE handle =
            CreateFileA(m_new, GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (handle != INVALID_HANDLE_VALUE) {
            m_file.m_hFile = handle;
            return;
        }
        const DWORD error = GetLastError();
        if ((error != ERROR_FILE_EXISTS && error != ERROR_ALREADY_EXISTS) || attempt == 100) {
            CFileException::ThrowOsError(static_cast<LONG>(error), m_target);
        }
    }
}

FileReplacement::~FileReplacement() {
    m_file.Abort();
    if (!m_committed) DeleteFileA(m_new);
}

void FileReplacement::Commit() {
    if (m_replaces) CopyPermissions(m_target, m_new);
    m_file.Flush();
    m_file.Close();
    // Where there was no file there must be none now: a link that leads nowhere, or somebody else's new file, is not ours to
    // replace.
    const DWORD flags = MOVEFILE_WRITE_THROUGH | (m_replaces ? MOVEFILE_REPLACE_EXISTING : 0u);
    if (!MoveFileExA(m_new, m_target, flags)) ThrowLastError(m_target);
    m_committed = true;
}
}  // namespace orvik::detail
