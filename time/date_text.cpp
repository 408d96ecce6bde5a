#include "time/date_text.h"

#include "time/date_picture_internal.h"
#include "time/locale_cache.h"

using namespace orvik::detail;

namespace {

int Write(CString& text, const CVXTTime& time, const CString& picture) {
    SYSTEMTIME local;
    time.GetSystemTime(&local);
    text = std::string_view();  // keeps its memory
    AppendDatePicture(text, picture.GetView(), {local.wYear, local.wMonth, local.wDay, local.wDayOfWeek});
    return 1;
}

int Read(const char* text, CVXTTime& time, const CString& picture) {
    const char* cursor = text ? text : "";
    CalendarDate date;
    return ReadDatePicture(cursor, picture.GetView(), date) ? time.SetDate(date.year, date.month, date.day) : 0;
}

}  // namespace

int _NlsSetShortDate(CString& text, const CVXTTime& time) { return Write(text, time, TheLocaleCache().shortDate); }
int _NlsSetLongDate(CString& text, const CVXTTime& time) { return Write(text, time, TheLocaleCache().longDate); }
int _NlsGetShortDate(const char* text, CVXTTime& time) { return Read(text, time, TheLocaleCache().shortDate); }
int _NlsGetLongDate(const char* text, CVXTTime& time) { return Read(text, time, TheLocaleCache().longDate); }
