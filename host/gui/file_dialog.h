// The system's questions for a file. House text. Nothing when the user gives up, and where no window comes to a screen:
// HasFileDialogs is false and paths come from the command line. User-interface thread; its messages are handled meanwhile.
#pragma once

#include <optional>
#include <string>

#include "platform/win32.h"

bool HasFileDialogs();
// `kinds` as pairs of a name and a pattern: "Sessions|*.odb;*.xml|All files|*.*".
// It begins in `folder`; in one of the system's choice where that is empty.
std::optional<std::string> AskFileToOpen(HWND owner, const std::string& title, const std::string& kinds,
                                         const std::string& folder = {});
// `extension` without its dot is added to a name that has none; `kind` is the place of the pair that is chosen at first. The user
// has agreed that a file of this name is replaced.
std::optional<std::string> AskFileToSave(HWND owner, const std::string& title, const std::string& kinds,
                                         const std::string& extension, const std::string& suggestion, DWORD kind = 0);
