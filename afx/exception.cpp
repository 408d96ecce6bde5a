#include "afx/exception.h"

#include "afx/message_box.h"
#include "afx/module.h"
#include "res/ids.h"

#include <algorithm>
#include <cstring>
#include <new>

IMPLEMENT_DYNAMIC(CException, CObject)
IMPLEMENT_DYNAMIC(CMemoryException, CException)
IMPLEMENT_DYNAMIC(CNotSupportedException, CException)
IMPLEMENT_DYNAMIC(CInvalidArgException, CException)
IMPLEMENT_DYNAMIC(CUserException, CException)
IMPLEMENT_DYNAMIC(CResourceException, CException)
IMPLEMENT_DYNAMIC(COleException, CException)
IMPLEMENT_DYNAMIC(CArchiveException, CException)
IMPLEMENT_DYNAMIC(CFileException, CException)

namespace {
CString Loaded(UINT id) {
    CString text;
    text.LoadString(id);
    return text;
}

// One of the texts that stand in a row for the causes 0 to `last`; 1 is the cause without a better name.
CString OfCause(UINT first, int cause, int last, const CString& file) {
    const CString text = Loaded(first + static_cast<UINT>(cause >= 0 && cause <= last ? cause : 1));
    return file.IsEmpty() ? text : file + ": " + text;
}
}  // namespace

void CException::Delete() {
    if (m_bAutoDelete) delete this;
}

BOOL CException::GetErrorMessage(LPSTR lpszError, UINT nMaxError, UINT* pnHelpContext) const {
    CopyMessage("", lpszError, nMaxError, pnHelpContext);
    return FALSE;
}

BOOL CException::CopyMessage(LPCSTR text, LPSTR lpszError, UINT nMaxError, UINT* pnHelpContext) {
    if (pnHelpContext != nullptr) *pnHelpContext = 0;
    if (lpszError == nullptr || nMaxError == 0) return FALSE;
    const size_t length = std::min<size_t>(std::strlen(text), nMaxError - 1);
    std::memcpy(lpszError, text, length);
    lpszError[length] = 0;
    return TRUE;
}

int CException::ReportError(UINT nType, UINT nMessageID) {
    char message[512];
    if (GetErrorMessage(message, sizeof message)) return AfxMessageBox(message, nType);
    CString text;
    if (nMessageID == 0 || !text.LoadString(nMessageID)) text.LoadString(IDS_OPERATION_FAILED);
    return AfxMessageBox(text, nType, nMessageID);
}

BOOL CMemoryException::GetErrorMessage(LPSTR lpszError, UINT nMaxError, UINT* pnHelpContext) const {
    // Where there is not even memory to find the text in the user's language, it is said in English.
    char text[128] = "";
    try {
        AfxLoadString(IDS_OUT_OF_MEMORY, text, sizeof text);
    } catch (const std::bad_alloc&) {
    }
    return CopyMessage(text[0] != 0 ? text : "Out of memory.", lpszError, nMaxError, pnHelpContext);
}

BOOL CNotSupportedException::GetErrorMessage(LPSTR lpszError, UINT nMaxError, UINT* pnHelpContext) const {
    return CopyMessage(Loaded(IDS_NOT_SUPPORTED), lpszError, nMaxError, pnHelpContext);
}

BOOL CInvalidArgException::GetErrorMessage(LPSTR lpszError, UINT nMaxError, UINT* pnHelpContext) const {
    return CopyMessage(Loaded(IDS_BAD_ARGUMENT), lpszError, nMaxError, pnHelpContext);
}

BOOL CResourceException::GetErrorMessage(LPSTR lpszError, UINT nMaxError, UINT* pnHelpContext) const {
    return CopyMessage(Loaded(IDS_NO_RESOURCE), lpszError, nMaxError, pnHelpContext);
}

BOOL COleException::GetErrorMessage(LPSTR lpszError, UINT nMaxError, UINT* pnHelpContext) const {
    CString text;
    text.Format(Loaded(IDS_OPERATION_FAILED_WITH), static_cast<unsigned>(m_sc));
    return CopyMessage(text, lpszError, nMaxError, pnHelpContext);
}

CArchiveException::CArchiveException(int cause, LPCSTR lpszArchiveName) : m_cause(cause), m_strFileName(lpszArchiveName) {}

BOOL CArchiveException::GetErrorMessage(LPSTR lpszError, UINT nMaxError, UINT* pnHelpContext) const {
    return CopyMessage(OfCause(IDS_ARCHIVE_CAUSES, m_cause, bufferFull, m_strFileName), lpszError, nMaxError, pnHelpContext);
}

CFileException::CFileException(int cause, LONG lOsError, LPCSTR lpszArchiveName)
    : m_cause(cause), m_lOsError(lOsError), m_strFileName(lpszArchiveName) {}

BOOL CFileException::GetErrorMessage(LPSTR lpszError, UINT nMaxError, UINT* pnHelpContext) const {
    return CopyMessage(OfCause(IDS_FILE_CAUSES, m_cause, endOfFile, m_strFileName), lpszError, nMaxError, pnHelpContext);
}

int CFileException::OsErrorToException(LONG lOsError) {
    switch (lOsError) {
        case NO_ERROR:
            return none;
        case ERROR_FILE_NOT_FOUND:
            return fileNotFound;
        case ERROR_PATH_NOT_FOUND:
        case ERROR_INVALID_NAME:
        case ERROR_DIRECTORY:
        case ERROR_FILENAME_EXCED_RANGE:
            return badPath;
        case ERROR_TOO_MANY_OPEN_FILES:
            return tooManyOpenFiles;
        case ERROR_ACCESS_DENIED:
        case ERROR_FILE_EXISTS:
        case ERROR_ALREADY_EXISTS:
        case ERROR_WRITE_PROTECT:
            return accessDenied;
        case ERROR_INVALID_HANDLE:
            return invalidFile;
        case ERROR_NOT_READY:
            return hardIO;
        case ERROR_SHARING_VIOLATION:
            return sharingViolation;
        case ERROR_DISK_FULL:
            return diskFull;
        case ERROR_HANDLE_EOF:
            return endOfFile;
        default:
            return genericException;
    }
}

void CFileException::ThrowOsError(LONG lOsError, LPCSTR lpszFileName) {
    throw new CFileException(OsErrorToException(lOsError), lOsError, lpszFileName);
}

void AfxThrowMemoryException() {
    // When even the exception does not fit, one that needs no memory stands in; Delete() leaves it alone.
    static CMemoryException s_last(FALSE);
    CMemoryException* exception = new (std::nothrow) CMemoryException;
    throw exception != nullptr ? exception : &s_last;
}

void AfxThrowNotSupportedException() { throw new CNotSupportedException; }
void AfxThrowInvalidArgException() { throw new CInvalidArgException; }
void AfxThrowUserException() { throw new CUserException; }
void AfxThrowResourceException() { throw new CResourceException; }
void AfxThrowArchiveException(int cause, LPCSTR lpszArchiveName) { throw new CArchiveException(cause, lpszArchiveName); }
void AfxThrowFileException(int cause, LONG lOsError, LPCSTR lpszFileName) {
    throw new CFileException(cause, lOsError, lpszFileName);
}
void AfxThrowOleException(HRESULT sc) { throw new COleException(sc); }
void AtlThrow(HRESULT hr) {
    if (hr == E_OUTOFMEMORY) AfxThrowMemoryException();
    AfxThrowOleException(hr);
}
