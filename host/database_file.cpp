#include "host/database_file.h"

#include "host/console.h"
#include "host/texts.h"
#include "platform/file_replacement.h"

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

std::string FullPath(const std::string& path) {
    char full[4096];
    const DWORD length = GetFullPathNameA(path.c_str(), sizeof full, full, nullptr);
    return length > 0 && length < sizeof full ? std::string(full, length) : path;
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
    bool read = false;
    try {
        FileBeingRead file(path, progress != nullptr ? *progress : line);
        read = db.LoadFromFile(&file, IsXmlName(path));
        if (file.stopped) throw WorkStopped{};
    } catch (CFileException* failure) {
        failure->Delete();
    }
    if (!read) throw Failure{kFileFailed, Say(Text::FileNotRead, {ToUtf8(path)})};
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
        const BOOL stored = db.StoreToFile(&file, IsXmlName(path), FALSE);
        if (file.stopped) throw WorkStopped{};
        if (!stored) FailToWrite(path, GetLastError());
    }
    check(replacement.Commit());
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

bool SameFile(const std::string& one, const std::string& other) { return FullPath(one) == FullPath(other); }

bool IsXmlName(const std::string& path) {
    CString end = path.size() < 4 ? "" : path.substr(path.size() - 4).c_str();
    end.MakeLower();
    return end == ".xml";
}
