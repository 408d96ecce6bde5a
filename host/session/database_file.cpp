#include "host/session/database_file.h"

#include <optional>

#include "host/session/database_xml.h"
#include "host/words/console.h"
#include "host/words/texts.h"
#include "platform/file_replacement.h"
#include "platform/same_file.h"

namespace {
[[noreturn]] void FailToWrite(const std::string& path, DWORD error) {
    throw Failure{kFileFailed, Say(Text::FileNotWritten, {ToUtf8(path), Reason(error)})};
}

// A file that tells how much of it has been read.
class FileBeingRead : public CFile {
public:
    FileBeingRead(const std::string& path, WorkProgress& progress)
        : CFile(path.c_str(), CFile::modeRead | CFile::shareDenyWrite), m_progress(progress), m_size(GetLength()) {}
    UINT Read(void* bytes, UINT count) override {
        const UINT read = CFile::Read(bytes, count);
        m_done += read;
        stopped = stopped || !m_progress.At(m_done, m_size);
        if (stopped) AfxThrowUserException();
        return read;
    }
    void Rewind() {
        SeekToBegin();
        m_done = 0;
    }
    bool stopped = false;

private:
    WorkProgress& m_progress;
    const ULONGLONG m_size;
    ULONGLONG m_done = 0;
};

// A file that is written beside the one to be replaced, and tells how much of it has been written.
class FileBeingWritten : public CFile {
public:
    FileBeingWritten(HANDLE lent, WorkProgress& progress, ULONGLONG size) : CFile(lent), m_progress(progress), m_size(size) {}
    ~FileBeingWritten() override { m_hFile = hFileNull; }  // it was only lent
    void Write(const void* bytes, UINT count) override {
        stopped = stopped || !m_progress.At(m_done, m_size);
        if (stopped) AfxThrowUserException();
        CFile::Write(bytes, count);
        m_done += count;
    }
    bool stopped = false;

private:
    WorkProgress& m_progress;
    const ULONGLONG m_size;
    ULONGLONG m_done = 0;
};

XmlManner MannerOf(const std::string& path) {
    CFile file(path.c_str(), CFile::modeRead | CFile::shareDenyWrite);
    return MannerOf(file);
}

std::optional<XmlFault> LoadByLibrary(CFile& file, CPropertyDB& db) {
    try {
        LoadStandardXml(file, db);
        return std::nullopt;
    } catch (const XmlFault& fault) {
        return fault;
    } catch (CUserException* stopped) {
        stopped->Delete();  // the file knows
        return XmlFault{};
    }
}

[[noreturn]] void FailAt(const std::string& path, const XmlFault& fault) {
    throw Failure{kFileFailed, Say(Text::FileNotReadAt,
                                   {ToUtf8(path), std::to_string(fault.line), std::to_string(fault.column), fault.sentence})};
}
}  // namespace

void LoadDatabase(const std::string& path, CPropertyDB& db, WorkProgress* progress) {
    if (!FileExists(path)) throw Failure{kFileFailed, Say(Text::FileNotFound, {ToUtf8(path)})};
    if (!(GetFileAttributesA(path.c_str()) & FILE_ATTRIBUTE_DIRECTORY)) {
        const HANDLE file = CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
        if (file == INVALID_HANDLE_VALUE)
            throw Failure{kFileFailed, Say(Text::FileNotOpened, {ToUtf8(path), Reason(GetLastError())})};
        CloseHandle(file);
    }
    LineProgress line(Say(Text::WorkReading, {ToUtf8(path)}));
    const bool xml = IsXmlName(path);
    bool read = false;
    std::optional<XmlFault> fault;
    try {
        const XmlManner manner = xml ? MannerOf(path) : XmlManner();
        FileBeingRead file(path, progress != nullptr ? *progress : line);
        const auto byModule = [&] {
            file.Rewind();
            read = db.LoadFromFile(&file, xml);
            if (file.stopped) throw WorkStopped{};
            if (!read) db.RemoveAll();
        };
        const auto byLibrary = [&] {
            file.Rewind();
            fault = LoadByLibrary(file, db);
            if (file.stopped) throw WorkStopped{};
            read = !fault;
            if (!read) db.RemoveAll();
        };
        if (manner.kind == XmlManner::Foreign) {
            byLibrary();
        } else {
            byModule();
            if (!read && manner.kind == XmlManner::NotUtf8) fault = {manner.line, manner.column, Say(Text::XmlNotUtf8), false};
            if (!read && xml && !fault) byLibrary();
        }
    } catch (CFileException* failure) {
        failure->Delete();
    }
    if (read) return;
    db.RemoveAll();
    if (!fault) throw Failure{kFileFailed, Say(Text::FileNotRead, {ToUtf8(path)})};
    FailAt(path, *fault);
}

