#include "time/time_span.h"

#include <algorithm>
#include <cmath>

#include "afx/archive.h"
#include "res/ids.h"
#include "time/integer_internal.h"
#include "time/locale_cache.h"
#include "time/span_units_internal.h"

using namespace orvik::detail;

IMPLEMENT_SERIAL(CVXTTimeSpan, CObject, 1)

namespace {

constexpr __int64 kMillion = 1'000'000;

__int64 FromFields(__int64 days, int hours, int minutes, int seconds, int milliseconds) {
    const __int64 allHours = WrapAdd(WrapMul(days, 24), hours);
    return WrapAdd(
        WrapMul(allHours, kSpanUnits[TST_HOURS]),
        minutes * kSpanUnits[TST_MINUTES] + seconds * kSpanUnits[TST_SECONDS] + milliseconds * kSpanUnits[TST_MILLISECONDS]);
}

CString ErrorText() {
    CString text;
    text.LoadString(IDS_SPAN_ERROR);
    return text;
}

// Layouts 1 to 6: the whole count of the unit and, unless it is 0, the rest as decimals.
CString Decimal(char sign, unsigned __int64 magnitude, CVXTTimeSpanType unit) {
    const auto size = static_cast<unsigned __int64>(kSpanUnits[unit]);
    const unsigned __int64 whole = magnitude / size;
    unsigned __int64 rest = magnitude - whole * size;
    if (unit > TST_SECONDS) rest /= size / kMillion;  // millionths of the unit
    CString text;
    text.Format("%c%I64u", sign, whole);
    if (rest == 0) return text;
    const std::string_view separator = TheLocaleCache().decimal.Text();
    text += separator;
    text.AppendFormat(unit == TST_MILLISECONDS ? "%03I64u" : "%06I64u", rest);
    int length = text.GetLength();
    while (length > 0 && text.GetAt(length - 1) == '0') --length;
    if (!separator.empty() && text.GetView().substr(0, static_cast<size_t>(length)).ends_with(separator))
        length -= static_cast<int>(separator.size());
    return text.Left(length);
}

CString Words(unsigned __int64 rest) {
    CString text;
    for (int unit = TST_WEEKS; unit >= TST_SECONDS; --unit) {
        const auto size = static_cast<unsigned __int64>(kSpanUnits[unit]);
        const unsigned __int64 count = rest / size;
        if (count == 0 && text.IsEmpty()) continue;
        CString word;
        word.LoadString(IDS_UNIT_WEEKS + static_cast<UINT>(TST_WEEKS - unit));
        if (unit < TST_DAYS && !text.IsEmpty()) text += ' ';
        text.AppendFormat("%d %s", static_cast<int>(count), word.GetString());
        if (unit == TST_WEEKS) text += ' ';
        rest -= count * size;
        if (rest == 0) return text;
    }
    return ErrorText();  // below a second, or with a part of a second left
}

}  // namespace

CVXTTimeSpan::CVXTTimeSpan() = default;
CVXTTimeSpan::CVXTTimeSpan(const __int64& value, CVXTTimeSpanType unit) { Set(value, unit); }
CVXTTimeSpan::CVXTTimeSpan(const __int64& days, int hours, int minutes, int seconds, int milliseconds)
    : m_span(FromFields(days, hours, minutes, seconds, milliseconds)) {}
CVXTTimeSpan::CVXTTimeSpan(double days) {
    double whole = 0;
    const double fraction = std::modf(days, &whole);
    m_span =
        WrapAdd(WrapMul(ToInt64(whole), kSpanUnits[TST_DAYS]), ToInt64(fraction * static_cast<double>(kSpanUnits[TST_DAYS])));
}
CVXTTimeSpan::CVXTTimeSpan(const CVXTTimeSpan& other) : CObject(), m_span(other.m_span) {}
CVXTTimeSpan& CVXTTimeSpan::operator=(const CVXTTimeSpan& other) {
    m_span = other.m_span;
    return *this;
}

void CVXTTimeSpan::Set(const __int64& value, CVXTTimeSpanType unit) {
    if (IsSpanUnit(unit)) m_span = WrapMul(value, kSpanUnits[unit]);
}
void CVXTTimeSpan::Set(const __int64& days, int hours, int minutes, int seconds, int milliseconds) {
    m_span = FromFields(days, hours, minutes, seconds, milliseconds);
}

double CVXTTimeSpan::CvtToReal() const {
    const __int64 day = kSpanUnits[TST_DAYS];
    return static_cast<double>(m_span / day) + static_cast<double>(m_span % day) / static_cast<double>(day);
}

