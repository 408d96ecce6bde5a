#include "ui/dialog_data_exchange.h"

#include "afx/message_box.h"
#include "time/clock_text.h"
#include "time/date_text.h"
#include "time/locale_cache.h"
#include "time/number_text.h"
#include "time/span_text.h"

using orvik::detail::TheNlsTexts;

namespace {
[[noreturn]] void Refuse(CDataExchange* pDX, const CString& message) {
    AfxMessageBox(message, MB_ICONEXCLAMATION);
    pDX->Fail();
}

CString TextOf(HWND control) {
    CString text;
    const int length = GetWindowTextLengthA(control);
    const int got = GetWindowTextA(control, text.GetBuffer(length), length + 1);
    text.ReleaseBuffer(got);
    return text;
}

// One control's exchange: `write` fills a text from the value, `read` takes it back and says whether it could.
template <class Write, class Read>
void Exchange(CDataExchange* pDX, int nIDC, Write write, Read read, const CString& message) {
    const HWND control = pDX->PrepareEditCtrl(nIDC);
    if (pDX->m_bSaveAndValidate) {
        if (!read(TextOf(control))) Refuse(pDX, message);
        return;
    }
    CString text;
    write(text);
    SetWindowTextA(control, text);
}

// A date is stored only when it lies in the time range.
template <class Write, class Read>
void ExchangeDate(CDataExchange* pDX, int nIDC, CVXTTime& value, Write write, Read read, bool example) {
    const auto readDate = [&](const CString& text) {
        CVXTTime date = value;
        if (!read(text, date)) {
            if (!example) return false;
            CString today, message;
            write(today, CVXTTime());
            message.Format(TheNlsTexts().badDate, today.GetString());
            Refuse(pDX, message);
        }
        CVXTTime clamped = date;
        clamped.Clamp();
        if (!(clamped == date)) return false;
        value = date;
        return true;
    };
    Exchange(
        pDX, nIDC, [&](CString& text) { write(text, value); }, readDate, TheNlsTexts().badDate);
}

bool IsPicture(const CString& text, char decimalSep) {
    const char* at = text;
    if (*at == '@') {
        while (*at == '@') ++at;
        return *at == 0;
    }
    const bool whole = *at == '#';
    while (*at == '#') ++at;
    const bool separated = decimalSep != 0 && *at == decimalSep;
    if (separated) ++at;
    while (separated && *at == '#') ++at;
    return *at == 0 && (whole || separated);
}

template <class Real>
void ExchangeReal(CDataExchange* pDX, int nIDC, Real& value, const char* picture) {
    Exchange(
        pDX, nIDC, [&](CString& text) { _NlsSetReal(text, static_cast<double>(value), picture); },
        [&](const CString& text) { return _NlsGetReal(text, value) != 0; }, TheNlsTexts().badNumber);
}
}  // namespace

void DDX_NlsShortDate(CDataExchange* pDX, int nIDC, CVXTTime& value) {
    ExchangeDate(pDX, nIDC, value, &_NlsSetShortDate, &_NlsGetShortDate, true);
}
void DDX_NlsLongDate(CDataExchange* pDX, int nIDC, CVXTTime& value) {
    ExchangeDate(pDX, nIDC, value, &_NlsSetLongDate, &_NlsGetLongDate, false);
}

void DDX_NlsTime(CDataExchange* pDX, int nIDC, CVXTTime& value) {
    Exchange(
        pDX, nIDC, [&](CString& text) { _NlsSetTime(text, value, 0); },
        [&](const CString& text) { return _NlsGetTime(text, value) != 0; }, TheNlsTexts().badTime);
}

void DDX_NlsShortTimeSpan(CDataExchange* pDX, int nIDC, CVXTTimeSpan& value, CVXTTimeSpanType* unit) {
    Exchange(
        pDX, nIDC, [&](CString& text) { _NlsSetShortTimeSpan(text, value, unit, -1); },
        [&](const CString& text) { return _NlsGetShortTimeSpan(text, value, 0) != 0; }, TheNlsTexts().badSpan);
}
void DDX_NlsLongTimeSpan(CDataExchange* pDX, int nIDC, CVXTTimeSpan& value) {
    Exchange(
        pDX, nIDC, [&](CString& text) { _NlsSetLongTimeSpan(text, value, 0); },
        [&](const CString& text) { return _NlsGetLongTimeSpan(text, value) != 0; }, TheNlsTexts().badSpan);
}

void DDX_NlsReal(CDataExchange* pDX, int nIDC, double& value, const char* picture) { ExchangeReal(pDX, nIDC, value, picture); }
void DDX_NlsReal(CDataExchange* pDX, int nIDC, float& value, const char* picture) { ExchangeReal(pDX, nIDC, value, picture); }

void DDX_NlsRealFmt(CDataExchange* pDX, int nIDC, CString& picture) {
    const auto read = [&](const CString& text) {
        if (!IsPicture(text, NlsGetDecimalSep())) return false;
        picture = text;
        return true;
    };
    Exchange(
        pDX, nIDC, [&](CString& text) { text = picture; }, read, TheNlsTexts().badNumber);
}
