#include "host/gui/fields_dialog.h"

#include <algorithm>
#include <charconv>

#include "afx/message_box.h"
#include "host/session/column_format.h"
#include "host/words/texts.h"
#include "res/ids.h"
#include "time/clock_text.h"
#include "time/date_text.h"
#include "time/locale_cache.h"
#include "time/number_text.h"
#include "time/span_text.h"
#include "ui/dialog_data_exchange.h"

namespace {
bool IsCount(CString text) {
    text.Trim(" \t");
    UINT count = 0;
    const char *const begin = text.GetString(), *const end = begin + text.GetLength();
    const auto read = std::from_chars(begin + (*begin == '+' ? 1 : 0), end, count);
    return read.ec == std::errc() && read.ptr == end;
}

// As DDX_NlsRealFmt has them.
bool IsFieldPicture(const CString& text) {
    const std::string_view picture = text.GetView();
    if (picture.find_first_not_of('@') == std::string_view::npos) return true;
    const char sign = NlsGetDecimalSep();
    const size_t point = picture.find_first_not_of('#');
    return point == std::string_view::npos ||
           (sign != 0 && picture[point] == sign && picture.find_first_not_of('#', point + 1) == std::string_view::npos);
}

bool IsDate(const CString& text, CVXTTime date) {
    if (!_NlsGetShortDate(text, date)) return false;
    CVXTTime clamped = date;
    clamped.Clamp();
    return clamped == date;
}
}  // namespace

CString FieldsDialog::TextOf(int field) const {
    CString text;
    if (CWnd* const control = GetDlgItem(field)) control->GetWindowText(text);
    return text;
}

BOOL FieldsDialog::OnInitDialog() {
    const BOOL done = CBCGPDialog::OnInitDialog();
    if (!m_title.empty()) SetWindowText(m_title.c_str());
    for (size_t i = 0; i < m_fields.size(); ++i) m_texts[i] = TextOf(m_fields[i]);
    CenterWindow();
    return done;
}

CString FieldsDialog::FirstText(int field) const {
    const auto found = std::find(m_fields.begin(), m_fields.end(), field);
    return found == m_fields.end() ? CString() : m_texts[static_cast<size_t>(found - m_fields.begin())];
}

bool FieldsDialog::IsChanged(int field) const {
    return std::find(m_fields.begin(), m_fields.end(), field) != m_fields.end() && TextOf(field) != FirstText(field);
}

// The words that stand on its line in front of it; those of a choice where the field belongs to one.
std::string FieldsDialog::NameOf(int field) const {
    RECT place{};
    ::GetWindowRect(::GetDlgItem(m_hWnd, field), &place);
    const LONG middle = (place.top + place.bottom) / 2;
    CString name;
    LONG nearest = 0;
    for (HWND each = ::GetWindow(m_hWnd, GW_CHILD); each != nullptr; each = ::GetWindow(each, GW_HWNDNEXT)) {
        RECT other{};
        ::GetWindowRect(each, &other);
        if (other.top > middle || other.bottom <= middle || other.right > place.left) continue;
        char kind[16] = "";
        ::GetClassNameA(each, kind, sizeof kind);
        if (::lstrcmpiA(kind, "Edit") == 0 || (!name.IsEmpty() && other.right <= nearest)) continue;
        CWnd::FromHandle(each)->GetWindowText(name);
        nearest = other.right;
    }
    name.Remove('&');
    name.TrimRight(": ");
    return ToUtf8(name.GetString());
}

void FieldsDialog::Refuse(CDataExchange* exchange, int field, const std::string& house) const {
    exchange->PrepareEditCtrl(field);
    const std::string name = NameOf(field), said = name.empty() ? house : Say(Text::FieldSaid, {name, ToUtf8(house)});
    AfxMessageBox(said.c_str(), MB_OK | MB_ICONEXCLAMATION);
    exchange->Fail();
}

// `example`: where nothing stood in the field.
void FieldsDialog::RefuseText(CDataExchange* exchange, int field, UINT what, CString example) const {
    CString told;
    told.LoadString(what);
    if (const CString first = FirstText(field); !first.IsEmpty()) example = first;
    if (told.Replace("%s", example) > 0 || example.IsEmpty()) Refuse(exchange, field, told.GetString());
    Refuse(exchange, field, Say(Text::FieldExample, {ToUtf8(told.GetString()), ToUtf8(example.GetString())}));
}

void FieldsDialog::ExchangeDate(CDataExchange* exchange, int field, CVXTTime& value) const {
    if (exchange->m_bSaveAndValidate && !IsDate(TextOf(field), value)) {
        CString today;
        _NlsSetShortDate(today, CVXTTime());
        RefuseText(exchange, field, IDS_BAD_DATE, today);
    }
    DDX_NlsShortDate(exchange, field, value);
}

void FieldsDialog::ExchangeTime(CDataExchange* exchange, int field, CVXTTime& value) const {
    CVXTTime read = value;
    if (exchange->m_bSaveAndValidate && !_NlsGetTime(TextOf(field), read)) RefuseText(exchange, field, IDS_BAD_TIME, {});
    DDX_NlsTime(exchange, field, value);
}

void FieldsDialog::ExchangeSpan(CDataExchange* exchange, int field, CVXTTimeSpan& value) const {
    CVXTTimeSpan read;
    if (exchange->m_bSaveAndValidate && !_NlsGetShortTimeSpan(TextOf(field), read, 0))
        RefuseText(exchange, field, IDS_BAD_SPAN, {});
    DDX_NlsShortTimeSpan(exchange, field, value, nullptr);
}

void FieldsDialog::ExchangeReal(CDataExchange* exchange, int field, double& value, const char* picture) const {
    double read = 0;
    if (exchange->m_bSaveAndValidate && !_NlsGetReal(TextOf(field), read)) RefuseText(exchange, field, IDS_BAD_NUMBER, {});
    DDX_NlsReal(exchange, field, value, picture);
}

void FieldsDialog::ExchangePicture(CDataExchange* exchange, int field, CString& picture) const {
    if (exchange->m_bSaveAndValidate && !IsFieldPicture(TextOf(field)))
        RefuseText(exchange, field, IDS_BAD_NUMBER, ("##" + DecimalSign() + "##").c_str());
    DDX_NlsRealFmt(exchange, field, picture);
}

void FieldsDialog::ExchangeCount(CDataExchange* exchange, int field, UINT& value) const {
    if (exchange->m_bSaveAndValidate && !IsCount(TextOf(field))) RefuseText(exchange, field, IDS_NOT_WHOLE, {});
    DDX_Text(exchange, field, value);
}
