#include "time/locale_cache.h"

#include <initializer_list>
#include <string>
#include <tuple>

#include <gtest/gtest.h>

#include "platform/house_text_internal.h"
#include "tests/support/regional_settings.h"
#include "time/date_picture_internal.h"

using orvik::detail::TheLocaleCache;
using orvik::detail::TheNlsTexts;

namespace {

CString WriteDatePicture(std::string_view picture, const orvik::detail::CalendarDate& date) {
    CString text;
    orvik::detail::AppendDatePicture(text, picture, date);
    return text;
}

class LocaleCacheTest : public testing::Test {
protected:
    RegionalSettings m_settings;
};

}  // namespace

TEST_F(LocaleCacheTest, HoldsTheUsersSettings) {
    struct Row {
        void (RegionalSettings::*country)();
        char decimal, thousand, list, date, time;
        const char *shortDate, *timePicture, *morning, *afternoon;
    };
    const char blank = OrvikTextCodePage() == CP_UTF8 ? ' ' : '\xA0';
    for (const Row& c : {Row{&RegionalSettings::Swedish, ',', blank, ';', '-', ':', "yyyy-MM-dd", "HH:mm:ss", "fm", "em"},
                         Row{&RegionalSettings::American, '.', ',', ',', '/', ':', "M/d/yyyy", "h:mm:ss tt", "AM", "PM"},
                         Row{&RegionalSettings::German, ',', '.', ';', '.', ':', "dd.MM.yyyy", "HH:mm:ss", "", ""},
                         Row{&RegionalSettings::Indian, '.', ',', ',', '-', ':', "dd-MM-yyyy", "hh:mm:ss tt", "am", "pm"}}) {
        (m_settings.*c.country)();
        NlsToolsUpdate();
        EXPECT_EQ(NlsGetDecimalSep(), c.decimal) << c.shortDate;
        EXPECT_EQ(NlsGetThousandSep(), c.thousand) << c.shortDate;
        EXPECT_EQ(NlsGetListSep(), c.list) << c.shortDate;
        EXPECT_EQ(NlsGetDateSep(), c.date) << c.shortDate;
        EXPECT_EQ(NlsGetTimeSep(), c.time) << c.shortDate;
        EXPECT_STREQ(NlsGetShortDateSpec(), c.shortDate);
        EXPECT_STREQ(NlsGetTimeSpec(), c.timePicture);
        EXPECT_STREQ(TheLocaleCache().morning, c.morning);
        EXPECT_STREQ(TheLocaleCache().afternoon, c.afternoon);
        EXPECT_EQ(TheLocaleCache().leadingZero, 1);
        EXPECT_FALSE(TheLocaleCache().country.IsEmpty());
        EXPECT_FALSE(TheLocaleCache().language.IsEmpty());
    }
}

TEST_F(LocaleCacheTest, ThousandSeparatorStaysWhileDigitsAreNotGrouped) {
    m_settings.Set(LOCALE_SGROUPING, "3;0"), m_settings.Set(LOCALE_STHOUSAND, "'");
    NlsToolsUpdate();
    m_settings.Set(LOCALE_SGROUPING, "0;0"), m_settings.Set(LOCALE_STHOUSAND, "_");
    NlsToolsUpdate();
    EXPECT_EQ(NlsGetThousandSep(), '\'');  // not read again
    m_settings.Set(LOCALE_SGROUPING, "3;0"), m_settings.Set(LOCALE_STHOUSAND, "");
    NlsToolsUpdate();
    EXPECT_EQ(NlsGetThousandSep(), 0);
}

TEST_F(LocaleCacheTest, PictureBeyondItsBufferLeavesTheEntryEmptyIn1252) {
    m_settings.Set(LOCALE_STIMEFORMAT, "'at' HH:mm:ss 'local time'");
    NlsToolsUpdate();
    EXPECT_STREQ(NlsGetTimeSpec(), "");
    m_settings.Set(LOCALE_SDECIMAL, "");
    NlsToolsUpdate();
    EXPECT_EQ(NlsGetDecimalSep(), 0);
}

TEST_F(LocaleCacheTest, RegisterLoadsWordsAndMessages) {
    {
        const TextLanguage english(LANG_ENGLISH);
        NlsToolsRegister();
        EXPECT_STREQ(TheNlsTexts().milliseconds, ";ms;millisec;milliseconds;milli seconds;");
        EXPECT_STREQ(TheNlsTexts().badDate, "Illegal date format.\n\nUse %s");
    }
    const TextLanguage swedish(LANG_SWEDISH);
    NlsToolsRegister();
    EXPECT_STREQ(TheNlsTexts().weeks, ";v;veckor;");
    EXPECT_STREQ(TheNlsTexts().minutes, ";m;min;minuer;");
    EXPECT_STREQ(TheNlsTexts().badDate, orvik::detail::HouseFrom1252("Ogiltigt datumformat.\n\nAnv\xE4nd %s").c_str());
    NlsToolsUnregister();
    EXPECT_STREQ(TheNlsTexts().weeks, ";v;veckor;");
}

TEST_F(LocaleCacheTest, Names) {
    const auto names = [](CString (*name)(int), std::initializer_list<int> numbers) {
        std::string all;
        for (const int number : numbers) all += name(number) + ' ';
        return all;
    };
    {
        const TextLanguage english(LANG_ENGLISH);
        EXPECT_EQ(names(NlsGetLongMonth, {1, 12, -5'000}), "January December  ");
        EXPECT_EQ(names(NlsGetShortMonth, {1, 0}), "Jan December ");  // of 0 the text that has the id
        EXPECT_EQ(names(NlsGetShortDay, {0}) + names(NlsGetLongDay, {6}), "Sun Saturday ");
    }
    const TextLanguage swedish(LANG_SWEDISH);
    EXPECT_EQ(names(NlsGetLongMonth, {5}) + names(NlsGetShortMonth, {10}), "Maj Okt ");
    EXPECT_EQ(names(NlsGetLongDay, {0}) + names(NlsGetShortDay, {6}), orvik::detail::HouseFrom1252("S\xF6ndag L\xF6r "));
}

TEST(DatePicture, Elements) {
    const TextLanguage english(LANG_ENGLISH);
    using Row = std::tuple<const char*, const char*>;
    for (const auto& [picture, text] :
         {Row{"yyyy-MM-dd", "2024-05-07"}, Row{"M/d/yy", "5/7/24"}, Row{"dddd, MMMM d, yyyy", "Tuesday, May 7, 2024"},
          Row{"ddd MMM", "Tue May"}, Row{"MMMMM|ddddd|y|yyy|yyyyy", "||||"}, Row{"d'th of' MMMM", "7th of May"},
          Row{"'dMy''d'", "dMyd"}, Row{"''d", "7"}, Row{"d 'of May", "7 of May"}, Row{"'", ""}, Row{"D m Y h\xE5", "D m Y h\xE5"},
          Row{"", ""}})
        EXPECT_STREQ(WriteDatePicture(picture, {2024, 5, 7, 2}), text) << picture;
    EXPECT_STREQ(WriteDatePicture("yy yyyy", {2005, 1, 1, 6}), "05 2005");
}
