// What the users of a country write, in a process that chose UTF-8, and what they may type for it.
#include <gtest/gtest.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "platform/posix/controls/list_items_internal.h"
#include "platform/win32.h"
#include "tests/support/regional_settings.h"
#include "time/clock_text.h"
#include "time/date_text.h"
#include "time/digits_internal.h"
#include "time/locale_cache.h"
#include "time/number_text.h"
#include "time/span_text.h"

namespace {
class Country {
public:
    explicit Country(const char* name) {
        setenv("LC_ALL", name, 1);
        Reload();
    }
    ~Country() {
        unsetenv("LC_ALL");
        Reload();
    }

private:
    static void Reload() {
        orvik::detail::ReloadRegionalSettings();
        NlsToolsRegister();
    }
};
}  // namespace

TEST(Utf8Process, CountriesWriteTheirOwnNumbersAndTimes) {
    const struct {
        const char *name, *number, *date, *clock, *shortSpan, *longSpan;
    } cases[] = {
        {"el_GR", "-1.234.567,25", "4/7/2026", "3:06:07 μ.μ.", "-1,5 h", "-001/12:30:15"},
        {"fr_FR", "-1\u202F234\u202F567,25", "04/07/2026", "15:06:07", "-1,5 h", "-001/12:30:15"},
        {"sv_SE", "\u22121\u00A0234\u00A0567,25", "2026-07-04", "15:06:07", "\u22121,5 h", "\u2212001-12:30:15"},
        {"ar_EG", "-١٬٢٣٤٬٥٦٧٫٢٥", "٤/٧/٢٠٢٦", "٣:٠٦:٠٧ م", "-١٫٥ h", "-٠٠١/١٢:٣٠:١٥"},
        {"fa_IR", "\u2212۱٬۲۳۴٬۵۶۷٫۲۵", "۲۰۲۶/۷/۴", "۱۵:۰۶:۰۷", "\u2212۱٫۵ h", "\u2212۰۰۱/۱۲:۳۰:۱۵"},
        {"hi_IN", "-1,234,567.25", "4/7/2026", "3:06:07 pm", "-1.5 h", "-001/12:30:15"},
        {"bn_BD", "-১,২৩৪,৫৬৭.২৫", "৪/৭/২০২৬", "৩:০৬:০৭ PM", "-১.৫ h", "-০০১/১২:৩০:১৫"},
        {"zh_CN", "-1,234,567.25", "2026/7/4", "15:06:07", "-1.5 h", "-001/12:30:15"},
        {"zh_TW", "-1,234,567.25", "2026/7/4", "下午3:06:07", "-1.5 h", "-001/12:30:15"},
        {"ko_KR", "-1,234,567.25", "2026. 7. 4.", "오후 3:06:07", "-1.5 h", "-001.12:30:15"},
        {"th_TH", "-1,234,567.25", "4/7/2026", "15:06:07", "-1.5 h", "-001/12:30:15"},
        {"ms_MY", "-1,234,567.25", "4/7/2026", "3:06:07 PTG", "-1.5 h", "-001/12:30:15"},
        {"jv_ID", "-1.234.567,25", "04-07-2026", "15:06:07", "-1,5 h", "-001-12:30:15"},
    };
    const CVXTTime time(2026, 7, 4, 15, 6, 7, -1);
    for (const auto& c : cases) {
        const Country country(c.name);
        SCOPED_TRACE(c.name);
        CString text;
        _NlsSetReal(text, -1234567.25, "#.##");
        EXPECT_STREQ(c.number, text);
        _NlsSetShortDate(text, time);
        EXPECT_STREQ(c.date, text);
        _NlsSetTime(text, time, 0);
        EXPECT_STREQ(c.clock, text);
        _NlsSetShortTimeSpan(text, CVXTTimeSpan(-5400, TST_SECONDS), nullptr, -1);
        EXPECT_STREQ(c.shortSpan, text);
        _NlsSetTimeSpan(text, CVXTTimeSpan(-131'415, TST_SECONDS));
        EXPECT_STREQ(c.longSpan, text);
        // Numbers for programs have the signs that the program gives.
        _NlsSetReal(text, -1234.5, "#.##", CString("."), CString());
        EXPECT_STREQ("-1234.50", text);
    }
}

TEST(Utf8Process, ReadersTakeWhatKeyboardsHave) {
    const struct {
        const char *name, *text;
        double value;
    } cases[] = {
        {"ar_EG", "1.5", 1.5},         {"ar_EG", "-1,234.5", -1234.5},  {"ar_EG", "१२٫٥e٢", 1250}, {"fr_FR", "1 234,5", 1234.5},
        {"fr_FR", "1\u00A0234", 1234}, {"sv_SE", "-1 234,5", -1234.5},  {"sv_SE", "−0,5 V", -0.5}, {"de_CH", "1'234.5", 1234.5},
        {"de_CH", "1’234.5", 1234.5},  {"th_TH", "๑๒.๕", 12.5},         {"en_US", "\u200E-٥", -5}, {"fa_IR", "۱۲۳۴", 1234},
        {"fr_FR", "12 34", -1},        {"en_US", "١٢3", 123},           {"en_US", "٫٥", -1},       {"en_US", "−", 0},
        {"fr_FR", "1\u202F23", -1},    {"sv_SE", "1\u00A0234 V", 1234},
    };
    for (const auto& c : cases) {
        const Country country(c.name);
        double value = 0;
        const bool read = _NlsGetReal(c.text, value, "V") != 0;
        EXPECT_EQ(c.value != -1, read) << c.name << ' ' << c.text;
        EXPECT_TRUE(!read || std::abs(value - c.value) < 1e-9) << c.name << ' ' << c.text;
    }
    struct Clock {
        const char *name, *text;
        int hour, second, millisecond;  // an hour of -1 for a text that is not read
    };
    for (const Clock& c : {Clock{"zh_TW", "下午 3:06:07", 15, 7, 0}, Clock{"zh_TW", "3:06:07 下午", 15, 7, 0},
                           Clock{"zh_TW", "上午12:06:07.25", 0, 7, 250}, Clock{"el_GR", "3:06:07 μ.μ.", 15, 7, 0},
                           Clock{"el_GR", "3:06:07 π.μ.,500", 3, 7, 500}, Clock{"zh_TW", "下午13:06:07", -1, 0, 0},
                           Clock{"zh_TW", "下午3:06:07 上午", -1, 0, 0}, Clock{"ar_EG", "٣:٠٦:٠٧ م", 15, 7, 0},
                           Clock{"ar_EG", "15:06:٠٧", 15, 7, 0}, Clock{"ms_MY", "3:06:07 PTG", 15, 7, 0},
                           Clock{"ms_MY", "3:06:07 PG x", -1, 0, 0}, Clock{"en_US", "٠٠١:06:07", -1, 0, 0}}) {
        const Country country(c.name);
        CVXTTime time(2026, 7, 4, 1, 2, 3, -1);
        ASSERT_EQ(c.hour >= 0, _NlsGetTime(c.text, time) != 0) << c.text;
        if (c.hour < 0) continue;
        EXPECT_EQ(c.hour, time.Get(TT_HOUR)) << c.text;
        EXPECT_EQ(c.second, time.Get(TT_SECOND)) << c.text;
        EXPECT_EQ(c.millisecond, time.Get(TT_MILLISECOND)) << c.text;
    }
    const Country country("ar_EG");
    CString text("١٢٣٤٥٦٧ x 1234");
    NlsAddThousandSep(text);
    EXPECT_STREQ("١٬٢٣٤٬٥٦٧ x 1٬234", text);
    int number = 0;
    EXPECT_TRUE(_NlsGetInteger("-١٢", number));
    EXPECT_EQ(-12, number);
    _NlsSetInteger(text, -12);
    EXPECT_STREQ("-١٢", text);
    EXPECT_FALSE(_NlsGetInteger("١ ٢", number));
    // Pictures stand in ASCII, whatever the separator.
    EXPECT_STREQ("###.##", NlsRealFmt(3, 2));
}

TEST(Utf8Process, NamesAreReadByLetters) {
    const TextLanguage swedish(LANG_SWEDISH);
    RegionalSettings settings;
    const CVXTTime time(2026, 7, 4, 15, 6, 7, -1);
    settings.Set(LOCALE_SLONGDATE, "yyyy 'ψ' M‑d dddd");
    NlsToolsRegister();
    CString text;
    _NlsSetLongDate(text, time);
    EXPECT_STREQ("2026 ψ 7‑4 Lördag", text);
    CVXTTime read;
    EXPECT_TRUE(_NlsGetLongDate(text, read));
    EXPECT_FALSE(_NlsGetLongDate("2026 ψ 7‑4 Lör", read));
}

TEST(Utf8Process, ListsHaveTheOrderOfTheUsersLanguage) {
    const struct {
        const char *name, *order;  // one item after the other, " " behind each
    } cases[] = {
        {"sv_SE", "_x A-1 apa Box ett Zebra Å Äpple Öl Ωmega 温度 "},
        {"de_DE", "_x Å A-1 apa Äpple Box ett Öl Zebra Ωmega 温度 "},
        {"el_GR", "_x άλφα Βήτα Ωmega Å A-1 apa "},
        {"cs_CZ", "cena delta hora chata "},
        {"zh_CN", "北京 重庆 上海 温度 "},
    };
    for (const auto& c : cases) {
        const Country country(c.name);
        std::istringstream words(c.order);
        std::vector<std::string> items{std::istream_iterator<std::string>(words), {}};
        std::reverse(items.begin(), items.end());
        orvik::detail::ListItems list;
        for (const std::string& item : items) list.Add(item.c_str(), true);
        std::string order;
        for (int i = 0; i < list.Count(); ++i) order += list[i].text + ' ';
        EXPECT_EQ(c.order, order) << c.name;
        EXPECT_EQ(CSTR_EQUAL, CompareStringA(LOCALE_USER_DEFAULT, NORM_IGNORECASE, "\u03A9x", 2, "\u03C9", -1));
        EXPECT_NE(CSTR_EQUAL, CompareStringA(LOCALE_USER_DEFAULT, 0, "\u03A9", -1, "\u03C9", -1));
        EXPECT_EQ(CSTR_LESS_THAN, CompareStringA(LOCALE_INVARIANT, NORM_IGNORECASE, "a\xE5", -1, "b", 99));
        EXPECT_EQ(0, CompareStringA(0x3FF, 0, "a", -1, "a", -1));
        EXPECT_EQ(0, CompareStringA(0, 0x40, "a", -1, "a", -1));
    }
}

// The locale data's characters beside the house's own table.
TEST(Utf8Process, DigitsAreThoseOfUnicode) {
    for (UChar32 c = 0; c < 0x110000; ++c)
        ASSERT_EQ(u_charType(c) == U_DECIMAL_DIGIT_NUMBER ? u_charDigitValue(c) : -1,
                  orvik::detail::ValueOfDigit(static_cast<char32_t>(c)))
            << c;
}
