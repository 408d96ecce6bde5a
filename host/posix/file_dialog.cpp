#include "host/gui/file_dialog.h"

bool HasFileDialogs() { return false; }

std::optional<std::string> AskFileToOpen(HWND, const std::string&, const std::string&) { return std::nullopt; }

std::optional<std::string> AskFileToSave(HWND, const std::string&, const std::string&, const std::string&, const std::string&) {
    return std::nullopt;
}
