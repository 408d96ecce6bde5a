#include "host/words/plain_digits.h"

#include "time/number_text.h"

namespace {
// The sign of ASCII whose wide form (U+FF01 to U+FF5E) stands there; 0 for others.
char NarrowForm(std::string_view text) {
    if (text.size() < 3 || text[0] != '\xEF') return 0;
    const unsigned second = static_cast<unsigned char>(text[1]), third = static_cast<unsigned char>(text[2]);
    const unsigned wide = 0xF000 | (second & 0x3F) << 6 | (third & 0x3F);
    return wide > 0xFF00 && wide < 0xFF5F ? static_cast<char>(wide - 0xFEE0) : '\0';
}
}  // namespace

std::string WithPlainDigits(std::string_view text) {
    CString digits(std::string(text).c_str());
    NlsToAsciiDigits(digits);
    std::string plain;
    for (std::string_view rest = digits.GetView(); !rest.empty();) {
        const char narrow = NarrowForm(rest);
        plain += narrow != 0 ? narrow : rest[0];
        rest.remove_prefix(narrow != 0 ? 3 : 1);
    }
    return plain;
}
