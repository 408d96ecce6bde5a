#include "host/gui/main_window.h"

#include <algorithm>

#include "afx/dc.h"
#include "chart/split_bar_trackers.h"
#include "frame/app_stock.h"
#include "host/session/value_text.h"
#include "platform/dpi.h"
#include "res/ids.h"
#include "toolkit/global_data.h"

namespace {
// Pixels at 96 dots an inch.
constexpr LONG kBar = 6, kStatus = 24, kLeastChart = 120, kLeastPane = 40, kPaneStep = 8;
}  // namespace

BEGIN_MESSAGE_MAP(MainWindow, CWnd)
ON_MESSAGE(WM_PAINT, OnPaintMessage)
ON_MESSAGE(WM_ERASEBKGND, OnErase)
ON_MESSAGE(WM_SIZE, OnSized)
ON_REGISTERED_MESSAGE(kOrvikDescribe, OnDescribe)
ON_MESSAGE(WM_DPICHANGED, OnDpi)
ON_MESSAGE(WM_SYSCOLORCHANGE, OnColours)
ON_MESSAGE(WM_SETTINGCHANGE, OnSettings)
ON_MESSAGE(WM_LBUTTONDOWN, OnPress)
ON_MESSAGE(WM_MOUSEMOVE, OnPointer)
ON_MESSAGE(WM_SETCURSOR, OnCursor)
ON_MESSAGE(WM_KEYDOWN, OnKey)
ON_MESSAGE(WM_SYSKEYDOWN, OnSystemKey)
ON_MESSAGE(WM_SETFOCUS, OnFocusGot)
ON_MESSAGE(WM_KILLFOCUS, OnFocusGot)
ON_MESSAGE(WM_MOUSEWHEEL, OnWheel)
ON_MESSAGE(WM_MOUSEHWHEEL, OnWheelAcross)
ON_MESSAGE(WM_DROPFILES, OnDropped)
ON_MESSAGE(WM_TIMER, OnTimer)
ON_COMMAND_RANGE(kCommandOpen, kCommandEnd - 1, OnMenuCommand)
ON_MESSAGE(WM_INITMENUPOPUP, OnMenuOpens)
ON_MESSAGE(WM_CLOSE, OnCloseWish)
ON_MESSAGE(WM_DESTROY, OnGone)
END_MESSAGE_MAP()

MainWindow::MainWindow(CHostApp& app, Manner manner)
    : m_app(app), m_manner(manner), m_chart(m_document, *this), m_list(m_document, *this) {}

MainWindow::~MainWindow() {
    m_download.reset();
    if (m_hWnd != nullptr) DestroyWindow();
    if (m_manner == Manner::Quiet) DropUnsaved();  // there is nobody who would ask for it
}

void MainWindow::CreateWindowOf(SIZE client, int show) {
    const LPCSTR windowClass = AfxRegisterWndClass(CS_DBLCLKS, ::LoadCursorA(nullptr, IDC_ARROW), nullptr, nullptr);
    if (!CreateEx(0, windowClass, "OrvikHost", WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, CW_USEDEFAULT, 800, 600, nullptr, nullptr))
        throw Failure{kFileFailed, Say(Text::NoWindow)};
    SetIcons();
    MakeMenu();
    ::DragAcceptFiles(m_hWnd, TRUE);
    m_tips.Create(m_hWnd);
    if (!m_chart.CreatePane(m_hWnd) || !m_list.CreatePane(m_hWnd)) throw Failure{kFileFailed, Say(Text::NoWindow)};
    SetClientSize({Scaled(client.cx), Scaled(client.cy)});
    UpdateTitle();
    UpdateMenu();
    ::ShowWindow(m_hWnd, show);
    ::SetFocus(m_chart.m_hWnd);
}

