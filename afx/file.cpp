#include "afx/file.h"

#include <algorithm>
#include <string>
#include <utility>

IMPLEMENT_DYNAMIC(CFile, CObject)

const HANDLE CFile::hFileNull = INVALID_HANDLE_VALUE;

namespace {
DWORD AccessOf(UINT flags) {
    switch (flags & 3) {
        case CFile::modeRead:
            return GENERIC_READ;
        case CFile::modeWrite:
            return GENERIC_WRITE;
        case CFile::modeReadWrite:
            return GENERIC_READ | GENERIC_WRITE;
        default:
            AfxThrowInvalidArgException();
    }
}

DWORD ShareOf(UINT flags) {
    switch (flags & 0x70) {
        case CFile::shareCompat:
        case CFile::shareExclusive:
            return 0;
        case CFile::shareDenyWrite:
            return FILE_SHARE_READ;
        case CFile::shareDenyRead:
            return FILE_SHARE_WRITE;
        case CFile::shareDenyNone:
            return FILE_SHARE_READ | FILE_SHARE_WRITE;
        default:
            AfxThrowInvalidArgException();
    }
}

DWORD DispositionOf(UINT flags) {
    if ((flags & CFile::modeCreate) == 0) return OPEN_EXISTING;
    return (flags & CFile::modeNoTruncate) != 0 ? OPEN_ALWAYS : CREATE_ALWAYS;
}

CString FullPath(LPCSTR name) {
    char buffer[MAX_PATH];
    DWORD length = GetFullPathNameA(name, MAX_PATH, buffer, nullptr);
    if (length < MAX_PATH) return length == 0 ? CString(name) : CString(buffer);
    std::string large(length, 0);
    length = GetFullPathNameA(name, length, large.data(), nullptr);
    return length < large.size() ? CString(large.c_str()) : CString(name);
}

[[noreturn]] void ThrowLastError(LPCSTR name) { CFileException::ThrowOsError(static_cast<LONG>(GetLastError()), name); }
}  // namespace

CFile::CFile() : m_hFile(hFileNull) {}
CFile::CFile(HANDLE hFile) : m_hFile(hFile) {}

CFile::CFile(LPCSTR lpszFileName, UINT nOpenFlags) : CFile() {
    CFileException failure;
    if (!CFile::Open(lpszFileName, nOpenFlags, &failure))
        throw new CFileException(failure.m_cause, failure.m_lOsError, failure.m_strFileName);
}

CFile::~CFile() {
    if (m_hFile != hFileNull && m_bCloseOnDelete) CFile::Abort();
}

BOOL CFile::Open(LPCSTR lpszFileName, UINT nOpenFlags, CFileException* pError) {
    if (lpszFileName == nullptr) AfxThrowInvalidArgException();
    const DWORD access = AccessOf(nOpenFlags);
    const DWORD share = ShareOf(nOpenFlags);
    CFile::Abort();
    m_strFileName.Empty();
    SECURITY_ATTRIBUTES security = {};
    security.nLength = sizeof security;
    security.bInheritHandle = (nOpenFlags & modeNoInherit) == 0;
    DWORD attributes = FILE_ATTRIBUTE_NORMAL;
    if ((nOpenFlags & osWriteThrough) != 0) attributes |= FILE_FLAG_WRITE_THROUGH;
    const CString path = FullPath(lpszFileName);
    const HANDLE file = CreateFileA(path, access, share, &security, DispositionOf(nOpenFlags), attributes, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        if (pError != nullptr) {
            pError->m_lOsError = static_cast<LONG>(GetLastError());
            pError->m_cause = CFileException::OsErrorToException(pError->m_lOsError);
            pError->m_strFileName = path;
        }
        return FALSE;
    }
    m_hFile = file;
    m_bCloseOnDelete = TRUE;
    m_strFileName = path;
    return TRUE;
}

HANDLE CFile::Opened() const {
    if (m_hFile == hFileNull) AfxThrowFileException(CFileException::invalidFile, ERROR_INVALID_HANDLE, m_strFileName);
    return m_hFile;
}

UINT CFile::Read(void* lpBuf, UINT nCount) {
    auto* to = static_cast<BYTE*>(lpBuf);
    const HANDLE file = Opened();
    UINT done = 0;
    while (done < nCount) {
        DWORD got = 0;
        if (!::ReadFile(file, to + done, nCount - done, &got, nullptr)) ThrowLastError(m_strFileName);
        if (got == 0) break;
        done += got;
    }
    return done;
}

void CFile::Write(const void* lpBuf, UINT nCount) {
    if (nCount == 0) return;
    DWORD done = 0;
    if (!::WriteFile(Opened(), lpBuf, nCount, &done, nullptr)) ThrowLastError(m_strFileName);
    if (done != nCount) AfxThrowFileException(CFileException::diskFull, ERROR_DISK_FULL, m_strFileName);
}

