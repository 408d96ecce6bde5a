#include "host/gui/unsaved_recording.h"

#include <algorithm>
#include <memory>

#include "platform/win32.h"
#include "record/recording_file.h"

namespace {
std::string Environment(const char* name) {
    char text[4096];
    const DWORD length = GetEnvironmentVariableA(name, text, sizeof text);
    return length > 0 && length < sizeof text ? std::string(text, length) : std::string();
}

bool IsFolder(const std::string& path) {
    const DWORD attributes = GetFileAttributesA(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

// The folder and those above it, made if they are not there.
std::string Folder() {
    if (const std::string chosen = Environment("ORVIK_UNSAVED"); !chosen.empty()) return chosen;
    std::string base = Environment("LOCALAPPDATA");
    if (base.empty()) base = Environment("XDG_DATA_HOME");
    if (base.empty() && !Environment("HOME").empty()) base = Environment("HOME") + "/.local/share";
    return base.empty() ? std::string() : base + "/OrvikHost";
}

void MakeFolder(const std::string& folder) {
    for (size_t at = 1; at != std::string::npos;) {
        at = folder.find_first_of("/\\", at + 1);
        const std::string part = folder.substr(0, at);
        if (!IsFolder(part)) CreateDirectoryA(part.c_str(), nullptr);
    }
}
}  // namespace

std::string NewUnsavedRecording() {
    const std::string folder = Folder();
    if (folder.empty()) return {};
    MakeFolder(folder);
    if (!IsFolder(folder)) return {};
    SYSTEMTIME t;
    GetSystemTime(&t);
    for (int number = 1; number < 1000; ++number) {
        char name[64];
        std::snprintf(name, sizeof name, "/unsaved-%04u%02u%02uT%02u%02u%02uZ-%d.rec", t.wYear, t.wMonth, t.wDay, t.wHour, t.wMinute,
                      t.wSecond, number);
        if (GetFileAttributesA((folder + name).c_str()) == INVALID_FILE_ATTRIBUTES) return folder + name;
    }
    return {};
}

std::vector<std::string> UnsavedRecordings() {
    const std::string folder = Folder();
    std::vector<std::string> found;
    if (folder.empty()) return found;
    WIN32_FIND_DATAA data;
    const HANDLE search = FindFirstFileA((folder + "/unsaved-*.rec").c_str(), &data);
    if (search == INVALID_HANDLE_VALUE) return found;
    do {
        const std::string path = folder + "/" + data.cFileName;
        std::unique_ptr<IRecordingFile> held;
        if (CRecordingFile::OpenToWrite(path, CRecordingFile::kForceEvery, held) == ERROR_SUCCESS) found.push_back(path);
    } while (FindNextFileA(search, &data));
    FindClose(search);
    std::sort(found.begin(), found.end());
    return found;
}
