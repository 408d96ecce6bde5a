#include "platform/arguments.h"

#include <cstring>

// The run-time library has already brought the words into the system's narrow code page.
DWORD OrvikArgumentText(const char* word, char* out, DWORD size) {
    const size_t length = std::strlen(word);
    if (length >= size) return static_cast<DWORD>(length) + 1;
    std::memcpy(out, word, length + 1);
    return static_cast<DWORD>(length);
}

BOOL OrvikArgumentsAreWhole() {
    const wchar_t* line = GetCommandLineW();
    BOOL replaced = FALSE;
    const int size = WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, line, -1, nullptr, 0, nullptr, &replaced);
    return size > 0 && !replaced;
}
