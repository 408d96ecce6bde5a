#include "platform/posix/dialogs/file_dialog.h"

#include <atomic>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>

#include "platform/house_text_internal.h"
#include "platform/posix/files/path_internal.h"
#include "platform/posix/window/screen_internal.h"
#include "platform/posix/window/window_internal.h"
#include "platform/posix/window/window_place.h"

using namespace orvik::detail;

namespace {
using Path = std::optional<std::string>;

std::vector<FileQuestion::Kind> KindsOf(LPCSTR filter) {
    std::vector<FileQuestion::Kind> kinds;
    while (filter != nullptr && *filter != 0) {
        const LPCSTR patterns = filter + std::strlen(filter) + 1;
        kinds.push_back({Utf8FromHouse(filter), patterns});
        filter = *patterns == 0 ? nullptr : patterns + std::strlen(patterns) + 1;
    }
    return kinds;
}

// Asks, and handles this thread's messages until there is an answer. At the quit message, which stays for the loop outside, there
// is none.
Path Wait(const FileQuestion& question) {
    struct Answer {
        std::atomic<bool> there{false};
        Path path;
    };
    const auto answer = std::make_shared<Answer>();
    const DWORD thread = GetCurrentThreadId();
    if (!AskOnScreen(question, [answer, thread](Path path) {
            answer->path = std::move(path);
            answer->there = true;
            PostThreadMessageA(thread, WM_NULL, 0, 0);
        }))
        return std::nullopt;
    MSG message;
    while (!answer->there) {
        if (GetMessageA(&message, nullptr, 0, 0) <= 0) {
            PostQuitMessage(static_cast<int>(message.wParam));
            return std::nullopt;
        }
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
    return answer->path;
}

BOOL Ask(LPOPENFILENAMEA asked, bool save) {
    if (asked == nullptr || asked->lpstrFile == nullptr || asked->nMaxFile == 0) return Finish(ERROR_INVALID_PARAMETER);
    if (!OpenScreenNow()) return FALSE;
    FileQuestion question;
    question.save = save;
    question.confirm = (asked->Flags & OFN_OVERWRITEPROMPT) != 0;
    question.title = asked->lpstrTitle != nullptr ? Utf8FromHouse(asked->lpstrTitle) : "";
    question.kinds = KindsOf(asked->lpstrFilter);
    question.kind = asked->nFilterIndex > 0 ? asked->nFilterIndex - 1 : 0;
    const std::filesystem::path suggested(SystemPath(asked->lpstrFile));
    question.name = suggested.filename().string();
    question.folder = suggested.has_parent_path()         ? suggested.parent_path().string()
                      : asked->lpstrInitialDir != nullptr ? SystemPath(asked->lpstrInitialDir)
                                                          : "";
    HWND owner = asked->hwndOwner != nullptr ? GetAncestor(asked->hwndOwner, GA_ROOT) : nullptr;
    question.owner = owner;
    if (owner != nullptr && !IsWindowEnabled(owner)) owner = nullptr;
    if (owner != nullptr) EnableWindow(owner, FALSE);
    Path path = Wait(question);
    while (path && save && asked->lpstrDefExt != nullptr && !std::filesystem::path(*path).has_extension()) {
        *path += std::string(".") + asked->lpstrDefExt;
        std::error_code error;
        if (!question.confirm || !std::filesystem::exists(*path, error)) break;
        // Nobody was asked about this name yet: the question comes again, with it in place.
        question.folder = std::filesystem::path(*path).parent_path().string();
        question.name = std::filesystem::path(*path).filename().string();
        path = Wait(question);
    }
    if (owner != nullptr && IsWindow(owner)) {
        EnableWindow(owner, TRUE);
        SetActiveWindow(owner);
    }
    if (!path) return FALSE;
    const std::string house = HousePath(*path);
    if (house.size() >= asked->nMaxFile) return Finish(ERROR_INSUFFICIENT_BUFFER);
    std::memcpy(asked->lpstrFile, house.c_str(), house.size() + 1);
    const std::filesystem::path whole(house);
    asked->nFileOffset = static_cast<WORD>(house.size() - whole.filename().string().size());
    const std::string extension = whole.extension().string();
    asked->nFileExtension = extension.size() > 1 ? static_cast<WORD>(house.size() - extension.size() + 1) : 0;
    return TRUE;
}
}  // namespace

BOOL GetOpenFileNameA(LPOPENFILENAMEA question) { return Ask(question, false); }
BOOL GetSaveFileNameA(LPOPENFILENAMEA question) { return Ask(question, true); }
