#include <shlobj.h>

#include "host/gui/user_folder.h"
#include "host/words/texts.h"

std::string DocumentsFolder() {
    wchar_t path[MAX_PATH] = L"";
    if (SHGetFolderPathW(nullptr, CSIDL_PERSONAL, nullptr, SHGFP_TYPE_CURRENT, path) != S_OK)
        return EnvironmentText("USERPROFILE");
    char utf8[4 * MAX_PATH] = "";
    std::string house;
    const int length = WideCharToMultiByte(CP_UTF8, 0, path, -1, utf8, static_cast<int>(sizeof utf8), nullptr, nullptr);
    return length > 0 && FromUtf8(utf8, house) ? house : EnvironmentText("USERPROFILE");
}
