// The module's texts and images as plain tables, for the home whose loader knows no resources.
// Constant data; any thread.
#pragma once

#include <cstddef>
#include <span>

namespace orvik::detail {

struct EmbeddedText {
    unsigned id;
    const char* english;  // both UTF-8, zero-terminated
    const char* swedish;
};

struct EmbeddedImage {
    unsigned id;
    bool cursor;                 // else an icon
    const unsigned char* first;  // the whole .cur or .ico file
    const unsigned char* end;
};

std::span<const EmbeddedText> EmbeddedTexts();
std::span<const EmbeddedImage> EmbeddedImages();

}  // namespace orvik::detail
