// Files by name or in memory, unbuffered. One thread at a time for one file. A CFile owns the handle it opened and closes it when
// destroyed. Failures are CFileException by pointer, with the Win32 code and the file's name; only Open reports by its result.
#pragma once

#include "afx/exception.h"
#include "afx/object.h"
#include "afx/string.h"
#include "afx/time.h"

#include <vector>

struct CFileStatus {
    CTime m_ctime;         // made
    CTime m_mtime;         // last written
    CTime m_atime;         // last read
    ULONGLONG m_size = 0;  // bytes
    BYTE m_attribute = 0;  // CFile::Attribute bits
    CString m_strFullName;
};

class ORVIK_API CFile : public CObject {
    DECLARE_DYNAMIC(CFile)

public:
    enum OpenFlags : UINT {
        modeRead = 0x0000,
        modeWrite = 0x0001,
        modeReadWrite = 0x0002,
        shareCompat = 0x0000,
        shareExclusive = 0x0010,
        shareDenyWrite = 0x0020,
        shareDenyRead = 0x0030,
        shareDenyNone = 0x0040,
        modeNoInherit = 0x0080,
        modeCreate = 0x1000,  // a new file; an old one is emptied, unless modeNoTruncate
        modeNoTruncate = 0x2000,
        typeText = 0x4000,  // no effect here
        typeBinary = 0x8000,
        osNoBuffer = 0x10000,
        osWriteThrough = 0x20000,
        osRandomAccess = 0x40000,
        osSequentialScan = 0x80000
    };
    enum Attribute {
        normal = 0x00,
        readOnly = 0x01,
        hidden = 0x02,
        system = 0x04,
        volume = 0x08,
        directory = 0x10,
        archive = 0x20
    };
    enum SeekPosition { begin = 0, current = 1, end = 2 };

    CFile();
    explicit CFile(HANDLE hFile);  // takes over an open file
    CFile(LPCSTR lpszFileName, UINT nOpenFlags);
    ~CFile() override;

    // 0 on failure, told in *pError when it is given; the object then has no file. A file that was open is closed first.
    virtual BOOL Open(LPCSTR lpszFileName, UINT nOpenFlags, CFileException* pError = nullptr);

    // Bytes read: fewer than asked for only at the end of the file.
    virtual UINT Read(void* lpBuf, UINT nCount);
    // All of it, or an exception (diskFull when the system takes less).
    virtual void Write(const void* lpBuf, UINT nCount);
    // The new position from the beginning. Before the beginning is an exception (badSeek), behind the end is not.
    virtual ULONGLONG Seek(LONGLONG lOff, UINT nFrom);
    void SeekToBegin() { Seek(0, begin); }
    ULONGLONG SeekToEnd() { return Seek(0, end); }
    virtual ULONGLONG GetPosition() const;
    virtual ULONGLONG GetLength() const;
    // The position is at the new end afterwards.
    virtual void SetLength(ULONGLONG dwNewLen);
    virtual void Flush();  // to the disk
    virtual void Close();
    virtual void Abort();  // closes without exceptions

    // The full path, the name in it, and the name without its extension; empty for a file without a name.
    virtual CString GetFilePath() const { return m_strFileName; }
    virtual CString GetFileName() const;
    virtual CString GetFileTitle() const;
    virtual void SetFilePath(LPCSTR lpszNewName) { m_strFileName = lpszNewName; }

    // 0 when the file does not exist or cannot be looked at.
    BOOL GetStatus(CFileStatus& rStatus) const;
    static BOOL GetStatus(LPCSTR lpszFileName, CFileStatus& rStatus);
    static void Rename(LPCSTR lpszOldName, LPCSTR lpszNewName);
    static void Remove(LPCSTR lpszFileName);

    operator HANDLE() const { return m_hFile; }

    HANDLE m_hFile;
    static const HANDLE hFileNull;

protected:
    CString m_strFileName;

private:
    HANDLE Opened() const;
    BOOL m_bCloseOnDelete = TRUE;
};

// A file in memory that grows as it is written, or one over a caller's block.
class ORVIK_API CMemFile : public CFile {
    DECLARE_DYNAMIC(CMemFile)

public:
    // nGrowBytes: the least step of growth; a large file grows by half its size.
    explicit CMemFile(UINT nGrowBytes = 1024);
    // Over nBufferSize bytes of the caller's, which stay the caller's. With nGrowBytes 0 the block cannot grow, and writing
    // beyond it is an exception; otherwise the first growth copies it. The file's length is the block's with nGrowBytes 0, and 0
    // otherwise.
    CMemFile(BYTE* lpBuffer, UINT nBufferSize, UINT nGrowBytes = 0);
    ~CMemFile() override;

    void Attach(BYTE* lpBuffer, UINT nBufferSize, UINT nGrowBytes = 0);
    // Hands the contents to the caller, who frees an own block with CMemFile::Free; the file is empty afterwards.
    BYTE* Detach();
    static void Free(BYTE* lpBuffer);

    // The contents, valid until the file is next written or resized.
    const BYTE* GetBufferPtr() const { return m_lpBuffer; }

    BOOL Open(LPCSTR lpszFileName, UINT nOpenFlags, CFileException* pError = nullptr) override;
    UINT Read(void* lpBuf, UINT nCount) override;
    void Write(const void* lpBuf, UINT nCount) override;
    ULONGLONG Seek(LONGLONG lOff, UINT nFrom) override;
    ULONGLONG GetPosition() const override { return m_nPosition; }
    ULONGLONG GetLength() const override { return m_nFileSize; }
    void SetLength(ULONGLONG dwNewLen) override;
    void Flush() override {}
    void Close() override;
    void Abort() override { Close(); }

private:
    void GrowFile(size_t newSize);

    BYTE* m_lpBuffer = nullptr;
    size_t m_nBufferSize = 0;
    size_t m_nFileSize = 0;
    size_t m_nPosition = 0;
    UINT m_nGrowBytes;
    bool m_bOwnsBuffer = true;
};
