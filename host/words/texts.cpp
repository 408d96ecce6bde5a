#include "host/words/texts.h"

#include <algorithm>

#include "platform/house_text.h"

namespace {
struct Pair {
    const char* english;
    const char* swedish;
};
constexpr Pair kTexts[] = {
#define HOST_TEXT(name, english, swedish) {english, swedish},
#include "host/words/texts.def"
#undef HOST_TEXT
};

bool IsSwedish() {
    constexpr LANGID kPrimary = 0x3FF, kSwedish = 0x1D;
    static const bool swedish = (GetUserDefaultUILanguage() & kPrimary) == kSwedish;
    return swedish;
}

// The word that a "{1:one|many}" at `at` stands for, and its length; 0 where there is none.
size_t Plural(std::string_view pattern, size_t at, std::initializer_list<std::string_view> arguments, std::string_view& word) {
    const size_t end = pattern.find('}', at), bar = pattern.find('|', at);
    if (pattern[at] != '{' || end == std::string_view::npos || bar > end || pattern[at + 2] != ':') return 0;
    const auto place = static_cast<size_t>(pattern[at + 1] - '1');
    if (place >= arguments.size()) return 0;
    word = arguments.begin()[place] == "1" ? pattern.substr(at + 3, bar - at - 3) : pattern.substr(bar + 1, end - bar - 1);
    return end - at + 1;
}
}  // namespace

std::string Say(Text text, std::initializer_list<std::string_view> arguments) {
    const Pair& pair = kTexts[static_cast<size_t>(text)];
    const std::string_view pattern = IsSwedish() ? pair.swedish : pair.english;
    std::string out;
    for (size_t i = 0; i < pattern.size(); ++i) {
        std::string_view word;
        if (const size_t length = Plural(pattern, i, arguments, word)) {
            out += word;
            i += length - 1;
            continue;
        }
        const size_t place = i + 1 < pattern.size() ? static_cast<size_t>(pattern[i + 1] - '1') : arguments.size();
        if (pattern[i] == '%' && place < arguments.size()) {
            out += arguments.begin()[place];
            ++i;
        } else {
            out += pattern[i];
        }
    }
    return out;
}

std::string Reason(unsigned long error) {
    switch (error) {
        case ERROR_PATH_NOT_FOUND:
            return Say(Text::ReasonNoFolder);
        case ERROR_ACCESS_DENIED:
        case ERROR_WRITE_PROTECT:
            return Say(Text::ReasonDenied);
        case ERROR_FILE_EXISTS:
        case ERROR_ALREADY_EXISTS:
            return Say(Text::ReasonExists);
        case ERROR_TOO_MANY_OPEN_FILES:
            return Say(Text::ReasonManyFiles);
        case ERROR_HANDLE_DISK_FULL:
        case ERROR_DISK_FULL:
            return Say(Text::ReasonDiskFull);
        case ERROR_BAD_FORMAT:
        case ERROR_BAD_EXE_FORMAT:
            return Say(Text::ReasonDamaged);
        default:
            return Say(Text::ReasonOther, {std::to_string(error)});
    }
}

std::string ToUtf8(std::string_view text) { return OrvikUtf8FromText(text); }
bool FromUtf8(std::string_view utf8, std::string& text) { return OrvikTextFromUtf8(utf8, text); }
