#include "host/gui/recent_files.h"

#include <algorithm>

#include "host/gui/user_folder.h"
#include "host/words/texts.h"
#include "platform/file_replacement.h"
#include "platform/win32.h"

namespace {
constexpr DWORD kLongest = 64 * 1024;  // bytes of the file that are looked at

std::string StateFolder() {
    if (const std::string base = EnvironmentText("APPDATA"); !base.empty()) return base + "/Orvik";
    if (const std::string base = EnvironmentText("XDG_STATE_HOME"); !base.empty()) return base + "/orvik";
    const std::string home = EnvironmentText("HOME");
    return home.empty() ? std::string() : home + "/.local/state/orvik";
}

std::string FullPath(const std::string& path) {
    char full[4096];
    const DWORD length = GetFullPathNameA(path.c_str(), sizeof full, full, nullptr);
    return length > 0 && length < sizeof full ? std::string(full, length) : path;
}
}  // namespace

std::vector<std::string> RecentFiles::All() const {
    std::vector<std::string> paths;
    const std::string folder = StateFolder();
    if (folder.empty()) return paths;
    const HANDLE file = CreateFileA((folder + "/" + m_name).c_str(), GENERIC_READ,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return paths;
    std::string text(kLongest, 0);
    DWORD read = 0;
    if (!ReadFile(file, text.data(), kLongest, &read, nullptr)) read = 0;
    CloseHandle(file);
    text.resize(read);
    for (size_t at = 0, end; paths.size() < kMost && (end = text.find('\n', at)) != std::string::npos; at = end + 1) {
        std::string house;
        if (end > at && FromUtf8(text.substr(at, end - at), house)) paths.push_back(house);
    }
    return paths;
}

void RecentFiles::Add(const std::string& path) const { Change(FullPath(path), true); }
void RecentFiles::Remove(const std::string& path) const { Change(path, false); }

void RecentFiles::Change(const std::string& path, bool keep) const {
    const std::string folder = StateFolder();
    if (folder.empty() || path.find('\n') != std::string::npos) return;
    std::vector<std::string> paths = All();
    paths.erase(std::remove(paths.begin(), paths.end(), path), paths.end());
    if (keep) paths.insert(paths.begin(), path);
    if (paths.size() > kMost) paths.resize(kMost);
    std::string text;
    for (const std::string& one : paths) text += ToUtf8(one) + "\n";
    MakeFolders(folder);
    orvik::detail::ReplaceWholeFile(folder + "/" + m_name, text);  // without it there is no list, and nothing else is lost
}