// They live as long as the process.
void MainWindow::SetIcons() {
    const auto load = [](int size) {
        return reinterpret_cast<LPARAM>(::LoadImageA(::GetModuleHandleA("OrvikShared"), MAKEINTRESOURCEA(IDI_ORVIK_APPLICATION),
                                                     IMAGE_ICON, size, size, LR_DEFAULTCOLOR));
    };
    static const LPARAM s_big = load(::GetSystemMetrics(SM_CXICON)), s_small = load(::GetSystemMetrics(SM_CXSMICON));
    SendMessage(WM_SETICON, ICON_BIG, s_big);
    SendMessage(WM_SETICON, ICON_SMALL, s_small);
}

void MainWindow::SetClientSize(SIZE client) {
    RECT rect = {0, 0, client.cx, client.cy};
    ::AdjustWindowRectEx(&rect, static_cast<DWORD>(::GetWindowLongPtrA(m_hWnd, GWL_STYLE)), ::GetMenu(m_hWnd) != nullptr, 0);
    ::SetWindowPos(m_hWnd, nullptr, 0, 0, rect.right - rect.left, rect.bottom - rect.top,
                   SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    // A menu that needs two lines takes room of the client area, and frames are thicker on some screens.
    RECT now = {};
    ::GetClientRect(m_hWnd, &now);
    if ((now.right != client.cx || now.bottom != client.cy) && now.bottom > 0)
        ::SetWindowPos(m_hWnd, nullptr, 0, 0, rect.right - rect.left + client.cx - now.right,
                       rect.bottom - rect.top + client.cy - now.bottom, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    Layout();
}

// --- State ---

void MainWindow::Do(Text name, const ViewState& next) {
    if (m_document.History().Do(name, next)) StateChanged();
}

void MainWindow::StateChanged() {
    m_chart.StateChanged();
    m_list.Update();
    KeepComments();
    Layout();
    UpdateTitle();
    UpdateMenu();
}

void MainWindow::DocumentChanged() {
    ForgetPointer();
    m_chart.DataChanged();
    StateChanged();
}

void MainWindow::UpdateTitle() {
    if (m_hWnd == nullptr) return;
    const std::string document = m_document.Title();
    const std::string title =
        document.empty() ? "OrvikHost" : document + (m_document.IsModified() ? "* – " : " – ") + "OrvikHost";
    CString now;
    GetWindowText(now);
    if (now != title.c_str()) SetWindowText(title.c_str());
}

// --- Places ---

LONG MainWindow::PaneWidth() const {
    RECT client = {};
    ::GetClientRect(m_hWnd, &client);
    const LONG most = client.right - Scaled(kBar) - Scaled(kLeastChart);
    return std::max<LONG>(std::min(Scaled(std::max(m_document.State().pane, kLeastPane)), most), 0);
}

RECT MainWindow::BarRect() const {
    RECT client = {};
    ::GetClientRect(m_hWnd, &client);
    const LONG bar = Scaled(kBar), left = std::max<LONG>(client.right - PaneWidth() - bar, 0);
    return {left, 0, std::min(left + bar, client.right), StatusRect().top};
}

RECT MainWindow::StatusRect() const {
    RECT client = {};
    ::GetClientRect(m_hWnd, &client);
    return {0, std::max<LONG>(client.bottom - Scaled(kStatus), 0), client.right, client.bottom};
}

void MainWindow::Layout() {
    if (m_chart.m_hWnd == nullptr || m_list.m_hWnd == nullptr) return;
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
    place(m_list.m_hWnd, bar.right, 0, std::max<LONG>(client.right - bar.right, 0), bar.bottom);
    ::InvalidateRect(m_hWnd, nullptr, FALSE);
}

void MainWindow::SetPaneWidth(LONG width) {
    ViewState next = m_document.State();
    next.pane = std::max<LONG>(OrvikUnscale(width, OrvikDpiOf(m_hWnd)), kLeastPane);
    Do(Text::StepPane, next);
}

LRESULT MainWindow::OnSized(WPARAM, LPARAM) {
    Layout();
    return 0;
}

LONG MainWindow::Scaled(LONG pixels) const { return OrvikScale(pixels, OrvikDpiOf(m_hWnd)); }

LRESULT MainWindow::OnDpi(WPARAM, LPARAM lParam) {
    m_list.DpiChanged();
    m_chart.LooksChanged();
    const RECT& place = *reinterpret_cast<const RECT*>(lParam);
    ::SetWindowPos(m_hWnd, nullptr, place.left, place.top, place.right - place.left, place.bottom - place.top,
                   SWP_NOZORDER | SWP_NOACTIVATE);
    Layout();
    return 0;
}

LRESULT MainWindow::OnColours(WPARAM, LPARAM) {
    globalData.UpdateSysColors();
    m_list.SendMessage(WM_SYSCOLORCHANGE);  // which goes to top-level windows only
    m_list.Update();
    m_chart.LooksChanged();
    ::InvalidateRect(m_hWnd, nullptr, FALSE);
    return 0;
}

LRESULT MainWindow::OnSettings(WPARAM, LPARAM) {
    m_list.DpiChanged();
    ::InvalidateRect(m_hWnd, nullptr, FALSE);
    return Default();
}

LRESULT MainWindow::OnPaintMessage(WPARAM, LPARAM) {
    CPaintDC dc(this);
    const COLORREF face = ::GetSysColor(COLOR_BTNFACE), shadow = ::GetSysColor(COLOR_BTNSHADOW);
    const CRect bar = BarRect(), status = StatusRect();
    dc.FillSolidRect(bar, m_barFocus && ::GetFocus() == m_hWnd ? ::GetSysColor(COLOR_HIGHLIGHT) : face);
    const int line = Scaled(1);
    dc.FillSolidRect(bar.left, bar.top, line, bar.Height(), shadow);
    dc.FillSolidRect(bar.right - line, bar.top, line, bar.Height(), shadow);
    dc.FillSolidRect(status, face);
    dc.FillSolidRect(status.left, status.top, status.Width(), line, shadow);
    const StatusLine::Parts parts = m_line.Paint(dc, m_hWnd, status);
    UINT_PTR id = kLineTips;
    for (const StatusLine::Part* const part : {&parts.hint, &parts.told, &parts.live})
        m_tips.Put(m_hWnd, id++, part->place, part->cut ? *part->text : std::string());
    return 0;
}

// What it draws itself; chart and list are windows of their own.
LRESULT MainWindow::OnDescribe(WPARAM, LPARAM lParam) {
    OrvikAccessible& said = OrvikDescribed(lParam);
    OrvikAccessible& bar = said.parts.emplace_back();
    bar.role = OrvikRole::Separator;
    bar.name = Say(Text::BarSaid);
    bar.place = BarRect();
    bar.part = 1;
    bar.Set(OrvikAccessible::kFocusable);
    bar.Set(OrvikAccessible::kFocused, m_barFocus && ::GetFocus() == m_hWnd);
    OrvikAccessible& status = said.parts.emplace_back();
    status.role = OrvikRole::StatusBar;
    status.name = m_line.Said();
    status.place = StatusRect();
    status.part = 2;
    return TRUE;
}

void MainWindow::ShowHint(const std::string& text) {
    if (text == m_line.hint || m_hWnd == nullptr) return;
    m_line.hint = text;
    const RECT status = StatusRect();
    ::InvalidateRect(m_hWnd, &status, FALSE);
}

void MainWindow::ShowTip(HWND pane, const RECT& place, const std::string& text, LPARAM pointer) {
    m_tips.Put(pane, kPaneTip, place, text);
    if (!text.empty()) m_tips.Relay(pane, WM_MOUSEMOVE, 0, pointer);
}

// Nobody tells when the pointer leaves a window that another one covers, or the screen's edge ends: it is looked for.
void MainWindow::ShowValuesAt(std::optional<PointedTime> pointed) {
    constexpr UINT kPause = 100;  // ms
    const std::string time = pointed ? PointedText(*m_document.GetSession(), m_document.Notes(), *pointed) : std::string();
    m_list.ShowValuesAt(pointed);
    m_chart.ShowValuesAt(pointed);
    if (time == m_line.pointed || m_hWnd == nullptr) return;
    if (time.empty() != m_line.pointed.empty()) {
        if (pointed) {
            ::SetTimer(m_hWnd, kPointerTimer, kPause, nullptr);
        } else {
            ::KillTimer(m_hWnd, kPointerTimer);
        }
    }
    m_line.pointed = time;
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
    CVertSplitBarTracker tracker({Scaled(kLeastChart), bar.top,
                                  std::max(client.right - Scaled(kBar) - Scaled(kLeastPane), Scaled(kLeastChart)), bar.bottom},
                                 bar);
    const HWND window = m_hWnd;
    m_dragging = true;
    const int result = tracker.TrackCursor(this, point);
    m_dragging = false;
    if (!::IsWindow(window)) return 0;
    RECT end = {};
    tracker.GetRect(&end);
    if (result == 2) SetPaneWidth(client.right - Scaled(kBar) - end.left);
    OnDragEnd();
    return 0;
}

LRESULT MainWindow::OnPointer(WPARAM, LPARAM lParam) {
    const RECT bar = BarRect();
    ForgetPointer();
    ShowHint(::PtInRect(&bar, CPoint(lParam)) ? Say(Text::HintBar) : std::string());
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
    if (IsOverChart(CPoint(lParam))) m_chart.SendMessage(WM_MOUSEWHEEL, wParam, lParam);
    return 0;
}

LRESULT MainWindow::OnWheelAcross(WPARAM wParam, LPARAM lParam) {
    if (IsOverChart(CPoint(lParam))) m_chart.SendMessage(WM_MOUSEHWHEEL, wParam, lParam);
    return 0;
}

bool MainWindow::IsOverChart(POINT screen) const {
    ::ScreenToClient(m_hWnd, &screen);
    return ::ChildWindowFromPoint(m_hWnd, screen) == m_chart.m_hWnd;
}

// --- Keys and commands ---

void MainWindow::NextPane(bool backwards) {
    const HWND focus = ::GetFocus();
    const int now = focus == m_chart.m_hWnd ? 0 : focus == m_list.m_hWnd ? 2 : 1;
    const int next = (now + (backwards ? 2 : 1)) % 3;
    m_barFocus = next == 1;
    ::SetFocus(next == 0 ? m_chart.m_hWnd : next == 2 ? m_list.m_hWnd : m_hWnd);
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
        SetPaneWidth(PaneWidth() + (key == VK_LEFT ? Scaled(kPaneStep) : -Scaled(kPaneStep)));
    } else {
        OnPaneKey(key);
    }
    return 0;
}

LRESULT MainWindow::OnSystemKey(WPARAM wParam, LPARAM) {
    if (wParam != VK_RETURN) return Default();
    Command(kCommandProperties);
    return 0;
}

LRESULT MainWindow::OnFocusGot(WPARAM, LPARAM) {
    if (::GetFocus() == m_hWnd && !m_barFocus && m_chart.m_hWnd != nullptr) ::SetFocus(m_chart.m_hWnd);
    if (::GetFocus() != m_hWnd) m_barFocus = false;
    const RECT bar = BarRect();
    ::InvalidateRect(m_hWnd, &bar, FALSE);
    return 0;
}

void MainWindow::OnMenuCommand(UINT command) { Command(command); }

LRESULT MainWindow::OnCloseWish(WPARAM, LPARAM) {
    if (m_asking) return 0;  // what is under way ends first
    m_chart.EndWriting(true);
    if (!EndDownload() || !MayLeave()) return 0;
    DropUnsaved();
    DestroyWindow();
    return 0;
}

LRESULT MainWindow::OnGone(WPARAM, LPARAM) {
    m_download.reset();
    if (m_manner == Manner::Interactive) ::PostQuitMessage(0);
    return 0;
}
