#include "host/gui/file_dialog.h"

#include <algorithm>

#include "platform/screen.h"

namespace {
std::optional<std::string> Ask(BOOL(WINAPI* dialog)(LPOPENFILENAMEA), HWND owner, const std::string& title, std::string kinds,
                               DWORD flags, const std::string& folder, const std::string& extension, const std::string& suggestion,
                               DWORD kind) {
    std::replace(kinds.begin(), kinds.end(), '|', '\0');
    kinds.append(2, '\0');
    char path[4096] = {};
    suggestion.copy(path, sizeof path - 1);
    OPENFILENAMEA question = {};
    question.lStructSize = sizeof question;
    question.hwndOwner = owner;
    question.lpstrTitle = title.c_str();
    question.lpstrFilter = kinds.c_str();
    question.nFilterIndex = kind + 1;
    question.lpstrFile = path;
    question.nMaxFile = sizeof path;
    question.lpstrInitialDir = folder.empty() ? nullptr : folder.c_str();
    question.lpstrDefExt = extension.empty() ? nullptr : extension.c_str();
    question.Flags = flags | OFN_NOCHANGEDIR | OFN_HIDEREADONLY | OFN_EXPLORER;
    return dialog(&question) ? std::optional<std::string>(path) : std::nullopt;
}
}  // namespace

bool HasFileDialogs() { return OrvikHasScreen() != FALSE; }

std::optional<std::string> AskFileToOpen(HWND owner, const std::string& title, const std::string& kinds,
                                         const std::string& folder) {
    return Ask(GetOpenFileNameA, owner, title, kinds, OFN_FILEMUSTEXIST | OFN_PATHMUSTEXIST, folder, {}, {}, 0);
}

std::optional<std::string> AskFileToSave(HWND owner, const std::string& title, const std::string& kinds,
                                         const std::string& extension, const std::string& suggestion, DWORD kind) {
    return Ask(GetSaveFileNameA, owner, title, kinds, OFN_OVERWRITEPROMPT | OFN_PATHMUSTEXIST, {}, extension, suggestion, kind);
}
