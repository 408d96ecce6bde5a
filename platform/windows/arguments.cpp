#include "platform/arguments.h"

#include <shellapi.h>

#include <memory>

#include "platform/house_text_internal.h"

namespace {
std::string Narrow(const wchar_t* word) {
    const int size = WideCharToMultiByte(CP_UTF8, 0, word, -1, nullptr, 0, nullptr, nullptr);
    std::string text(static_cast<size_t>(size), 0);
    WideCharToMultiByte(CP_UTF8, 0, word, -1, text.data(), size, nullptr, nullptr);
    text.pop_back();
    return text;
}
}  // namespace

// argv went through the system's narrow code page, which a UTF-8 process does not care for.
std::vector<std::string> OrvikArguments(int argc, const char* const* argv) {
    if (!orvik::detail::HouseIsUtf8()) return {argv + (argc > 0 ? 1 : 0), argv + argc};
    std::vector<std::string> words;
    int count = 0;
    const std::unique_ptr<LPWSTR, decltype(&LocalFree)> wide(CommandLineToArgvW(GetCommandLineW(), &count), LocalFree);
    for (int i = 1; i < count; ++i) words.push_back(Narrow(wide.get()[i]));
    return words;
}

BOOL OrvikArgumentsAreWhole() {
    if (orvik::detail::HouseIsUtf8()) return TRUE;
    const wchar_t* line = GetCommandLineW();
    BOOL replaced = FALSE;
    const int size = WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, line, -1, nullptr, 0, nullptr, &replaced);
    return size > 0 && !replaced;
}

std::string OrvikArgumentText(const std::string& typed) {
    return orvik::detail::HouseIsUtf8() ? orvik::detail::Utf8FromHouse(typed) : typed;
}
