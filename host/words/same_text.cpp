#include "host/words/same_text.h"

#include "platform/letters.h"

std::string LooksOf(std::string_view text) {
    constexpr std::string_view kMicroSign = "\u00B5", kMu = "\u03BC";  // Unicode keeps these two apart
    std::string looks = OrvikComposed(text);
    for (size_t at = 0; (at = looks.find(kMicroSign, at)) != looks.npos;) looks.replace(at, kMicroSign.size(), kMu);
    return looks;
}

bool LookTheSame(std::string_view a, std::string_view b) { return a == b || LooksOf(a) == LooksOf(b); }
