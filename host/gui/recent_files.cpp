#include "host/gui/recent_files.h"

#include <algorithm>

#include "host/gui/user_folder.h"
#include "platform/win32.h"

namespace {
std::string FullPath(const std::string& path) {
    char full[4096];
    const DWORD length = GetFullPathNameA(path.c_str(), sizeof full, full, nullptr);
    return length > 0 && length < sizeof full ? std::string(full, length) : path;
}
}  // namespace

std::vector<std::string> RecentFiles::All() const {
    std::vector<std::string> paths = KeptLines(m_name);
    if (paths.size() > kMost) paths.resize(kMost);
    return paths;
}

void RecentFiles::Add(const std::string& path) const { Change(FullPath(path), true); }
void RecentFiles::Remove(const std::string& path) const { Change(path, false); }

void RecentFiles::Change(const std::string& path, bool keep) const {
    if (path.find('\n') != std::string::npos) return;
    std::vector<std::string> paths = All();
    paths.erase(std::remove(paths.begin(), paths.end(), path), paths.end());
    if (keep) paths.insert(paths.begin(), path);
    if (paths.size() > kMost) paths.resize(kMost);
    KeepLines(m_name, paths);
}
