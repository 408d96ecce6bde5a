#include "host/gui/work_dialogs.h"

#include <algorithm>
#include <cstring>
#include <optional>

#include "afx/message_map.h"
#include "host/gui/file_dialog.h"
#include "host/gui/listed_ports.h"
#include "host/gui/pane_font.h"
#include "host/gui/user_folder.h"
#include "host/logger/logger_file.h"
#include "host/measurement/download.h"
#include "host/measurement/missing_port.h"
#include "host/measurement/one_reading.h"
#include "host/session/csv_file.h"
#include "host/words/texts.h"
#include "platform/picture.h"
#include "res/ids.h"
#include "ui/dialog_data_exchange.h"

namespace {
constexpr const char* kPictureKinds[] = {".png", ".svg", ".pdf"};

// Which of the kinds a name's end tells.
std::optional<int> KindOf(const CString& path) {
    CString end = path.Right(4);
    end.MakeLower();
    for (int i = 0; i < 3; ++i) {
        if (end == kPictureKinds[i]) return i;
    }
    return std::nullopt;
}
}  // namespace

BOOL SavingDialog::OnInitDialog() {
    const BOOL done = FieldsDialog::OnInitDialog();
    GetDlgItem(IDC_HOST_BROWSE)->EnableWindow(HasFileDialogs());
    return done;
}

bool SavingDialog::Browse(Text title, const std::string& kinds, const std::string& extension, DWORD kind) {
    const auto chosen = AskFileToSave(m_hWnd, Say(title), kinds + "|" + Say(Text::AllFiles) + "|*.*", extension,
                                      TextOf(IDC_HOST_FILE).GetString(), kind);
    if (!chosen) return false;
    m_agreed = chosen->c_str();
    GetDlgItem(IDC_HOST_FILE)->SetWindowText(m_agreed);
    return true;
}

void SavingDialog::RefuseFile(CDataExchange* exchange, const CString& name) const {
    if (name.IsEmpty()) Refuse(exchange, IDC_HOST_FILE, Say(Text::FileEmpty));
    const std::string whole = name.GetString();
    const size_t end = whole.find_last_of("/\\");
    if (end == std::string::npos) return;
    const std::string folder = whole.substr(0, end);
    const DWORD attributes = ::GetFileAttributesA((folder + "/").c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || !(attributes & FILE_ATTRIBUTE_DIRECTORY))
        Refuse(exchange, IDC_HOST_FILE, Say(Text::FolderNotThere, {ToUtf8(folder)}));
}

BEGIN_MESSAGE_MAP(PictureDialog, SavingDialog)
ON_BN_CLICKED(IDC_HOST_BROWSE, OnBrowse)
ON_BN_CLICKED(IDC_HOST_PNG, OnKind)
ON_BN_CLICKED(IDC_HOST_SVG, OnKind)
ON_BN_CLICKED(IDC_HOST_PDF, OnKind)
END_MESSAGE_MAP()

PictureDialog::PictureDialog(CWnd* parent, const std::string& first, SIZE size)
    : SavingDialog(IDD_HOST_SAVE_PICTURE, parent, {IDC_HOST_FILE, IDC_HOST_WIDTH, IDC_HOST_HEIGHT}, first),
      width(static_cast<UINT>(size.cx)),
      height(static_cast<UINT>(size.cy)),
      m_kind(KindOf(path).value_or(0)) {}

int PictureDialog::Kind() const {
    int kind = 0;
    while (kind < 2 && IsDlgButtonChecked(IDC_HOST_PNG + kind) != BST_CHECKED) ++kind;
    return kind;
}

// The name follows the kind that is chosen.
void PictureDialog::OnKind() {
    const int kind = Kind();
    CString name = TextOf(IDC_HOST_FILE);
    if (KindOf(name)) name = name.Left(name.GetLength() - 4);
    if (!name.IsEmpty()) GetDlgItem(IDC_HOST_FILE)->SetWindowText(name + kPictureKinds[kind]);
}

void PictureDialog::OnBrowse() {
    const int now = Kind();
    if (!Browse(Text::AskPicture, "PNG|*.png|SVG|*.svg|PDF|*.pdf", kPictureKinds[now] + 1, static_cast<DWORD>(now))) return;
    if (const auto kind = KindOf(TextOf(IDC_HOST_FILE))) CheckRadioButton(IDC_HOST_PNG, IDC_HOST_PDF, IDC_HOST_PNG + *kind);
}

