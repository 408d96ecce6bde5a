#include "host/database_file.h"

#include "host/console.h"
#include "host/texts.h"

namespace {
[[noreturn]] void FailToWrite(const std::string& path, DWORD error) {
    throw Failure{kFileFailed, Say(Text::FileNotWritten, {ToUtf8(path), Reason(error)})};
}

std::string FullPath(const std::string& path) {
    char full[4096];
    const DWORD length = GetFullPathNameA(path.c_str(), sizeof full, full, nullptr);
    return length > 0 && length < sizeof full ? std::string(full, length) : path;
}
}  // namespace

void LoadDatabase(const std::string& path, CPropertyDB& db) {
    if (!FileExists(path)) throw Failure{kFileFailed, Say(Text::FileNotFound, {ToUtf8(path)})};
    if (!(GetFileAttributesA(path.c_str()) & FILE_ATTRIBUTE_DIRECTORY)) {
        const HANDLE file = CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
        if (file == INVALID_HANDLE_VALUE)
            throw Failure{kFileFailed, Say(Text::FileNotOpened, {ToUtf8(path), Reason(GetLastError())})};
        CloseHandle(file);
    }
    if (!db.LoadFromFile(path.c_str())) throw Failure{kFileFailed, Say(Text::FileNotRead, {ToUtf8(path)})};
}

void StoreDatabase(const std::string& path, CPropertyDB& db) {
    SetLastError(0);
    if (!db.StoreToFile(path.c_str(), 0)) FailToWrite(path, GetLastError());
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
