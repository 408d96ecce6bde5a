#include "host/words/isolated.h"

#include <string_view>

#include "host/words/control_letters.h"
#include "platform/letters.h"

std::string WithoutControls(const std::string& text) {
    constexpr std::string_view kReplacement = "\uFFFD", kLayout = "\t\r\n";
    std::string shown;
    size_t behind = 0;
    for (const ControlLetter& control : FindControls(text)) {
        if (control.code < 0x80 && kLayout.find(static_cast<char>(control.code)) != kLayout.npos) continue;
        shown.append(text, behind, control.at - behind).append(kReplacement);
        behind = control.at + control.length;
    }
    return behind == 0 ? text : shown.append(text, behind);
}

std::string Isolated(std::string text) {
    if (IsPlain(text)) return text;
    text = WithoutControls(text);
    if (!OrvikHasRightToLeft(text)) return text;
    // The last mark keeps what follows from the left where a terminal drops the first one, which has no column before it to sit
    // on, and tells one that goes by a line's first letter that the line is from the left.
    return "\u2068" + text + "\u2069\u200E";
}
