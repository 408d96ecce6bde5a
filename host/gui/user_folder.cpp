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
}  // namespace

std::string EnvironmentText(const char* name) {
    char text[4096];
    const DWORD length = GetEnvironmentVariableA(name, text, sizeof text);
    return length > 0 && length < sizeof text ? std::string(text, length) : std::string();
}

bool IsFolder(const std::string& path) {
    const DWORD attributes = GetFileAttributesA(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

void MakeFolders(const std::string& folder) {
    for (size_t at = 1; at != std::string::npos;) {
        at = folder.find_first_of("/\\", at + 1);
        const std::string part = folder.substr(0, at);
        if (!IsFolder(part)) CreateDirectoryA(part.c_str(), nullptr);
    }
}

std::vector<std::string> KeptLines(const std::string& name) {
    std::vector<std::string> lines;
    const std::string folder = StateFolder();
    if (folder.empty()) return lines;
    const HANDLE file = CreateFileA((folder + "/" + name).c_str(), GENERIC_READ,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return lines;
    std::string text(kLongest, 0);
    DWORD read = 0;
    if (!ReadFile(file, text.data(), kLongest, &read, nullptr)) read = 0;
    CloseHandle(file);
    text.resize(read);
    for (size_t at = 0, end; (end = text.find('\n', at)) != std::string::npos; at = end + 1) {
        std::string house;
        if (end > at && FromUtf8(text.substr(at, end - at), house)) lines.push_back(house);
    }
    return lines;
}

void KeepLines(const std::string& name, const std::vector<std::string>& lines) {
    const std::string folder = StateFolder();
    if (folder.empty()) return;
    std::string text;
    for (const std::string& line : lines) {
        if (line.find('\n') == std::string::npos) text += ToUtf8(line) + "\n";
    }
    MakeFolders(folder);
    orvik::detail::ReplaceWholeFile(folder + "/" + name, text);  // without it nothing is kept, and nothing else is lost
}
