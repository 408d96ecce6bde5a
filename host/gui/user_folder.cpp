#include "host/gui/user_folder.h"

#include "platform/win32.h"

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
