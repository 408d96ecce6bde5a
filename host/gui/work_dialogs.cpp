#include "host/gui/work_dialogs.h"

#include <optional>

#include "afx/message_map.h"
#include "host/gui/file_dialog.h"
#include "host/measurement/download.h"
#include "host/words/texts.h"
#include "platform/picture.h"
#include "res/ids.h"
#include "ui/dialog_data_exchange.h"

namespace {
constexpr const char* kKinds[] = {".png", ".svg", ".pdf"};

// Which of the kinds a name's end tells.
std::optional<int> KindOf(const CString& path) {
    CString end = path.Right(4);
    end.MakeLower();
    for (int i = 0; i < 3; ++i) {
        if (end == kKinds[i]) return i;
    }
    return std::nullopt;
}
}  // namespace

BEGIN_MESSAGE_MAP(PictureDialog, FieldsDialog)
ON_BN_CLICKED(IDC_HOST_BROWSE, OnBrowse)
ON_BN_CLICKED(IDC_HOST_PNG, OnKind)
ON_BN_CLICKED(IDC_HOST_SVG, OnKind)
ON_BN_CLICKED(IDC_HOST_PDF, OnKind)
END_MESSAGE_MAP()

PictureDialog::PictureDialog(CWnd* parent, const std::string& first, SIZE size)
    : FieldsDialog(IDD_HOST_SAVE_PICTURE, parent, {IDC_HOST_FILE, IDC_HOST_WIDTH, IDC_HOST_HEIGHT}),
      path(first.c_str()),
      width(static_cast<UINT>(size.cx)),
      height(static_cast<UINT>(size.cy)),
      m_kind(KindOf(path).value_or(0)) {}

BOOL PictureDialog::OnInitDialog() {
    const BOOL done = FieldsDialog::OnInitDialog();
    GetDlgItem(IDC_HOST_BROWSE)->EnableWindow(HasFileDialogs());
    return done;
}

// The name follows the kind that is chosen.
void PictureDialog::OnKind() {
    int kind = 0;
    while (kind < 2 && IsDlgButtonChecked(IDC_HOST_PNG + kind) != BST_CHECKED) ++kind;
    CString name = TextOf(IDC_HOST_FILE);
    if (KindOf(name)) name = name.Left(name.GetLength() - 4);
    if (!name.IsEmpty()) GetDlgItem(IDC_HOST_FILE)->SetWindowText(name + kKinds[kind]);
}

void PictureDialog::OnBrowse() {
    const std::string kinds = Say(Text::PictureFiles) + "|*.png;*.svg;*.pdf|" + Say(Text::AllFiles) + "|*.*";
    const auto chosen = AskFileToSave(m_hWnd, Say(Text::AskPicture), kinds, "png", TextOf(IDC_HOST_FILE).GetString());
    if (!chosen) return;
    GetDlgItem(IDC_HOST_FILE)->SetWindowText(chosen->c_str());
    if (const auto kind = KindOf(chosen->c_str())) CheckRadioButton(IDC_HOST_PNG, IDC_HOST_PDF, IDC_HOST_PNG + *kind);
}

void PictureDialog::DoDataExchange(CDataExchange* exchange) {
    FieldsDialog::DoDataExchange(exchange);
    CString name = path;
    UINT across = width, down = height;
    DDX_Text(exchange, IDC_HOST_FILE, name);
    DDX_Text(exchange, IDC_HOST_WIDTH, across);
    DDX_Text(exchange, IDC_HOST_HEIGHT, down);
    DDX_Radio(exchange, IDC_HOST_PNG, m_kind);
    if (!exchange->m_bSaveAndValidate) return;
    if (name.IsEmpty()) Refuse(exchange, IDC_HOST_FILE, Say(Text::FileEmpty));
    const std::string sides = Say(Text::SidesRange, {std::to_string(kOrvikPictureSide)});
    constexpr UINT kMost = kOrvikPictureSide;
    if (across == 0 || across > kMost) Refuse(exchange, IDC_HOST_WIDTH, sides);
    if (down == 0 || down > kMost) Refuse(exchange, IDC_HOST_HEIGHT, sides);
    if (!KindOf(name)) name += kKinds[m_kind];
    if (*KindOf(name) == 0 && across * down > UINT{kOrvikPicturePixels})
        Refuse(exchange, IDC_HOST_WIDTH, Say(Text::PictureTooLarge, {std::to_string(kOrvikPicturePixels)}));
    path = name;
    width = across;
    height = down;
}

DownloadDialog::DownloadDialog(CWnd* parent, const std::string& first, UINT readings, CVXTTimeSpan between)
    : FieldsDialog(IDD_HOST_DOWNLOAD, parent, {IDC_HOST_PORT, IDC_HOST_COUNT, IDC_HOST_INTERVAL}),
      port(first.c_str()),
      count(readings),
      interval(between) {}

void DownloadDialog::DoDataExchange(CDataExchange* exchange) {
    FieldsDialog::DoDataExchange(exchange);
    UINT readings = count;
    CVXTTimeSpan between = interval;
    CString name = port;
    DDX_Text(exchange, IDC_HOST_PORT, name);
    DDX_Text(exchange, IDC_HOST_COUNT, readings);
    if (!exchange->m_bSaveAndValidate || IsChanged(IDC_HOST_INTERVAL))
        DDX_NlsShortTimeSpan(exchange, IDC_HOST_INTERVAL, between, nullptr);
    if (!exchange->m_bSaveAndValidate) return;
    if (name.IsEmpty()) Refuse(exchange, IDC_HOST_PORT, Say(Text::PortEmpty));
    if (readings == 0 || readings > kMostReadings) Refuse(exchange, IDC_HOST_COUNT, Say(Text::CountRange));
    const __int64 pause = between.GetTotalMilliSeconds();
    if (pause < 0 || pause > kWeek) Refuse(exchange, IDC_HOST_INTERVAL, Say(Text::IntervalRange));
    port = name;
    count = readings;
    interval = between;
}
