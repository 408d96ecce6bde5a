// As the desktop's settings of folders have it ("user-dirs.dirs").
#include <fstream>

#include "host/gui/user_folder.h"

namespace {
// XDG_DOCUMENTS_DIR="$HOME/Documents", or an absolute path; empty without such a line.
std::string NamedIn(const std::string& settings, const std::string& home) {
    constexpr char kKey[] = "XDG_DOCUMENTS_DIR=\"", kHome[] = "$HOME";
    std::ifstream file(settings);
    for (std::string line; std::getline(file, line);) {
        if (!line.starts_with(kKey) || line.size() <= sizeof kKey || line.back() != '"') continue;
        std::string folder = line.substr(sizeof kKey - 1, line.size() - sizeof kKey);
        if (folder.starts_with(kHome)) folder.replace(0, sizeof kHome - 1, home);
        return folder;
    }
    return {};
}
}  // namespace

std::string DocumentsFolder() {
    const std::string home = EnvironmentText("HOME"), config = EnvironmentText("XDG_CONFIG_HOME");
    const std::string named = NamedIn((config.empty() ? home + "/.config" : config) + "/user-dirs.dirs", home);
    if (!named.empty() && IsFolder(named)) return named;
    return !home.empty() && IsFolder(home + "/Documents") ? home + "/Documents" : home;
}
