#include "res/embedded.h"

// The assembler copies each file in; images.def names them once for both homes.
#define ORVIK_INCLUDE_FILE(id, file)                   \
    __asm__(                                           \
        ".pushsection .rodata\n"                       \
        ".balign 4\n"                                  \
        ".hidden orvik_image_" #id                     \
        "\n"                                           \
        ".globl orvik_image_" #id                      \
        "\n"                                           \
        "orvik_image_" #id                             \
        ":\n"                                          \
        ".incbin \"" file                              \
        "\"\n"                                         \
        ".hidden orvik_image_end_" #id                 \
        "\n"                                           \
        ".globl orvik_image_end_" #id                  \
        "\n"                                           \
        "orvik_image_end_" #id                         \
        ":\n"                                          \
        ".byte 0\n"                                    \
        ".popsection\n");                              \
    extern "C" const unsigned char orvik_image_##id[]; \
    extern "C" const unsigned char orvik_image_end_##id[];
#define ORVIK_CURSOR(id, file) ORVIK_INCLUDE_FILE(id, file)
#define ORVIK_ICON(id, file) ORVIK_INCLUDE_FILE(id, file)
#include "res/images.def"
#undef ORVIK_CURSOR
#undef ORVIK_ICON

namespace orvik::detail {
namespace {

#define ORVIK_STRING(id, english, swedish) {id, english, swedish},
constexpr EmbeddedText kTexts[] = {
#include "res/strings.def"
};
#undef ORVIK_STRING

#define ORVIK_CURSOR(id, file) {id, true, orvik_image_##id, orvik_image_end_##id},
#define ORVIK_ICON(id, file) {id, false, orvik_image_##id, orvik_image_end_##id},
const EmbeddedImage kImages[] = {
#include "res/images.def"
};
#undef ORVIK_CURSOR
#undef ORVIK_ICON

}  // namespace

std::span<const EmbeddedText> EmbeddedTexts() { return kTexts; }
std::span<const EmbeddedImage> EmbeddedImages() { return kImages; }

}  // namespace orvik::detail
