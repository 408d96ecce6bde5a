// Numbers, dates, times of day and spans in every locale that the machine has data of: what is written reads back to itself. In a
// UTF-8 process it is what the locale's own users write.
#include <gtest/gtest.h>
#include <unicode/datefmt.h>
#include <unicode/decimfmt.h>
#include <unicode/dtptngen.h>
#include <unicode/gregocal.h>
#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <set>
#include <string>

#include "platform/house_text.h"
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

bool Utf8() { return OrvikTextCodePage() == CP_UTF8; }

std::string Item(LCTYPE item) {
    char text[256] = "";
    return GetLocaleInfoA(LOCALE_USER_DEFAULT, item, text, sizeof text) > 0 ? text : "";
}

// All that text is made of: locales that agree in it need one look.
std::string Settings() {
    std::string all;
    for (const LCTYPE item :
         {LOCALE_SDECIMAL, LOCALE_STHOUSAND, LOCALE_SLIST, LOCALE_SGROUPING, LOCALE_SSHORTDATE, LOCALE_SLONGDATE,
          LOCALE_STIMEFORMAT, LOCALE_S1159, LOCALE_S2359, LOCALE_SNATIVEDIGITS, LOCALE_SNEGATIVESIGN})
        all += Item(item) + '\n';
    return all;
}

void CheckSeparators() {
    const std::string decimal = Item(LOCALE_SDECIMAL), thousand = Item(LOCALE_STHOUSAND), list = Item(LOCALE_SLIST);
    for (const std::string& separator :
         {decimal, thousand, list, Item(LOCALE_STIME).substr(0, 1), Item(LOCALE_SDATE).substr(0, 1)}) {
        EXPECT_TRUE(separator.size() == 1 || (Utf8() && separator.size() > 1));
        EXPECT_EQ(separator.find_first_of("?+'0123456789"), std::string::npos) << separator;
    }
    EXPECT_NE(decimal, thousand);
    EXPECT_NE(decimal, list);
    EXPECT_NE(NlsGetDecimalSep(), NlsGetThousandSep());
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
    const bool marked = Item(LOCALE_STIMEFORMAT).ends_with('t');
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
        // Milliseconds stand behind a designator, where a Windows-1252 process does not look for them.
        const CVXTTime fine = time + CVXTTimeSpan(i % 1000, TST_MILLISECONDS);
        ASSERT_EQ(_NlsSetTime(text, fine, 1), 1);
        ASSERT_EQ(_NlsGetTime(text, read), Utf8() || !marked) << text.GetString();
        ASSERT_EQ(read, Utf8() || !marked ? fine : time) << text.GetString();
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

// Without marks of direction, and every blank a plain one: what users type of a text.
icu::UnicodeString AsTyped(const icu::UnicodeString& text) {
    icu::UnicodeString out;
    for (int32_t i = 0; i < text.length(); ++i) {
        const char16_t c = text[i];
        if (c != 0x200E && c != 0x200F && c != 0x61C) out += c == 0xA0 || c == 0x202F ? u' ' : c;
    }
    return out;
}

// Texts that are not those of the locale data, by their kind; and how many locales there are data of.
struct Comparison {
    std::map<std::string, std::set<std::string>> others;
    size_t all = 0;
};

const std::set<std::string>& Languages() {
    static const std::set<std::string> known = [] {
        std::set<std::string> made;
        int32_t count = 0;
        const icu::Locale* const all = icu::Locale::getAvailableLocales(count);
        for (int32_t i = 0; i < count; ++i) made.insert(all[i].getLanguage());
        return made;
    }();
    return known;
}

// The number has few digits, since the module groups by threes for everybody.
void CompareWithLocaleData(const std::string& name, Comparison& comparison) {
    icu::Locale locale(name.substr(0, name.find('@')).c_str());
    UErrorCode status = U_ZERO_ERROR;
    if (!Languages().contains(locale.getLanguage()) || *locale.getVariant()) return;
    ++comparison.all;
    const std::unique_ptr<icu::NumberFormat> numbers(icu::NumberFormat::createInstance(locale, status));
    numbers->setMinimumFractionDigits(3);
    locale.setKeywordValue("calendar", "gregorian", status);
    const std::unique_ptr<icu::DateTimePatternGenerator> patterns(icu::DateTimePatternGenerator::createInstance(locale, status));
    icu::SimpleDateFormat dates(patterns->getBestPattern(u"yMd", status), locale, status);
    const std::unique_ptr<icu::DateFormat> clocks(icu::DateFormat::createTimeInstance(icu::DateFormat::kMedium, locale));
    dates.setTimeZone(*icu::TimeZone::getGMT());
    clocks->setTimeZone(*icu::TimeZone::getGMT());
    ASSERT_TRUE(U_SUCCESS(status));
    const CVXTTime time(2026, 7, 4, 15, 6, 7, -1);
    CString text;
    icu::UnicodeString own;
    const auto compare = [&](const char* kind) {
        if (AsTyped(icu::UnicodeString::fromUTF8(text.GetString())) == AsTyped(own)) return;
        std::string said;
        own.toUTF8String(said);
        comparison.others[kind].insert(name + ": " + said + " for " + text.GetString());
    };
    _NlsSetReal(text, -12345.678, "#.###");
    numbers->format(-12345.678, own);
    compare("number");
    const UDate at = static_cast<double>(time.GetAnsiTime()) * 1000;
    _NlsSetShortDate(text, time);
    dates.format(at, own.remove());
    compare("date");
    _NlsSetTime(text, time, 0);
    clocks->format(at, own.remove());
    compare("clock");
}

}  // namespace

TEST(AllLocales, WhatIsWrittenReadsBack) {
    const char* const set = std::getenv("LC_ALL");
    const std::string own = set ? set : "";
    std::set<std::string> seen;
    Comparison comparison;
    LimitTest(240);
    for (const std::string& name : Locales()) {
        SCOPED_TRACE(name);
        setenv("LC_ALL", name.c_str(), 1);
        orvik::detail::ReloadRegionalSettings();
        if (Utf8()) {
            NlsToolsUpdate();
            CompareWithLocaleData(name, comparison);
        }
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
    for (const char* const kind : {"number", "date", "clock"}) {
        const std::set<std::string>& texts = comparison.others[kind];
        std::cout << kind << ": " << comparison.all - texts.size() << " of " << comparison.all << " locales have their own\n";
        for (const std::string& one : texts) std::cout << "    " << one << '\n';
        // Clocks with words between or behind their fields, of which readers know one separator.
        EXPECT_LE(texts.size(), kind == std::string_view("clock") ? 8u : 0u);
    }
    if (own.empty())
        unsetenv("LC_ALL");
    else
        setenv("LC_ALL", own.c_str(), 1);
    orvik::detail::ReloadRegionalSettings();
}
