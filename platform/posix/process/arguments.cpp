#include "platform/arguments.h"

#include "platform/posix/files/path_internal.h"

std::vector<std::string> OrvikArguments(int argc, const char* const* argv) {
    std::vector<std::string> words;
    for (int i = 1; i < argc; ++i) words.push_back(OrvikArgumentText(argv[i]));
    return words;
}

BOOL OrvikArgumentsAreWhole() { return TRUE; }

std::string OrvikArgumentText(const std::string& typed) { return orvik::detail::HousePath(typed.c_str()); }
