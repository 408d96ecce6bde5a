#include <unicode/uchar.h>

#include "platform/letters.h"
#include "platform/letters_internal.h"
#include "platform/posix/text/letters_internal.h"

size_t OrvikNextLetter(std::string_view text, size_t at) { return orvik::detail::NextLetter(text, at); }
size_t OrvikPreviousLetter(std::string_view text, size_t at) { return orvik::detail::PreviousLetter(text, at); }

size_t orvik::detail::ColumnsOf(char32_t character) {
    const auto c = static_cast<UChar32>(character);
    if ((U_GET_GC_MASK(c) & (U_GC_MN_MASK | U_GC_ME_MASK | U_GC_CF_MASK)) != 0) return 0;
    const int width = u_getIntPropertyValue(c, UCHAR_EAST_ASIAN_WIDTH);
    return width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2 : 1;
}
