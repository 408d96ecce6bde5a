#include "host/words/control_letters.h"

#include <algorithm>

namespace {
unsigned char Byte(std::string_view text, size_t at) { return at < text.size() ? static_cast<unsigned char>(text[at]) : 0; }

// The character at `at`, if it is one that can be a control.
ControlLetter Candidate(std::string_view text, size_t at) {
    const unsigned first = Byte(text, at), second = Byte(text, at + 1), third = Byte(text, at + 2);
    if (first < 0x20 || first == 0x7F) return {at, 1, first};
    if (first == 0xC2 && second >= 0x80 && second < 0xA0) return {at, 2, second};
    if (first == 0xE2 && second == 0x80 && third >= 0xAA && third <= 0xAE) return {at, 3, 0x2000 + (third & 0x3F)};
    if (first == 0xE2 && second == 0x81 && third >= 0xA6 && third <= 0xA9) return {at, 3, 0x2040 + (third & 0x3F)};
    if (first == 0xEF && second == 0xBF && third >= 0xBE) return {at, 3, 0xFFC0 + (third & 0x3F)};
    return {};
}
}  // namespace

std::vector<ControlLetter> FindControls(std::string_view text) {
    constexpr unsigned kFirstIsolate = 0x2066, kEndOfIsolate = 0x2069;
    std::vector<ControlLetter> found, open;
    for (size_t at = 0; at < text.size(); ++at) {
        const ControlLetter control = Candidate(text, at);
        if (control.length == 0) continue;
        if (control.code >= kFirstIsolate && control.code < kEndOfIsolate) {
            open.push_back(control);
        } else if (control.code == kEndOfIsolate && !open.empty()) {
            open.pop_back();
        } else {
            found.push_back(control);
        }
        at += control.length - 1;
    }
    found.insert(found.end(), open.begin(), open.end());
    std::sort(found.begin(), found.end(), [](const ControlLetter& a, const ControlLetter& b) { return a.at < b.at; });
    return found;
}

bool IsPlain(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= 0x20 && c < 0x7F; });
}
