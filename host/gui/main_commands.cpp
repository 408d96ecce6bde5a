// What can be asked of the window, and what it asks its user before it does that.
#include <algorithm>
#include <string_view>

#include "afx/message_box.h"
#include "host/gui/about_dialog.h"
#include "host/gui/file_dialog.h"
#include "host/gui/listed_ports.h"
#include "host/gui/main_window.h"
#include "host/gui/page_dialog.h"
#include "host/gui/properties_dialog.h"
#include "host/gui/range_dialogs.h"
#include "host/gui/user_folder.h"
#include "host/gui/work_dialogs.h"
#include "host/session/database_file.h"
#include "host/session/gap_list.h"

namespace {
constexpr DWORD kLiveTimeout = 1000, kLiveInterval = 1000;

std::string KindsOf(Text sessions, const char* patterns) {
    return Say(sessions) + "|" + patterns + "|" + Say(Text::AllFiles) + "|*.*";
}
}  // namespace

// While something is asked, nothing else is.
template <class Question>
auto MainWindow::Ask(Question question) {
    const Asking guard(m_asking);
    return question();
}

bool MainWindow::CanCommand(UINT command) const {
    if (IsDragging() || m_asking) return false;
    const ViewHistory& history = const_cast<MainWindow*>(this)->m_document.History();
    switch (command) {
        case kCommandOpen:
        case kCommandDownload:
        case kCommandExit:
        case kCommandKeys:
        case kCommandAbout:
            return true;
        case kCommandSave:
        case kCommandSaveAs:
        case kCommandExport:
        case kCommandPicture:
        case kCommandPrint:
        case kCommandCopy:
        case kCommandMissing:
            return m_document.HasSession();
        case kCommandProperties:
            return m_document.HasSession() && !m_document.State().axes.empty();
        case kCommandStop:
            return IsDownloading();
        case kCommandUndo:
            return history.CanUndo();
        case kCommandRedo:
            return history.CanRedo();
        default:
            if (command >= kCommandPorts) return command - kCommandPorts < m_ports.size();
            if (command >= kCommandChannels) return m_document.HasSession();
            if (command >= kCommandRecent) return command - kCommandRecent < m_recentShown.size();
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
        case kCommandSaveAs:
            return AskAndSaveAs();
        case kCommandExport:
            AskAndExport();
            return true;
        case kCommandPicture:
            AskAndSavePicture();
            return true;
        case kCommandPrint:
            AskAndPrint();
            return true;
        case kCommandDownload:
            AskAndDownload();
            return true;
        case kCommandRange:
            AskRange();
            return true;
        case kCommandTimeRange:
            AskTimeRange();
            return true;
        case kCommandProperties:
            ShowProperties();
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
        case kCommandCopy:
            return Copy();
        case kCommandMissing:
            ShowMissing();
            return true;
        case kCommandKeys:
            Ask([&] { PageDialog(this, {}, Say(Text::KeysPage)).DoModal(); });
            return true;
        case kCommandAbout:
            Ask([&] { AboutDialog(this).DoModal(); });
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
        Do(Text::StepChannel, ValueList::Toggled(m_document.State(), *m_document.GetSession(), channel));
        return true;
    }
    if (command >= kCommandRecent) {
        OpenRecent(command - kCommandRecent);
        return true;
    }
    return m_chart.Command(command);
}

void MainWindow::AskAndOpen() {
    const bool running = IsDownloading();
    if (!running && !MayLeave()) return;
    const auto path = Ask([&] {
        return AskFileToOpen(m_hWnd, Say(Text::AskOpen), KindsOf(Text::SessionFiles, "*.odb;*.xml;*.rec"), FolderToAsk());
    });
    if (path && (!running || (EndDownload() && MayLeave()))) Open(*path);
}

// What is gone is taken off the list.
void MainWindow::OpenRecent(size_t place) {
    const std::string path = m_recentShown[place];
    if (!FileExists(path)) {
        m_recent.Remove(path);
        return Tell(Say(Text::RecentGone, {ToUtf8(path)}));
    }
    if (EndDownload() && MayLeave()) Open(path);
}

// A script leaves no trace in its user's list.
void MainWindow::Remember(const std::string& path) {
    if (m_manner == Manner::Interactive) m_recent.Add(path);
}

// For a file beside: that of the session without its extension, else the logger's, without what names of files cannot have.
std::string MainWindow::BareTitle() const {
    std::string title = m_document.Title();
    if (!m_document.Path().empty()) return title.substr(0, title.find_last_of('.'));
    std::replace_if(
        title.begin(), title.end(), [](char c) { return std::string_view("/\\:*?\"<>|").find(c) != std::string_view::npos; }, '-');
    return title.empty() ? "session" : title;
}

