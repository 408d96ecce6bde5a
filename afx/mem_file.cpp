#include "afx/file.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

IMPLEMENT_DYNAMIC(CMemFile, CFile)

CMemFile::CMemFile(UINT nGrowBytes) : m_nGrowBytes(nGrowBytes) {}

CMemFile::CMemFile(BYTE* lpBuffer, UINT nBufferSize, UINT nGrowBytes) : m_nGrowBytes(nGrowBytes) {
    Attach(lpBuffer, nBufferSize, nGrowBytes);
}

CMemFile::~CMemFile() { CMemFile::Close(); }

void CMemFile::Attach(BYTE* lpBuffer, UINT nBufferSize, UINT nGrowBytes) {
    CMemFile::Close();
    m_lpBuffer = lpBuffer;
    m_nBufferSize = nBufferSize;
    m_nFileSize = nGrowBytes == 0 ? nBufferSize : 0;
    m_nGrowBytes = nGrowBytes;
    m_bOwnsBuffer = false;
}

BYTE* CMemFile::Detach() {
    BYTE* buffer = m_lpBuffer;
    m_lpBuffer = nullptr;
    m_nBufferSize = m_nFileSize = m_nPosition = 0;
    m_bOwnsBuffer = true;
    return buffer;
}

void CMemFile::Free(BYTE* lpBuffer) { std::free(lpBuffer); }

BOOL CMemFile::Open(LPCSTR, UINT, CFileException*) { AfxThrowNotSupportedException(); }

void CMemFile::Close() {
    if (m_bOwnsBuffer) std::free(m_lpBuffer);
    Detach();
}

void CMemFile::GrowFile(size_t newSize) {
    if (newSize <= m_nBufferSize) return;
    if (m_nGrowBytes == 0 && !m_bOwnsBuffer) AfxThrowFileException(CFileException::diskFull, ERROR_DISK_FULL);
    const size_t step = std::max<size_t>({m_nGrowBytes, m_nBufferSize / 2, 16});
    const size_t room = std::max(newSize, m_nBufferSize + step);
    auto* fresh = static_cast<BYTE*>(std::realloc(m_bOwnsBuffer ? m_lpBuffer : nullptr, room));
    if (fresh == nullptr) AfxThrowMemoryException();
    if (!m_bOwnsBuffer && m_nFileSize > 0) std::memcpy(fresh, m_lpBuffer, m_nFileSize);
    m_lpBuffer = fresh;
    m_nBufferSize = room;
    m_bOwnsBuffer = true;
}

UINT CMemFile::Read(void* lpBuf, UINT nCount) {
    if (m_nPosition >= m_nFileSize) return 0;
    const size_t part = std::min<size_t>(nCount, m_nFileSize - m_nPosition);
    if (part > 0) std::memcpy(lpBuf, m_lpBuffer + m_nPosition, part);
    m_nPosition += part;
    return static_cast<UINT>(part);
}

void CMemFile::Write(const void* lpBuf, UINT nCount) {
    if (nCount == 0) return;
    const size_t last = m_nPosition + nCount;
    if (last < m_nPosition) AfxThrowMemoryException();
    GrowFile(last);
    if (m_nPosition > m_nFileSize) std::memset(m_lpBuffer + m_nFileSize, 0, m_nPosition - m_nFileSize);
    std::memcpy(m_lpBuffer + m_nPosition, lpBuf, nCount);
    m_nPosition = last;
    m_nFileSize = std::max(m_nFileSize, last);
}

ULONGLONG CMemFile::Seek(LONGLONG lOff, UINT nFrom) {
    if (nFrom > end) AfxThrowInvalidArgException();
    const size_t base = nFrom == begin ? 0 : nFrom == current ? m_nPosition : m_nFileSize;
    const auto from = static_cast<LONGLONG>(base);
    if (lOff < -from || lOff > INTPTR_MAX - from) AfxThrowFileException(CFileException::badSeek);
    m_nPosition = static_cast<size_t>(from + lOff);
    return m_nPosition;
}

void CMemFile::SetLength(ULONGLONG dwNewLen) {
    if (dwNewLen > static_cast<ULONGLONG>(INTPTR_MAX)) AfxThrowMemoryException();
    const auto length = static_cast<size_t>(dwNewLen);
    GrowFile(length);
    if (length > m_nFileSize) std::memset(m_lpBuffer + m_nFileSize, 0, length - m_nFileSize);
    m_nFileSize = length;
    m_nPosition = length;
}
