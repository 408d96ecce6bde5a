#include "time/clock_text.h"

#include <tuple>

#include "platform/house_text.h"
#include "tests/support/table.h"
#include "tests/time/regional_fixture.h"
#include "time/local_nls_tools.h"

namespace {

const CVXTTime kBefore(2001, 2, 3, 4, 5, 6, -1);

// -1 for a text that is not read, else milliseconds since midnight.
int Read(const char* text) {
    CVXTTime time = kBefore;
    if (!_NlsGetTime(text, time)) {
        EXPECT_EQ(time, kBefore) << text;
        return -1;
    }
    EXPECT_EQ(time.Get(TT_DAYOFMONTH), 3);
    return ((time.Get(TT_HOUR) * 60 + time.Get(TT_MINUTE)) * 60 + time.Get(TT_SECOND)) * 1'000 + time.Get(TT_MILLISECOND);
}
constexpr int At(int hour, int minute, int second, int millisecond = 0) {
    return ((hour * 60 + minute) * 60 + second) * 1'000 + millisecond;
}

class ClockText : public testing::Test {
protected:
    ClockText() {
        m_text.Enter(kRegions[1]);  // American
    }
    RegionalText m_text;
};

}  // namespace

TEST_F(ClockText, Reads) {
    using Row = std::tuple<const char*, int>;
    for (const auto& [text, time] : Table(
             Row{"12:30", -1}, Row{"12:30:", At(12, 30, 0)}, Row{"  7:05:09.5  ", At(7, 5, 9, 500)},
             Row{"7:05:09,25", At(7, 5, 9, 250)}, Row{"7:05:09.123", At(7, 5, 9, 123)}, Row{"7:05:09.1234", -1},
             Row{"7:05:09.", At(7, 5, 9)}, Row{"1:2:3:4", -1}, Row{"::", 0}, Row{":5:", At(0, 5, 0)}, Row{"123:00:00", -1},
             Row{"1:123:00", -1}, Row{"1:00:123", -1}, Row{"24:00:00", -1}, Row{"23:59:59", At(23, 59, 59)}, Row{"1:60:00", -1},
             Row{"1:00:60", -1}, Row{"1.00.00", -1}, Row{"12:00:00 AM", 0}, Row{"12:00:00AM", 0}, Row{"1:00:00 PM", At(13, 0, 0)},
             Row{"12:00:00 PM  ", At(12, 0, 0)}, Row{"0:00:00 PM", At(12, 0, 0)}, Row{"13:00:00 PM", -1}, Row{"13:00:00 AM", -1},
             Row{"1:00:00 pm", -1}, Row{"1:00:00 PMx", -1}, Row{"1:00:00 P", -1}, Row{"1:00:00.5 PM", At(13, 0, 0, 500)},
             Row{"1:00:00 PM.5", OrvikTextCodePage() == CP_UTF8 ? At(13, 0, 0, 500) : -1}, Row{"", -1}, Row{nullptr, -1},
             Row{"x", -1}))
        EXPECT_EQ(Read(text), time) << text;
    CVXTTime time = kBefore;
    EXPECT_EQ(CLocalNlsTools().GetTime("12:30:05.25", time), 1);
    EXPECT_EQ(time.GetBinaryTime(), CVXTTime(2001, 2, 3, 12, 30, 5, -1).GetBinaryTime() + 250'000);
}

TEST_F(ClockText, MovesOnByTheOtherDesignatorIn1252) {
    using Row = std::tuple<const char*, const char*, const char*, int>;
    for (const auto& [morning, afternoon, text, time] :
         {Row{"A", "PMX", "1:00:00 PMX", -1},           // one character on: "MX" is left
          Row{"A", "PMX", "1:00:00 A", At(1, 0, 0)},    // beyond the end is the end
          Row{"A", "PMX", "1:00:00 Axy", At(1, 0, 0)},  // three on
          Row{"A", "PMX", "1:00:00 Axyz", -1}, Row{"AMX", "P", "1:00:00 Pxy", At(13, 0, 0)},
          Row{"AMX", "P", "1:00:00 P", At(13, 0, 0)}, Row{"AMX", "P", "1:00:00 AMX", -1},
          Row{"AM", "AMPM", "1:00:00 AMxx", At(1, 0, 0)},  // the afternoon is tried first
          Row{"AM", "AMPM", "1:00:00 AMPM", -1},
          // empty ones match whatever follows
          Row{"AM", "", "1:00:00 xy", At(13, 0, 0)}, Row{"AM", "", "1:00:00 AM", At(13, 0, 0)}, Row{"AM", "", "1:00:00 xyz", -1},
          Row{"AM", "", "13:00:00 xy", -1}, Row{"AM", "", "1:00:00", At(1, 0, 0)},
          Row{"", "PM", "1:00:00 PM", -1},  // moves on by none
          Row{"", "PM", "12:00:00 xy", 0}, Row{"", "", "1:00:00 x", -1}}) {
        m_text.Set(LOCALE_S1159, morning), m_text.Set(LOCALE_S2359, afternoon);
        EXPECT_EQ(Read(text), time) << text;
    }
}

TEST_F(ClockText, EmptyTimeSeparatorMatchesNothing) {
    m_text.Set(LOCALE_STIMEFORMAT, "HHmmss");
    if (NlsGetTimeSep() != 0) GTEST_FAIL() << NlsGetTimeSep();
    for (const char* text : {"", "12", "123456", "12:30:05"}) EXPECT_EQ(Read(text), -1) << text;
}

TEST_F(ClockText, Writes) {
    CVXTTime time(2020, 2, 1, 9, 5, 7, -1);
    time.SetBinaryTime(time.GetBinaryTime() + 45'999);
    using Row = std::tuple<const char*, const char*, int, const char*>;
    for (const auto& [picture, decimal, milliseconds, expected] :
         {Row{"HH:mm:ss", ",", 1, "09:05:07,045"}, Row{"HH:mm:ss", ",", 0, "09:05:07"},
          Row{"h:mm:ss tt", ".", 1, "9:05:07 AM.045"}, Row{"H.mm.ss", "::", 1, "9.05.07::045"},  // the whole separator
          Row{"'kl' H.m.s", "", 1, "kl 9.5.7045"}}) {
        m_text.Set(LOCALE_STIMEFORMAT, picture), m_text.Set(LOCALE_SDECIMAL, decimal);
        CString text("before");
        EXPECT_EQ(_NlsSetTime(text, time, milliseconds), 1);
        EXPECT_STREQ(text, expected);
    }
}
