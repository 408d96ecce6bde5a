#include "time/date_text.h"

#include "platform/house_text_internal.h"
#include "tests/support/table.h"
#include "tests/time/regional_fixture.h"
#include "time/clock_text.h"
#include "time/local_nls_tools.h"

namespace {

const CVXTTime kBefore(2001, 2, 3, 4, 5, 6, -1);

class DateText : public testing::Test {
protected:
    RegionalText m_text;
};

CVXTTime Noon(int year, int month, int day) { return CVXTTime(year, month, day, 12, 0, 0, -1); }

}  // namespace

TEST_F(DateText, ReadsByPictures) {
    struct Row {
        const char *picture, *text;
        int year, month, day;  // year 0 for failure
    };
    for (const Row& c :
         Table(Row{"d.M.yyyy", "1.2.2020", 2020, 2, 1}, Row{"d.M.yyyy", "001.0002.2020", 2020, 2, 1},  // any number of digits
               Row{"d.M.yyyy", "1.2.2020 and more", 2020, 2, 1}, Row{"d.M.yyyy", "1.2", 0, 0, 0},
               Row{"d.M.yyyy", "1.2.", 0, 0, 0},  // four digits need one
               Row{"d.M.yyyy", "1.2.1899", 0, 0, 0}, Row{"d.M.yyyy", "1.2.2042", 0, 0, 0},
               Row{"d.M.yyyy", "1.2.2041", 2041, 2, 1}, Row{"d.M.yyyy", "31.4.2020", 2020, 5, 1},
               Row{"d.M.yyyy", "0.3.2020", 2020, 2, 29}, Row{"d.M.yyyy", "5.0.2020", 2019, 12, 5},
               Row{"d.M.yyyy", ".3.2020", 2020, 2, 29}, Row{"d.M.yyyy", "1.2.99999999999", 0, 0, 0}, Row{"d.M.yyyy", "", 0, 0, 0},
               Row{"dd.MM.yy", "01.02.69", 2069, 2, 1}, Row{"dd.MM.yy", "01.02.70", 1970, 2, 1},
               Row{"dd.MM.yy", "01.02.", 2000, 2, 1}, Row{"dd.MM.yy", "01.02.100", 0, 0, 0}, Row{"dd.MM.yyyy", "1.2.99", 0, 0, 0},
               Row{"MMMM yyyy d", "January 2020 5", 0, 0, 0},     // the name does not move the reader on
               Row{"d yyyy MMMM", "5 2020 January", 2020, 1, 5},  // at the end it does no harm
               Row{"d yyyy MMM", "5 2020 Jan", 2020, 1, 5}, Row{"d yyyy MMM", "5 2020 jan", 0, 0, 0},
               Row{"d yyyy MMM", "5 2020 January", 0, 0, 0},  // the whole word counts
               Row{"d yyyy MMM", "5 2020 Jan.", 2020, 1, 5}, Row{"d yyyy MMM", "5 2020 ", 0, 0, 0},
               Row{"d MMM yyyy", "5 Jan 2020", 0, 0, 0},
               Row{"d yyyy MMMMM'May'", "5 2020 May", 0, 0, 0},      // such a run reads nothing, so there is no month
               Row{"d-M-yyyy dddd", "5-4-2020 Monday", 2020, 4, 5},  // checked to be a weekday, and no more
               Row{"d-M-yyyy ddd", "5-4-2020 Mon", 2020, 4, 5}, Row{"d-M-yyyy ddd", "5-4-2020 Monday", 0, 0, 0},
               Row{"d-M-yyyy ddddd", "5-4-2020 ", 2020, 4, 5}, Row{"d-M-yyyyyd", "5-4-7", 0, 0, 0},
               Row{"d'th of 'M', 'yyyy", "5th of 4, 2020", 2020, 4, 5}, Row{"d'th of 'M', 'yyyy", "5 th of 4, 2020", 0, 0, 0},
               Row{"d/M/yyyy' no end", "5/4/2020 no end", 2020, 4, 5}, Row{"d/M/yyyy' no end", "5/4/2020 no en", 0, 0, 0},
               Row{"d/M/yyyy''", "5/4/2020", 2020, 4, 5}, Row{"M/yyyy", "4/2020", 0, 0, 0}, Row{"d/M", "5/4", 0, 0, 0},
               Row{"dM yyyy", "5 2020", 2019, 12, 5}, Row{"d/M/d/yyyy", "1/2/3/2020", 2020, 2, 3}  // the last one counts
               )) {
        m_text.Set(LOCALE_SLONGDATE, c.picture);
        CVXTTime time = kBefore;
        EXPECT_EQ(_NlsGetLongDate(c.text, time), c.year != 0) << c.picture << ": " << c.text;
        EXPECT_EQ(time, c.year ? CVXTTime(c.year, c.month, c.day, 4, 5, 6, -1) : kBefore) << c.picture << ": " << c.text;
    }
}