ULONGLONG CFile::Seek(LONGLONG lOff, UINT nFrom) {
    if (nFrom > end) AfxThrowInvalidArgException();
    LARGE_INTEGER distance, position;
    distance.QuadPart = lOff;
    static_assert(begin == FILE_BEGIN && current == FILE_CURRENT && end == FILE_END);
    if (!SetFilePointerEx(Opened(), distance, &position, nFrom)) {
        const DWORD code = GetLastError();
        constexpr DWORD kNegativeSeek = 131;  // ERROR_NEGATIVE_SEEK
        const bool before = code == kNegativeSeek || code == ERROR_INVALID_PARAMETER;
        const int cause =
            before ? static_cast<int>(CFileException::badSeek) : CFileException::OsErrorToException(static_cast<LONG>(code));
        AfxThrowFileException(cause, static_cast<LONG>(code), m_strFileName);
    }
    return static_cast<ULONGLONG>(position.QuadPart);
}

ULONGLONG CFile::GetPosition() const {
    LARGE_INTEGER distance, position;
    distance.QuadPart = 0;
    if (!SetFilePointerEx(Opened(), distance, &position, FILE_CURRENT)) ThrowLastError(m_strFileName);
    return static_cast<ULONGLONG>(position.QuadPart);
}

ULONGLONG CFile::GetLength() const {
    LARGE_INTEGER size;
    if (!GetFileSizeEx(Opened(), &size)) ThrowLastError(m_strFileName);
    return static_cast<ULONGLONG>(size.QuadPart);
}

void CFile::SetLength(ULONGLONG dwNewLen) {
    if (dwNewLen > 0x7FFFFFFFFFFFFFFFu) AfxThrowInvalidArgException();
    Seek(static_cast<LONGLONG>(dwNewLen), begin);
    if (!SetEndOfFile(Opened())) ThrowLastError(m_strFileName);
}

void CFile::Flush() {
    if (m_hFile == hFileNull) return;
    if (!FlushFileBuffers(m_hFile)) ThrowLastError(m_strFileName);
}

void CFile::Close() {
    const HANDLE file = std::exchange(m_hFile, hFileNull);
    const CString name = std::move(m_strFileName);
    m_strFileName.Empty();
    if (file != hFileNull && !CloseHandle(file)) ThrowLastError(name);
}

void CFile::Abort() {
    if (m_hFile != hFileNull) CloseHandle(m_hFile);
    m_hFile = hFileNull;
    m_strFileName.Empty();
}

CString CFile::GetFileName() const {
    const CString path = GetFilePath();
    const auto folder = path.GetView().find_last_of("\\/");
    return CString(path.GetView().substr(folder == std::string_view::npos ? 0 : folder + 1));
}

CString CFile::GetFileTitle() const {
    const CString name = GetFileName();
    const int dot = name.ReverseFind('.');
    return dot < 0 ? name : name.Left(dot);
}

BOOL CFile::GetStatus(CFileStatus& rStatus) const {
    if (m_strFileName.IsEmpty()) {
        rStatus = CFileStatus();
        rStatus.m_size = GetLength();
        return TRUE;
    }
    if (!GetStatus(m_strFileName, rStatus)) return FALSE;
    rStatus.m_size = GetLength();
    return TRUE;
}

BOOL CFile::GetStatus(LPCSTR lpszFileName, CFileStatus& rStatus) {
    if (lpszFileName == nullptr || *lpszFileName == 0) return FALSE;
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!GetFileAttributesExA(lpszFileName, GetFileExInfoStandard, &data)) return FALSE;
    rStatus.m_ctime = CTime(data.ftCreationTime);
    rStatus.m_mtime = CTime(data.ftLastWriteTime);
    rStatus.m_atime = CTime(data.ftLastAccessTime);
    rStatus.m_size = (static_cast<ULONGLONG>(data.nFileSizeHigh) << 32) | data.nFileSizeLow;
    constexpr DWORD kKnown = readOnly | hidden | system | volume | directory | archive;
    rStatus.m_attribute = static_cast<BYTE>(data.dwFileAttributes & kKnown);
    rStatus.m_strFullName = FullPath(lpszFileName);
    return TRUE;
}

void CFile::Rename(LPCSTR lpszOldName, LPCSTR lpszNewName) {
    if (lpszOldName == nullptr || lpszNewName == nullptr) AfxThrowInvalidArgException();
    if (!MoveFileExA(lpszOldName, lpszNewName, MOVEFILE_COPY_ALLOWED)) ThrowLastError(lpszOldName);
}

void CFile::Remove(LPCSTR lpszFileName) {
    if (lpszFileName == nullptr) AfxThrowInvalidArgException();
    if (!DeleteFileA(lpszFileName)) ThrowLastError(lpszFileName);
}