// Where the session is, else where people keep their documents: the folder in which the program runs may be nobody's.
std::string MainWindow::FolderToAsk() const {
    const std::string& now = m_document.Path();
    const size_t end = now.find_last_of("/\\");
    if (end != std::string::npos) return now.substr(0, std::max<size_t>(end, 1));
    return now.empty() && m_manner == Manner::Interactive ? DocumentsFolder() : std::string();
}

std::string MainWindow::Beside(const std::string& name) const {
    const std::string folder = FolderToAsk();
    return folder.empty() ? name : folder + (folder.back() == '/' ? "" : "/") + name;
}

bool MainWindow::AskAndSave() { return m_document.Path().empty() ? AskAndSaveAs() : SaveTo(m_document.Path()); }

bool MainWindow::AskAndSaveAs() {
    const std::string& now = m_document.Path();
    const auto path = Ask([&] {
        return AskFileToSave(m_hWnd, Say(Text::AskSave), KindsOf(Text::SessionFiles, "*.odb;*.xml"), "odb",
                             now.empty() ? Beside(BareTitle() + ".odb") : now);
    });
    return path && SaveTo(*path);
}

// What is there is replaced only if the user wants that; the question for the file may have asked already.
bool MainWindow::MayReplace(const SavingDialog& dialog) {
    const std::string path = dialog.path.GetString();
    if (m_manner == Manner::Quiet || dialog.IsAgreed() || !FileExists(path)) return true;
    const std::string question = Say(Text::AskReplace, {ToUtf8(path)});
    // A key that was meant for something else must not cost a file.
    constexpr UINT kHow = MB_OKCANCEL | MB_DEFBUTTON2 | MB_ICONQUESTION;
    return Ask([&] { return ::MessageBoxA(m_hWnd, question.c_str(), "OrvikHost", kHow); }) == IDOK;
}

void MainWindow::AskAndExport() {
    ExportDialog dialog(this, Beside(BareTitle() + ".csv"));
    if (Ask([&] { return dialog.DoModal(); }) != IDOK || !MayReplace(dialog)) return;
    ExportTo(dialog.path.GetString(), dialog.ForSpreadsheets() ? SpreadsheetForm() : CsvForm{}, dialog.ShownOnly());
}

void MainWindow::AskAndSavePicture() {
    PictureDialog dialog(this, Beside(BareTitle() + ".png"), ChartSize());
    if (Ask([&] { return dialog.DoModal(); }) != IDOK) return;
    if (!MayReplace(dialog)) return;
    SavePicture(dialog.path.GetString(), {static_cast<LONG>(dialog.width), static_cast<LONG>(dialog.height)});
}

// Of an earlier run; what a script does depends on nothing that its user did.
LastDownload MainWindow::KeptDownload() const {
    return m_manner == Manner::Quiet || IsDownloading() ? LastDownload{} : LastDownload::Kept();
}

void MainWindow::AskAndDownload() {
    const std::vector<ListedPort> ports = ListPorts();
    DownloadDialog dialog(this, m_app, m_recentLoggers.All());
    dialog.description = m_loggerFile.c_str();
    dialog.port = ports.empty() ? "" : ports.front().name.c_str();
    dialog.interval = CVXTTimeSpan(kLiveInterval, TST_MILLISECONDS);
    dialog.timeout = kLiveTimeout;
    // Who reads the same logger once more must not read whatever stands first on the machine.
    if (m_lastPlan) {
        if (!IsDownloading()) dialog.port = m_lastPlan->port.c_str();
        dialog.interval = CVXTTimeSpan(m_lastPlan->interval, TST_MILLISECONDS);
        if (m_lastPlan->count < kForEver) dialog.count = static_cast<UINT>(m_lastPlan->count);
    } else if (const LastDownload kept = KeptDownload(); !kept.port.empty()) {
        dialog.description = kept.logger.c_str();
        dialog.port = kept.port.c_str();
        dialog.count = kept.count;
        dialog.interval = CVXTTimeSpan(kept.interval, TST_MILLISECONDS);
    }
    if (IsDownloading()) dialog.busyPort = m_download->Plan().port;
    if (Ask([&] { return dialog.DoModal(); }) != IDOK || !EndDownload() || !MayLeave()) return;
    m_loggerFile = dialog.description.GetString();
    if (m_manner == Manner::Interactive && !m_loggerFile.empty()) m_recentLoggers.Add(m_loggerFile);
    DownloadPlan plan;
    plan.port = dialog.port.GetString();
    plan.count = dialog.count;
    plan.interval = static_cast<DWORD>(dialog.interval.GetTotalMilliSeconds());
    plan.timeout = kLiveTimeout;
    if (m_manner == Manner::Interactive)
        LastDownload{m_loggerFile, plan.port, dialog.count, static_cast<unsigned>(plan.interval)}.Keep();
    Connect(m_loggerFile, plan);
}

