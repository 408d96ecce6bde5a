// locale: the user's regional settings as the module has read them, and a sample of every kind of text.
#include "host/command_line/commands.h"
#include "host/words/arguments.h"
#include "host/words/isolated.h"
#include "host/words/texts.h"
#include "time/clock_text.h"
#include "time/date_text.h"
#include "time/locale_cache.h"
#include "time/number_text.h"
#include "time/span_text.h"

namespace {
void Line(const char* name, const CString& text) {
    Print(std::string(name) + ": " + Isolated(ToUtf8(static_cast<const char*>(text))));
}
CString Quoted(const orvik::detail::Separator& separator) {
    const std::string text(separator.Text());
    return ("\"" + text + "\"").c_str();
}
}  // namespace

ExitCode RunLocale(CHostApp&, const Words& words) {
    const Arguments arguments(words, {}, {}, 0);
    const orvik::detail::LocaleCache& cache = orvik::detail::TheLocaleCache();
    Line("country", cache.country);
    Line("language", cache.language);
    Line("decimal", Quoted(cache.decimal));
    Line("thousand", Quoted(cache.thousand));
    Line("list", Quoted(cache.list));
    Line("date", Quoted(cache.date) + " " + NlsGetShortDateSpec());
    Line("time", Quoted(cache.time) + " " + NlsGetTimeSpec());
    Line("long date picture", cache.longDate);
    Line("morning", "\"" + cache.morning + "\"");
    Line("afternoon", "\"" + cache.afternoon + "\"");
    Line("currency", "\"" + cache.currency + "\"");
    Line("leading zero", cache.leadingZero ? "1" : "0");

    const CVXTTime time(2026, 7, 4, 15, 6, 7, -1);
    const CVXTTimeSpan span(1, 2, 3, 4, 500);
    CString text;
    _NlsSetReal(text, -1234567.891, "###.##");
    Line("real", text);
    _NlsSetReal(text, 0.000123456, "@@@@");
    Line("significant", text);
    _NlsSetInteger(text, 12345);
    Line("integer", text);
    _NlsSetShortDate(text, time);
    Line("short date", text);
    _NlsSetLongDate(text, time);
    Line("long date", text);
    _NlsSetTime(text, time, FALSE);
    Line("clock", text);
    Line("point", time.Format());
    _NlsSetShortTimeSpan(text, span, nullptr, -1);
    Line("short span", text);
    _NlsSetTimeSpan(text, span);
    Line("long span", text);
    Line("words", CVXTTimeSpan(8 * 86400, TST_SECONDS).Format(RF_WORDS));
    return kDone;
}
