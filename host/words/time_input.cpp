#include "host/words/time_input.h"

#include <cstdio>
#include <vector>

#include "host/words/console.h"
#include "host/words/plain_digits.h"
#include "host/words/texts.h"
#include "time/clock_text.h"
#include "time/date_text.h"
#include "time/locale_cache.h"
#include "time/time_point.h"

namespace {
std::vector<int> NumbersIn(const std::string& given) {
    const std::string text = WithPlainDigits(given);
    std::vector<int> numbers;
    for (size_t i = 0; i < text.size();) {
        if (!IsDigit(text[i])) {
            ++i;
            continue;
        }
        int number = 0;
        for (; i < text.size() && IsDigit(text[i]); ++i) number = number < 100'000 ? number * 10 + (text[i] - '0') : number;
        numbers.push_back(number);
    }
    return numbers;
}

// The readers put impossible dates right and leave what follows alone. Here they are mistakes: the numbers must be the date's.
bool IsDate(const std::string& typed, const CVXTTime& read) {
    CString text;
    _NlsSetShortDate(text, read);
    const std::vector<int> wanted = NumbersIn(text.GetString()), given = NumbersIn(typed);
    return wanted == given;
}

// With the seconds that the reader wants: "10:50" becomes "10:50:00", "3:50 PM" "3:50:00 PM".
std::string WithSeconds(std::string clock) {
    const char separator = NlsGetTimeSep();
    const size_t first = clock.find(separator);
    if (separator == 0 || first == std::string::npos || clock.find(separator, first + 1) != std::string::npos) return clock;
    size_t end = first + 1;
    while (end < clock.size() && IsDigit(clock[end])) ++end;
    return clock.insert(end, std::string(1, separator) + "00");
}

bool ReadClock(const std::string& typed, CVXTTime& time) {
    const std::string clock = WithSeconds(WithPlainDigits(typed));
    const std::vector<int> given = NumbersIn(clock);
    if (given.size() < 3 || given.size() > 4 || given[0] > 23 || given[1] > 59 || given[2] > 59) return false;
    if (const char first = clock[clock.find_first_not_of(' ')]; first == NlsGetTimeSep() || first == '-') return false;
    return _NlsGetTime(clock.c_str(), time) != 0;
}

std::optional<__int64> FromStandardForm(const std::string& text) {
    int year, month, day, hour, minute, second, used = 0;
    if (std::sscanf(text.c_str(), "%4d-%2d-%2dT%2d:%2d:%2d%n", &year, &month, &day, &hour, &minute, &second, &used) != 6 ||
        used != 19)
        return {};
    for (const char c : text.substr(0, 19)) {
        if (c == ' ' || c == '+') return {};
    }
    SYSTEMTIME fields = {};
    fields.wYear = static_cast<WORD>(year), fields.wMonth = static_cast<WORD>(month), fields.wDay = static_cast<WORD>(day);
    fields.wHour = static_cast<WORD>(hour), fields.wMinute = static_cast<WORD>(minute),
    fields.wSecond = static_cast<WORD>(second);
    FILETIME file = {};
    if (!SystemTimeToFileTime(&fields, &file)) return {};
    __int64 part = 0, weight = 100'000;
    size_t at = 19;
    if (at < text.size() && text[at] == '.') {
        for (++at; at < text.size() && IsDigit(text[at]); ++at, weight /= 10) part += (text[at] - '0') * weight;
    }
    if (at == text.size()) {
        CVXTTime local;
        if (local.SetSystemTime(&fields) == 0) return {};
        local.SetTime(hour, minute, second, 0);
        return local.GetBinaryTime() + part;
    }
    if (text.substr(at) != "Z") return {};
    constexpr __int64 kFrom1601 = 11'644'473'600'000'000LL;
    const auto ticks = static_cast<__int64>((static_cast<unsigned __int64>(file.dwHighDateTime) << 32) | file.dwLowDateTime);
    return ticks / 10 - kFrom1601 + part;
}
}  // namespace

std::optional<__int64> TimeFromText(const std::string& text) {
    if (const auto time = FromStandardForm(text)) return time;
    // A date's picture may hold spaces: each one may be where the time of day begins.
    for (size_t space = text.find(' '); space != std::string::npos; space = text.find(' ', space + 1)) {
        CVXTTime time;
        time.SetTime(0, 0, 0, 0);
        const std::string date = text.substr(0, space);
        if (_NlsGetShortDate(date.c_str(), time) && IsDate(date, time) && ReadClock(text.substr(space + 1), time))
            return time.GetBinaryTime();
    }
    CVXTTime midnight;
    midnight.SetTime(0, 0, 0, 0);
    if (_NlsGetShortDate(text.c_str(), midnight) && IsDate(text, midnight)) return midnight.GetBinaryTime();
    return {};
}

__int64 NeedTime(const std::string& text) {
    if (const auto time = TimeFromText(text)) return *time;
    throw Failure{kWrongUse, Say(Text::NotATime, {ToUtf8(text)})};
}
