#include "platform/posix/regional/regional_text_internal.h"

#include "platform/posix/text/text_internal.h"

namespace orvik::detail {
namespace {
char32_t Said(UChar32 c) { return c == 0x202F ? 0xA0u : c == 0x2212 ? U'-' : static_cast<char32_t>(c); }
}  // namespace

std::string HouseFromUnicode(const icu::UnicodeString& text) {
    std::string out;
    for (int32_t i = 0; i < text.length(); i = text.moveIndex32(i, 1)) AppendHouse(out, Said(text.char32At(i)));
    return out;
}

bool CanBeSaid(const icu::UnicodeString& text) {
    std::string out;
    for (int32_t i = 0; i < text.length(); i = text.moveIndex32(i, 1))
        if (!AppendHouse(out, Said(text.char32At(i)))) return false;
    return true;
}
}  // namespace orvik::detail
