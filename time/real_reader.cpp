#include "time/real_reader_internal.h"

#include <cfloat>

#include "time/local_nls_tools.h"
#include "time/locale_cache.h"
#include "time/number_text.h"

namespace orvik::detail {
namespace {

constexpr int kExponentLimit = 308;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsSeparator(char c, char separator) { return c == separator && separator != 0; }

bool IsGrouped(const char* begin, const char* end, char thousandSep) {
    int digits = 0;
    while (end != begin) {
        if (*--end != thousandSep)
            ++digits;
        else if (digits % 3 != 0)
            return false;
    }
    return true;
}

// Factor by factor: the roundings of a power of ten at once would be others.
void Scale(double& value, double factor, int times) {
    for (; times >= 8; times -= 8) value = value * factor * factor * factor * factor * factor * factor * factor * factor;
    for (; times > 0; --times) value *= factor;
}

}  // namespace

bool ReadReal(const char*& cursor, char decimalSep, char thousandSep, double& value) {
    value = 0;
    const char* at = cursor;
    while (*at == ' ') ++at;
    const bool negative = *at == '-', hasSign = negative || *at == '+';
    if (hasSign) ++at;
    cursor = at;
    if (!hasSign && !IsDigit(*at) && !IsSeparator(*at, decimalSep)) return false;

    double read = 0;
    if (!IsSeparator(*at, decimalSep)) {
        const char* const whole = at;
        bool separated = false;
        for (;; ++at) {
            if (IsDigit(*at))
                read = read * 10 + (*at - '0');
            else if (IsSeparator(*at, thousandSep))
                separated = true;
            else
                break;
        }
        if (separated && !IsGrouped(whole, at, thousandSep)) {
            value = read;
            cursor = at;
            return false;
        }
    }
    if (IsSeparator(*at, decimalSep)) {
        double weight = 0.1;
        for (++at; IsDigit(*at); ++at, weight *= 0.1) read += (*at - '0') * weight;
    }
    value = negative ? -read : read;
    if (*at == 'e' || *at == 'E') {
        ++at;
        const bool down = *at == '-';
        if (down || *at == '+') ++at;
        int exponent = 0;
        const bool any = IsDigit(*at);
        for (; IsDigit(*at); ++at)
            if (exponent < kExponentLimit) exponent = exponent * 10 + (*at - '0');
        cursor = at;
        if (!any || exponent >= kExponentLimit) return false;
        Scale(value, down ? 0.1 : 10.0, exponent);
    }
    cursor = at;
    return true;
}

}  // namespace orvik::detail

using namespace orvik::detail;

int _NlsGetReal(const char* text, double& value, const char* suffix) {
    const char* cursor = text ? text : "";
    if (!ReadReal(cursor, NlsGetDecimalSep(), NlsGetThousandSep(), value)) return 0;
    CLocalNlsTools::eatWhite(cursor);
    if (suffix) {
        while (*cursor && *cursor == *suffix) ++cursor, ++suffix;
        CLocalNlsTools::eatWhite(cursor);
    }
    return *cursor == 0;
}

int _NlsGetReal(const char* text, float& value, const char* suffix) {
    double wide = 0;
    const int result = _NlsGetReal(text, wide, suffix);
    if (wide < -double{FLT_MAX} || wide > double{FLT_MAX}) return 0;
    value = static_cast<float>(wide);
    return result;
}

int CLocalNlsTools::GetReal(const char* text, char decimalSep, char thousandSep, double& value) {
    const char* cursor = text ? text : "";
    return ReadReal(cursor, decimalSep, thousandSep, value) && *cursor == 0;
}

int _NlsGetMaxFixed(const char* picture, double& max) {
    max = 0;
    const char* at = picture ? picture : "";
    for (; *at == '#'; ++at) max = max * 10 + 9;
    const auto behind = [](const char* position) { return *position ? position + 1 : position; };
    if (const char* separator = behind(at); *separator && *separator == NlsGetDecimalSep()) {
        at = separator + 1;
        for (double step = 0.9; *at == '#'; ++at, step /= 10) max += step;
    }
    return *behind(at) == 0;
}
