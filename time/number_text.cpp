#include "time/number_text.h"

#include <charconv>
#include <climits>
#include <string>

#include "platform/house_text_internal.h"
#include "time/digits_internal.h"
#include "time/locale_cache.h"
#include "time/separator.h"

using namespace orvik::detail;

CString NlsRealFmt(int n) { return CString('@', n); }

CString NlsRealFmt(int intDigits, int fracDigits) {
    CString picture('#', intDigits);
    if (fracDigits < 1) return picture;
    if (const char separator = NlsGetDecimalSep()) picture += separator;
    picture += CString('#', fracDigits);
    return picture;
}

namespace {
bool IsAscii(std::string_view text) { return AsciiPrefix(text) == text.size(); }

std::string InAsciiDigits(const char* cursor) {
    std::string out;
    while (*cursor) {
        const int digit = TakeDigit(cursor);
        out += digit >= 0 ? static_cast<char>('0' + digit) : *cursor++;
    }
    return out;
}
}  // namespace

void NlsToAsciiDigits(CString& text) {
    if (HouseIsUtf8() && !IsAscii(text.GetView())) text = std::string_view(InAsciiDigits(text));
}
void NlsToOwnDigits(CString& text) { SpellDigits(text); }

int _NlsGetInteger(const CString& text, int& value) {
    std::string spelt;
    std::string_view all = text.GetView();
    if (HouseIsUtf8() && !IsAscii(all)) {
        const char* cursor = text;
        spelt = TakeMinus(cursor) ? "-" : "";
        all = spelt += InAsciiDigits(cursor);
    }
    if (all.empty()) return 0;
    const std::string_view digits = all.substr(all[0] == '-');
    if (digits.find_first_not_of("0123456789") != std::string_view::npos) return 0;
    int number = 0;
    if (std::from_chars(all.data(), all.data() + all.size(), number).ec == std::errc::result_out_of_range)
        number = all[0] == '-' ? INT_MIN : INT_MAX;
    value = number;
    return 1;
}

int _NlsSetInteger(CString& text, int value) {
    char digits[7];
    const auto [end, error] = std::to_chars(digits, digits + sizeof digits, value);
    std::string_view written = error == std::errc() ? std::string_view(digits, static_cast<size_t>(end - digits)) : "";
    text = value < 0 && !written.empty() ? TheLocaleCache().minus.GetView() : std::string_view();
    if (value < 0 && !written.empty()) written.remove_prefix(1);
    text += written;
    SpellDigits(text);
    return 1;
}

int _NlsSetFormat(CString format, const CString& source) {
    format = source;
    return 1;
}

int _NlsGetFormat(const CString& source, CString& format) {
    format = source;
    return 1;
}