CVXTTimeSpan& CVXTTimeSpan::operator+=(const CVXTTimeSpan& other) { return *this = *this + other; }
CVXTTimeSpan& CVXTTimeSpan::operator-=(const CVXTTimeSpan& other) { return *this = *this - other; }
CVXTTimeSpan CVXTTimeSpan::operator+(const CVXTTimeSpan& other) const { return {Raw{}, WrapAdd(m_span, other.m_span)}; }
CVXTTimeSpan CVXTTimeSpan::operator-(const CVXTTimeSpan& other) const { return {Raw{}, WrapSub(m_span, other.m_span)}; }
CVXTTimeSpan CVXTTimeSpan::operator-() const { return {Raw{}, WrapSub(0, m_span)}; }
CVXTTimeSpan& CVXTTimeSpan::operator*=(const __int64& factor) { return *this = *this * factor; }
CVXTTimeSpan& CVXTTimeSpan::operator*=(long factor) { return *this = *this * static_cast<__int64>(factor); }
CVXTTimeSpan CVXTTimeSpan::operator*(const __int64& factor) const { return {Raw{}, WrapMul(m_span, factor)}; }
CVXTTimeSpan& CVXTTimeSpan::operator/=(const __int64& divisor) { return *this = *this / divisor; }
CVXTTimeSpan CVXTTimeSpan::operator/(const __int64& divisor) const { return {Raw{}, m_span / divisor}; }

CVXTTimeSpan CVXTTimeSpan::Align(const CVXTTimeSpan& unit) const { return {Raw{}, m_span - m_span % unit.m_span}; }
void CVXTTimeSpan::AlignTo(const CVXTTimeSpan& unit) { *this = Align(unit); }

__int64 CVXTTimeSpan::GetTotal(CVXTTimeSpanType unit) const { return IsSpanUnit(unit) ? m_span / kSpanUnits[unit] : 0; }

long CVXTTimeSpan::Get(CVXTTimeSpanType unit) const {
    if (!IsSpanUnit(unit)) return 0;
    const __int64 within = unit == TST_WEEKS ? m_span : m_span % kSpanUnits[unit + 1];
    return static_cast<long>(within / kSpanUnits[unit]);
}

__int64 CVXTTimeSpan::GetFrac(CVXTTimeSpanType unit, int digits) const {
    if (!IsSpanUnit(unit) || unit == TST_MICROSECONDS) return 0;
    // Half of the scale, added to the scaled rest before the division, is half a microsecond more to divide.
    const __int64 halves = m_span % kSpanUnits[unit] * 2 + 1;
    SpanDecimals decimals(SpanMagnitude(halves), unit);
    __int64 fraction = 0;
    for (int i = std::min(digits, 64); i > 0; --i) fraction = WrapAdd(WrapMul(fraction, 10), decimals.Next());
    return halves < 0 ? WrapSub(0, fraction) : fraction;
}

int CVXTTimeSpan::Scan(const char*) { return 0; }

CString CVXTTimeSpan::Format(ERelFormat layout) const {
    const char sign = m_span < 0 ? '-' : ' ';
    const unsigned __int64 magnitude = SpanMagnitude(m_span);
    const unsigned __int64 seconds = magnitude / kMillion;
    // Fields are 32-bit numbers, whatever the span.
    const auto days = static_cast<int>(seconds / 86'400), hours = static_cast<int>(seconds / 3'600);
    const auto hour = static_cast<int>(seconds / 3'600 % 24), minute = static_cast<int>(seconds / 60 % 60),
               second = static_cast<int>(seconds % 60);
    CString text;
    switch (layout) {
        case RF_MICROSECONDS:
            text.Format("%c%I64u", sign, magnitude);
            return text;
        case RF_MILLISECONDS:
        case RF_SECONDS:
        case RF_MINUTES:
        case RF_HOURS:
        case RF_DAYS:
        case RF_WEEKS:
            return Decimal(sign, magnitude, static_cast<CVXTTimeSpanType>(layout));
        case RF_DAYS_HMS:
            text.Format("%c%03d - %02d:%02d:%02d", sign, days, hour, minute, second);
            return text;
        case RF_DAYS_HM:
            text.Format("%c%03d - %02d:%02d", sign, days, hour, minute);
            return text;
        case RF_HMS:
            text.Format("%c%02d:%02d:%02d", sign, hours, minute, second);
            return text;
        case RF_HM:
            text.Format("%c%02d:%02d", sign, hours, minute);
            return text;
        case RF_WORDS:
            return Words(magnitude);
        default:
            return ErrorText();
    }
}

void CVXTTimeSpan::Serialize(CArchive& ar) {
    CObject::Serialize(ar);
    if (ar.IsStoring())
        ar << m_span;
    else
        ar >> m_span;
}
