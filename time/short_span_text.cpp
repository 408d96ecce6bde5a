#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

#include "res/ids.h"
#include "time/digits_internal.h"
#include "time/integer_text_internal.h"
#include "time/local_nls_tools.h"
#include "time/locale_cache.h"
#include "time/span_text.h"
#include "time/span_units_internal.h"
#include "time/span_words_internal.h"

using namespace orvik::detail;

namespace {

constexpr int kAutomaticDigits = -1, kMostAutomaticDigits = 3;

// In ASCII.
std::string TakeDigits(const char*& cursor) {
    std::string digits;
    for (int digit; (digit = TakeDigit(cursor)) >= 0;) digits += static_cast<char>('0' + digit);
    return digits;
}

bool IsZero(std::string_view digits) { return digits.find_first_not_of('0') == std::string_view::npos; }

// Whether ";" + word + ";" stands in the list.
bool Lists(const CString& list, std::string_view word) {
    const std::string_view all = list.GetView();
    for (size_t at = all.find(word); at != std::string_view::npos; at = all.find(word, at + 1)) {
        const size_t end = at + word.size();
        if (at > 0 && all[at - 1] == ';' && end < all.size() && all[end] == ';') return true;
    }
    return false;
}

std::optional<CVXTTimeSpanType> UnitOf(std::string_view word, const SpanWords& words) {
    for (size_t i = 0; i < words.size(); ++i)
        if (Lists(*words[i], word)) return static_cast<CVXTTimeSpanType>(TST_WEEKS - static_cast<int>(i));
    return std::nullopt;
}

// whole * unit + 0.fraction * unit, truncated to microseconds; nothing beyond what the lowest span is.
std::optional<uint64_t> Microseconds(std::string_view whole, std::string_view fraction, CVXTTimeSpanType type) {
    const auto unit = static_cast<uint64_t>(kSpanUnits[type]), limit = kLowestMagnitude / unit;
    uint64_t count = 0;
    for (const char c : whole) {
        const auto digit = static_cast<uint64_t>(c - '0');
        if (digit > limit || count > (limit - digit) / 10) return std::nullopt;  // before 64 bits wrap
        count = count * 10 + digit;
    }
    // From the last decimal on, so that truncating on the way changes nothing in the end.
    uint64_t part = 0;
    if (type != TST_MICROSECONDS)
        for (size_t i = fraction.size(); i-- > 0;) part = (static_cast<uint64_t>(fraction[i] - '0') * unit + part) / 10;
    const uint64_t sum = count * unit + part;
    return sum <= kLowestMagnitude ? std::optional(sum) : std::nullopt;
}

SpanWords ModuleWords() {
    const NlsTexts& texts = TheNlsTexts();
    return {&texts.weeks, &texts.days, &texts.hours, &texts.minutes, &texts.seconds, &texts.milliseconds, &texts.microseconds};
}

// The unit for a span of at least one `unit`, which is seconds or larger.
int BestFrom(int unit, int selector) {
    if (selector == TST_LARGEST || selector == TST_LARGEST_EXACT) return unit;
    switch (unit) {
        case TST_WEEKS:
            return selector < TST_DAYS ? TST_DAYS : selector;
        case TST_DAYS:
            return selector < TST_HOURS ? TST_HOURS : selector;
        case TST_HOURS:
            return selector < TST_MINUTES ? TST_MINUTES : selector;
        case TST_MINUTES:
            return selector > TST_HOURS ? TST_HOURS : selector < TST_SECONDS ? TST_SECONDS : selector;
        default:
            return selector > TST_MINUTES ? TST_MINUTES : selector < TST_MILLISECONDS ? TST_MILLISECONDS : selector;
    }
}

int BestBelowSecond(__int64 span, int selector) {
    const bool largest = selector == TST_LARGEST, exact = selector == TST_LARGEST_EXACT;
    if (span < kSpanUnits[TST_MILLISECONDS] || (exact && span % kSpanUnits[TST_MILLISECONDS] != 0))
        return largest || exact ? TST_MICROSECONDS : selector < TST_SECONDS ? selector : TST_MILLISECONDS;
    return largest || exact ? TST_MILLISECONDS : selector < TST_MINUTES ? selector : TST_SECONDS;
}

}  // namespace

