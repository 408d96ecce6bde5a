#include "host/gui/unsaved_recording.h"

#include <algorithm>
#include <cstdio>
#include <random>

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

// A name that nothing has; empty if there can be none.
std::string NewNameIn(const std::string& folder) {
    if (folder.empty()) return {};
    MakeFolders(folder);
    if (!IsFolder(folder)) return {};
    SYSTEMTIME t;
    GetSystemTime(&t);
    char begun[64];
    std::snprintf(begun, sizeof begun, "/unsaved-%04u%02u%02uT%02u%02u%02uZ-", t.wYear, t.wMonth, t.wDay, t.wHour, t.wMinute,
                  t.wSecond);
    // Two programs may choose theirs at the same moment.
    std::random_device random;
    for (int attempt = 0; attempt < 1000; ++attempt) {
        const std::string name = folder + begun + std::to_string(random() % 1'000'000) + ".rec";
        if (GetFileAttributesA(name.c_str()) == INVALID_FILE_ATTRIBUTES) return name;
    }
    return {};
}
}  // namespace

std::string NewUnsavedRecording() { return NewNameIn(Folder()); }

std::string NewPassingRecording() {
    char folder[MAX_PATH + 1] = {};
    const DWORD length = GetTempPathA(sizeof folder, folder);
    return length > 0 && length < sizeof folder ? NewNameIn(folder + std::string("OrvikHost")) : std::string();
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
        if (CRecordingFile::CheckFree(path) == ERROR_SUCCESS) found.push_back(path);
    } while (FindNextFileA(search, &data));
    FindClose(search);
    std::sort(found.begin(), found.end());
    return found;
}