void MainWindow::AskRange() {
    m_chart.Prepare();
    const auto place = m_chart.AxisPlace();
    if (!place) return;
    const ViewState::Axis& axis = m_document.State().axes[*place];
    AxisRangeDialog dialog(this, axis.unit.empty() ? Say(Text::NoUnit) : axis.unit, m_chart.ShownRange(*place), axis.picture);
    const ViewRange before = dialog.range;
    if (Ask([&] { return dialog.DoModal(); }) != IDOK) return;
    ViewState next = m_document.State();
    if (dialog.range != before) next.axes[*place].range = dialog.range;
    next.axes[*place].picture = dialog.picture;
    Do(Text::StepRange, next);
}

void MainWindow::AskTimeRange() {
    m_chart.Prepare();
    const auto at = [](__int64 microseconds) {
        CVXTTime time;
        time.SetBinaryTime(microseconds);
        return time;
    };
    const ViewRange shown = m_chart.ShownTimes();
    TimeRangeDialog dialog(this, at(m_chart.TimeAxis().TimeOf(shown.origin)), at(m_chart.TimeAxis().TimeOf(shown.extent)));
    const CVXTTime from = dialog.from, to = dialog.to;
    if (Ask([&] { return dialog.DoModal(); }) != IDOK) return;
    ViewRange range = shown;
    if (dialog.from != from) range.origin = m_chart.TimeAxis().SecondsOf(dialog.from.GetBinaryTime());
    if (dialog.to != to) range.extent = m_chart.TimeAxis().SecondsOf(dialog.to.GetBinaryTime());
    if (range == shown || !IsShowable(range)) return;
    ViewState next = m_document.State();
    next.time = range;
    Do(Text::StepTimeRange, next);
}

// Of the row that the keys are about, while the list has them; else of the axis that has the focus.
void MainWindow::ShowProperties() {
    m_chart.Prepare();
    const ViewState& state = m_document.State();
    std::optional<size_t> place = m_chart.AxisPlace(), channel;
    if (::GetFocus() == m_list.m_hWnd) channel = m_list.Channel();
    if (channel) {
        const std::string& unit = m_document.GetSession()->Channels()[*channel].unit;
        for (size_t i = 0; i < state.axes.size(); ++i) {
            if (state.axes[i].unit == unit) place = i;
        }
    }
    if (!place && state.axes.empty()) return;
    const size_t axis = place.value_or(0);
    const auto shown = [this, axis] {
        m_chart.Prepare();
        return m_chart.ShownRange(axis);
    };
    PropertiesDialog dialog(this, m_document, axis, channel,
                            {[this](Text name, const ViewState& next) { Do(name, next); }, shown});
    Ask([&] { return dialog.DoModal(); });
}

// Of a logger that fails for months no more than anybody reads; `show --gaps` has them all.
void MainWindow::ShowMissing() {
    constexpr size_t kMostLetters = 200'000;
    const Session& session = *m_document.GetSession();
    std::string page = GapList(m_document.Notes(), session, TimeRange());
    if (page.empty()) page = Say(Text::NothingMissing);
    if (page.size() > kMostLetters) {
        const size_t end = page.rfind('\n', page.size() - kMostLetters);
        page = Say(Text::MissingBefore) + "\n" + page.substr(end == std::string::npos ? 0 : end + 1);
    }
    Ask([&] { PageDialog(this, Say(Text::MissingTitle), page).DoModal(); });
}

bool MainWindow::MayLeave() {
    if (m_manner == Manner::Quiet || !m_document.IsModified()) return true;
    const std::string question = Say(m_unsaved.empty() ? Text::AskKeep : Text::AskKeepReadings, {ToUtf8(m_document.Title())});
    const int answer =
        Ask([&] { return ::MessageBoxA(m_hWnd, question.c_str(), "OrvikHost", MB_YESNOCANCEL | MB_ICONQUESTION); });
    return answer == IDNO || (answer == IDYES && AskAndSave());
}

void MainWindow::ConnectTo(size_t port) {
    const std::string name = m_ports[port];
    if (IsDownloading() && SamePort(name, m_download->Plan().port)) return Tell(Say(Text::PortDownloads, {ToUtf8(name)}));
    if (!EndDownload() || !MayLeave()) return;
    DownloadPlan plan;
    plan.port = name;
    plan.count = kForEver;
    plan.interval = kLiveInterval;
    plan.timeout = kLiveTimeout;
    Connect(m_loggerFile, plan);
}
