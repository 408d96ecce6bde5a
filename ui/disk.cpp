#include "ui/disk.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "afx/format_string.h"
#include "afx/message_box.h"
#include "res/ids.h"

namespace {
constexpr int kMaxDirectory = 255;  // characters
constexpr DWORD kUnreadable = 0xFFFFFFFF;

const char* PathOf(const char* name) { return name != nullptr ? name : ""; }

char Upper(char letter) { return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 32) : letter; }

bool IsWanted(DWORD attributes, eDIRSPECIFIER kind) {
    const bool directory = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    return kind == dirAll || (kind == dirFilesOnly && !directory) || (kind == dirDirectoriesOnly && directory);
}

// Why a copy failed, in the user's words.
CString Reason(DWORD error) {
    CString reason;
    switch (error) {
        case ERROR_ACCESS_DENIED:
            reason.LoadString(IDS_FILE_ACCESS_DENIED);
            break;
        case ERROR_FILE_EXISTS:
            reason.LoadString(IDS_FILE_EXISTS);
            break;
        case ERROR_DISK_FULL:
            reason.LoadString(IDS_FILE_DISK_FULL);
            break;
        default:
            reason.Format("Error code: %d", static_cast<int>(error));
    }
    return reason;
}
}  // namespace

int CDisk::Access(const char* path, eACCESS_MODE mode) { return _access(PathOf(path), mode) == 0; }

int CDisk::GetDir(CString& dir) {
    char text[kMaxDirectory + 1];
    if (_getcwd(text, sizeof text) == nullptr) return 0;
    dir = text;
    if (dir.IsEmpty() || dir[dir.GetLength() - 1] != '\\') dir += '\\';
    return 1;
}

int CDisk::ChDir(const char* path) {
    std::string folder = PathOf(path);
    if (folder.empty()) return 0;
    const int drive = Upper(folder[0]) - 64;
    if (drive < 1 || drive > 26) return 0;  // what the change of drive would refuse
    const size_t length = folder.size();
    if (length >= 2 && folder[length - 1] == '\\' && folder[length - 2] != ':') folder.pop_back();
    if (_getdrive() != drive && _chdrive(drive) != 0) return 0;
    if (_chdir(folder.c_str()) != 0) return 0;
    return static_cast<DWORD>(FreeSpace(folder[0])) != kUnreadable;
}

void CDisk::ListDir(const char* pattern, CStringArray& names, int sort, eDIRSPECIFIER kind) {
    names.RemoveAll();
    WIN32_FIND_DATAA entry;
    const HANDLE search = FindFirstFileExA(PathOf(pattern), FindExInfoBasic, &entry, FindExSearchNameMatch, nullptr, 0);
    if (search == INVALID_HANDLE_VALUE) return;
    do {
        if (IsWanted(entry.dwFileAttributes, kind)) names.Add(entry.cFileName);
    } while (FindNextFileA(search, &entry));
    FindClose(search);
    if (sort == 0) return;
    std::sort(names.GetData(), names.GetData() + names.GetSize(),
              [](const CString& a, const CString& b) { return a.Compare(b) < 0; });
}

int CDisk::CopyFileA(const char* source, const char* target) {
    source = PathOf(source), target = PathOf(target);
    // Whole paths are compared, though the message speaks of directories; kept on purpose.
    if (lstrcmpiA(target, source) == 0) {
        CString same;
        same.LoadString(IDS_FILE_SAME);
        AfxMessageBox(same, MB_ICONHAND);
        return 0;
    }
    if (::CopyFileA(source, target, TRUE)) return 1;
    const CString reason = Reason(GetLastError());
    CString message;
    AfxFormatString1(message, IDS_FILE_NOT_COPIED, reason);
    AfxMessageBox(message, MB_ICONHAND);
    return 0;
}

LONG CDisk::FreeSpace(char drive) {
    const char root[] = {drive, ':', '\\', 0};
    DWORD sectorsPerCluster = 0, bytesPerSector = 0, freeClusters = 0, clusters = 0;
    if (!GetDiskFreeSpaceA(root, &sectorsPerCluster, &bytesPerSector, &freeClusters, &clusters))
        return static_cast<LONG>(kUnreadable);
    return static_cast<LONG>(sectorsPerCluster * bytesPerSector * freeClusters);
}
