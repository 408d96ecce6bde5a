#include <unicode/uchar.h>

#include "platform/house_text_internal.h"

namespace orvik::detail {
char32_t LowerCase(char32_t character) {
    if (character < 0x80) return character >= 'A' && character <= 'Z' ? character + 32 : character;
    return static_cast<char32_t>(u_tolower(static_cast<UChar32>(character)));
}
char32_t UpperCase(char32_t character) {
    if (character < 0x80) return character >= 'a' && character <= 'z' ? character - 32 : character;
    return static_cast<char32_t>(u_toupper(static_cast<UChar32>(character)));
}
}  // namespace orvik::detail
