#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include "platform/letters.h"
#include "platform/letters_internal.h"
#include "platform/posix/text/letters_internal.h"

using orvik::detail::Reading;

size_t OrvikNextLetter(std::string_view text, size_t at) { return orvik::detail::NextLetter(text, at); }
size_t OrvikPreviousLetter(std::string_view text, size_t at) { return orvik::detail::PreviousLetter(text, at); }

size_t orvik::detail::ColumnsOf(char32_t character) {
    const auto c = static_cast<UChar32>(character);
    if ((U_GET_GC_MASK(c) & (U_GC_MN_MASK | U_GC_ME_MASK | U_GC_CF_MASK)) != 0) return 0;
    // The parts of a Korean syllable behind its first one share that one's columns.
    const int part = u_getIntPropertyValue(c, UCHAR_HANGUL_SYLLABLE_TYPE);
    if (part == U_HST_VOWEL_JAMO || part == U_HST_TRAILING_JAMO) return 0;
    const int width = u_getIntPropertyValue(c, UCHAR_EAST_ASIAN_WIDTH);
    return width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2 : 1;
}

Reading orvik::detail::ReadingOf(char32_t character) {
    switch (u_charDirection(static_cast<UChar32>(character))) {
        case U_LEFT_TO_RIGHT:
            return Reading::FromLeft;
        case U_RIGHT_TO_LEFT:
        case U_RIGHT_TO_LEFT_ARABIC:
            return Reading::FromRight;
        case U_ARABIC_NUMBER:
            return Reading::ArabicNumber;
        default:
            return Reading::AsNeighbours;
    }
}

std::string orvik::detail::FormC(std::string_view utf8) {
    UErrorCode error = U_ZERO_ERROR;
    const icu::Normalizer2* const form = icu::Normalizer2::getNFCInstance(error);
    if (U_FAILURE(error)) return std::string(utf8);
    const auto text = icu::UnicodeString::fromUTF8(icu::StringPiece(utf8.data(), static_cast<int32_t>(utf8.size())));
    const icu::UnicodeString composed = form->normalize(text, error);
    std::string said;
    return U_FAILURE(error) ? std::string(utf8) : composed.toUTF8String(said);
}
