// Numbers, dates, times of day and spans in every locale that the machine has data of: what is written reads back to itself.
#include <gtest/gtest.h>
#include <unicode/locid.h>

#include <cstdlib>
#include <fstream>
#include <set>
#include <string>

#include "platform/win32.h"
#include "tests/support/regional_settings.h"
#include "tests/support/time_limit.h"
#include "time/clock_text.h"
#include "time/date_text.h"
#include "time/local_nls_tools.h"
#include "time/locale_cache.h"
#include "time/number_text.h"
#include "time/span_text.h"

namespace {

// Names as users set them, and those that the locale data know besides.
std::set<std::string> Locales() {
    std::set<std::string> names;
    std::ifstream supported("/usr/share/i18n/SUPPORTED");
    for (std::string name, encoding; supported >> name >> encoding;) names.insert(name.substr(0, name.find('.')));
    int32_t count = 0;
    const icu::Locale* const known = icu::Locale::getAvailableLocales(count);
    for (int32_t i = 0; i < count; ++i)
        if (*known[i].getCountry()) names.insert(known[i].getName());
    return names;
}

std::string Item(LCTYPE item) {
    char text[256] = "";
    return GetLocaleInfoA(LOCALE_USER_DEFAULT, item, text, sizeof text) > 0 ? text : "";
}

// All that text is made of: locales that agree in it need one look.
std::string Settings() {
    std::string all;
    for (const LCTYPE item : {LOCALE_SDECIMAL, LOCALE_STHOUSAND, LOCALE_SLIST, LOCALE_SGROUPING, LOCALE_SSHORTDATE,
                              LOCALE_SLONGDATE, LOCALE_STIMEFORMAT, LOCALE_S1159, LOCALE_S2359})
        all += Item(item) + '\n';
    return all;
}

void CheckSeparators() {
    const std::string decimal = Item(LOCALE_SDECIMAL), thousand = Item(LOCALE_STHOUSAND), list = Item(LOCALE_SLIST);
    for (const std::string& separator :
         {decimal, thousand, list, Item(LOCALE_STIME).substr(0, 1), Item(LOCALE_SDATE).substr(0, 1)}) {
        EXPECT_EQ(separator.size(), 1u);
        EXPECT_EQ(separator.find_first_of("?+'0123456789"), std::string::npos) << separator;
    }
    EXPECT_NE(decimal, thousand);
    EXPECT_NE(decimal, list);
    EXPECT_NE(NlsGetTimeSep(), ' ');
    const std::string pictures = Item(LOCALE_SSHORTDATE) + Item(LOCALE_SLONGDATE) + Item(LOCALE_STIMEFORMAT);
    EXPECT_EQ(pictures.find('?'), std::string::npos) << pictures;
    EXPECT_EQ(pictures.find("gg"), std::string::npos) << pictures;
    EXPECT_STREQ(NlsGetTimeSpec(), Item(LOCALE_STIMEFORMAT).c_str()) << "the cache has no room for it";
}

void CheckNumbers() {
    CString text, again;
    for (const char* picture : {"#", "#.#", "#.###", "@@@", "@@@@@", "@@@@@@@@@@@@"})
        for (const double magnitude :
             {0.0, 0.00123, 0.5, 1.5, 9.995, 12.0, 999.9, 1234.5, 98765.25, 1234567.891, 1e12, 3e-9, 2.5e300})
            for (const double value : {magnitude, -magnitude}) {
                double read = 0;
                _NlsSetReal(text, value, picture);
                ASSERT_EQ(_NlsGetReal(text, read, nullptr), 1) << text.GetString();
                if (magnitude > 1e200) continue;  // of whose many digits the reader takes the first
                _NlsSetReal(again, read, picture);
                ASSERT_STREQ(again, text);
            }
    text = "1234567";
    NlsAddThousandSep(text);
    double read = 0;
    ASSERT_EQ(_NlsGetReal(text, read, nullptr), 1) << text.GetString();
    ASSERT_EQ(read, 1234567);
}

void CheckDatesAndClock() {
    CLocalNlsTools tools;
    CString text;
    const bool marked = Item(LOCALE_STIMEFORMAT).find('t') != std::string::npos;
    CVXTTime time(1972, 1, 2, 0, 0, 0, -1);
    for (int i = 0; time.Get(TT_YEAR) < 2034; ++i) {
        CVXTTime read(2001, 2, 3, time.Get(TT_HOUR), time.Get(TT_MINUTE), time.Get(TT_SECOND), -1);
        _NlsSetShortDate(text, time);
        ASSERT_EQ(_NlsGetShortDate(text, read), 1) << text.GetString();
        ASSERT_EQ(read, time) << text.GetString();
        read.SetTime(3, 4, 5, 6);
        ASSERT_EQ(_NlsSetTime(text, time, 0), 1);
        ASSERT_EQ(_NlsGetTime(text, read), 1) << text.GetString();
        ASSERT_EQ(read, time) << text.GetString();
        // Milliseconds stand behind a designator, where they are not looked for.
        ASSERT_EQ(_NlsSetTime(text, time, 1), 1);
        ASSERT_EQ(_NlsGetTime(text, read), !marked) << text.GetString();
        CVXTTime both(2001, 2, 3, 4, 5, 6, -1);
        ASSERT_EQ(tools.StringToTime(time.Format(), both), 1) << time.Format().GetString();
        ASSERT_EQ(both, time) << time.Format().GetString();
        time += CVXTTimeSpan(i % 97, 1 + i % 2, 7 * i % 60, 11 * i % 60, 0);
    }
}

void CheckSpans() {
    CString text;
    static constexpr __int64 kHour = 3'600'000'000;
    static constexpr __int64 kCounts[] = {
        0, 1, 1'500'000, 45'296'000'000, 100 * kHour, -24 * kHour + 1'000'000, 999 * 24 * kHour - 1'000'000};
    for (const __int64 count : kCounts) {
        const CVXTTimeSpan span(count, TST_MICROSECONDS);
        CVXTTimeSpan read;
        for (int unit = TST_MICROSECONDS; unit <= TST_WEEKS; ++unit) {
            auto exactly = static_cast<CVXTTimeSpanType>(TST_EXACTLY + unit);
            _NlsSetShortTimeSpan(text, span, &exactly, 13);
            ASSERT_EQ(_NlsGetShortTimeSpan(text, read, 1), 1) << text.GetString();
            ASSERT_EQ(read, span) << text.GetString();
        }
        for (int layout = RF_DAYS_HMS; layout <= RF_HM; ++layout) {
            ASSERT_EQ(_NlsFormatTimeSpan(text, span, layout, 0), 1);
            ASSERT_EQ(_NlsGetLongTimeSpan(text, read), 1) << text.GetString();
            const bool toMinutes = layout == RF_DAYS_HM || layout == RF_HM;
            ASSERT_EQ(read, span.Align(CVXTTimeSpan(1, toMinutes ? TST_MINUTES : TST_SECONDS))) << text.GetString();
        }
    }
}

}  // namespace

TEST(AllLocales, WhatIsWrittenReadsBack) {
    const char* const set = std::getenv("LC_ALL");
    const std::string own = set ? set : "";
    std::set<std::string> seen;
    LimitTest(240);
    for (const std::string& name : Locales()) {
        SCOPED_TRACE(name);
        setenv("LC_ALL", name.c_str(), 1);
        orvik::detail::ReloadRegionalSettings();
        if (!seen.insert(Settings()).second) continue;
        for (const WORD language : {WORD{LANG_ENGLISH}, WORD{LANG_SWEDISH}}) {
            const TextLanguage texts(language);
            NlsToolsRegister();
            CheckSeparators();
            CheckNumbers();
            CheckSpans();
            if (language == LANG_ENGLISH) CheckDatesAndClock();
        }
    }
    EXPECT_GT(seen.size(), 100u);
    if (own.empty())
        unsetenv("LC_ALL");
    else
        setenv("LC_ALL", own.c_str(), 1);
    orvik::detail::ReloadRegionalSettings();
}
