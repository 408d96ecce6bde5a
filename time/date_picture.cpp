#include "time/date_picture_internal.h"

#include "time/locale_cache.h"

namespace orvik::detail {
namespace {

// A width of -1 pads nothing. Zeros go in front of the whole text, a sign included.
CString Number(int value, int width) {
    CString text;
    text.Format("%d", value);
    while (text.GetLength() < width) text.Insert(0, '0');
    return text;
}

CString Field(char letter, int run, const CalendarDate& date) {
    switch (letter) {
        case 'M':
            if (run <= 2) return Number(date.month, run == 2 ? 2 : -1);
            return run == 3 ? NlsGetShortMonth(date.month) : run == 4 ? NlsGetLongMonth(date.month) : CString();
        case 'd':
            if (run <= 2) return Number(date.day, run == 2 ? 2 : -1);
            return run == 3 ? NlsGetShortDay(date.weekday) : run == 4 ? NlsGetLongDay(date.weekday) : CString();
        default:
            return run == 2 ? Number(date.year % 100, 2) : run == 4 ? Number(date.year, -1) : CString();
    }
}

}  // namespace

CString WriteDatePicture(const CString& picture, const CalendarDate& date) {
    CString text;
    for (const char* at = picture; *at;) {
        if (*at == '\'') {
            for (++at; *at && *at != '\''; ++at) text += *at;
            if (*at) ++at;
        } else if (*at == 'M' || *at == 'd' || *at == 'y') {
            const char letter = *at;
            int run = 0;
            for (; *at == letter; ++at) ++run;
            text += Field(letter, run, date);
        } else {
            text += *at++;
        }
    }
    return text;
}

}  // namespace orvik::detail
