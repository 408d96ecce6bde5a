#include "platform/posix/dialogs/message_box.h"

#include "platform/posix/kernel/errors.h"
#include "platform/posix/text/text_internal.h"

#include <cstdio>
#include <iterator>
#include <string>

int MessageBoxA(HWND, LPCSTR text, LPCSTR caption, UINT type) {
    static constexpr int kButtons[][3] = {
        {IDOK, 0, 0},     {IDOK, IDCANCEL, 0},   {IDABORT, IDRETRY, IDIGNORE}, {IDYES, IDNO, IDCANCEL},
        {IDYES, IDNO, 0}, {IDRETRY, IDCANCEL, 0}};
    const UINT set = type & MB_TYPEMASK;
    if (set >= std::size(kButtons)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    const std::string line = orvik::detail::Utf8FromHouse(caption != nullptr ? caption : "Error") + ": " +
                             orvik::detail::Utf8FromHouse(text != nullptr ? text : "") + "\n";
    std::fputs(line.c_str(), stderr);
    const UINT wanted = (type & MB_DEFMASK) >> 8;
    const bool there = wanted < 3 && kButtons[set][wanted] != 0;
    return kButtons[set][there ? wanted : 0];
}
