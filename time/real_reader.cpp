#include "time/real_reader_internal.h"

#include <cfloat>

#include "platform/house_text_internal.h"
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

// What stands at the cursor, taken by bytes.
struct Bytes {
    static int Sign(const char*& at) { return *at == '-' || *at == '+' ? (*at++ == '-' ? -1 : 1) : 0; }
    static int Digit(const char*& at) { return TakeAsciiDigit(at); }
    static bool Take(const Separator& separator, const char*& at) {
        if (*at != separator.ascii || *at == 0) return false;
        ++at;
        return true;
    }
};

// The same by letters: digits of every script, separators and signs beyond ASCII.
struct Letters {
    static int Sign(const char*& at) { return TakeSign(at); }
    static int Digit(const char*& at) { return TakeDigit(at); }
    static bool Take(const Separator& separator, const char*& at) { return separator.Take(at); }
};

// Factor by factor: the roundings of a power of ten at once would be others.
void Scale(double& value, double factor, int times) {
    for (; times >= 8; times -= 8) value = value * factor * factor * factor * factor * factor * factor * factor * factor;
    for (; times > 0; --times) value *= factor;
}

template <class Text>
bool ReadRealOf(const char*& cursor, const Separator& decimalSep, const Separator& thousandSep, double& value) {
    value = 0;
    const char* at = cursor;
    while (*at == ' ') ++at;
    const int sign = Text::Sign(at);
    cursor = at;
    double read = 0;
    bool inDecimals = Text::Take(decimalSep, at);
    if (!inDecimals) {
        const char* behind = at;
        if (sign == 0 && Text::Digit(behind) < 0) return false;
        Grouping grouping;
        size_t digits = 0;
        for (;;) {
            if (const int digit = Text::Digit(at); digit >= 0)
                read = read * 10 + digit, ++digits;
            else if (Text::Take(thousandSep, at))
                grouping.PutSeparator(digits);
            else
                break;
        }
        if (!grouping.IsRight(digits)) {
            value = read;
            cursor = at;
            return false;
        }
        inDecimals = Text::Take(decimalSep, at);
    }
    if (inDecimals) {
        double weight = 0.1;
        for (int digit; (digit = Text::Digit(at)) >= 0; weight *= 0.1) read += digit * weight;
    }
    value = sign < 0 ? -read : read;
    if (*at == 'e' || *at == 'E') {
        ++at;
        const bool down = Text::Sign(at) < 0;
        const char* const begin = at;
        int exponent = 0;
        for (int digit; (digit = Text::Digit(at)) >= 0;)
            if (exponent < kExponentLimit) exponent = exponent * 10 + digit;
        const bool any = at != begin;
        cursor = at;
        if (!any || exponent >= kExponentLimit) return false;
        Scale(value, down ? 0.1 : 10.0, exponent);
    }
    cursor = at;
    return true;
}

}  // namespace

bool ReadReal(const char*& cursor, const Separator& decimalSep, const Separator& thousandSep, double& value) {
    // Bytes are quicker, and all that most texts have. Where they leave off at ASCII or the end, letters would not go further.
    if (decimalSep.letter.empty() && thousandSep.letter.empty()) {
        const char* at = cursor;
        const bool right = ReadRealOf<Bytes>(at, decimalSep, thousandSep, value);
        if (static_cast<unsigned char>(*at) < 0x80 || !HouseIsUtf8()) {
            cursor = at;
            return right;
        }
    }
    return ReadRealOf<Letters>(cursor, decimalSep, thousandSep, value);
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
