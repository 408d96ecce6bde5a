#include "time/clock_text.h"

#include "platform/house_text_internal.h"
#include "time/digits_internal.h"
#include "time/integer_text_internal.h"
#include "time/local_nls_tools.h"
#include "time/locale_cache.h"

using namespace orvik::detail;

namespace {

struct Clock {
    int hour = 0, minute = 0, second = 0, millisecond = 0;
};

// A separator and thousandths by their places: "5" is 500.
bool TakeDecimals(const char*& cursor, int& value) {
    if (!TheLocaleCache().decimal.Take(cursor) && !TakeAscii(cursor, ',') && !TakeAscii(cursor, '.')) return false;
    for (int weight = 100, digit; weight > 0 && (digit = TakeDigit(cursor)) >= 0; weight /= 10) value += digit * weight;
    return true;
}

enum class Half { None, Morning, Afternoon };

// The designator at the cursor.
Half TakeHalf(const char*& cursor) {
    const LocaleCache& cache = TheLocaleCache();
    if (TakeText(cursor, cache.afternoon.GetView())) return Half::Afternoon;
    return TakeText(cursor, cache.morning.GetView()) ? Half::Morning : Half::None;
}

// The one in front of the hour, where some countries have it; a Windows-1252 process looks for it at the end alone.
Half TakeLeadingHalf(const char*& cursor) {
    if (!HouseIsUtf8() || TheLocaleCache().morning.IsEmpty() || TheLocaleCache().afternoon.IsEmpty()) return Half::None;
    const Half half = TakeHalf(cursor);
    SkipBlanks(cursor);
    return half;
}

// The designator at the end. In a Windows-1252 process the move is by the other one's length.
Half TakeEndingHalf(const char*& cursor) {
    const char* behind = cursor;
    const Half half = TakeHalf(behind);
    const LocaleCache& cache = TheLocaleCache();
    if (HouseIsUtf8())
        cursor = behind;
    else
        SkipLetters(cursor, (half == Half::Afternoon ? cache.morning : cache.afternoon).GetLength());
    return half;
}

bool ReadClock(const char* cursor, Clock& clock) {
    using Tools = CLocalNlsTools;
    const Separator& separator = TheLocaleCache().time;
    Tools::eatWhite(cursor);
    Half half = TakeLeadingHalf(cursor);
    if (!Tools::sInt(cursor, &clock.hour, 2) || !separator.Take(cursor)) return false;
    if (!Tools::sInt(cursor, &clock.minute, 2) || !separator.Take(cursor)) return false;
    if (!Tools::sInt(cursor, &clock.second, 2)) return false;
    const bool decimals = TakeDecimals(cursor, clock.millisecond);
    SkipBlanks(cursor);
    if (*cursor) {
        if (half != Half::None || (half = TakeEndingHalf(cursor)) == Half::None) return false;
        if (HouseIsUtf8() && !decimals) TakeDecimals(cursor, clock.millisecond);  // where the writer puts them
        SkipBlanks(cursor);
        if (*cursor) return false;
    }
    if (half != Half::None && clock.hour > 12) return false;
    if (half == Half::Afternoon && clock.hour < 12) clock.hour += 12;
    if (half == Half::Morning && clock.hour == 12) clock.hour = 0;
    return clock.hour <= 23 && clock.minute <= 59 && clock.second <= 59;
}

}  // namespace

int _NlsSetTime(CString& text, const CVXTTime& time, int bMilliseconds) {
    SYSTEMTIME local;
    time.GetSystemTime(&local);
    char clock[255];
    const int size = ::GetTimeFormatA(LOCALE_USER_DEFAULT, 0, &local, nullptr, clock, sizeof clock);
    if (size == 0) return 0;
    text = std::string_view(clock, static_cast<size_t>(size - 1));
    SpellDigits(text);
    if (bMilliseconds) {
        text += TheLocaleCache().decimalSep;
        const int digits = text.GetLength();
        AppendInteger(text, static_cast<int>(local.wMilliseconds), 3);
        SpellDigits(text, digits);
    }
    return 1;
}

int _NlsGetTime(const char* text, CVXTTime& time) {
    Clock clock;
    if (!ReadClock(text ? text : "", clock)) return 0;
    time.SetTime(clock.hour, clock.minute, clock.second, clock.millisecond);
    return 1;
}
