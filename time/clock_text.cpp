#include "time/clock_text.h"

#include <algorithm>
#include <cstring>

#include "time/integer_text_internal.h"
#include "time/local_nls_tools.h"
#include "time/locale_cache.h"

using namespace orvik::detail;

namespace {

struct Clock {
    int hour = 0, minute = 0, second = 0, millisecond = 0;
};

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

bool TakeSeparator(const char*& cursor, char separator) {
    if (separator == 0 || *cursor != separator) return false;
    ++cursor;
    return true;
}

// Thousandths by their places: "5" is 500.
int TakeThousandths(const char*& cursor) {
    int value = 0;
    for (int weight = 100; weight > 0 && IsDigit(*cursor); weight /= 10) value += (*cursor++ - '0') * weight;
    return value;
}

bool BeginsWith(const char* text, const CString& designator) {
    return std::strncmp(text, designator, static_cast<size_t>(designator.GetLength())) == 0;
}

// The designator that ends the text, if it has one.
bool TakeDesignator(const char*& cursor, int& hour) {
    const LocaleCache& cache = TheLocaleCache();
    const bool afternoon = BeginsWith(cursor, cache.afternoon);
    if ((!afternoon && !BeginsWith(cursor, cache.morning)) || hour > 12) return false;
    const CString& other = afternoon ? cache.morning : cache.afternoon;
    cursor += std::min(static_cast<size_t>(other.GetLength()), std::strlen(cursor));
    if (afternoon && hour < 12) hour += 12;
    if (!afternoon && hour == 12) hour = 0;
    return true;
}

bool ReadClock(const char* cursor, Clock& clock) {
    using Tools = CLocalNlsTools;
    const char separator = NlsGetTimeSep();
    Tools::eatWhite(cursor);
    if (!Tools::sInt(cursor, &clock.hour, 2) || !TakeSeparator(cursor, separator)) return false;
    if (!Tools::sInt(cursor, &clock.minute, 2) || !TakeSeparator(cursor, separator)) return false;
    if (!Tools::sInt(cursor, &clock.second, 2)) return false;
    if (TakeSeparator(cursor, NlsGetDecimalSep()) || TakeSeparator(cursor, ',') || TakeSeparator(cursor, '.'))
        clock.millisecond = TakeThousandths(cursor);
    Tools::eatWhite(cursor);
    if (*cursor) {
        if (!TakeDesignator(cursor, clock.hour)) return false;
        Tools::eatWhite(cursor);
        if (*cursor) return false;
    }
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
    if (bMilliseconds) {
        text += TheLocaleCache().decimalSep;
        AppendInteger(text, static_cast<int>(local.wMilliseconds), 3);
    }
    return 1;
}

int _NlsGetTime(const char* text, CVXTTime& time) {
    Clock clock;
    if (!ReadClock(text ? text : "", clock)) return 0;
    time.SetTime(clock.hour, clock.minute, clock.second, clock.millisecond);
    return 1;
}
