// Regional settings from the environment, on the home that spells them itself. Expected values are what Windows has for these
// countries.
#include <gtest/gtest.h>

#include <cstdlib>
#include <iterator>
#include <map>
#include <string>
#include <tuple>

#include "platform/house_text_internal.h"
#include "platform/win32.h"
#include "tests/support/last_error.h"

namespace {

class Environment : public testing::Test {
protected:
    void SetUp() override {
        for (const char* name : {"LC_ALL", "LC_TIME", "LC_NUMERIC", "LC_MONETARY", "LC_CTYPE", "LANG"}) {
            const char* value = std::getenv(name);
            m_saved[name] = value ? value : "";
            unsetenv(name);
        }
    }
    void TearDown() override {
        for (const auto& [name, value] : m_saved)
            if (value.empty())
                unsetenv(name.c_str());
            else
                setenv(name.c_str(), value.c_str(), 1);
        orvik::detail::ReloadRegionalSettings();
    }
    void Use(const char* name, const char* value) {
        setenv(name, value, 1);
        orvik::detail::ReloadRegionalSettings();
    }
    static std::string Item(LCTYPE item, LCID locale = LOCALE_USER_DEFAULT) {
        char text[256] = "";
        return GetLocaleInfoA(locale, item, text, sizeof text) > 0 ? text : "?";
    }

private:
    std::map<std::string, std::string> m_saved;
};

const SYSTEMTIME kAfternoon = {2024, 5, 0, 7, 15, 4, 5, 678};

std::string Time(DWORD flags, const char* picture, const SYSTEMTIME& time = kAfternoon) {
    char text[128] = "";
    return GetTimeFormatA(LOCALE_USER_DEFAULT, flags, &time, picture, text, sizeof text) ? text : "?";
}
std::string Date(DWORD flags, const char* picture, const SYSTEMTIME& date = kAfternoon) {
    char text[128] = "";
    return GetDateFormatA(LOCALE_USER_DEFAULT, flags, &date, picture, text, sizeof text) ? text : "?";
}

}  // namespace

// Wine takes 29 February of any year for a date; Windows and this home do not.
TEST(FileTimes, LeapDaysNeedALeapYear) {
    using Row = std::tuple<WORD, BOOL>;
    for (const auto& [year, good] : {Row{2024, TRUE}, Row{2023, FALSE}, Row{2000, TRUE}, Row{1900, FALSE}}) {
        const SYSTEMTIME system = {year, 2, 0, 29, 0, 0, 0, 0};
        FILETIME file{};
        EXPECT_EQ(SystemTimeToFileTime(&system, &file), good) << year;
    }
}

TEST_F(Environment, CountriesAsWindowsSpellsThemIn1252) {
    const LCTYPE items[] = {LOCALE_SDECIMAL,  LOCALE_STHOUSAND,   LOCALE_SLIST,         LOCALE_SGROUPING, LOCALE_SSHORTDATE,
                            LOCALE_SLONGDATE, LOCALE_STIMEFORMAT, LOCALE_S1159,         LOCALE_S2359,     LOCALE_SDATE,
                            LOCALE_STIME,     LOCALE_SCURRENCY,   LOCALE_ICURRENCY,     LOCALE_INEGCURR,  LOCALE_IDATE,
                            LOCALE_ITIME,     LOCALE_ITLZERO,     LOCALE_ITIMEMARKPOSN, LOCALE_ICOUNTRY,  LOCALE_IMEASURE,
                            LOCALE_ILZERO,    LOCALE_IDIGITS,     LOCALE_ICURRDIGITS,   LOCALE_SCOUNTRY,  LOCALE_SLANGUAGE,
                            LOCALE_ILANGUAGE};
    struct Row {
        const char *name, *values;  // one after the other, "|" behind each
    };
    for (const Row& country : {Row{"sv_SE.UTF-8",
                                   ",|\xA0|;|3;0|yyyy-MM-dd|dddd d MMMM yyyy|HH:mm:ss|fm|em|-|:|kr|"
                                   "3|8|2|1|1|0|46|0|1|2|2|Sweden|Swedish (Sweden)|041d|"},
                               Row{"en_US",
                                   ".|,|,|3;0|M/d/yyyy|dddd, MMMM d, yyyy|h:mm:ss tt|AM|PM|/|:|$|"
                                   "0|0|0|0|0|0|1|1|1|2|2|United States|English (United States)|0409|"},
                               Row{"de_DE@euro",
                                   ",|.|;|3;0|d.M.yyyy|dddd, d. MMMM yyyy|HH:mm:ss|AM|PM|.|:|\x80|"
                                   "3|8|1|1|1|0|49|0|1|2|2|Germany|German (Germany)|0407|"},
                               Row{"en_IN",
                                   ".|,|,|3;2;0|d/M/yyyy|dddd, d MMMM, yyyy|h:mm:ss tt|am|pm|/|:|?|"
                                   "0|0|1|0|0|0|91|0|1|2|2|India|English (India)|4009|"}}) {
        Use("LC_ALL", country.name);
        std::string all;
        for (const LCTYPE item : items) all += Item(item) + '|';
        EXPECT_EQ(all, country.values) << country.name;
    }
}

