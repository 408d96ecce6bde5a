#include "time/span_text.h"

#include <climits>
#include <cmath>
#include <random>
#include <string>
#include <vector>

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
    const struct {
        const char* text;
        int strict;
        __int64 span;  // untouched for failure
    } cases[] = {{"2 h", 0, 2 * kHour},
                 {"2h", 0, 2 * kHour},
                 {"  +2   hours  ", 0, 2 * kHour},
                 {"1,5 min", 0, 90 * kSecond},
                 {"1.5 min", 0, kUntouched},
                 {"3 Weeks", 0, kUntouched},
                 {"3 weeks", 0, 3 * kWeek},
                 {"5", 0, kUntouched},
                 {"5 ", 1, kUntouched},
                 {"0", 0, 0},
                 {"-0,00  ", 0, 0},
                 {"0", 1, kUntouched},
                 {"0 s", 1, 0},
                 {"10 s trailing words", 0, 10 * kSecond},
                 {"10 s\ttrailing", 0, kUntouched},
                 {"-1,5 d", 0, -129'600'000'000},
                 {"- s", 0, 0},
                 {"-", 0, 0},
                 {"-", 1, kUntouched},
                 {"--1 s", 0, kUntouched},
                 {"", 0, kUntouched},
                 {nullptr, 0, kUntouched},
                 {",5 s", 0, kUntouched},
                 {"-,5 s", 0, -kSecond / 2},
                 {"1, s", 0, kUntouched},
                 {"1,9 us", 0, 1},
                 {"1,9999 ms", 0, 1'999},
                 {"-1,9999 ms", 0, -1'999},
                 {"0,00000165343915343915343915343916 w", 0, 1'000'000},
                 {"7 milliseconds", 0, 7 * kMs},
                 {"7 milli seconds", 0, kUntouched},  // the word ends at the space
                 {"7 seconds;", 0, kUntouched},
                 {"7 h;hours", 0, 7 * kHour},  // stands so in the list
                 {"7 ;", 0, kUntouched},
                 {"7 m", 0, 7 * kMinute},
                 {"7 x", 0, kUntouched},
                 {"9223372036854775807 us", 0, LLONG_MAX},
                 {"9223372036854775808 us", 0, kUntouched},
                 {"-9223372036854775808 us", 0, LLONG_MIN},
                 {"20000000000000000000 us", 0, kUntouched},  // ten times a number that still fits
                 {"92233720368547758080 us", 0, kUntouched},
                 {"99999999999999999999 w", 0, kUntouched},
                 {"15250284,46 w", 0, kUntouched},
                 {"000000000000000000000000000007 s", 0, 7 * kSecond}};
    for (const auto& c : cases) {
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
    const struct {
        const char* text;
        __int64 span;
    } cases[] = {{"001-02:03:04", kDay + 2 * kHour + 3 * kMinute + 4 * kSecond},
                 {"-001-02:03:04", -(kDay + 2 * kHour + 3 * kMinute + 4 * kSecond)},
                 {"26:00", 26 * kHour},
                 {"  26:", 26 * kHour},
                 {":30", 30 * kMinute},
                 {"26:00 ", kUntouched},
                 {"1:02:03.5", kHour + 2 * kMinute + 3 * kSecond + 5 * kMs},
                 {"1:02:03,500", kHour + 2 * kMinute + 3 * kSecond + 500 * kMs},
                 {"1:02:03.50000", kHour + 2 * kMinute + 3 * kSecond + 500 * kMs},
                 {"1:2:3:4", kHour + 2 * kMinute + 3 * kSecond},
                 {"1:2:", kHour + 2 * kMinute},
                 {"1:2:345", kHour + 2 * kMinute + 34 * kSecond},
                 {"1:2:3 left alone", kHour + 2 * kMinute + 3 * kSecond},
                 {"1:123:00", kUntouched},
                 {"1:99:99", kHour + 99 * kMinute + 99 * kSecond},
                 {"100", kUntouched},
                 {"", kUntouched},
                 {"-", kUntouched},
                 {nullptr, kUntouched},
                 {"+1:00", kUntouched},
                 {"--1:00", kUntouched},
                 {"x:30", kUntouched},
                 {"1000-00:00:00", kUntouched},  // a fourth digit of days
                 {"01-00:00:00", kUntouched},
                 {"001-123:00", kUntouched},
                 {"001-", kUntouched},
                 {"999-23:59:59.999", 999 * kDay + 23 * kHour + 59 * kMinute + 59 * kSecond + 999 * kMs},
                 {"00000000000000000000100:00", 100 * kHour},
                 {"2562047788:00:54.775", 2'562'047'788 * kHour + 54'775 * kMs},
                 {"2562047788:01", kUntouched},
                 {"99999999999999999999:00", kUntouched},
                 {" 001 - 02:03:04", kUntouched}};  // what CVXTTimeSpan::Format writes is another form
    for (const auto& c : cases) {
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
    CVXTTimeSpan span = Micro(kUntouched);
    EXPECT_EQ(_NlsGetLongOrShortTimeSpan("1:30", span), 1);
    EXPECT_EQ(span.CvtToInt64(), 90 * kMinute);
    EXPECT_EQ(_NlsGetLongOrShortTimeSpan("1.5 h", span), 1);
    EXPECT_EQ(span.CvtToInt64(), 90 * kMinute);
    EXPECT_EQ(_NlsGetLongOrShortTimeSpan("0", span), 1);
    EXPECT_EQ(span.CvtToInt64(), 0);
    EXPECT_EQ(_NlsGetLongOrShortTimeSpan("5", span), 0);
    const TextLanguage swedish(LANG_SWEDISH);
    EXPECT_EQ(CLocalNlsTools().StringToSpan("2 veckor", span), 1);
    EXPECT_EQ(span.CvtToInt64(), 2 * kWeek);
    EXPECT_EQ(CLocalNlsTools().StringToSpan("2:00", span), 1);
    EXPECT_EQ(span.CvtToInt64(), 2 * kHour);
    EXPECT_EQ(CLocalNlsTools().StringToSpan("2 weeks", span), 0);
    EXPECT_EQ(_NlsGetLongOrShortTimeSpan("2 weeks", span), 1);  // the module's words are those it was registered with
}

TEST_F(SpanText, ChoosesUnits) {
    const struct {
        __int64 span;
        int selector, unit;
    } cases[] = {
        {90 * kSecond, 7, TST_MINUTES},
        {90 * kSecond, 8, TST_SECONDS},
        {2 * kWeek, 0, TST_DAYS},
        {2 * kWeek, 8, TST_WEEKS},
        {2 * kWeek, 6, TST_WEEKS},
        {500, 4, TST_MILLISECONDS},
        {kUntouched, 256 + 2, TST_SECONDS},
        {-kWeek, 256 + 6, TST_WEEKS},
        {3 * kHour, 256 + 7, TST_HOURS},
        {3 * kHour, 256 + 8, 8},
        {kWeek - 1, 7, TST_DAYS},
        {kWeek - 1, 8, TST_MICROSECONDS},
        {kDay, 3, TST_HOURS},
        {kDay, 4, TST_HOURS},
        {kDay, 6, TST_WEEKS},
        {kHour, 2, TST_MINUTES},
        {kHour, 5, TST_DAYS},
        {kMinute, 5, TST_HOURS},
        {kMinute, 4, TST_HOURS},
        {kMinute, 1, TST_SECONDS},
        {kSecond, 4, TST_MINUTES},
        {kSecond, 3, TST_MINUTES},
        {kSecond, 0, TST_MILLISECONDS},
        {kSecond + kMs, 8, TST_MILLISECONDS},
        {kSecond - 1, 7, TST_MILLISECONDS},
        {kMs, 3, TST_SECONDS},
        {kMs, 2, TST_SECONDS},
        {kMs, 0, TST_MICROSECONDS},
        {kMs + 1, 8, TST_MICROSECONDS},
        {kMs - 1, 7, TST_MICROSECONDS},
        {kMs - 1, 1, TST_MILLISECONDS},
        {0, 7, TST_MICROSECONDS},
        {0, 8, TST_MICROSECONDS},
        {0, 2, TST_MILLISECONDS},
        {-5 * kWeek, 7, TST_MICROSECONDS},  // negative spans have no large unit
        {-5 * kWeek, 6, TST_MILLISECONDS},
    };
    for (const auto& c : cases) EXPECT_EQ(_BestType(Micro(c.span), Selector(c.selector)), c.unit) << c.span << ' ' << c.selector;
}

TEST_F(SpanText, WritesShortForm) {
    const struct {
        __int64 span;
        int selector, digits;
        const char* text;
    } cases[] = {{90 * kSecond, 7, -1, "1.5 m"},
                 {1'500'000, 256 + 2, -1, "1.5 s"},
                 {-90 * kSecond, 7, -1, "-1.5 m"},
                 {90 * kSecond, 7, 0, "1 m"},
                 {90 * kSecond, 7, -5, "1 m"},
                 {90 * kSecond, 7, 4, "1.5000 m"},
                 {1'999'999, 256 + 2, -1, "1.999 s"},  // not 2.000: half a microsecond is what rounding adds
                 {20 * kSecond, 256 + 2, -1, "20 s"},
                 {1'100, 256 + 1, -1, "1.1 ms"},
                 {5, 256 + 0, 3, "5.000 us"},
                 {5, 256 + 0, -1, "5 us"},
                 {0, 7, -1, "0 us"},
                 {kWeek, 256 + 6, 13, "1.0000000000008 w"},
                 {kWeek, 256 + 6, 20, "1.00000000000082671957 w"},
                 {3 * kDay, 8, -1, "3 d"},
                 {3 * kDay, 256 + 4, 0, "72 h"},
                 {LLONG_MIN, 256, 0, "-9223372036854775808 us"},
                 {LLONG_MIN, 7, 0, "-15250284 w"},
                 {-kDay, 256 + 9, 3, "-"},
                 {kDay, 256 + 9, 3, ""}};
    for (const auto& c : cases) EXPECT_STREQ(Short(c.span, c.selector, c.digits), c.text);
    Use("", "yyyy-MM-dd", "HH:mm:ss");
    EXPECT_STREQ(Short(20 * kSecond, 256 + 2, -1), "20 s");  // zeros of the whole count stay
    EXPECT_STREQ(Short(90 * kSecond, 7, -1), "15 m");

    CString text;
    CVXTTimeSpanType unit = TST_WEEKS;
    EXPECT_EQ(_NlsSetShortTimeSpan(text, Micro(90 * kMinute), &unit, 0), 1);
    EXPECT_EQ(unit, TST_WEEKS);
    unit = TST_MICROSECONDS;
    EXPECT_EQ(_NlsSetShortTimeSpan(text, Micro(90 * kMinute), &unit, 0), 1);
    EXPECT_EQ(unit, TST_MINUTES);
    EXPECT_STREQ(text, "90 m");
    unit = TST_LARGEST;
    EXPECT_EQ(_NlsSetShortTimeSpan(text, Micro(90 * kMinute), &unit, 0), 1);
    EXPECT_EQ(unit, TST_LARGEST);
    EXPECT_EQ(_NlsSetShortTimeSpan(text, Micro(-90 * kMinute), nullptr, 0), 1);
    EXPECT_STREQ(text, "-1 h");
    const TextLanguage swedish(LANG_SWEDISH);
    EXPECT_STREQ(Short(3 * kWeek, 7, 0), "3 v");
    EXPECT_STREQ(Short(3 * kHour, 7, 0), "3 t");
}

TEST_F(SpanText, WritesLongForm) {
    const __int64 span = 49 * kHour + 5 * kMinute + 7 * kSecond + 999 * kMs;
    EXPECT_STREQ(Long(span), "002-01:05:07");
    EXPECT_STREQ(Long(span, 28), "002-01:05");
    EXPECT_STREQ(Long(span, 14), "49:05:07");
    EXPECT_STREQ(Long(span, 12), "49:05");
    EXPECT_STREQ(Long(span, 0), "002-01:05:07");
    EXPECT_STREQ(Long(-span), "-002-01:05:07");
    EXPECT_STREQ(Long(0), "000-00:00:00");
    EXPECT_STREQ(Long(1'000 * kDay), "1000-00:00:00");
    EXPECT_STREQ(Long(LLONG_MIN, 14), "-2562047788:00:54");
    CString text;
    EXPECT_EQ(_NlsSetTimeSpan(text, Micro(span)), 1);
    EXPECT_STREQ(text, "002-01:05:07");
    Use(".", "d.M.yyyy", "H.mm.ss");
    EXPECT_STREQ(Long(span), "002.01.05.07");
    EXPECT_STREQ(Long(123 * kHour, 14), "0123.00.00");  // not to be taken for days
    Use(".", "yyyyMMdd", "H:mm:ss");
    EXPECT_STREQ(Long(span), "49:05:07");
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
        for (int unit = TST_MICROSECONDS; unit <= TST_WEEKS; ++unit) {
            CVXTTimeSpanType selector = Selector(TST_EXACTLY + unit);
            _NlsSetShortTimeSpan(text, Micro(span), &selector, kEnough[unit]);
            ASSERT_EQ(_NlsGetShortTimeSpan(text, read, 1), 1) << text.GetString();
            ASSERT_EQ(read.CvtToInt64(), span) << text.GetString();
        }
        CVXTTimeSpanType exact = TST_LARGEST_EXACT;
        _NlsSetShortTimeSpan(text, Micro(span), &exact, 0);
        ASSERT_EQ(_NlsGetShortTimeSpan(text, read, 1), 1) << text.GetString();
        ASSERT_EQ(read.CvtToInt64(), span) << text.GetString();
        _NlsSetShortTimeSpan(text, Micro(span), nullptr, 13);
        ASSERT_EQ(_NlsGetLongOrShortTimeSpan(text, read), 1) << text.GetString();
        ASSERT_EQ(read.CvtToInt64(), span) << text.GetString();
    }
}
