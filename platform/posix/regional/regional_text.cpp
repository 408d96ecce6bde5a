#include "platform/posix/regional/regional_text_internal.h"

#include "platform/posix/text/text_internal.h"

namespace orvik::detail {
namespace {
char32_t Said(UChar32 c) {
    if (HouseIsUtf8()) return static_cast<char32_t>(c);
    return c == 0x202F ? 0xA0u : c == 0x2212 ? U'-' : static_cast<char32_t>(c);
}
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

icu::UnicodeString WithoutDirectionMarks(icu::UnicodeString text) {
    for (const char16_t mark : {u'\u200E', u'\u200F', u'\u061C'}) text.findAndReplace(mark, icu::UnicodeString());
    return text;
}
}  // namespace orvik::detail