void PictureDialog::DoDataExchange(CDataExchange* exchange) {
    FieldsDialog::DoDataExchange(exchange);
    CString name = path;
    UINT across = width, down = height;
    DDX_Text(exchange, IDC_HOST_FILE, name);
    ExchangeCount(exchange, IDC_HOST_WIDTH, across);
    ExchangeCount(exchange, IDC_HOST_HEIGHT, down);
    DDX_Radio(exchange, IDC_HOST_PNG, m_kind);
    if (!exchange->m_bSaveAndValidate) return;
    RefuseFile(exchange, name);
    const std::string sides = Say(Text::SidesRange, {std::to_string(kOrvikPictureSide)});
    constexpr UINT kMost = kOrvikPictureSide;
    if (across == 0 || across > kMost) Refuse(exchange, IDC_HOST_WIDTH, sides);
    if (down == 0 || down > kMost) Refuse(exchange, IDC_HOST_HEIGHT, sides);
    if (!KindOf(name)) name += kPictureKinds[m_kind];
    if (*KindOf(name) == 0 && across * down > UINT{kOrvikPicturePixels})
        Refuse(exchange, IDC_HOST_WIDTH, Say(Text::PictureTooLarge, {std::to_string(kOrvikPicturePixels)}));
    path = name;
    width = across;
    height = down;
}

BEGIN_MESSAGE_MAP(ExportDialog, SavingDialog)
ON_BN_CLICKED(IDC_HOST_BROWSE, OnBrowse)
END_MESSAGE_MAP()

ExportDialog::ExportDialog(CWnd* parent, const std::string& first)
    : SavingDialog(IDD_HOST_EXPORT, parent, {IDC_HOST_FILE}, first) {}

void ExportDialog::OnBrowse() { Browse(Text::AskExport, Say(Text::TextFiles) + "|*.csv", "csv", 0); }

void ExportDialog::DoDataExchange(CDataExchange* exchange) {
    FieldsDialog::DoDataExchange(exchange);
    CString name = path;
    DDX_Text(exchange, IDC_HOST_FILE, name);
    DDX_Radio(exchange, IDC_HOST_FOR_PROGRAMS, m_form);
    DDX_Radio(exchange, IDC_HOST_EXPORT_ALL, m_part);
    if (!exchange->m_bSaveAndValidate) return;
    RefuseFile(exchange, name);
    if (!EndsInCsv(name.GetString())) name += ".csv";
    path = name;
}

BEGIN_MESSAGE_MAP(DownloadDialog, FieldsDialog)
ON_BN_CLICKED(IDC_HOST_BROWSE, OnBrowse)
ON_BN_CLICKED(IDC_HOST_TEST, OnTest)
ON_CONTROL(CBN_DROPDOWN, IDC_HOST_PORT, OnPortsDrop)
END_MESSAGE_MAP()

DownloadDialog::DownloadDialog(CWnd* parent, CHostApp& app, std::vector<std::string> descriptions)
    : FieldsDialog(IDD_HOST_DOWNLOAD, parent, {IDC_HOST_PORT, IDC_HOST_COUNT, IDC_HOST_INTERVAL}),
      m_app(app),
      m_descriptions(std::move(descriptions)) {}

BOOL DownloadDialog::OnInitDialog() {
    const BOOL done = FieldsDialog::OnInitDialog();
    GetDlgItem(IDC_HOST_BROWSE)->EnableWindow(HasFileDialogs());
    for (const std::string& one : m_descriptions)
        SendDlgItemMessage(IDC_HOST_DESCRIPTION, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(one.c_str()));
    FillPorts();
    SetDlgItemText(IDC_HOST_RESULT, Say(Text::DescriptionHint).c_str());
    constexpr std::pair<int, Text> kTips[] = {{IDC_HOST_DESCRIPTION, Text::TipDescription},
                                              {IDC_HOST_PORT, Text::TipPort},
                                              {IDC_HOST_TEST, Text::TipTest},
                                              {IDC_HOST_COUNT, Text::TipCount},
                                              {IDC_HOST_INTERVAL, Text::TipInterval}};
    // Columns of numbers stand one below the other.
    LOGFONTA letters = DesktopFont(m_hWnd);
    letters.lfPitchAndFamily = FIXED_PITCH | FF_MODERN;
    std::strcpy(letters.lfFaceName, "DejaVu Sans Mono");
    m_columns.CreateFontIndirect(&letters);
    GetDlgItem(IDC_HOST_RESULT)->SendMessage(WM_SETFONT, reinterpret_cast<WPARAM>(m_columns.m_hObject), TRUE);
    m_tips.Create(m_hWnd);
    for (const auto& [field, text] : kTips) m_tips.PutOn(GetDlgItem(field)->m_hWnd, Say(text));
    return done;
}

// Whatever was plugged in meanwhile; what stands in the field stays.
void DownloadDialog::FillPorts() {
    const CString now = TextOf(IDC_HOST_PORT);
    SendDlgItemMessage(IDC_HOST_PORT, CB_RESETCONTENT, 0, 0);
    const auto offer = [this](const char* name) {
        SendDlgItemMessage(IDC_HOST_PORT, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name));
    };
    const std::vector<ListedPort> ports = ListPorts();
    for (const ListedPort& one : ports) offer(one.name.c_str());
    // An address of the network, or a port's other name, is on no list of the system's.
    const bool listed = std::any_of(ports.begin(), ports.end(),
                                    [this](const ListedPort& one) { return SamePort(one.name, port.GetString()); });
    if (!listed && !port.IsEmpty() && !IsPortMissing(port.GetString())) offer(port);
    GetDlgItem(IDC_HOST_PORT)->SetWindowText(now);
    SendDlgItemMessage(IDC_HOST_PORT, CB_SETEDITSEL, 0, MAKELPARAM(0, -1));  // what is typed takes its place
}

