#include "host/gui/range_dialogs.h"

#include "afx/message_map.h"
#include "host/words/texts.h"
#include "res/ids.h"
#include "ui/dialog_data_exchange.h"

namespace {
// As many digits as a range keeps and a user still reads.
constexpr char kEndDigits[] = "@@@@@@@@@";
}  // namespace

AxisRangeDialog::AxisRangeDialog(CWnd* parent, const std::string& axis, ViewRange shown, const std::string& shownPicture)
    : FieldsDialog(IDD_HOST_RANGE, parent, {IDC_HOST_FROM, IDC_HOST_TO, IDC_HOST_PICTURE}), range(shown), picture(shownPicture) {
    m_title = Say(Text::RangeTitle, {ToUtf8(axis)});
}

void AxisRangeDialog::DoDataExchange(CDataExchange* exchange) {
    FieldsDialog::DoDataExchange(exchange);
    const bool reads = exchange->m_bSaveAndValidate;
    ViewRange read = range;
    CString format = picture.c_str();
    if (!reads || IsChanged(IDC_HOST_FROM)) ExchangeReal(exchange, IDC_HOST_FROM, read.origin, kEndDigits);
    if (!reads || IsChanged(IDC_HOST_TO)) ExchangeReal(exchange, IDC_HOST_TO, read.extent, kEndDigits);
    if (!reads || IsChanged(IDC_HOST_PICTURE)) {
        // No picture at all is the ordinary one.
        if (!reads || !TextOf(IDC_HOST_PICTURE).IsEmpty()) {
            ExchangePicture(exchange, IDC_HOST_PICTURE, format);
        } else {
            format.Empty();
        }
    }
    if (!reads) return;
    // Ends that look the same are the same to whoever wrote them.
    if (!IsShowable(read) || TextOf(IDC_HOST_FROM) == TextOf(IDC_HOST_TO))
        Refuse(exchange, IsChanged(IDC_HOST_TO) ? IDC_HOST_TO : IDC_HOST_FROM, Say(Text::RangeEmpty));
    range = read;
    picture = format.GetString();
}

BEGIN_MESSAGE_MAP(TimeRangeDialog, FieldsDialog)
ON_BN_CLICKED(IDC_HOST_BY_TIME, OnChoice)
ON_BN_CLICKED(IDC_HOST_BY_SPAN, OnChoice)
END_MESSAGE_MAP()

TimeRangeDialog::TimeRangeDialog(CWnd* parent, CVXTTime shownFrom, CVXTTime shownTo)
    : FieldsDialog(IDD_HOST_TIME_RANGE, parent,
                   {IDC_HOST_DATE, IDC_HOST_TIME, IDC_HOST_TO_DATE, IDC_HOST_TO_TIME, IDC_HOST_SPAN}),
      from(shownFrom),
      to(shownTo) {}

BOOL TimeRangeDialog::OnInitDialog() {
    const BOOL done = FieldsDialog::OnInitDialog();
    OnChoice();
    return done;
}

// The fields of the other choice cannot be reached.
void TimeRangeDialog::OnChoice() {
    const bool span = IsDlgButtonChecked(IDC_HOST_BY_SPAN) == BST_CHECKED;
    for (const int field : {IDC_HOST_TO_DATE, IDC_HOST_TO_TIME}) GetDlgItem(field)->EnableWindow(!span);
    GetDlgItem(IDC_HOST_SPAN)->EnableWindow(span);
}

void TimeRangeDialog::Read(CDataExchange* exchange, int date, int time, CVXTTime& value) {
    const bool reads = exchange->m_bSaveAndValidate;
    if (!reads || IsChanged(date)) ExchangeDate(exchange, date, value);
    if (!reads || IsChanged(time)) ExchangeTime(exchange, time, value);
}

void TimeRangeDialog::DoDataExchange(CDataExchange* exchange) {
    FieldsDialog::DoDataExchange(exchange);
    CVXTTime begin = from, end = to;
    CVXTTimeSpan span = to - from;
    DDX_Radio(exchange, IDC_HOST_BY_TIME, m_bySpan);
    Read(exchange, IDC_HOST_DATE, IDC_HOST_TIME, begin);
    if (!exchange->m_bSaveAndValidate || m_bySpan == 0) Read(exchange, IDC_HOST_TO_DATE, IDC_HOST_TO_TIME, end);
    if (!exchange->m_bSaveAndValidate || (m_bySpan == 1 && IsChanged(IDC_HOST_SPAN))) ExchangeSpan(exchange, IDC_HOST_SPAN, span);
    if (!exchange->m_bSaveAndValidate) return;
    if (m_bySpan == 1) {
        if (span.CvtToInt64() <= 0) Refuse(exchange, IDC_HOST_SPAN, Say(Text::SpanEmpty));
        end = begin + span;
    } else if (end <= begin) {
        Refuse(exchange, IsChanged(IDC_HOST_TO_DATE) ? IDC_HOST_TO_DATE : IDC_HOST_TO_TIME, Say(Text::TimesBackwards));
    }
    from = begin;
    to = end;
}