void CheckXml(const std::string& path) {
    CPropertyDB db;
    CFile file(path.c_str(), CFile::modeRead | CFile::shareDenyWrite);
    const std::optional<XmlFault> fault = LoadByLibrary(file, db);
    if (fault && fault->refused) FailAt(path, *fault);
}

void StoreDatabase(const std::string& path, CPropertyDB& db, WorkProgress* progress, unsigned __int64 size) {
    LineProgress line(Say(Text::WorkWriting, {ToUtf8(path)}));
    SetLastError(0);
    orvik::detail::FileReplacement replacement;
    const auto check = [&](DWORD error) {
        if (error != ERROR_SUCCESS) FailToWrite(path, error);
    };
    check(replacement.Begin(path));
    {
        FileBeingWritten file(replacement.File(), progress != nullptr ? *progress : line, size != 0 ? size : FileSize(path));
        db.SetExactReals(TRUE);
        const BOOL stored = db.StoreToFile(&file, IsXmlName(path), FALSE);
        if (file.stopped) throw WorkStopped{};
        if (!stored) FailToWrite(path, GetLastError());
    }
    check(replacement.Commit());
}

DWORD StoreOften(const std::string& path, CPropertyDB& db) {
    const std::string fresh = path + ".new";
    CFile file;
    CFileException failure;
    if (!file.Open(fresh.c_str(), CFile::modeCreate | CFile::modeWrite | CFile::shareDenyWrite, &failure))
        return static_cast<DWORD>(failure.m_lOsError);
    const bool stored = db.StoreToFile(&file, FALSE, FALSE) != 0;
    const DWORD error = stored ? DWORD{ERROR_SUCCESS} : GetLastError();
    try {
        file.Close();
    } catch (CException* closing) {
        closing->Delete();
        return ERROR_DISK_FULL;
    }
    if (!stored) return error != ERROR_SUCCESS ? error : DWORD{ERROR_DISK_FULL};
    return MoveFileExA(fresh.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING) ? DWORD{ERROR_SUCCESS} : GetLastError();
}

unsigned __int64 FileSize(const std::string& path) {
    CFileStatus status;
    return CFile::GetStatus(path.c_str(), status) ? status.m_size : 0;
}

void RequireWritable(const std::string& path) {
    const DWORD attributes = GetFileAttributesA(path.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES) {
        if (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE | FILE_ATTRIBUTE_READONLY))
            FailToWrite(path, ERROR_ACCESS_DENIED);
        return;
    }
    const HANDLE probe = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (probe == INVALID_HANDLE_VALUE) FailToWrite(path, GetLastError());
    CloseHandle(probe);
    DeleteFileA(path.c_str());
}

bool FileExists(const std::string& path) { return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES; }

void RequireDifferentFiles(std::initializer_list<std::pair<const char*, std::string>> files) {
    for (auto one = files.begin(); one != files.end(); ++one) {
        for (auto other = files.begin(); other != one; ++other) {
            if (!one->second.empty() && !other->second.empty() && OrvikSameFile(one->second.c_str(), other->second.c_str()))
                throw Failure{kWrongUse, Say(Text::OptionsSame, {other->first, one->first})};
        }
    }
}

bool SameFile(const std::string& one, const std::string& other) { return OrvikSameFile(one.c_str(), other.c_str()); }

bool IsXmlName(const std::string& path) {
    CString end = path.size() < 4 ? "" : path.substr(path.size() - 4).c_str();
    end.MakeLower();
    return end == ".xml";
}
