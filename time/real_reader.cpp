#include "time/real_reader_internal.h"

#include <cfloat>

#include "time/digits_internal.h"
#include "time/local_nls_tools.h"
#include "time/locale_cache.h"
#include "time/number_text.h"

namespace orvik::detail {
namespace {

constexpr int kExponentLimit = 308;

// Whether behind every thousand separator there is a multiple of three digits.
class Grouping {
public:
    // Both are told how many digits there were so far.
    void PutSeparator(size_t digits) {
        if (m_front == kNone) m_front = digits % 3;
        m_uneven |= m_front != digits % 3;
    }
    bool IsRight(size_t digits) const { return m_front == kNone || (!m_uneven && m_front == digits % 3); }

private:
    static constexpr size_t kNone = 3;
    size_t m_front = kNone;  // in front of the first separator, modulo 3
    bool m_uneven = false;
};

// Factor by factor: the roundings of a power of ten at once would be others.
void Scale(double& value, double factor, int times) {
    for (; times >= 8; times -= 8) value = value * factor * factor * factor * factor * factor * factor * factor * factor;
    for (; times > 0; --times) value *= factor;
}

}  // namespace

bool ReadReal(const char*& cursor, const Separator& decimalSep, const Separator& thousandSep, double& value) {
    value = 0;
    const char* at = cursor;
    while (*at == ' ') ++at;
    const int sign = TakeSign(at);
    const bool negative = sign < 0;
    cursor = at;
    double read = 0;
    bool inDecimals = decimalSep.Take(at);
    if (!inDecimals) {
        if (sign == 0 && !IsDigitAt(at)) return false;
        Grouping grouping;
        size_t digits = 0;
        for (;;) {
            const char* const run = at;
            for (int digit; (digit = TakeAsciiDigit(at)) >= 0;) read = read * 10 + digit;
            digits += static_cast<size_t>(at - run);
            if (thousandSep.Take(at))
                grouping.PutSeparator(digits);
            else if (const int native = TakeDigit(at); native >= 0)
                read = read * 10 + native, ++digits;
            else
                break;
        }
        if (!grouping.IsRight(digits)) {
            value = read;
            cursor = at;
            return false;
        }
        inDecimals = decimalSep.Take(at);
    }
    if (inDecimals) {
        double weight = 0.1;
        for (int digit; (digit = TakeDigit(at)) >= 0; weight *= 0.1) read += digit * weight;
    }
    value = negative ? -read : read;
    if (*at == 'e' || *at == 'E') {
        ++at;
        const bool down = TakeSign(at) < 0;
        int exponent = 0;
        const bool any = IsDigitAt(at);
        for (int digit; (digit = TakeDigit(at)) >= 0;)
            if (exponent < kExponentLimit) exponent = exponent * 10 + digit;
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
    const LocaleCache& cache = TheLocaleCache();
    if (!ReadReal(cursor, cache.decimal, cache.thousand, value)) return 0;
    SkipBlanks(cursor);
    if (suffix) {
        while (*cursor && *cursor == *suffix) ++cursor, ++suffix;
        SkipBlanks(cursor);
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
    return ReadReal(cursor, Separator(decimalSep), Separator(thousandSep), value) && *cursor == 0;
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