void DownloadDialog::OnPortsDrop() { FillPorts(); }

void DownloadDialog::OnBrowse() {
    const auto chosen = AskFileToOpen(m_hWnd, Say(Text::AskDescription),
                                      Say(Text::DescriptionFiles) + "|*.xml;*.odb|" + Say(Text::AllFiles) + "|*.*", DocumentsFolder());
    if (chosen) GetDlgItem(IDC_HOST_DESCRIPTION)->SetWindowText(chosen->c_str());
}

// One reading of the logger as the fields describe it, or why there is none.
std::string DownloadDialog::Try() {
    try {
        MeasurementPlan plan;
        plan.port = TextOf(IDC_HOST_PORT).GetString();
        if (plan.port.empty()) return Say(Text::PortEmpty);
        if (SamePort(plan.port, busyPort)) return Say(Text::PortDownloads, {ToUtf8(plan.port)});
        plan.timeout = timeout;
        plan.stopAsked = [this] { return m_stop; };
        CPropertyDB facts;
        LoadLoggerDescription(TextOf(IDC_HOST_DESCRIPTION).GetString(), facts);
        const std::unique_ptr<ILogger> logger = MakeLogger(m_app, facts);
        const Session session(facts, plan.port);
        m_tried = logger.get();
        const OneReading reading = ReadOnce(*logger, session, plan);
        m_tried = nullptr;
        return reading.Lines(session);
    } catch (const Failure& failure) {
        m_tried = nullptr;
        return failure.sentence;
    }
}

// Messages are handled while the logger is awaited: nothing but Cancel can be pressed meanwhile, and ends the trial.
void DownloadDialog::OnTest() {
    if (m_tried != nullptr) return;
    const int fields[] = {IDOK, IDC_HOST_TEST, IDC_HOST_BROWSE, IDC_HOST_PORT, IDC_HOST_DESCRIPTION};
    SetDlgItemText(IDC_HOST_RESULT, Say(Text::Connecting, {ToUtf8(TextOf(IDC_HOST_PORT).GetString())}).c_str());
    GetDlgItem(IDC_HOST_RESULT)->UpdateWindow();
    GetDlgItem(IDCANCEL)->SetFocus();
    for (const int field : fields) GetDlgItem(field)->EnableWindow(FALSE);
    m_stop = false;
    std::string told = Try();
    if (m_hWnd == nullptr) return;
    for (size_t at = 0; (at = told.find('\n', at)) != std::string::npos; at += 2) told.insert(at, 1, '\r');
    SetDlgItemText(IDC_HOST_RESULT, told.c_str());
    for (const int field : fields) GetDlgItem(field)->EnableWindow(field != IDC_HOST_BROWSE || HasFileDialogs());
    GetDlgItem(IDC_HOST_TEST)->SetFocus();
}

void DownloadDialog::OnCancel() {
    if (m_tried == nullptr) return FieldsDialog::OnCancel();
    m_stop = true;
    m_tried->Abort();
}

void DownloadDialog::DoDataExchange(CDataExchange* exchange) {
    FieldsDialog::DoDataExchange(exchange);
    UINT readings = count;
    CVXTTimeSpan between = interval;
    CString name = port, file = description;
    DDX_Text(exchange, IDC_HOST_DESCRIPTION, file);
    DDX_Text(exchange, IDC_HOST_PORT, name);
    ExchangeCount(exchange, IDC_HOST_COUNT, readings);
    if (!exchange->m_bSaveAndValidate || IsChanged(IDC_HOST_INTERVAL)) ExchangeSpan(exchange, IDC_HOST_INTERVAL, between);
    if (!exchange->m_bSaveAndValidate) return;
    if (name.IsEmpty()) Refuse(exchange, IDC_HOST_PORT, Say(Text::PortEmpty));
    if (SamePort(name.GetString(), busyPort))
        Refuse(exchange, IDC_HOST_PORT, Say(Text::PortDownloads, {ToUtf8(name.GetString())}));
    // Found out later, it would have cost what the window shows.
    if (IsPortMissing(name.GetString())) Refuse(exchange, IDC_HOST_PORT, Say(Text::PortMissing, {ToUtf8(name.GetString())}));
    if (readings == 0 || readings > kMostReadings) Refuse(exchange, IDC_HOST_COUNT, Say(Text::CountRange));
    const __int64 pause = between.GetTotalMilliSeconds();
    if (pause < 0 || pause > kWeek) Refuse(exchange, IDC_HOST_INTERVAL, Say(Text::IntervalRange));
    try {
        CPropertyDB facts;
        LoadLoggerDescription(file.GetString(), facts);
        MakeLogger(m_app, facts);
    } catch (const Failure& failure) {
        Refuse(exchange, IDC_HOST_DESCRIPTION, failure.sentence);
    }
    description = file;
    port = name;
    count = readings;
    interval = between;
}
