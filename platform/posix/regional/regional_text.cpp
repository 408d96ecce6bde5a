#include "platform/posix/regional/regional_text_internal.h"

#include "platform/posix/text/text_internal.h"

namespace orvik::detail {
namespace {
int ByteOf(UChar32 c) {
    if (c == 0x202F) c = 0xA0;
    if (c == 0x2212) c = '-';
    return ByteFromUnicode(static_cast<char32_t>(c));
}
}  // namespace

std::string AnsiFromUnicode(const icu::UnicodeString& text) {
    std::string out;
    for (int32_t i = 0; i < text.length(); i = text.moveIndex32(i, 1)) {
        const int byte = ByteOf(text.char32At(i));
        out += byte < 0 ? '?' : static_cast<char>(byte);
    }
    return out;
}

bool CanBeSaid(const icu::UnicodeString& text) {
    for (int32_t i = 0; i < text.length(); i = text.moveIndex32(i, 1))
        if (ByteOf(text.char32At(i)) < 0) return false;
    return true;
}
}  // namespace orvik::detail
