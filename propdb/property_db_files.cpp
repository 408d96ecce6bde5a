// Loading and storing files of either form; property_db_xml.cpp and property_db_archive.cpp know the forms.
#include "afx/archive.h"
#include "afx/exception.h"
#include "platform/file_replacement.h"
#include "propdb/block_file.h"
#include "propdb/property_db.h"
#include "propdb/property_key.h"

#include <exception>
#include <string>

using orvik::detail::FileReplacement;
using orvik::detail::TextOrEmpty;

namespace {
constexpr int kArchiveBuffer = 4096;  // bytes

// An open file that stays somebody else's to close.
class LentFile : public CFile {
public:
    explicit LentFile(HANDLE file) : CFile(file) {}
    ~LentFile() override { m_hFile = hFileNull; }
};

// Texts are compared by their ASCII letters, whatever the locale.
bool HasXmlName(std::string_view path) {
    if (path.size() < 4) return false;
    std::string extension(path.substr(path.size() - 4));
    for (char& ch : extension)
        if (ch >= 'A' && ch <= 'Z') ch = static_cast<char>(ch - 'A' + 'a');
    return extension == ".xml";
}

CString FullPath(const char* path) {
    std::string full(MAX_PATH, '\0');
    for (;;) {
        const DWORD length = GetFullPathNameA(path, static_cast<DWORD>(full.size()), full.data(), nullptr);
        if (length == 0) return path;
        if (length < full.size()) return CString(std::string_view(full).substr(0, length));
        full.resize(length + 1);
    }
}

// Runs what reports by framework exception and gives its success as a result. What the system said of a file becomes the thread's
// last error again, which cleaning up may have changed.
template <class Work>
bool Succeeds(Work work) {
    try {
        return work();
    } catch (CFileException* failure) {
        const LONG error = failure->m_lOsError;
        failure->Delete();
        if (error > 0) SetLastError(static_cast<DWORD>(error));
    } catch (CException* failure) {
        failure->Delete();
    } catch (const std::exception&) {
        // Out of memory: what was stored so far stays, as after any other failure.
    }
    return false;
}
}  // namespace

BOOL CPropertyDB::StoreToFile(CFile* pFile, int bXml, int bFlush) {
    if (!pFile) return FALSE;
    return Succeeds([&] {
        if (!WriteForm(*pFile, bXml != 0)) return false;
        if (bFlush) pFile->Flush();
        const CString path = pFile->GetFilePath();
        if (!path.IsEmpty()) m_strFilePath = path;
        m_bModified = FALSE;
        return true;
    });
}

BOOL CPropertyDB::StoreToFile(const char* path, int bIfModified) {
    if (TextOrEmpty(path).empty()) return FALSE;
    return Succeeds([&] {
        const CString full = FullPath(path);
        CFileStatus status;
        if (bIfModified && !m_bModified && full == m_strFilePath && CFile::GetStatus(path, status)) return true;
        const auto check = [path](DWORD error) {
            if (error != ERROR_SUCCESS) CFileException::ThrowOsError(static_cast<LONG>(error), path);
        };
        FileReplacement replacement;
        check(replacement.Begin(path));
        {
            LentFile file(replacement.File());
            if (!WriteForm(file, HasXmlName(path))) return false;
        }
        check(replacement.Commit());
        m_strFilePath = full;
        m_bModified = FALSE;
        return true;
    });
}

BOOL CPropertyDB::LoadFromFile(CFile* pFile, int bXml) {
    if (!pFile) return FALSE;
    return Succeeds([&] {
        if (!ReadForm(*pFile, bXml != 0)) return false;
        const CString path = pFile->GetFilePath();
        if (!path.IsEmpty()) m_strFilePath = path;
        m_bModified = FALSE;
        return true;
    });
}

BOOL CPropertyDB::LoadFromFile(const char* path) {
    CFileStatus status;
    if (TextOrEmpty(path).empty()) return FALSE;
    return Succeeds([&] {
        if (!CFile::GetStatus(path, status)) return false;
        CFile file(path, CFile::modeRead | CFile::shareDenyWrite);
        if (!ReadForm(file, HasXmlName(path))) return false;
        m_strFilePath = FullPath(path);
        m_bModified = FALSE;
        return true;
    });
}

BOOL CPropertyDB::WriteForm(CFile& file, bool xml) {
    if (xml) {
        orvik::detail::BlockFile blocks(file);
        const BOOL saved = SaveAsXML(&blocks);
        blocks.Flush();
        return saved;
    }
    // Serialize clears the modified flag before the last bytes are out; the caller does it when all is well.
    struct KeepFlag {
        BOOL& flag;
        const BOOL before;
        ~KeepFlag() { flag = before; }
    } const modified{m_bModified, m_bModified};
    CArchive archive(&file, CArchive::store | CArchive::bNoFlushOnDelete, kArchiveBuffer);
    Serialize(archive);
    archive.Close();
    return TRUE;
}

bool CPropertyDB::ReadForm(CFile& file, bool xml) {
    if (xml) return LoadXML(file);
    CArchive archive(&file, CArchive::load | CArchive::bNoFlushOnDelete, kArchiveBuffer);
    Serialize(archive);
    archive.Close();
    return true;
}
