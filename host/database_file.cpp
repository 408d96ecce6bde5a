#include "host/database_file.h"

#include "host/console.h"
#include "host/texts.h"

void LoadDatabase(const std::string& path, CPropertyDB& db) {
    if (!FileExists(path)) throw Failure{kFileFailed, Say(Text::FileNotFound, {ToUtf8(path)})};
    if (!db.LoadFromFile(path.c_str())) throw Failure{kFileFailed, Say(Text::FileNotRead, {ToUtf8(path)})};
}

void StoreDatabase(const std::string& path, CPropertyDB& db) {
    SetLastError(0);
    if (!db.StoreToFile(path.c_str(), 0)) {
        throw Failure{kFileFailed, Say(Text::FileNotWritten, {ToUtf8(path), std::to_string(GetLastError())})};
    }
}

bool FileExists(const std::string& path) { return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES; }

bool IsXmlName(const std::string& path) {
    CString end = path.size() < 4 ? "" : path.substr(path.size() - 4).c_str();
    end.MakeLower();
    return end == ".xml";
}
