#include "host/gui/unsaved_recording.h"

#include <algorithm>
#include <memory>

#include "host/gui/user_folder.h"
#include "platform/win32.h"
#include "record/recording_file.h"

namespace {
std::string Folder() {
    if (const std::string chosen = EnvironmentText("ORVIK_UNSAVED"); !chosen.empty()) return chosen;
    std::string base = EnvironmentText("LOCALAPPDATA");
    if (base.empty()) base = EnvironmentText("XDG_DATA_HOME");
    if (base.empty() && !EnvironmentText("HOME").empty()) base = EnvironmentText("HOME") + "/.local/share";
    return base.empty() ? std::string() : base + "/OrvikHost";
}
}  // namespace

std::string NewUnsavedRecording() {
    const std::string folder = Folder();
    if (folder.empty()) return {};
    MakeFolders(folder);
    if (!IsFolder(folder)) return {};
    SYSTEMTIME t;
    GetSystemTime(&t);
    for (int number = 1; number < 1000; ++number) {
        char name[64];
        std::snprintf(name, sizeof name, "/unsaved-%04u%02u%02uT%02u%02u%02uZ-%d.rec", t.wYear, t.wMonth, t.wDay, t.wHour,
                      t.wMinute, t.wSecond, number);
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
