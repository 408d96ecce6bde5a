#include "time/digits_internal.h"
#include "time/integer_text_internal.h"
#include "time/local_nls_tools.h"
#include "time/locale_cache.h"
#include "time/span_text.h"
#include "time/span_units_internal.h"

using namespace orvik::detail;

namespace {

// Sets of fields.
constexpr int kSeconds = 2, kMinutes = 4, kHours = 8, kDays = 16;
constexpr int kHoursToMinutes = kHours | kMinutes, kHoursToSeconds = kHoursToMinutes | kSeconds,
              kDaysToMinutes = kDays | kHoursToMinutes, kDaysToSeconds = kDays | kHoursToSeconds;

// Microseconds.
constexpr uint64_t kInHour = 3'600'000'000, kInMinute = 60'000'000, kInSecond = 1'000'000, kInMillisecond = 1'000;

// Reads what digits there are, at most `most`; whether another one follows is the caller's business.
uint64_t TakeNumber(const char*& cursor, int most) {
    int value = 0;
    CLocalNlsTools::sInt(cursor, &value, most);
    return static_cast<uint64_t>(value);
}

// Total hours; a number that no span holds is read as the first of those.
uint64_t TakeHours(const char*& cursor) {
    constexpr uint64_t kTooMany = kLowestMagnitude / kInHour + 1;
    uint64_t hours = 0;
    for (int digit; (digit = TakeDigit(cursor)) >= 0;)
        if (hours < kTooMany) hours = hours * 10 + static_cast<uint64_t>(digit);
    return hours < kTooMany ? hours : kTooMany;
}

bool HasDays(const char* cursor, const Separator& dateSep) {
    SkipLetters(cursor, 3);
    return dateSep.Take(cursor);
}

}  // namespace

int _NlsGetLongTimeSpan(const char* text, CVXTTimeSpan& span) {
    const char* cursor = text ? text : "";
    const Separator &dateSep = TheLocaleCache().date, &timeSep = TheLocaleCache().time;
    CLocalNlsTools::eatWhite(cursor);
    const bool negative = TakeMinus(cursor);
    uint64_t hours = 0;
    if (HasDays(cursor, dateSep)) {
        hours = TakeNumber(cursor, 3) * 24;
        if (!dateSep.Take(cursor)) return 0;
        hours += TakeNumber(cursor, 2);
    } else {
        hours = TakeHours(cursor);
    }
    if (!timeSep.Take(cursor)) return 0;
    const uint64_t minutes = TakeNumber(cursor, 2);
    if (IsDigitAt(cursor)) return 0;
    uint64_t seconds = 0, milliseconds = 0;
    if (timeSep.Take(cursor)) {
        seconds = TakeNumber(cursor, 2);
        if (TheLocaleCache().decimal.Take(cursor) || TakeAscii(cursor, '.') || TakeAscii(cursor, ','))
            milliseconds = TakeNumber(cursor, 3);
    } else if (*cursor) {
        return 0;
    }
    const uint64_t sum = hours * kInHour + minutes * kInMinute + seconds * kInSecond + milliseconds * kInMillisecond;
    if (sum > kLowestMagnitude || (sum == kLowestMagnitude && !negative)) return 0;
    span.Set(static_cast<__int64>(negative ? 0 - sum : sum), TST_MICROSECONDS);
    return 1;
}

int _NlsGetLongOrShortTimeSpan(const char* text, CVXTTimeSpan& span) {
    return _NlsGetLongTimeSpan(text, span) || _NlsGetShortTimeSpan(text, span, 0);
}

int _NlsSetLongTimeSpan(CString& text, const CVXTTimeSpan& span, int fields) {
    if (fields != kHoursToMinutes && fields != kHoursToSeconds && fields != kDaysToMinutes) fields = kDaysToSeconds;
    const Separator &dateSep = TheLocaleCache().date, &timeSep = TheLocaleCache().time;
    const __int64 count = span.CvtToInt64();
    const uint64_t seconds = SpanMagnitude(count) / kInSecond, hours = seconds / 3'600;
    text = std::string_view();  // keeps its memory
    if (count < 0) text += TheLocaleCache().minus;
    if ((fields & kDays) && dateSep.ascii != 0) {
        AppendInteger(text, hours / 24, 3);
        text += dateSep.Text();
        AppendInteger(text, hours % 24, 2);
    } else {
        // Three digits of hours and a separator that is the date's as well would read as days.
        const bool looksLikeDays = dateSep == timeSep && hours >= 100 && hours <= 999;
        AppendInteger(text, hours, looksLikeDays ? 4 : 2);
    }
    text += timeSep.Text();
    AppendInteger(text, seconds / 60 % 60, 2);
    if (fields & kSeconds) {
        text += timeSep.Text();
        AppendInteger(text, seconds % 60, 2);
    }
    SpellDigits(text);
    return 1;
}

int _NlsSetTimeSpan(CString& text, const CVXTTimeSpan& span) { return _NlsSetLongTimeSpan(text, span, kDaysToSeconds); }

int _NlsFormatTimeSpan(CString& text, const CVXTTimeSpan& span, int layout, int) {
    static constexpr int kFields[] = {kDaysToSeconds, kDaysToMinutes, kHoursToSeconds, kHoursToMinutes};
    if (layout < TST_MICROSECONDS || layout > RF_HM) return 0;
    if (layout >= RF_DAYS_HMS) return _NlsSetLongTimeSpan(text, span, kFields[layout - RF_DAYS_HMS]);
    auto selector = static_cast<CVXTTimeSpanType>(TST_EXACTLY + layout);
    return _NlsSetShortTimeSpan(text, span, &selector, -1);
}
