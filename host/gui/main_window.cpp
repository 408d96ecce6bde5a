#include "host/gui/main_window.h"

#include <algorithm>

#include "afx/dc.h"
#include "afx/exception.h"
#include "chart/split_bar_trackers.h"
#include "comm/serial_device.h"
#include "frame/app_stock.h"
#include "host/chart_file.h"
#include "host/gui/file_dialog.h"
#include "host/gui/pane_font.h"
#include "host/logger_file.h"
#include "platform/picture.h"

namespace {
constexpr LONG kBar = 6, kStatus = 24, kLeastChart = 120, kLeastPane = 40, kKeyStep = 8;
constexpr DWORD kLiveTimeout = 1000, kLiveInterval = 1000, kForEver = 100'000'000;

std::string KindsOf(Text sessions, const char* patterns) {
    return HouseText(sessions) + "|" + patterns + "|" + HouseText(Text::AllFiles) + "|*.*";
}
}  // namespace

std::string HouseText(Text text, std::initializer_list<std::string_view> arguments) {
    std::string house;
    const std::string utf8 = Say(text, arguments);
    if (!FromUtf8(utf8, house)) house = utf8;
    return house;
}

BEGIN_MESSAGE_MAP(MainWindow, CWnd)
ON_MESSAGE(WM_PAINT, OnPaintMessage)
ON_MESSAGE(WM_ERASEBKGND, OnErase)
ON_MESSAGE(WM_SIZE, OnSized)
ON_MESSAGE(WM_LBUTTONDOWN, OnPress)
ON_MESSAGE(WM_MOUSEMOVE, OnPointer)
ON_MESSAGE(WM_SETCURSOR, OnCursor)
ON_MESSAGE(WM_KEYDOWN, OnKey)
ON_MESSAGE(WM_SETFOCUS, OnFocusGot)
ON_MESSAGE(WM_KILLFOCUS, OnFocusGot)
ON_MESSAGE(WM_MOUSEWHEEL, OnWheel)
ON_MESSAGE(WM_COMMAND, OnMenuCommand)
ON_MESSAGE(WM_INITMENUPOPUP, OnMenuOpens)
ON_MESSAGE(WM_CLOSE, OnCloseWish)
ON_MESSAGE(WM_DESTROY, OnGone)
END_MESSAGE_MAP()

MainWindow::MainWindow(CHostApp& app, Manner manner)
    : m_app(app), m_manner(manner), m_chart(m_document, *this), m_pane(m_document, *this) {}

MainWindow::~MainWindow() {
    m_download.reset();
    if (m_hWnd != nullptr) DestroyWindow();
}

void MainWindow::CreateWindowOf(SIZE client, int show) {
    const LPCSTR windowClass = AfxRegisterWndClass(CS_DBLCLKS, ::LoadCursorA(nullptr, IDC_ARROW), nullptr, nullptr);
    if (!CreateEx(0, windowClass, "OrvikHost", WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, CW_USEDEFAULT, 800, 600, nullptr, nullptr))
        throw Failure{kFileFailed, Say(Text::NoWindow)};
    MakeMenu();
    if (!m_chart.CreatePane(m_hWnd) || !m_pane.CreatePane(m_hWnd)) throw Failure{kFileFailed, Say(Text::NoWindow)};
    SetClientSize(client);
    UpdateTitle();
    UpdateMenu();
    ::ShowWindow(m_hWnd, show);
    ::SetFocus(m_chart.m_hWnd);
}

