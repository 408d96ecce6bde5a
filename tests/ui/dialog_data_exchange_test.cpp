// Values in the user's format through edit controls: what is shown, what is read, and how text is refused.
#include "ui/dialog_data_exchange.h"

#include <tuple>

#include "afx/controls.h"
#include "afx/exception.h"
#include "platform/house_text_internal.h"
#include "tests/support/dialog_fixture.h"
#include "tests/support/raises.h"
#include "time/clock_text.h"
#include "time/date_text.h"
#include "time/locale_cache.h"
#include "time/number_text.h"
#include "time/span_text.h"

namespace {

constexpr int kField = 100, kOther = 101;

// A window with a field and another control that has the focus; what it exchanges is given for each case.
class Form : public CWnd {
public:
    std::function<void(CDataExchange*)> exchange;

protected:
    void DoDataExchange(CDataExchange* pDX) override { exchange(pDX); }
};

class DataExchange : public DialogTest {
protected:
    void SetUp() override {
        DialogTest::SetUp();
        settings.Swedish();
        settings.Set(LOCALE_SDATE, "-"), settings.Set(LOCALE_STIME, ":");
        settings.Set(LOCALE_SLONGDATE, "'den 'd MMMM yyyy");
        NlsToolsRegister();
        ASSERT_TRUE(form.CreateEx(0, AfxRegisterWndClass(0), "form", WS_CHILD | WS_VISIBLE, CRect(0, 0, 400, 200), &owner, 1));
        ASSERT_TRUE(field.Create(WS_CHILD | WS_VISIBLE | ES_AUTOHSCROLL, CRect(0, 0, 300, 20), &form, kField));
        ASSERT_TRUE(other.Create(WS_CHILD | WS_VISIBLE, CRect(0, 30, 300, 50), &form, kOther));
        field.SetLimitText(100'000);
    }
    std::string Load(std::function<void(CDataExchange*)> exchange) {
        form.exchange = std::move(exchange);
        EXPECT_TRUE(form.UpdateData(FALSE));
        return TextOf(field);
    }
    // Whether the text was taken. A refusal is one message with its icon, and the field focused with its text selected.
    bool Save(const std::string& text, std::function<void(CDataExchange*)> exchange) {
        form.exchange = std::move(exchange);
        field.SetWindowText(text.c_str());
        other.SetFocus();
        app.told.clear(), app.types.clear();
        const bool taken = form.UpdateData(TRUE) != FALSE;
        if (taken) {
            EXPECT_TRUE(app.told.empty()) << text;
            EXPECT_EQ(::GetFocus(), other.m_hWnd);
            return true;
        }
        EXPECT_EQ(app.types, std::vector<UINT>{MB_ICONEXCLAMATION}) << text;
        EXPECT_EQ(::GetFocus(), field.m_hWnd) << text;
        int first = -1, last = -1;
        field.GetSel(first, last);
        EXPECT_TRUE(first == 0 && last == field.GetWindowTextLength()) << text;
        return false;
    }

    // What the user is told of a text that is refused.
    std::string Refusal(const std::string& text, std::function<void(CDataExchange*)> exchange) {
        EXPECT_FALSE(Save(text, std::move(exchange))) << text;
        return app.Told();
    }

    RegionalSettings settings;
    Form form;
    CEdit field, other;
    const CVXTTime noon{2024, 2, 29, 12, 34, 56, -1};
};

CVXTTime At(int year, int month, int day, int hour, int minute, int second) {
    return CVXTTime(year, month, day, hour, minute, second, -1);
}

}  // namespace

TEST_F(DataExchange, DatesAreShownAndReadByTheirPictures) {
    CVXTTime time = noon;
    const auto shortDate = [&](CDataExchange* pDX) { DDX_NlsShortDate(pDX, kField, time); };
    const auto longDate = [&](CDataExchange* pDX) { DDX_NlsLongDate(pDX, kField, time); };
    EXPECT_EQ(Load(shortDate), "2024-02-29");
    EXPECT_TRUE(Save("2020-1-7", shortDate));
    EXPECT_EQ(time, At(2020, 1, 7, 12, 34, 56));
    EXPECT_EQ(Load(longDate), "den 7 January 2020");
    settings.Set(LOCALE_SLONGDATE, "d yyyy MMMM");
    NlsToolsUpdate();
    EXPECT_TRUE(Save("5 2021 March", longDate));
    EXPECT_EQ(time, At(2021, 3, 5, 12, 34, 56));
}

TEST_F(DataExchange, ADateThatCannotBeReadIsToldWithAnExampleAndOneOutOfRangeIsNot) {
    CVXTTime time = noon;
    const auto shortDate = [&](CDataExchange* pDX) { DDX_NlsShortDate(pDX, kField, time); };
    const auto longDate = [&](CDataExchange* pDX) { DDX_NlsLongDate(pDX, kField, time); };
    const std::string plain = "Illegal date format.\n\nUse %s";
    CString today;
    _NlsSetShortDate(today, CVXTTime());
    EXPECT_EQ(Refusal("7/1 2020", shortDate), std::string("Illegal date format.\n\nUse ") + today.GetString());
    // The range's ends belong to it: midnight of either day and no later on the last one.
    using Row = std::tuple<const char*, bool>;
    for (const auto& [text, good] :
         {Row{"1972-01-01", true}, Row{"1971-12-31", false}, Row{"2034-01-02", false}, Row{"2033-12-31", true}}) {
        time = noon;
        EXPECT_EQ(Save(text, shortDate), good) << text;
        if (good) continue;
        EXPECT_EQ(app.Told(), plain);
        EXPECT_EQ(time, noon);
    }
    time = noon;
    EXPECT_FALSE(Save("2034-01-01", shortDate)) << "noon of the last day lies behind the range's end";
    EXPECT_EQ(Refusal("nonsense", longDate), plain);
    EXPECT_EQ(time, noon);
    const TextLanguage swedish(LANG_SWEDISH);
    NlsToolsRegister();
    EXPECT_EQ(Refusal("", longDate), orvik::detail::HouseFrom1252("Ogiltigt datumformat.\n\nAnv\xE4nd %s"));
}

TEST_F(DataExchange, TimesOfDaySpansAndNumbersGoBothWays) {
    CVXTTime time = noon;
    const auto clock = [&](CDataExchange* pDX) { DDX_NlsTime(pDX, kField, time); };
    EXPECT_EQ(Load(clock), "12:34:56");
    EXPECT_TRUE(Save(" 7:05:09,5 ", clock));
    EXPECT_EQ(time, At(2024, 2, 29, 7, 5, 9) + CVXTTimeSpan(500, TST_MILLISECONDS));
    EXPECT_EQ(Refusal("12:30", clock), "Illegal time format.");
    EXPECT_EQ(time, At(2024, 2, 29, 7, 5, 9) + CVXTTimeSpan(500, TST_MILLISECONDS));

    CVXTTimeSpan span(90, TST_SECONDS);
    const auto chosen = [&](CDataExchange* pDX) { DDX_NlsShortTimeSpan(pDX, kField, span, nullptr); };
    EXPECT_EQ(Load(chosen), "1,5 m");
    CVXTTimeSpanType unit = TST_SECONDS;
    const auto preferred = [&](CDataExchange* pDX) { DDX_NlsShortTimeSpan(pDX, kField, span, &unit); };
    EXPECT_EQ(Load(preferred), "90 s");
    unit = TST_WEEKS;
    EXPECT_EQ(Load(preferred), "0,025 h");
    EXPECT_EQ(unit, TST_HOURS) << "told which unit was used";
    EXPECT_TRUE(Save("2 h", chosen));
    EXPECT_EQ(span.GetTotal(TST_MICROSECONDS), 7'200'000'000);
    for (const char* bare : {"5", "", "3 Weeks", "h"}) {
        EXPECT_EQ(Refusal(bare, chosen), "Illegal timespan format.");
        EXPECT_EQ(span.GetTotal(TST_MICROSECONDS), 7'200'000'000);
    }
    EXPECT_TRUE(Save("0", chosen));
    const auto fields = [&](CDataExchange* pDX) { DDX_NlsLongTimeSpan(pDX, kField, span); };
    EXPECT_TRUE(Save("001-02:03:04", fields));
    EXPECT_EQ(span.GetTotal(TST_MICROSECONDS), 93'784'000'000);
    EXPECT_EQ(Load(fields), "001-02:03:04");
    EXPECT_EQ(Refusal("100", fields), "Illegal timespan format.");

    double real = 1234.5;
    const auto number = [&](CDataExchange* pDX) { DDX_NlsReal(pDX, kField, real, "#,##"); };
    EXPECT_EQ(Load(number), orvik::detail::HouseFrom1252("1\240234,50"));
    EXPECT_TRUE(Save("-2,25e2", number));
    EXPECT_EQ(real, -225.0);
    EXPECT_EQ(Refusal("12x", number), "Illegal number format.");
    EXPECT_EQ(real, 12.0) << "what the reader has read stays";
    float small = 0.5f;
    const auto single = [&](CDataExchange* pDX) { DDX_NlsReal(pDX, kField, small, nullptr); };
    EXPECT_EQ(Load(single), "0,5");
    EXPECT_FALSE(Save("1e39", single));
    EXPECT_EQ(small, 0.5f) << "beyond a float nothing is stored";
}

TEST_F(DataExchange, ANumberPictureIsOneOfThreeForms) {
    CString picture = "@@@";
    const auto exchange = [&](CDataExchange* pDX) { DDX_NlsRealFmt(pDX, kField, picture); };
    EXPECT_EQ(Load(exchange), "@@@");
    for (const char* good : {"@", "@@@@", "#", "###", "##,", "##,##", ",", ",##"}) {
        EXPECT_TRUE(Save(good, exchange)) << good;
        EXPECT_STREQ(picture, good);
    }
    picture = "@@@";
    for (const char* bad : {"", "##,#x", "@#", "#@", "##.##", " ##", "@@ ", ",,", "#,#,#", "x"}) {
        EXPECT_EQ(Refusal(bad, exchange), "Illegal number format.");
        EXPECT_STREQ(picture, "@@@");
    }
    // Without any decimal separator there is none to be found.
    settings.Set(LOCALE_SDECIMAL, "");
    NlsToolsUpdate();
    EXPECT_TRUE(Save("##", exchange));
    EXPECT_FALSE(Save("##,", exchange));
}

TEST_F(DataExchange, AControlThatIsNotThereEndsTheExchangeBeforeAnything) {
    CVXTTime time = noon;
    CDataExchange exchange(&form, TRUE);
    EXPECT_TRUE(Raises<CNotSupportedException>([&] { DDX_NlsTime(&exchange, 4711, time); }));
    EXPECT_TRUE(app.told.empty());
}
