// Between ICU's text and this house's, for regional settings.
// Any thread.
#pragma once

#include <unicode/unistr.h>

#include <string>

namespace orvik::detail {
// Characters that this house's text lacks become "?"; where that is Windows-1252 the narrow no-break space of modern locale data
// becomes the no-break space 0xA0, and the mathematical minus the hyphen.
std::string HouseFromUnicode(const icu::UnicodeString& text);
// Whether none of them becomes "?" there.
bool CanBeSaid(const icu::UnicodeString& text);
icu::UnicodeString WithoutDirectionMarks(icu::UnicodeString text);
}  // namespace orvik::detail
