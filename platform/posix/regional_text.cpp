#include "platform/posix/regional_text_internal.h"

#include "platform/posix/text_internal.h"

namespace orvik::detail {
std::string AnsiFromUnicode(const icu::UnicodeString& text) {
    std::string out;
    for (int32_t i = 0; i < text.length(); i = text.moveIndex32(i, 1)) {
        UChar32 c = text.char32At(i);
        if (c == 0x202F) c = 0xA0;
        if (c == 0x2212) c = '-';
        const int byte = ByteFromUnicode(static_cast<char32_t>(c));
        out += byte < 0 ? '?' : static_cast<char>(byte);
    }
    return out;
}
}  // namespace orvik::detail