// Languages whose own separators, designators or pictures Windows-1252 or the readers cannot say.
TEST_F(Environment, OtherLanguagesAreSaidWithWhatThereIsIn1252) {
    const LCTYPE items[] = {LOCALE_SDECIMAL, LOCALE_STHOUSAND, LOCALE_SSHORTDATE, LOCALE_STIMEFORMAT, LOCALE_S1159, LOCALE_STIME};
    struct Row {
        const char *name, *values[6];
    };
    for (const Row& language : {Row{"ar_EG", {".", ",", "d/M/yyyy", "H:mm:ss", "AM", ":"}},
                                Row{"fa_IR", {".", ",", "yyyy/M/d", "H:mm:ss", "AM", ":"}},  // not of its own calendar
                                Row{"el_GR", {",", ".", "d/M/yyyy", "H:mm:ss", "AM", ":"}},
                                Row{"ko_KR", {".", ",", "yyyy. M. d.", "H:mm:ss", "AM", ":"}},  // its designator comes first
                                Row{"ms_MY", {".", ",", "d/M/yyyy", "H:mm:ss", "PG", ":"}},     // of other length than "PTG"
                                Row{"bg_BG", {",", "\xA0", "d.MM.yyyy", "H:mm:ss", "AM", ":"}},
                                Row{"zh_SG", {".", ",", "yyyy-M-d", "H:mm:ss", "AM", ":"}},
                                Row{"fr_CA", {",", "\xA0", "yyyy-MM-dd", "HH:mm:ss", "a.m.", ":"}},
                                Row{"es_CO", {",", ".", "d/M/yyyy", "h:mm:ss tt", "a.\xA0m.", ":"}}}) {
        Use("LC_ALL", language.name);
        for (size_t i = 0; i < std::size(items); ++i)
            EXPECT_EQ(Item(items[i]), language.values[i]) << language.name << " item " << items[i];
    }
    Use("LC_ALL", "ca_ES");
    EXPECT_EQ(Item(LOCALE_SLONGDATE), "dddd, d MMMM 'de' yyyy");
    Use("LC_ALL", "lo_LA");
    EXPECT_EQ(Item(LOCALE_SLONGDATE), "dddd d MMMM yyyy");  // its era left out, and a word that cannot be said
    EXPECT_TRUE(SetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_STIMEFORMAT, "'h' hh 'h' mm 'h' ss"));
    EXPECT_EQ(Item(LOCALE_STIME), " h ");
    EXPECT_EQ(Item(LOCALE_ITLZERO), "1");
    EXPECT_TRUE(SetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_ITIME, "1"));
    EXPECT_TRUE(SetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_STIME, "."));
    EXPECT_EQ(Item(LOCALE_STIMEFORMAT), "'h' HH.mm.ss");
}

TEST_F(Environment, CategoriesAndTheirOrder) {
    Use("LANG", "sv_SE.UTF-8");
    EXPECT_EQ(GetUserDefaultLCID(), 0x41Du);
    EXPECT_EQ(Item(LOCALE_SDECIMAL), ",");
    Use("LC_NUMERIC", "en_US.UTF-8");
    EXPECT_EQ(Item(LOCALE_SDECIMAL), ".");
    EXPECT_EQ(Item(LOCALE_SSHORTDATE), "yyyy-MM-dd");
    Use("LC_TIME", "de_DE.UTF-8");
    EXPECT_EQ(Item(LOCALE_SSHORTDATE), "d.M.yyyy");
    Use("LC_ALL", "en_IN.UTF-8");
    EXPECT_EQ(Item(LOCALE_SSHORTDATE), "d/M/yyyy");
    for (const char* name : {"C", "POSIX", "C.UTF-8", "xx_YY.UTF-8", "!!", "en_US"}) {
        Use("LC_ALL", name);
        EXPECT_EQ(Item(LOCALE_SSHORTDATE), "M/d/yyyy") << name;
        EXPECT_EQ(GetUserDefaultLCID(), 0x409u) << name;
    }
    Use("LC_ALL", "sv");
    EXPECT_EQ(Item(LOCALE_SCOUNTRY), "Sweden");
    EXPECT_EQ(Item(LOCALE_SDECIMAL, 0x409), ".");  // another locale than the user's, by its id
    EXPECT_EQ(Item(LOCALE_SDECIMAL, 0x3FF), "?");
    EXPECT_EQ(GetACP(), 1252u);
}

