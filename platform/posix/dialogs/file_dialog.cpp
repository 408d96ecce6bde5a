#include "platform/posix/dialogs/file_dialog.h"

#include <cstring>
#include <filesystem>
#include <optional>

#include "platform/house_text_internal.h"
#include "platform/posix/dialogs/screen_answer_internal.h"
#include "platform/posix/files/path_internal.h"
#include "platform/posix/window/screen_internal.h"
#include "platform/posix/window/window_internal.h"
#include "platform/posix/window/window_place.h"

using namespace orvik::detail;

namespace {
using Choice = std::optional<FileChoice>;

std::vector<FileQuestion::Kind> KindsOf(LPCSTR filter) {
    std::vector<FileQuestion::Kind> kinds;
    while (filter != nullptr && *filter != 0) {
        const LPCSTR patterns = filter + std::strlen(filter) + 1;
        kinds.push_back({Utf8FromHouse(filter), patterns});
        filter = *patterns == 0 ? nullptr : patterns + std::strlen(patterns) + 1;
    }
    return kinds;
}

// What a kind's first pattern ends in, with its dot; nothing for one that says no ending.
std::optional<std::string> ExtensionOf(const FileQuestion& question, size_t kind) {
    if (kind >= question.kinds.size()) return std::nullopt;
    const std::string& patterns = question.kinds[kind].patterns;
    const std::string first = patterns.substr(0, patterns.find(';'));
    if (first.size() < 3 || first[0] != '*' || first[1] != '.' || first.find_first_of("*?", 1) != first.npos) return std::nullopt;
    return first.substr(1);
}

Choice Wait(const FileQuestion& question) {
    const ScreenAnswer<Choice> answer;
    return AskOnScreen(question, answer.Taker()) ? answer.Wait().value_or(std::nullopt) : std::nullopt;
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
    const Asking asking(asked->hwndOwner);
    question.owner = asking.Root();
    Choice choice = Wait(question);
    while (choice && save && asked->lpstrDefExt != nullptr && !std::filesystem::path(choice->path).has_extension()) {
        choice->path += ExtensionOf(question, choice->kind).value_or(std::string(".") + asked->lpstrDefExt);
        std::error_code error;
        if (!question.confirm || !std::filesystem::exists(choice->path, error)) break;
        // Nobody was asked about this name yet: the question comes again, with it in place.
        question.folder = std::filesystem::path(choice->path).parent_path().string();
        question.name = std::filesystem::path(choice->path).filename().string();
        question.kind = choice->kind;
        choice = Wait(question);
    }
    if (!choice) return FALSE;
    asked->nFilterIndex = static_cast<DWORD>(choice->kind) + 1;
    const std::string house = HousePath(choice->path);
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