TEST_F(DateText, LeadingSpacesAndNullAreRefused) {
    m_text.Set(LOCALE_SSHORTDATE, "d.M.yyyy");
    CVXTTime time = kBefore;
    EXPECT_EQ(_NlsGetShortDate(" 1.2.2020", time), 0);
    EXPECT_EQ(_NlsGetShortDate(nullptr, time), 0);
    EXPECT_EQ(_NlsGetShortDate("1.99999999999.2020", time), 0);  // no such month can be put right
    m_text.Set(LOCALE_SSHORTDATE, "yyyyMMdd");
    EXPECT_EQ(_NlsGetShortDate("20200201", time), 0);  // digits without a separator are one number
    EXPECT_EQ(time, kBefore);
}

TEST_F(DateText, KeepsTheTimeOfDayAndDropsItsFraction) {
    m_text.Set(LOCALE_SSHORTDATE, "yyyy-MM-dd");
    CVXTTime time = kBefore;
    time.SetBinaryTime(time.GetBinaryTime() + 999'999);
    EXPECT_EQ(_NlsGetShortDate("2020-07-01", time), 1);
    EXPECT_EQ(time, CVXTTime(2020, 7, 1, 4, 5, 6, -1));
}

TEST_F(DateText, ReadsNamesOfTheUsersLanguage) {
    const TextLanguage swedish(LANG_SWEDISH);
    m_text.Set(LOCALE_SLONGDATE, "d M yyyy dddd");
    CVXTTime time = kBefore;
    EXPECT_EQ(_NlsGetLongDate(orvik::detail::HouseFrom1252("5 4 2020 S\xF6ndag").c_str(), time),
              1);  // one word, whatever the process locale
    EXPECT_EQ(_NlsGetLongDate("5 4 2020 Sunday", time), 0);
    m_text.Set(LOCALE_SLONGDATE, "d yyyy MMM");
    EXPECT_EQ(_NlsGetLongDate("5 2020 Okt", time), 1);
    EXPECT_EQ(time, CVXTTime(2020, 10, 5, 4, 5, 6, -1));
    CString text;
    EXPECT_EQ(_NlsSetLongDate(text, time), 1);
    EXPECT_STREQ(text, "5 2020 Okt");
}

TEST_F(DateText, WritesBothPictures) {
    m_text.Set(LOCALE_SSHORTDATE, "dd.MM.yy"), m_text.Set(LOCALE_SLONGDATE, "dddd 'den' d MMMM yyyy MMMMM");
    CString text("before");
    EXPECT_EQ(_NlsSetShortDate(text, Noon(2020, 2, 1)), 1);
    EXPECT_STREQ(text, "01.02.20");
    EXPECT_EQ(_NlsSetLongDate(text, Noon(2020, 2, 1)), 1);
    EXPECT_STREQ(text, "Saturday den 1 February 2020 ");
    EXPECT_EQ(_NlsSetShortDate(text, CVXTTime(1970, 1, 2, 0, 0, 0, -1)), 1);
    EXPECT_STREQ(text, "01.01.72");  // clamped, as every calendar field is
}

TEST_F(DateText, ReadsDateAndTime) {
    m_text.Set(LOCALE_SSHORTDATE, "yyyy-MM-dd"), m_text.Set(LOCALE_SLONGDATE, "d/M yyyy");
    m_text.Set(LOCALE_STIMEFORMAT, "HH:mm:ss"), m_text.Set(LOCALE_SDECIMAL, ",");
    CLocalNlsTools tools;
    CVXTTime time = kBefore;
    EXPECT_EQ(tools.StringToTime("  2024-05-06  ", time), 1);
    EXPECT_EQ(time, CVXTTime(2024, 5, 6, 4, 5, 6, -1));
    EXPECT_EQ(tools.StringToTime("7/6 2023 1:2:3,5", time), 1);
    EXPECT_EQ(time.GetBinaryTime(), CVXTTime(2023, 6, 7, 1, 2, 3, -1).GetBinaryTime() + 500'000);
    const CVXTTime before = time;
    for (const char* bad : {"2024-05-06 1:2", "2024-05-06 x", "2024-05", "1:2:3", ""})
        EXPECT_EQ(tools.StringToTime(bad, time), 0) << bad;
    EXPECT_EQ(tools.StringToTime(nullptr, time), 0);
    EXPECT_EQ(time, before);
}
