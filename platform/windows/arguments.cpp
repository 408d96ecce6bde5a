#include "platform/arguments.h"

#include <cstring>

// The run-time library has already brought the words into the system's narrow code page.
DWORD OrvikArgumentText(const char* word, char* out, DWORD size) {
    const size_t length = std::strlen(word);
    if (length >= size) return static_cast<DWORD>(length) + 1;
    std::memcpy(out, word, length + 1);
    return static_cast<DWORD>(length);
}
