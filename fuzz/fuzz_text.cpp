// The readers of numbers, dates, times of day and spans, under settings that the input itself chooses: separators and designators
// of up to three arbitrary bytes, arbitrary pictures. Whatever they read is written and read again, and must then have settled.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "fuzz/fuzz_support.h"
#include "platform/win32.h"
#include "time/clock_text.h"
#include "time/date_text.h"
#include "time/local_nls_tools.h"
#include "time/locale_cache.h"
#include "time/number_text.h"
#include "time/span_text.h"

namespace {

// Lines of the input; what is left is the last one.
class Lines {
public:
    Lines(const uint8_t* data, size_t size) : m_rest(reinterpret_cast<const char*>(data), size) {}
    // A zero-terminated copy of its own, so that a look beyond the end is seen.
    const char* Next() {
        const size_t end = m_rest.find('\n');
        const std::string_view line = m_rest.substr(0, end);
        m_rest = end == std::string_view::npos ? std::string_view() : m_rest.substr(end + 1);
        const size_t length = std::min(line.find('\0'), line.size());
        auto& copy = m_copies.emplace_back(line.begin(), line.begin() + static_cast<std::ptrdiff_t>(length));
        copy.push_back(0);
        copy.shrink_to_fit();
        return copy.data();
    }

private:
    std::string_view m_rest;
    std::vector<std::vector<char>> m_copies;
};

// Into the cache itself: an update would read the time zone anew each time, which takes a thousand times as long as the readers
// do.
void EnterSettings(Lines& lines) {
    auto& cache = const_cast<orvik::detail::LocaleCache&>(orvik::detail::TheLocaleCache());
    for (CString* entry : {&cache.decimalSep, &cache.thousandSep, &cache.dateSep, &cache.timeSep, &cache.shortDate,
                           &cache.longDate, &cache.morning, &cache.afternoon})
        *entry = lines.Next();
    orvik::detail::UpdateSeparators(cache);
    cache.leadingZero = cache.decimalSep.GetLength() % 2;
}

void Reals(const char* text, const char* other) {
    double value = 7, same = 7;
    const int read = _NlsGetReal(text, value, other);
    FUZZ_REQUIRE(!std::isnan(value));
    float small = 7;
    const int readSmall = _NlsGetReal(text, small, other);
    FUZZ_REQUIRE(!readSmall || read);
    if (CLocalNlsTools::GetReal(text, NlsGetDecimalSep(), NlsGetThousandSep(), same))
        FUZZ_REQUIRE(_NlsGetReal(text, value, nullptr) && same == value);
    double max = 0;
    _NlsGetMaxFixed(other, max);
    CString written, again;
    for (const char* picture : {static_cast<const char*>(nullptr), "@@@@@@@@", "#.##", other}) {
        FUZZ_REQUIRE(_NlsSetReal(written, value, picture) == 1 && !written.IsEmpty());
        FUZZ_REQUIRE(_NlsSetReal(again, value, picture, CString(other), CString(text)) == 1);
    }
    int number = 0;
    if (_NlsGetInteger(text, number) && number >= -999'999 && number <= 9'999'999) {
        int back = 7;
        FUZZ_REQUIRE(_NlsSetInteger(written, number) && _NlsGetInteger(written, back) && back == number);
    }
    written = text;
    NlsAddThousandSep(written);
    FUZZ_REQUIRE(written.GetLength() >= static_cast<int>(std::strlen(text)));
}

void Times(const char* text) {
    using Reader = int (*)(const char*, CVXTTime&);
    static constexpr Reader kReaders[] = {
        _NlsGetShortDate, _NlsGetLongDate, _NlsGetTime,
        [](const char* t, CVXTTime& time) { return CLocalNlsTools().StringToTime(t, time); },
        [](const char* t, CVXTTime& time) { return CLocalNlsTools().GetDate(t, NlsGetShortDateSpec(), time); }};
    for (const Reader reader : kReaders) {
        const CVXTTime before(2001, 2, 3, 4, 5, 6, -1);
        CVXTTime time = before;
        if (!reader(text, time)) FUZZ_REQUIRE(time == before);
        CString written;
        FUZZ_REQUIRE(_NlsSetShortDate(written, time) == 1 && _NlsSetLongDate(written, time) == 1);
        _NlsSetTime(written, time, 1);
        time.Format();
    }
}

void Spans(const char* text) {
    const CVXTTimeSpan before(77, TST_MICROSECONDS);
    CVXTTimeSpan span = before, again;
    CString written;
    const char separator = NlsGetDecimalSep();
    const bool partsUnit = separator == ' ' || (separator >= '0' && separator <= '9');
    if (!_NlsGetShortTimeSpan(text, span, 0)) {
        FUZZ_REQUIRE(span == before);
    } else if (!partsUnit) {
        auto exactly = static_cast<CVXTTimeSpanType>(TST_EXACTLY);
        _NlsSetShortTimeSpan(written, span, &exactly, 0);
        FUZZ_REQUIRE(_NlsGetShortTimeSpan(written, again, 1) && again == span);
    }
    span = before;
    if (!_NlsGetLongTimeSpan(text, span)) FUZZ_REQUIRE(span == before);
    for (const int layout : {0, 3, 6, 7, 8, 9, 10}) FUZZ_REQUIRE(_NlsFormatTimeSpan(written, span, layout, 0) == 1);
    for (int selector = 0; selector <= 8; ++selector) {
        auto unit = static_cast<CVXTTimeSpanType>(selector);
        FUZZ_REQUIRE(_NlsSetShortTimeSpan(written, span, &unit, 13) == 1);
    }
    CLocalNlsTools().StringToSpan(text, span);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const bool registered = (NlsToolsRegister(), true);
    FUZZ_REQUIRE(registered);
    Lines lines(data, size);
    EnterSettings(lines);
    const char* const text = lines.Next();
    Reals(text, lines.Next());
    Times(text);
    Spans(text);
    return 0;
}