TEST_F(Environment, ChangesTakeEffectAtOnceAndPicturesRule) {
    Use("LC_ALL", "en_US");
    EXPECT_TRUE(SetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_STIME, "."));
    EXPECT_EQ(Item(LOCALE_STIMEFORMAT), "h.mm.ss tt");
    EXPECT_TRUE(SetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_ITIME, "1"));
    EXPECT_EQ(Item(LOCALE_STIMEFORMAT), "H.mm.ss tt");
    EXPECT_TRUE(SetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_STIMEFORMAT, "HH-mm"));
    EXPECT_EQ(Item(LOCALE_STIME), "-");
    EXPECT_EQ(Item(LOCALE_ITLZERO), "1");
    EXPECT_TRUE(SetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_SDATE, "."));
    EXPECT_EQ(Item(LOCALE_SSHORTDATE), "M.d.yyyy");
    EXPECT_TRUE(SetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_SSHORTDATE, "dd:MM:yy"));
    EXPECT_EQ(Item(LOCALE_SDATE), ":");
    EXPECT_EQ(Item(LOCALE_IDATE), "1");
    EXPECT_EQ(Item(LOCALE_SSHORTDATE | LOCALE_NOUSEROVERRIDE), "M/d/yyyy");
    EXPECT_TRUE(SetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_SSHORTDATE, ""));
    EXPECT_EQ(Item(LOCALE_SDATE), "");
    EXPECT_TRUE(SetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, "abc"));
    EXPECT_FAILS(SetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, "abcd"), ERROR_INVALID_PARAMETER);
    EXPECT_FAILS(SetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_SLANGUAGE, "x"), ERROR_INVALID_FLAGS);
    EXPECT_FALSE(SetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_SLIST, nullptr));
}

TEST_F(Environment, BuffersAndNumbers) {
    Use("LC_ALL", "sv_SE");
    char text[8] = "unchan";
    EXPECT_FAILS(GetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_SSHORTDATE, text, 8), ERROR_INSUFFICIENT_BUFFER);
    EXPECT_STREQ(text, "unchan");
    EXPECT_EQ(GetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_SSHORTDATE, nullptr, 0), 11);
    EXPECT_FAILS(GetLocaleInfoA(LOCALE_USER_DEFAULT, 0x7777, text, 8), ERROR_INVALID_FLAGS);
    DWORD number = 0;
    EXPECT_EQ(GetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_ICOUNTRY | LOCALE_RETURN_NUMBER, reinterpret_cast<char*>(&number), 4),
              4);
    EXPECT_EQ(number, 46u);
    EXPECT_EQ(GetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_SLIST | LOCALE_RETURN_NUMBER, reinterpret_cast<char*>(&number), 4), 0);
}

TEST_F(Environment, TimePictures) {
    Use("LC_ALL", "en_US");
    using Row = std::tuple<DWORD, const char*, const char*>;
    for (const auto& [flags, picture, text] :
         {Row{0, nullptr, "3:04:05 PM"}, Row{TIME_NOSECONDS, nullptr, "3:04 PM"}, Row{TIME_NOMINUTESORSECONDS, nullptr, "3 PM"},
          Row{TIME_NOTIMEMARKER, nullptr, "3:04:05"}, Row{TIME_FORCE24HOURFORMAT, nullptr, "15:04:05 PM"},
          Row{0, "h 'o''clock' t tt ttt HHH mmm sss x", "3 o'clock P PM PM 15 04 05 x"}})
        EXPECT_EQ(Time(flags, picture), text);
    SYSTEMTIME time = {0, 0, 0, 0, 0, 5, 9, 0};  // a time of day needs no date
    EXPECT_EQ(Time(0, "hh:m:s tt", time), "12:5:9 AM");
    time.wHour = 12;
    EXPECT_EQ(Time(0, "h tt", time), "12 PM");
    time.wHour = 24;
    EXPECT_EQ(Time(0, nullptr, time), "?");
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    Use("LC_ALL", "sv_SE");
    EXPECT_EQ(Time(0, "tt h"), "em 3");
    EXPECT_EQ(GetTimeFormatA(LOCALE_USER_DEFAULT, 0, nullptr, nullptr, nullptr, 0), 9);
}

TEST_F(Environment, DatePictures) {
    Use("LC_ALL", "sv_SE");
    EXPECT_EQ(Date(0, nullptr), "2024-05-07");
    EXPECT_EQ(Date(DATE_LONGDATE, nullptr), "tisdag 7 maj 2024");
    EXPECT_EQ(Date(0, "d dd ddd dddd M MM MMM y yy yyyy 'it''s' 'open"), "7 07 tis tisdag 5 05 maj 24 24 2024 it's open");
    SYSTEMTIME sunday = {2024, 3, 5, 3, 0, 0, 0, 0};  // whatever weekday is given
    EXPECT_EQ(Date(0, "dddd", sunday), orvik::detail::HouseFrom1252("s\xF6ndag"));
    sunday.wMonth = 2, sunday.wDay = 30;
    EXPECT_EQ(Date(0, nullptr, sunday), "?");
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_EQ(Date(DATE_LONGDATE, "d"), "?");
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_FLAGS});
}
