#include "time/span_text.h"

#include <climits>
#include <cmath>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "tests/support/table.h"
#include "tests/time/regional_fixture.h"
#include "time/local_nls_tools.h"

namespace {

constexpr __int64 kMs = 1'000, kSecond = 1'000'000, kMinute = 60 * kSecond, kHour = 60 * kMinute, kDay = 24 * kHour,
                  kWeek = 7 * kDay;
constexpr __int64 kUnits[] = {1, kMs, kSecond, kMinute, kHour, kDay, kWeek};
constexpr __int64 kUntouched = 77;

CVXTTimeSpan Micro(__int64 count) { return {count, TST_MICROSECONDS}; }
CVXTTimeSpanType Selector(int value) { return static_cast<CVXTTimeSpanType>(value); }

class SpanText : public testing::Test {
protected:
    SpanText() {
        Use(".", "yyyy-MM-dd", "HH:mm:ss");
        NlsToolsRegister();
    }
    void Use(const char* decimal, const char* date, const char* time) {
        m_text.Set(LOCALE_SDECIMAL, decimal), m_text.Set(LOCALE_SSHORTDATE, date), m_text.Set(LOCALE_STIMEFORMAT, time);
    }
    // The span, or kUntouched where it is not read.
    static __int64 ReadEither(const char* text) {
        CVXTTimeSpan span = Micro(kUntouched);
        const bool read = _NlsGetLongOrShortTimeSpan(text, span) != 0;
        EXPECT_EQ(read, span.CvtToInt64() != kUntouched) << text;
        return span.CvtToInt64();
    }
    static CString Long(__int64 count, int fields = 30) {
        CString text("before");
        EXPECT_EQ(_NlsSetLongTimeSpan(text, Micro(count), fields), 1);
        return text;
    }
    static CString Short(__int64 count, int selector, int digits) {
        CString text("before");
        CVXTTimeSpanType unit = Selector(selector);
        EXPECT_EQ(_NlsSetShortTimeSpan(text, Micro(count), &unit, digits), 1);
        return text;
    }
    RegionalText m_text;
};
class Spans : public RegionTest {};
FOR_EVERY_REGION(Spans);

// Every magnitude from 1 us to 10,000 weeks, both sides of every unit's border and of its multiples, and numbers at random.
std::vector<__int64> SampleSpans() {
    constexpr __int64 kLargest = 10'000 * kWeek;
    std::vector<__int64> spans;
    for (const __int64 unit : kUnits)
        for (const __int64 count : {1, 2, 3, 7, 59, 60, 999, 1'000, 9'999, 10'000})
            for (__int64 beside = -2; beside <= 2; ++beside) spans.push_back(unit * count + beside);
    for (__int64 power = 1; power <= kLargest; power *= 10)
        for (__int64 beside = -1; beside <= 1; ++beside) spans.push_back(power + beside);
    std::mt19937_64 random(3);
    std::uniform_real_distribution<double> exponent(0, std::log(static_cast<double>(kLargest)));
    for (int i = kSanitized ? 4'000 : 20'000; i > 0; --i) spans.push_back(static_cast<__int64>(std::exp(exponent(random))));
    std::erase_if(spans, [](__int64 span) { return span < 1 || span > kLargest; });
    return spans;
}

}  // namespace

TEST_F(SpanText, ReadsShortForm) {
    Use(",", "yyyy-MM-dd", "HH:mm:ss");
    struct Row {
        const char* text;
        int strict;
        __int64 span;  // untouched for failure
    };
    for (const Row& c : Table(
             Row{"2 h", 0, 2 * kHour}, Row{"2h", 0, 2 * kHour}, Row{"  +2   hours  ", 0, 2 * kHour},
             Row{"1,5 min", 0, 90 * kSecond}, Row{"1.5 min", 0, kUntouched}, Row{"3 Weeks", 0, kUntouched},
             Row{"3 weeks", 0, 3 * kWeek}, Row{"5", 0, kUntouched}, Row{"5 ", 1, kUntouched}, Row{"0", 0, 0},
             Row{"-0,00  ", 0, 0}, Row{"0", 1, kUntouched}, Row{"0 s", 1, 0}, Row{"10 s trailing words", 0, 10 * kSecond},
             Row{"10 s\ttrailing", 0, kUntouched}, Row{"-1,5 d", 0, -129'600'000'000}, Row{"- s", 0, 0}, Row{"-", 0, 0},
             Row{"-", 1, kUntouched}, Row{"--1 s", 0, kUntouched}, Row{"", 0, kUntouched}, Row{nullptr, 0, kUntouched},
             Row{",5 s", 0, kUntouched}, Row{"-,5 s", 0, -kSecond / 2}, Row{"1, s", 0, kUntouched}, Row{"1,9 us", 0, 1},
             Row{"1,9999 ms", 0, 1'999}, Row{"-1,9999 ms", 0, -1'999}, Row{"0,00000165343915343915343915343916 w", 0, 1'000'000},
             Row{"7 milliseconds", 0, 7 * kMs}, Row{"7 milli seconds", 0, kUntouched},  // the word ends at the space
             Row{"7 seconds;", 0, kUntouched}, Row{"7 h;hours", 0, 7 * kHour},          // stands so in the list
             Row{"7 ;", 0, kUntouched}, Row{"7 m", 0, 7 * kMinute}, Row{"7 x", 0, kUntouched},
             Row{"9223372036854775807 us", 0, LLONG_MAX}, Row{"9223372036854775808 us", 0, kUntouched},
             Row{"-9223372036854775808 us", 0, LLONG_MIN},
             Row{"20000000000000000000 us", 0, kUntouched},  // ten times a number that still fits
             Row{"92233720368547758080 us", 0, kUntouched}, Row{"99999999999999999999 w", 0, kUntouched},
             Row{"15250284,46 w", 0, kUntouched}, Row{"000000000000000000000000000007 s", 0, 7 * kSecond})) {
        CVXTTimeSpan span = Micro(kUntouched);
        EXPECT_EQ(_NlsGetShortTimeSpan(c.text, span, c.strict), c.span != kUntouched) << c.text;
        EXPECT_EQ(span.CvtToInt64(), c.span) << c.text;
        span = Micro(kUntouched);
        EXPECT_EQ(CLocalNlsTools().GetShortTimeSpan(c.text, span, c.strict), c.span != kUntouched) << c.text;
        EXPECT_EQ(span.CvtToInt64(), c.span) << c.text;
    }
    const std::string many(10'000, '9');
    CVXTTimeSpan span = Micro(kUntouched);
    EXPECT_EQ(_NlsGetShortTimeSpan((many + " s").c_str(), span, 0), 0);
    EXPECT_EQ(span.CvtToInt64(), kUntouched);
    EXPECT_EQ(_NlsGetShortTimeSpan(("0," + many + " s").c_str(), span, 0), 1);
    EXPECT_EQ(span.CvtToInt64(), 999'999);
}

TEST_F(SpanText, ReadsLongForm) {
    // what CVXTTimeSpan::Format writes is another form
    struct Row {
        const char* text;
        __int64 span;
    };
    for (const Row& c : Table(
             Row{"001-02:03:04", kDay + 2 * kHour + 3 * kMinute + 4 * kSecond},
             Row{"-001-02:03:04", -(kDay + 2 * kHour + 3 * kMinute + 4 * kSecond)}, Row{"26:00", 26 * kHour},
             Row{"  26:", 26 * kHour}, Row{":30", 30 * kMinute}, Row{"26:00 ", kUntouched},
             Row{"1:02:03.5", kHour + 2 * kMinute + 3 * kSecond + 5 * kMs},
             Row{"1:02:03,500", kHour + 2 * kMinute + 3 * kSecond + 500 * kMs},
             Row{"1:02:03.50000", kHour + 2 * kMinute + 3 * kSecond + 500 * kMs},
             Row{"1:2:3:4", kHour + 2 * kMinute + 3 * kSecond}, Row{"1:2:", kHour + 2 * kMinute},
             Row{"1:2:345", kHour + 2 * kMinute + 34 * kSecond}, Row{"1:2:3 left alone", kHour + 2 * kMinute + 3 * kSecond},
             Row{"1:123:00", kUntouched}, Row{"1:99:99", kHour + 99 * kMinute + 99 * kSecond}, Row{"100", kUntouched},
             Row{"", kUntouched}, Row{"-", kUntouched}, Row{nullptr, kUntouched}, Row{"+1:00", kUntouched},
             Row{"--1:00", kUntouched}, Row{"x:30", kUntouched}, Row{"1000-00:00:00", kUntouched},  // a fourth digit of days
             Row{"01-00:00:00", kUntouched}, Row{"001-123:00", kUntouched}, Row{"001-", kUntouched},
             Row{"999-23:59:59.999", 999 * kDay + 23 * kHour + 59 * kMinute + 59 * kSecond + 999 * kMs},
             Row{"00000000000000000000100:00", 100 * kHour}, Row{"2562047788:00:54.775", 2'562'047'788 * kHour + 54'775 * kMs},
             Row{"2562047788:01", kUntouched}, Row{"99999999999999999999:00", kUntouched}, Row{" 001 - 02:03:04", kUntouched})) {
        CVXTTimeSpan span = Micro(kUntouched);
        EXPECT_EQ(_NlsGetLongTimeSpan(c.text, span), c.span != kUntouched) << c.text;
        EXPECT_EQ(span.CvtToInt64(), c.span) << c.text;
        span = Micro(kUntouched);
        EXPECT_EQ(CLocalNlsTools().GetLongTimeSpan(c.text, span), c.span != kUntouched) << c.text;
    }
    Use(".", "yyyyMMdd", "HH:mm:ss");
    CVXTTimeSpan span;
    EXPECT_EQ(_NlsGetLongTimeSpan("1:0", span), 1);  // an empty date separator is not the text's end
    EXPECT_EQ(span.CvtToInt64(), kHour);
}

TEST_F(SpanText, ReadsEitherForm) {
    EXPECT_EQ(ReadEither("1:30"), 90 * kMinute);
    EXPECT_EQ(ReadEither("1.5 h"), 90 * kMinute);
    EXPECT_EQ(ReadEither("0"), 0);
    EXPECT_EQ(ReadEither("5"), kUntouched);
    const TextLanguage swedish(LANG_SWEDISH);
    CVXTTimeSpan span;
    EXPECT_EQ(CLocalNlsTools().StringToSpan("2 veckor", span), 1);
    EXPECT_EQ(span.CvtToInt64(), 2 * kWeek);
    EXPECT_EQ(CLocalNlsTools().StringToSpan("2:00", span), 1);
    EXPECT_EQ(span.CvtToInt64(), 2 * kHour);
    EXPECT_EQ(CLocalNlsTools().StringToSpan("2 weeks", span), 0);
    EXPECT_EQ(ReadEither("2 weeks"), 2 * kWeek);  // the module's words are those it was registered with
}

TEST_F(SpanText, ChoosesUnits) {
    using Row = std::tuple<__int64, int, int>;
    for (const auto& [span, selector, unit] :
         Table(Row{90 * kSecond, 7, TST_MINUTES}, Row{90 * kSecond, 8, TST_SECONDS}, Row{2 * kWeek, 0, TST_DAYS},
               Row{2 * kWeek, 8, TST_WEEKS}, Row{2 * kWeek, 6, TST_WEEKS}, Row{500, 4, TST_MILLISECONDS},
               Row{kUntouched, 256 + 2, TST_SECONDS}, Row{-kWeek, 256 + 6, TST_WEEKS}, Row{3 * kHour, 256 + 7, TST_HOURS},
               Row{3 * kHour, 256 + 8, 8}, Row{kWeek - 1, 7, TST_DAYS}, Row{kWeek - 1, 8, TST_MICROSECONDS},
               Row{kDay, 3, TST_HOURS}, Row{kDay, 4, TST_HOURS}, Row{kDay, 6, TST_WEEKS}, Row{kHour, 2, TST_MINUTES},
               Row{kHour, 5, TST_DAYS}, Row{kMinute, 5, TST_HOURS}, Row{kMinute, 4, TST_HOURS}, Row{kMinute, 1, TST_SECONDS},
               Row{kSecond, 4, TST_MINUTES}, Row{kSecond, 3, TST_MINUTES}, Row{kSecond, 0, TST_MILLISECONDS},
               Row{kSecond + kMs, 8, TST_MILLISECONDS}, Row{kSecond - 1, 7, TST_MILLISECONDS}, Row{kMs, 3, TST_SECONDS},
               Row{kMs, 2, TST_SECONDS}, Row{kMs, 0, TST_MICROSECONDS}, Row{kMs + 1, 8, TST_MICROSECONDS},
               Row{kMs - 1, 7, TST_MICROSECONDS}, Row{kMs - 1, 1, TST_MILLISECONDS}, Row{0, 7, TST_MICROSECONDS},
               Row{0, 8, TST_MICROSECONDS}, Row{0, 2, TST_MILLISECONDS},
               Row{-5 * kWeek, 7, TST_MICROSECONDS},  // negative spans have no large unit
               Row{-5 * kWeek, 6, TST_MILLISECONDS}))
        EXPECT_EQ(_BestType(Micro(span), Selector(selector)), unit) << span << ' ' << selector;
}

TEST_F(SpanText, WritesShortForm) {
    using Row = std::tuple<__int64, int, int, const char*>;
    for (const auto& [span, selector, digits, text] :
         Table(Row{90 * kSecond, 7, -1, "1.5 m"}, Row{1'500'000, 256 + 2, -1, "1.5 s"}, Row{-90 * kSecond, 7, -1, "-1.5 m"},
               Row{90 * kSecond, 7, 0, "1 m"}, Row{90 * kSecond, 7, -5, "1 m"}, Row{90 * kSecond, 7, 4, "1.5000 m"},
               Row{1'999'999, 256 + 2, -1, "1.999 s"},  // not 2.000: half a microsecond is what rounding adds
               Row{20 * kSecond, 256 + 2, -1, "20 s"}, Row{1'100, 256 + 1, -1, "1.1 ms"}, Row{5, 256 + 0, 3, "5.000 us"},
               Row{5, 256 + 0, -1, "5 us"}, Row{0, 7, -1, "0 us"}, Row{kWeek, 256 + 6, 13, "1.0000000000008 w"},
               Row{kWeek, 256 + 6, 20, "1.00000000000082671957 w"}, Row{3 * kDay, 8, -1, "3 d"},
               Row{3 * kDay, 256 + 4, 0, "72 h"}, Row{LLONG_MIN, 256, 0, "-9223372036854775808 us"},
               Row{LLONG_MIN, 7, 0, "-15250284 w"}, Row{-kDay, 256 + 9, 3, "-"}, Row{kDay, 256 + 9, 3, ""}))
        EXPECT_STREQ(Short(span, selector, digits), text);
    Use("", "yyyy-MM-dd", "HH:mm:ss");
    EXPECT_STREQ(Short(20 * kSecond, 256 + 2, -1), "20 s");  // zeros of the whole count stay
    EXPECT_STREQ(Short(90 * kSecond, 7, -1), "15 m");

    CString text;
    using Choice = std::tuple<CVXTTimeSpanType, CVXTTimeSpanType, const char*>;
    for (const auto& [wanted, taken, shown] : {Choice{TST_WEEKS, TST_WEEKS, "0 w"}, Choice{TST_MICROSECONDS, TST_MINUTES, "90 m"},
                                               Choice{TST_LARGEST, TST_LARGEST, "1 h"}}) {
        CVXTTimeSpanType unit = wanted;
        EXPECT_EQ(_NlsSetShortTimeSpan(text, Micro(90 * kMinute), &unit, 0), 1);
        EXPECT_EQ(unit, taken);
        EXPECT_STREQ(text, shown);
    }
    EXPECT_EQ(_NlsSetShortTimeSpan(text, Micro(-90 * kMinute), nullptr, 0), 1);
    EXPECT_STREQ(text, "-1 h");
    const TextLanguage swedish(LANG_SWEDISH);
    EXPECT_STREQ(Short(3 * kWeek, 7, 0), "3 v");
    EXPECT_STREQ(Short(3 * kHour, 7, 0), "3 t");
}

TEST_F(SpanText, WritesLongForm) {
    constexpr __int64 kSpan = 49 * kHour + 5 * kMinute + 7 * kSecond + 999 * kMs;
    using Row = std::tuple<__int64, int, const char*>;
    for (const auto& [span, fields, text] :
         {Row{kSpan, 30, "002-01:05:07"}, Row{kSpan, 28, "002-01:05"}, Row{kSpan, 14, "49:05:07"}, Row{kSpan, 12, "49:05"},
          Row{kSpan, 0, "002-01:05:07"}, Row{-kSpan, 30, "-002-01:05:07"}, Row{0, 30, "000-00:00:00"},
          Row{1'000 * kDay, 30, "1000-00:00:00"}, Row{LLONG_MIN, 14, "-2562047788:00:54"}})
        EXPECT_STREQ(Long(span, fields), text);
    CString text;
    EXPECT_EQ(_NlsSetTimeSpan(text, Micro(kSpan)), 1);
    EXPECT_STREQ(text, "002-01:05:07");
    Use(".", "d.M.yyyy", "H.mm.ss");
    EXPECT_STREQ(Long(kSpan), "002.01.05.07");
    EXPECT_STREQ(Long(123 * kHour, 14), "0123.00.00");  // not to be taken for days
    Use(".", "yyyyMMdd", "H:mm:ss");
    EXPECT_STREQ(Long(kSpan), "49:05:07");
}

TEST_F(SpanText, WritesLayouts) {
    const __int64 span = 49 * kHour + 30 * kMinute;
    const char* const expected[] = {"178200000000 us", "178200000 ms", "178200 s",  "2970 m",   "49.5 h", "2.062 d",
                                    "0.294 w",         "002-01:30:00", "002-01:30", "49:30:00", "49:30"};
    CString text;
    for (int layout = 0; layout <= 10; ++layout) {
        EXPECT_EQ(_NlsFormatTimeSpan(text, Micro(span), layout, 0), 1);
        EXPECT_STREQ(text, expected[layout]);
    }
    for (const int layout : {-1, 11, INT_MAX}) EXPECT_EQ(_NlsFormatTimeSpan(text, Micro(span), layout, 0), 0);
    EXPECT_STREQ(text, "49:30");
}

TEST_P(Spans, ShortFormReadsBackWithEnoughDecimals) {
    constexpr int kEnough[] = {0, 3, 6, 9, 10, 12, 13};
    CString text;
    CVXTTimeSpan read;
    for (const __int64 magnitude : SampleSpans()) {
        const __int64 span = magnitude % 3 == 0 ? -magnitude : magnitude;
        for (int unit = TST_MICROSECONDS; unit <= TST_WEEKS + 1; ++unit) {
            CVXTTimeSpanType selector = unit > TST_WEEKS ? TST_LARGEST_EXACT : Selector(TST_EXACTLY + unit);
            _NlsSetShortTimeSpan(text, Micro(span), &selector, unit > TST_WEEKS ? 0 : kEnough[unit]);
            ASSERT_EQ(_NlsGetShortTimeSpan(text, read, 1), 1) << text.GetString();
            ASSERT_EQ(read.CvtToInt64(), span) << text.GetString();
        }
        _NlsSetShortTimeSpan(text, Micro(span), nullptr, 13);
        ASSERT_EQ(_NlsGetLongOrShortTimeSpan(text, read), 1) << text.GetString();
        ASSERT_EQ(read.CvtToInt64(), span) << text.GetString();
    }
}