namespace orvik::detail {

int ReadShortSpan(const char* text, const SpanWords& words, CVXTTimeSpan& span, int strict) {
    const char* cursor = text ? text : "";
    CLocalNlsTools::eatWhite(cursor);
    const int sign = TakeSign(cursor);
    const bool negative = sign < 0;
    if (sign == 0 && !IsDigitAt(cursor)) return 0;
    const std::string whole = TakeDigits(cursor);
    std::string fraction;
    if (TheLocaleCache().decimal.Take(cursor)) {
        fraction = TakeDigits(cursor);
        if (fraction.empty()) return 0;
    }
    SkipBlanks(cursor);
    const std::string_view rest(cursor), word = rest.substr(0, rest.find(' '));
    if (word.empty()) {
        if (strict || !IsZero(whole) || !IsZero(fraction)) return 0;
        span = CVXTTimeSpan();
        return 1;
    }
    const auto unit = UnitOf(word, words);
    if (!unit) return 0;
    const auto magnitude = Microseconds(whole, fraction, *unit);
    if (!magnitude || (*magnitude == kLowestMagnitude && !negative)) return 0;
    span.Set(static_cast<__int64>(negative ? 0 - *magnitude : *magnitude), TST_MICROSECONDS);
    return 1;
}

}  // namespace orvik::detail

int _NlsGetShortTimeSpan(const char* text, CVXTTimeSpan& span, int strict) {
    return ReadShortSpan(text, ModuleWords(), span, strict);
}

CVXTTimeSpanType _BestType(const CVXTTimeSpan& span, CVXTTimeSpanType type) {
    int selector = type;
    if (selector & TST_EXACTLY) {
        selector &= ~TST_EXACTLY;
        if (selector != TST_LARGEST) return static_cast<CVXTTimeSpanType>(selector);
    }
    const __int64 count = span.CvtToInt64();
    for (int unit = TST_WEEKS; unit >= TST_SECONDS; --unit) {
        if (count < kSpanUnits[unit] || (selector == TST_LARGEST_EXACT && count % kSpanUnits[unit] != 0)) continue;
        return static_cast<CVXTTimeSpanType>(BestFrom(unit, selector));
    }
    return static_cast<CVXTTimeSpanType>(BestBelowSecond(count, selector));
}

int _NlsSetShortTimeSpan(CString& text, const CVXTTimeSpan& span, CVXTTimeSpanType* selector, int digits) {
    const __int64 count = span.CvtToInt64();
    const uint64_t magnitude = SpanMagnitude(count);
    // The lowest span's magnitude is no span; its unit is that of the next one's.
    const CVXTTimeSpan shown(static_cast<__int64>(std::min(magnitude, kLowestMagnitude - 1)), TST_MICROSECONDS);
    const CVXTTimeSpanType unit = _BestType(shown, selector ? *selector : TST_LARGEST);
    if (selector && *selector < TST_LARGEST) *selector = unit;

    text = std::string_view();  // keeps its memory
    if (count < 0) text += TheLocaleCache().minus;
    if (!IsSpanUnit(unit)) return 1;
    const auto size = static_cast<uint64_t>(kSpanUnits[unit]);
    AppendInteger(text, magnitude / size);

    const bool automatic = digits == kAutomaticDigits;
    std::string decimals;
    if (digits > 0 || automatic) {
        SpanDecimals next(magnitude % size * 2 + 1, unit);
        for (int i = automatic ? kMostAutomaticDigits : digits; i > 0; --i)
            decimals += static_cast<char>('0' + (unit == TST_MICROSECONDS ? 0 : next.Next()));
        if (automatic) decimals.erase(decimals.find_last_not_of('0') + 1);
    }
    if (!decimals.empty()) {
        text += TheLocaleCache().decimal.Text();
        text += std::string_view(decimals);
    }
    SpellDigits(text);
    CString abbreviation;
    abbreviation.LoadString(IDS_ABBREVIATION_WEEKS + static_cast<UINT>(TST_WEEKS - unit));
    text += ' ';
    text += abbreviation;
    return 1;
}