void MainWindow::SetClientSize(SIZE client) {
    RECT rect = {0, 0, client.cx, client.cy};
    ::AdjustWindowRectEx(&rect, static_cast<DWORD>(::GetWindowLongPtrA(m_hWnd, GWL_STYLE)), ::GetMenu(m_hWnd) != nullptr, 0);
    ::SetWindowPos(m_hWnd, nullptr, 0, 0, rect.right - rect.left, rect.bottom - rect.top,
                   SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    // A menu that needs two lines takes room of the client area.
    RECT now = {};
    ::GetClientRect(m_hWnd, &now);
    if (now.bottom != client.cy && now.bottom > 0)
        ::SetWindowPos(m_hWnd, nullptr, 0, 0, rect.right - rect.left, rect.bottom - rect.top + client.cy - now.bottom,
                       SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    Layout();
}

// --- What can fail ---

template <class Work>
bool MainWindow::Try(Work work) {
    try {
        work();
        return true;
    } catch (const Failure& failure) {
        if (m_manner == Manner::Quiet) throw;
        Tell(failure.sentence);
    } catch (CException* exception) {
        if (m_manner == Manner::Quiet) throw;
        char text[512] = "";
        exception->GetErrorMessage(text, sizeof text);
        exception->Delete();
        Tell(ToUtf8(text));
    }
    return false;
}

void MainWindow::Tell(const std::string& sentence) {
    std::string house;
    if (!FromUtf8(sentence, house)) house = sentence;
    if (m_manner == Manner::Interactive && m_hWnd != nullptr) {
        ::MessageBoxA(m_hWnd, house.c_str(), "OrvikHost", MB_OK | MB_ICONEXCLAMATION);
    } else {
        m_status = house;
        if (m_hWnd != nullptr) ::InvalidateRect(m_hWnd, nullptr, FALSE);
    }
}

bool MainWindow::Open(const std::string& path) {
    m_chart.EndWriting(true);
    return Try([&] {
        m_document.Open(path);
        DocumentChanged();
    });
}

bool MainWindow::SaveTo(const std::string& path) {
    m_chart.EndWriting(true);
    return Try([&] {
        TakeReadings();
        m_document.Save(path);
        m_status = HouseText(Text::SavedTo, {ToUtf8(path)});
        StateChanged();
    });
}

bool MainWindow::SavePicture(const std::string& path) {
    m_chart.EndWriting(true);
    return Try([&] {
        RequirePictureName(path);
        CRect client;
        ::GetClientRect(m_chart.m_hWnd, &client);
        if (client.IsRectEmpty()) client = CRect(0, 0, 1600, 900);
        const HDC picture = ::OrvikBeginPicture(path.c_str(), client.Width(), client.Height());
        if (picture == nullptr) throw Failure{kFileFailed, Say(Text::FileNotWritten, {ToUtf8(path), Reason(GetLastError())})};
        CDC dc;
        dc.Attach(picture);
        dc.m_bPrinting = ::OrvikIsPrinting(picture);
        m_chart.DrawOn(dc, client);
        dc.Detach();
        if (!::OrvikEndPicture(picture, TRUE))
            throw Failure{kFileFailed, Say(Text::FileNotWritten, {ToUtf8(path), Reason(GetLastError())})};
        m_status = HouseText(Text::SavedTo, {ToUtf8(path)});
        ::InvalidateRect(m_hWnd, nullptr, FALSE);
    });
}

bool MainWindow::Connect(const std::string& loggerFile, const DownloadPlan& plan) {
    return Try([&] {
        if (IsDownloading()) throw Failure{kWrongUse, Say(Text::DownloadRuns)};
        CPropertyDB description;
        LoadLoggerDescription(loggerFile, description);
        std::unique_ptr<ILogger> logger = MakeLogger(m_app, description);
        m_readings.clear();
        m_document.Begin(description, plan.port);
        m_download.reset(new LiveDownload(std::move(logger), plan, *this));  // a listener in private
        m_download->Begin();
        m_status = HouseText(Text::Connecting, {ToUtf8(plan.port)});
        DocumentChanged();
        OrvikShedule();
    });
}

void MainWindow::OnReading(CVXTTime time, const CDoubleArray& values) {
    Reading reading{time, {}};
    for (INT_PTR i = 0; i < values.GetSize(); ++i) reading.values.push_back(values.GetAt(i));
    m_readings.push_back(std::move(reading));
    m_status = HouseText(Text::LiveProgress, {std::to_string(m_download->Made() + 1), ToUtf8(m_download->Plan().port)});
    if (!IsDragging()) TakeReadings();
}

// The chart's data are not touched while a tracker works on it.
void MainWindow::TakeReadings() {
    if (m_readings.empty() || !m_document.HasSession()) return;
    m_chart.BeforeReadings();
    for (const Reading& reading : m_readings) {
        CDoubleArray values;
        for (const double value : reading.values) values.Add(value);
        m_document.GetSession()->Add(reading.time, values);
    }
    m_readings.clear();
    m_chart.AfterReadings();
    m_pane.Redraw();
    UpdateTitle();
    if (m_hWnd != nullptr) ::InvalidateRect(m_hWnd, nullptr, FALSE);
}

void MainWindow::OnDownloadEnd(const std::string& sentence) {
    if (!IsDragging()) TakeReadings();
    const size_t count = m_document.GetSession()->Count() + m_readings.size();
    m_status = HouseText(Text::LiveEnded, {std::to_string(count)});
    UpdateMenu();
    if (m_hWnd != nullptr) ::InvalidateRect(m_hWnd, nullptr, FALSE);
    if (m_closing && m_hWnd != nullptr) {
        ::PostMessageA(m_hWnd, WM_CLOSE, 0, 0);
    } else if (!sentence.empty()) {
        Tell(sentence);
    }
}

void MainWindow::OnDragEnd() { TakeReadings(); }

// --- State ---

void MainWindow::Do(Text name, const ViewState& next) {
    if (m_document.History().Do(name, next)) StateChanged();
}

void MainWindow::StateChanged() {
    m_chart.StateChanged();
    m_pane.Redraw();
    Layout();
    UpdateTitle();
    UpdateMenu();
}

void MainWindow::DocumentChanged() {
    m_chart.DataChanged();
    StateChanged();
}

void MainWindow::UpdateTitle() {
    if (m_hWnd == nullptr) return;
    const std::string document = m_document.Title();
    const std::string title =
        document.empty() ? "OrvikHost" : document + (m_document.IsModified() ? "* \x96 " : " \x96 ") + "OrvikHost";
    CString now;
    GetWindowText(now);
    if (now != title.c_str()) SetWindowText(title.c_str());
}

// --- Places ---

LONG MainWindow::PaneWidth() const {
    RECT client = {};
    ::GetClientRect(m_hWnd, &client);
    const LONG most = client.right - kBar - kLeastChart;
    return std::max<LONG>(std::min(std::max(m_document.State().pane, kLeastPane), most), 0);
}

RECT MainWindow::BarRect() const {
    RECT client = {};
    ::GetClientRect(m_hWnd, &client);
    const LONG left = std::max<LONG>(client.right - PaneWidth() - kBar, 0);
    return {left, 0, std::min(left + kBar, client.right), std::max<LONG>(client.bottom - kStatus, 0)};
}

RECT MainWindow::StatusRect() const {
    RECT client = {};
    ::GetClientRect(m_hWnd, &client);
    return {0, std::max<LONG>(client.bottom - kStatus, 0), client.right, client.bottom};
}

void MainWindow::Layout() {
    if (m_chart.m_hWnd == nullptr || m_pane.m_hWnd == nullptr) return;
    const RECT bar = BarRect();
    RECT client = {};
    ::GetClientRect(m_hWnd, &client);
    const auto place = [](HWND pane, LONG left, LONG top, LONG width, LONG height) {
        RECT now = {};
        ::GetWindowRect(pane, &now);
        ::MapWindowPoints(nullptr, ::GetParent(pane), reinterpret_cast<POINT*>(&now), 2);
        const RECT wanted = {left, top, left + width, top + height};
        if (!::EqualRect(&now, &wanted)) ::MoveWindow(pane, left, top, width, height, TRUE);
    };
    place(m_chart.m_hWnd, 0, 0, bar.left, bar.bottom);
    place(m_pane.m_hWnd, bar.right, 0, std::max<LONG>(client.right - bar.right, 0), bar.bottom);
    ::InvalidateRect(m_hWnd, nullptr, FALSE);
}

void MainWindow::SetPaneWidth(LONG width) {
    ViewState next = m_document.State();
    next.pane = std::max(width, kLeastPane);
    Do(Text::StepPane, next);
}

LRESULT MainWindow::OnSized(WPARAM, LPARAM) {
    Layout();
    return 0;
}

LRESULT MainWindow::OnPaintMessage(WPARAM, LPARAM) {
    CPaintDC dc(this);
    const COLORREF face = ::GetSysColor(COLOR_BTNFACE), shadow = ::GetSysColor(COLOR_BTNSHADOW);
    const CRect bar = BarRect(), status = StatusRect();
    dc.FillSolidRect(bar, m_barFocus && ::GetFocus() == m_hWnd ? ::GetSysColor(COLOR_HIGHLIGHT) : face);
    dc.FillSolidRect(bar.left, bar.top, 1, bar.Height(), shadow);
    dc.FillSolidRect(bar.right - 1, bar.top, 1, bar.Height(), shadow);
    dc.FillSolidRect(status, face);
    dc.FillSolidRect(status.left, status.top, status.Width(), 1, shadow);
    const LOGFONTA description = PaneFont(13);
    CFont font;
    font.CreateFontIndirect(&description);
    CFont* const before = dc.SelectObject(&font);
    dc.SetTextColor(RGB(0, 0, 0));
    dc.SetBkMode(TRANSPARENT);
    CRect text = status;
    text.DeflateRect(8, 0);
    const int width =
        m_status.empty() ? 0 : static_cast<int>(dc.GetTextExtent(m_status.c_str(), static_cast<int>(m_status.size())).cx);
    const UINT format = DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS;
    dc.DrawText(m_status.c_str(), static_cast<int>(m_status.size()), text, format | DT_RIGHT);
    text.right = std::max<LONG>(text.right - width - 16, text.left);
    dc.DrawText(m_hint.c_str(), static_cast<int>(m_hint.size()), text, format);
    dc.SelectObject(before);
    return 0;
}

void MainWindow::ShowHint(const std::string& text) {
    if (text == m_hint || m_hWnd == nullptr) return;
    m_hint = text;
    const RECT status = StatusRect();
    ::InvalidateRect(m_hWnd, &status, FALSE);
}

LRESULT MainWindow::OnPress(WPARAM, LPARAM lParam) {
    const CPoint point(lParam);
    const RECT bar = BarRect();
    if (!::PtInRect(&bar, point) || IsDragging()) return 0;
    m_chart.EndWriting(true);
    ::UpdateWindow(m_hWnd);
    RECT client = {};
    ::GetClientRect(m_hWnd, &client);
    CVertSplitBarTracker tracker(
        {kLeastChart, bar.top, std::max<LONG>(client.right - kBar - kLeastPane, kLeastChart), bar.bottom}, bar);
    const HWND window = m_hWnd;
    m_dragging = true;
    const int result = tracker.TrackCursor(this, point);
    m_dragging = false;
    if (!::IsWindow(window)) return 0;
    RECT end = {};
    tracker.GetRect(&end);
    if (result == 2) SetPaneWidth(client.right - kBar - end.left);
    OnDragEnd();
    return 0;
}

LRESULT MainWindow::OnPointer(WPARAM, LPARAM lParam) {
    const RECT bar = BarRect();
    ShowHint(::PtInRect(&bar, CPoint(lParam)) ? HouseText(Text::HintBar) : std::string());
    return 0;
}

LRESULT MainWindow::OnCursor(WPARAM wParam, LPARAM lParam) {
    POINT point = {};
    ::GetCursorPos(&point);
    ::ScreenToClient(m_hWnd, &point);
    const RECT bar = BarRect();
    if (LOWORD(lParam) != HTCLIENT || !::PtInRect(&bar, point) || hCurVSplitter == nullptr ||
        reinterpret_cast<HWND>(wParam) != m_hWnd)
        return DefWindowProc(WM_SETCURSOR, wParam, lParam);
    ::SetCursor(hCurVSplitter);
    return TRUE;
}

// The wheel turns what is under the pointer, whatever has the focus.
LRESULT MainWindow::OnWheel(WPARAM wParam, LPARAM lParam) {
    POINT point = CPoint(lParam);
    ::ScreenToClient(m_hWnd, &point);
    if (::ChildWindowFromPoint(m_hWnd, point) == m_chart.m_hWnd) m_chart.SendMessage(WM_MOUSEWHEEL, wParam, lParam);
    return 0;
}

// --- Keys and commands ---

void MainWindow::NextPane(bool backwards) {
    const HWND focus = ::GetFocus();
    const int now = focus == m_chart.m_hWnd ? 0 : focus == m_pane.m_hWnd ? 2 : 1;
    const int next = (now + (backwards ? 2 : 1)) % 3;
    m_barFocus = next == 1;
    ::SetFocus(next == 0 ? m_chart.m_hWnd : next == 2 ? m_pane.m_hWnd : m_hWnd);
    ::InvalidateRect(m_hWnd, nullptr, FALSE);
}

void MainWindow::OnPaneKey(WORD key) {
    const bool shift = ::GetKeyState(VK_SHIFT) < 0, control = ::GetKeyState(VK_CONTROL) < 0;
    if (key == VK_F6) return NextPane(shift);
    if (const UINT command = CommandOfKey(key, control, shift)) Command(command);
}

LRESULT MainWindow::OnKey(WPARAM wParam, LPARAM) {
    const auto key = static_cast<WORD>(wParam);
    if (m_barFocus && (key == VK_LEFT || key == VK_RIGHT)) {
        SetPaneWidth(PaneWidth() + (key == VK_LEFT ? kKeyStep : -kKeyStep));
    } else {
        OnPaneKey(key);
    }
    return 0;
}

LRESULT MainWindow::OnFocusGot(WPARAM, LPARAM) {
    if (::GetFocus() == m_hWnd && !m_barFocus && m_chart.m_hWnd != nullptr) ::SetFocus(m_chart.m_hWnd);
    if (::GetFocus() != m_hWnd) m_barFocus = false;
    const RECT bar = BarRect();
    ::InvalidateRect(m_hWnd, &bar, FALSE);
    return 0;
}

LRESULT MainWindow::OnMenuCommand(WPARAM wParam, LPARAM) {
    Command(LOWORD(wParam));
    return 0;
}

bool MainWindow::CanCommand(UINT command) const {
    if (IsDragging() || m_asking) return false;
    const ViewHistory& history = const_cast<MainWindow*>(this)->m_document.History();
    switch (command) {
        case kCommandOpen:
            return !IsDownloading();
        case kCommandExit:
        case kCommandAbout:
            return true;
        case kCommandSave:
        case kCommandPicture:
            return m_document.HasSession();
        case kCommandStop:
            return IsDownloading();
        case kCommandUndo:
            return history.CanUndo();
        case kCommandRedo:
            return history.CanRedo();
        default:
            if (command >= kCommandPorts) return !IsDownloading() && command - kCommandPorts < m_ports.size();
            if (command >= kCommandChannels) return m_document.HasSession();
            return m_chart.CanCommand(command);
    }
}

bool MainWindow::Command(UINT command) {
    m_chart.EndWriting(true);
    if (!CanCommand(command)) return false;
    switch (command) {
        case kCommandOpen:
            AskAndOpen();
            return true;
        case kCommandSave:
            return AskAndSave();
        case kCommandPicture:
            AskAndSavePicture();
            return true;
        case kCommandStop:
            m_download->Stop();
            return true;
        case kCommandExit:
            ::PostMessageA(m_hWnd, WM_CLOSE, 0, 0);
            return true;
        case kCommandUndo:
        case kCommandRedo:
            command == kCommandUndo ? m_document.History().Undo() : m_document.History().Redo();
            StateChanged();
            return true;
        case kCommandAbout:
            m_status = HouseText(Text::AboutText);
            if (m_manner == Manner::Interactive) ::MessageBoxA(m_hWnd, m_status.c_str(), "OrvikHost", MB_OK | MB_ICONINFORMATION);
            return true;
        default:
            break;
    }
    if (command >= kCommandPorts) {
        ConnectTo(command - kCommandPorts);
        return true;
    }
    if (command >= kCommandChannels) {
        const size_t channel = command - kCommandChannels;
        if (channel >= m_document.GetSession()->Channels().size()) return false;
        Do(Text::StepChannel, ValuePane::Toggled(m_document.State(), *m_document.GetSession(), channel));
        return true;
    }
    return m_chart.Command(command);
}

void MainWindow::AskAndOpen() {
    m_asking = true;
    const auto path =
        MayLeave() ? AskFileToOpen(m_hWnd, HouseText(Text::AskOpen), KindsOf(Text::SessionFiles, "*.odb;*.xml")) : std::nullopt;
    m_asking = false;
    if (path) Open(*path);
}

bool MainWindow::AskAndSave() {
    if (!m_document.Path().empty()) return SaveTo(m_document.Path());
    m_asking = true;
    const auto path =
        AskFileToSave(m_hWnd, HouseText(Text::AskSave), KindsOf(Text::SessionFiles, "*.odb;*.xml"), "odb", "session.odb");
    m_asking = false;
    return path && SaveTo(*path);
}

void MainWindow::AskAndSavePicture() {
    m_asking = true;
    const auto path =
        AskFileToSave(m_hWnd, HouseText(Text::AskPicture), KindsOf(Text::PictureFiles, "*.png;*.svg;*.pdf"), "png", "chart.png");
    m_asking = false;
    if (path) SavePicture(*path);
}

bool MainWindow::MayLeave() {
    if (m_manner == Manner::Quiet || !m_document.IsModified()) return true;
    const std::string question = HouseText(Text::AskKeep, {ToUtf8(m_document.Title())});
    m_asking = true;
    const int answer = ::MessageBoxA(m_hWnd, question.c_str(), "OrvikHost", MB_YESNOCANCEL | MB_ICONQUESTION);
    m_asking = false;
    return answer == IDNO || (answer == IDYES && AskAndSave());
}

void MainWindow::ConnectTo(size_t port) {
    if (!MayLeave()) return;
    DownloadPlan plan;
    plan.port = m_ports[port];
    plan.count = kForEver;
    plan.interval = kLiveInterval;
    plan.timeout = kLiveTimeout;
    Connect({}, plan);
}

LRESULT MainWindow::OnCloseWish(WPARAM, LPARAM) {
    m_chart.EndWriting(true);
    if (IsDownloading()) {
        // The window goes when the exchange under way has ended; what was read can then be saved.
        m_closing = true;
        m_download->Stop();
        return 0;
    }
    m_closing = false;
    if (m_asking || !MayLeave()) return 0;
    DestroyWindow();
    return 0;
}

LRESULT MainWindow::OnGone(WPARAM, LPARAM) {
    if (IsDownloading()) m_download->Stop();
    if (m_manner == Manner::Interactive) ::PostQuitMessage(0);
    return 0;
}

// --- The menu ---

std::string MainWindow::ItemText(const MenuCommand& command) const {
    const ViewHistory& history = const_cast<MainWindow*>(this)->m_document.History();
    std::string text = HouseText(command.text);
    if (command.id == kCommandUndo && history.CanUndo()) text = HouseText(Text::MenuUndoStep, {Say(history.UndoName())});
    if (command.id == kCommandRedo && history.CanRedo()) text = HouseText(Text::MenuRedoStep, {Say(history.RedoName())});
    if (command.keyText[0] != 0) text += std::string("\t") + command.keyText;
    return text;
}

void MainWindow::MakeMenu() {
    constexpr std::pair<MenuPlace, Text> kMenus[] = {{MenuPlace::File, Text::MenuFile},
                                                     {MenuPlace::Edit, Text::MenuEdit},
                                                     {MenuPlace::View, Text::MenuView},
                                                     {MenuPlace::Help, Text::MenuHelp}};
    const HMENU bar = ::CreateMenu();
    for (const auto& [place, text] : kMenus) {
        const HMENU menu = ::CreatePopupMenu();
        for (const MenuCommand& command : kMenuCommands) {
            if (command.place != place) continue;
            if (command.id == kCommandStop) {
                m_portMenu = ::CreatePopupMenu();
                ::AppendMenuA(menu, MF_SEPARATOR, 0, nullptr);
                ::AppendMenuA(menu, MF_POPUP, reinterpret_cast<UINT_PTR>(m_portMenu), HouseText(Text::MenuConnect).c_str());
            } else if (command.afterLine) {
                ::AppendMenuA(menu, MF_SEPARATOR, 0, nullptr);
            }
            ::AppendMenuA(menu, MF_STRING, command.id, ItemText(command).c_str());
        }
        if (place == MenuPlace::View) {
            m_channelMenu = ::CreatePopupMenu();
            ::AppendMenuA(menu, MF_SEPARATOR, 0, nullptr);
            ::AppendMenuA(menu, MF_POPUP, reinterpret_cast<UINT_PTR>(m_channelMenu), HouseText(Text::MenuChannels).c_str());
        }
        ::AppendMenuA(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(menu), HouseText(text).c_str());
    }
    ::SetMenu(m_hWnd, bar);
    FillPorts(m_portMenu);
    FillChannels(m_channelMenu);
}

void MainWindow::UpdateMenu() {
    const HMENU bar = m_hWnd != nullptr ? ::GetMenu(m_hWnd) : nullptr;
    if (bar == nullptr) return;
    for (const MenuCommand& command : kMenuCommands) {
        const UINT state = CanCommand(command.id) ? MF_ENABLED : MF_GRAYED;
        ::ModifyMenuA(bar, command.id, MF_BYCOMMAND | MF_STRING | state, command.id, ItemText(command).c_str());
    }
}

std::string MainWindow::MenuText(UINT command) const {
    char text[256] = {};
    ::GetMenuStringA(::GetMenu(m_hWnd), command, text, sizeof text, MF_BYCOMMAND);
    return text;
}

namespace {
void EmptyMenu(HMENU menu) {
    while (::GetMenuItemCount(menu) > 0) ::DeleteMenu(menu, 0, MF_BYPOSITION);
}
}  // namespace

void MainWindow::FillPorts(HMENU menu) {
    EmptyMenu(menu);
    m_ports.clear();
    CArray<CSerialDevice, const CSerialDevice&> devices;
    CSerialDevice::EnumSerialDevices(devices);
    for (INT_PTR i = 0; i < devices.GetSize() && i < INT_PTR{kCommandEnd - kCommandPorts}; ++i) {
        CSerialDevice device = devices.GetAt(i);
        m_ports.emplace_back(static_cast<const char*>(device.GetPortName()));
        const std::string description = static_cast<const char*>(device.GetDescription());
        const std::string text = m_ports.back() + (description.empty() ? "" : "  " + description);
        ::AppendMenuA(menu, MF_STRING | (IsDownloading() ? MF_GRAYED : MF_ENABLED), kCommandPorts + static_cast<UINT>(i),
                      text.c_str());
    }
    if (m_ports.empty()) ::AppendMenuA(menu, MF_STRING | MF_GRAYED, 0, HouseText(Text::NoPorts).c_str());
}

void MainWindow::FillChannels(HMENU menu) {
    EmptyMenu(menu);
    if (!m_document.HasSession()) {
        ::AppendMenuA(menu, MF_STRING | MF_GRAYED, 0, HouseText(Text::NothingOpen).c_str());
        return;
    }
    const auto& channels = m_document.GetSession()->Channels();
    const auto& hidden = m_document.State().hidden;
    for (size_t i = 0; i < channels.size() && i < kCommandPorts - kCommandChannels; ++i) {
        const bool shown = std::find(hidden.begin(), hidden.end(), channels[i].key) == hidden.end();
        ::AppendMenuA(menu, MF_STRING | (shown ? MF_CHECKED : MF_UNCHECKED), kCommandChannels + static_cast<UINT>(i),
                      channels[i].name.c_str());
    }
}

LRESULT MainWindow::OnMenuOpens(WPARAM wParam, LPARAM) {
    const HMENU menu = reinterpret_cast<HMENU>(wParam);
    if (menu == m_portMenu) FillPorts(menu);
    if (menu == m_channelMenu) FillChannels(menu);
    UpdateMenu();
    return 0;
}

void MainWindow::ShowContextMenu(POINT screen) {
    if (m_manner == Manner::Quiet) return;  // nobody would choose, and the menu would stay for ever
    const HMENU menu = ::CreatePopupMenu();
    constexpr CommandId kFirst[] = {kCommandEditTag, kCommandRemoveTag, kCommandResetAxis, kCommandZoomSelection,
                                    kCommandRemoveSelection};
    constexpr CommandId kAlways[] = {kCommandAddTag, kCommandSelect, kCommandResetAll, kCommandUndo, kCommandRedo};
    const auto add = [&](CommandId id) {
        for (const MenuCommand& command : kMenuCommands) {
            if (command.id == id)
                ::AppendMenuA(menu, MF_STRING | (CanCommand(id) ? MF_ENABLED : MF_GRAYED), id, ItemText(command).c_str());
        }
    };
    for (const CommandId id : kFirst) {
        if (CanCommand(id)) add(id);
    }
    if (::GetMenuItemCount(menu) > 0) ::AppendMenuA(menu, MF_SEPARATOR, 0, nullptr);
    for (const CommandId id : kAlways) add(id);
    ::TrackPopupMenu(menu, TPM_LEFTALIGN | TPM_RIGHTBUTTON, screen.x, screen.y, 0, m_hWnd, nullptr);
    ::DestroyMenu(menu);
}
