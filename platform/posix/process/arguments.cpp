#include "platform/arguments.h"

#include <cstring>
#include <string>

#include "platform/posix/files/path_internal.h"

DWORD OrvikArgumentText(const char* word, char* out, DWORD size) {
    const std::string text = orvik::detail::HousePath(word);
    if (text.size() >= size) return static_cast<DWORD>(text.size()) + 1;
    std::memcpy(out, text.c_str(), text.size() + 1);
    return static_cast<DWORD>(text.size());
}

BOOL OrvikArgumentsAreWhole() { return TRUE; }
