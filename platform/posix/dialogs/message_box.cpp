#include "platform/posix/dialogs/message_box.h"

#include "platform/posix/dialogs/message_box_internal.h"
#include "platform/posix/kernel/errors.h"
#include "platform/posix/text/text_internal.h"
#include "platform/posix/window/screen_internal.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <string>

int MessageBoxA(HWND owner, LPCSTR text, LPCSTR caption, UINT type) {
    static constexpr int kButtons[][3] = {
        {IDOK, 0, 0},     {IDOK, IDCANCEL, 0},   {IDABORT, IDRETRY, IDIGNORE}, {IDYES, IDNO, IDCANCEL},
        {IDYES, IDNO, 0}, {IDRETRY, IDCANCEL, 0}};
    const UINT set = type & MB_TYPEMASK;
    if (set >= std::size(kButtons)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    const UINT wanted = (type & MB_DEFMASK) >> 8;
    const bool there = wanted < 3 && kButtons[set][wanted] != 0;
    const int chosen = kButtons[set][there ? wanted : 0];
    const std::string title = caption != nullptr ? caption : "Error", said = text != nullptr ? text : "";
    if (orvik::detail::OpenScreenNow()) {
        const auto count = static_cast<size_t>(std::find(std::begin(kButtons[set]), std::end(kButtons[set]), 0) - kButtons[set]);
        return orvik::detail::AskInWindow(owner, said, title, {kButtons[set], count}, chosen);
    }
    std::fputs((orvik::detail::Utf8FromHouse(title) + ": " + orvik::detail::Utf8FromHouse(said) + "\n").c_str(), stderr);
    return chosen;
}
