// The framework's exceptions. They are made on the heap and thrown by pointer; whoever catches one ends it with Delete() (or
// `delete`). An exception object belongs to the thread that throws it.
#pragma once

#include "afx/object.h"
#include "afx/string.h"

class CFile;

class ORVIK_API CException : public CObject {
    DECLARE_DYNAMIC(CException)

public:
    CException() = default;
    // bAutoDelete 0: the object is not on the heap of its own, and Delete() leaves it alone.
    explicit CException(BOOL bAutoDelete) : m_bAutoDelete(bAutoDelete) {}

    void Delete();

    // Copies a text that describes the failure, cut to nMaxError bytes with its final 0. 0, and an empty text, when there is
    // none, as for every class that does not override this.
    virtual BOOL GetErrorMessage(LPSTR lpszError, UINT nMaxError, UINT* pnHelpContext = nullptr) const;
    // Shows the text (or that of string resource nMessageID, when there is none) in a message box and returns its answer.
    virtual int ReportError(UINT nType = MB_OK, UINT nMessageID = 0);

protected:
    // Helper of GetErrorMessage: copies `text`, returns TRUE.
    static BOOL CopyMessage(LPCSTR text, LPSTR lpszError, UINT nMaxError, UINT* pnHelpContext);

private:
    BOOL m_bAutoDelete = TRUE;
};

class ORVIK_API CMemoryException : public CException {
    DECLARE_DYNAMIC(CMemoryException)

public:
    using CException::CException;
    BOOL GetErrorMessage(LPSTR lpszError, UINT nMaxError, UINT* pnHelpContext = nullptr) const override;
};

class ORVIK_API CNotSupportedException : public CException {
    DECLARE_DYNAMIC(CNotSupportedException)

public:
    using CException::CException;
    BOOL GetErrorMessage(LPSTR lpszError, UINT nMaxError, UINT* pnHelpContext = nullptr) const override;
};

class ORVIK_API CInvalidArgException : public CException {
    DECLARE_DYNAMIC(CInvalidArgException)

public:
    using CException::CException;
    BOOL GetErrorMessage(LPSTR lpszError, UINT nMaxError, UINT* pnHelpContext = nullptr) const override;
};

// An operation stopped at the user's word; the user has been told already, so there is no text.
class ORVIK_API CUserException : public CException {
    DECLARE_DYNAMIC(CUserException)

public:
    using CException::CException;
};

class ORVIK_API CResourceException : public CException {
    DECLARE_DYNAMIC(CResourceException)

public:
    using CException::CException;
    BOOL GetErrorMessage(LPSTR lpszError, UINT nMaxError, UINT* pnHelpContext = nullptr) const override;
};

// A failed HRESULT. The one class for every such failure, whatever raised it.
class ORVIK_API COleException : public CException {
    DECLARE_DYNAMIC(COleException)

public:
    explicit COleException(HRESULT result = E_FAIL) : m_sc(result) {}
    BOOL GetErrorMessage(LPSTR lpszError, UINT nMaxError, UINT* pnHelpContext = nullptr) const override;

    HRESULT m_sc;
};

class ORVIK_API CArchiveException : public CException {
    DECLARE_DYNAMIC(CArchiveException)

public:
    enum {
        none,
        genericException,
        readOnly,   // stored into an archive opened for loading
        endOfFile,  // the file ended inside something
        writeOnly,  // loaded from an archive opened for storing
        badIndex,   // the file names an object or class that it never held
        badClass,   // an object of another class than expected, or of no class known here
        badSchema,  // an object of another version of its class
        bufferFull
    };

    explicit CArchiveException(int cause = none, LPCSTR lpszArchiveName = nullptr);
    BOOL GetErrorMessage(LPSTR lpszError, UINT nMaxError, UINT* pnHelpContext = nullptr) const override;

    int m_cause;
    CString m_strFileName;
};

class ORVIK_API CFileException : public CException {
    DECLARE_DYNAMIC(CFileException)

public:
    enum {
        none,
        genericException,
        fileNotFound,
        badPath,
        tooManyOpenFiles,
        accessDenied,
        invalidFile,  // an object without an open file
        removeCurrentDir,
        directoryFull,
        badSeek,
        hardIO,
        sharingViolation,
        lockViolation,
        diskFull,
        endOfFile
    };

    explicit CFileException(int cause = none, LONG lOsError = -1, LPCSTR lpszArchiveName = nullptr);
    BOOL GetErrorMessage(LPSTR lpszError, UINT nMaxError, UINT* pnHelpContext = nullptr) const override;

    // The cause that stands for a Win32 error code; genericException for one without its own.
    static int OsErrorToException(LONG lOsError);
    [[noreturn]] static void ThrowOsError(LONG lOsError, LPCSTR lpszFileName = nullptr);

    int m_cause;
    LONG m_lOsError;  // Win32 error code, -1 if none
    CString m_strFileName;
};

[[noreturn]] ORVIK_API void AfxThrowMemoryException();
[[noreturn]] ORVIK_API void AfxThrowNotSupportedException();
[[noreturn]] ORVIK_API void AfxThrowInvalidArgException();
[[noreturn]] ORVIK_API void AfxThrowUserException();
[[noreturn]] ORVIK_API void AfxThrowResourceException();
[[noreturn]] ORVIK_API void AfxThrowArchiveException(int cause, LPCSTR lpszArchiveName = nullptr);
[[noreturn]] ORVIK_API void AfxThrowFileException(int cause, LONG lOsError = -1, LPCSTR lpszFileName = nullptr);
[[noreturn]] ORVIK_API void AfxThrowOleException(HRESULT sc);
// Raises the memory exception for E_OUTOFMEMORY and the HRESULT's exception otherwise.
[[noreturn]] ORVIK_API void AtlThrow(HRESULT hr);
