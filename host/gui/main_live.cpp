// What comes while the window is in use: readings of its download, or in a recording that somebody else writes.
#include <utility>

#include "host/gui/main_window.h"
#include "host/gui/unsaved_recording.h"
#include "host/logger/logger_file.h"
#include "host/session/recording_files.h"

namespace {
constexpr UINT kFollowEvery = 100;   // ms
constexpr DWORD kAskAgain = 10'000;  // ms without growth after which a recording's writer is looked for
}  // namespace

bool MainWindow::Connect(const std::string& loggerFile, const DownloadPlan& plan) {
    return Try([&] {
        CPropertyDB description;
        LoadLoggerDescription(loggerFile, description);
        Begin(MakeLogger(m_app, description), description, plan);
    });
}

bool MainWindow::Connect(std::unique_ptr<ILogger> logger, CPropertyDB& description, const DownloadPlan& plan) {
    return Try([&] { Begin(std::move(logger), description, plan); });
}

void MainWindow::Begin(std::unique_ptr<ILogger> logger, CPropertyDB& description, const DownloadPlan& plan) {
    if (IsDownloading()) throw Failure{kWrongUse, Say(Text::DownloadRuns)};
    const std::string recording = m_manner == Manner::Interactive ? NewUnsavedRecording() : NewPassingRecording();
    if (recording.empty()) throw Failure{kFileFailed, Say(Text::NoRecordingHere)};
    auto download = std::make_unique<LiveDownload>(std::move(logger), description, plan, recording);
    m_document.Begin(description, plan.port);
    DropUnsaved();
    m_unsaved = recording;
    m_download = std::move(download);
    m_lastPlan = plan;
    ShowLive(Say(Text::Connecting, {ToUtf8(plan.port)}), StatusLine::Mark::Waiting);
    m_line.told.clear();
    DocumentChanged();
    SetFollowTimer();
}

void MainWindow::SetFollowTimer() {
    if (m_hWnd == nullptr) return;
    const bool grows = m_document.HasSession() && m_document.Grows();
    m_quietSince = ::GetTickCount();
    if (IsDownloading() || grows) {
        ::SetTimer(m_hWnd, kFollowTimer, kFollowEvery, nullptr);
    } else {
        ::KillTimer(m_hWnd, kFollowTimer);
        m_line.live.clear();
    }
    if (grows && !IsDownloading()) ShowFollowed();
    ::InvalidateRect(m_hWnd, nullptr, FALSE);
}

LRESULT MainWindow::OnTimer(WPARAM wParam, LPARAM) {
    POINT pointer = {};
    if (wParam == kPointerTimer && !IsDragging() && ::GetCursorPos(&pointer)) {
        if (::WindowFromPoint(pointer) == m_chart.m_hWnd) {
            m_chart.PointAgain(pointer);
        } else {
            ForgetPointer();
        }
    }
    if (wParam == kFollowTimer) FollowReadings();
    return 0;
}

// The chart's data are not touched while a tracker works on them, or a file is made of them.
void MainWindow::FollowReadings() {
    if (IsDragging() || m_working || !m_document.HasSession()) return;
    if (IsDownloading()) return TakeNews();
    if (!m_document.Grows()) return;
    const DWORD now = ::GetTickCount();
    if (m_document.Update()) {
        ReadingsCame();
        m_quietSince = now;
        ShowFollowed();
    } else if (now - m_quietSince >= kAskAgain) {
        m_quietSince = now;
        if (!IsRecordedInto(m_document.GetSession()->Recorded()->Path())) m_document.GrowsNoMore();
    }
    if (!m_document.Grows()) SetFollowTimer();
}

void MainWindow::TakeNews() {
    const LiveDownload::News news = m_download->Take();
    const DownloadPlan& plan = m_download->Plan();
    if (news.begun && m_document.GetSession()->Recorded() == nullptr) {
        try {
            ReadFrom(OpenSession(m_unsaved));
        } catch (const Failure& failure) {
            ShowStatus(failure.sentence);  // it is tried again with the next news
        }
    }
    if (m_document.Update()) ReadingsCame();
    KeepComments();
    for (const std::string& sentence : news.sentences) ShowStatus(sentence);
    if (news.over) return DownloadOver(news);
    if (news.begun) ShowNews(news, plan);
}

// Before the first answer nothing says yet that anybody is there, and a line that was silent has to prove itself again.
void MainWindow::ShowNews(const LiveDownload::News& news, const DownloadPlan& plan) {
    const std::string made = std::to_string(news.made), port = ToUtf8(plan.port);
    std::string live;
    if (news.made == 0) {
        live = Say(news.lost ? Text::LiveNothingYet : Text::LiveFirst, {port});
    } else {
        live = plan.count < kForEver ? Say(Text::LiveProgressOf, {made, std::to_string(plan.count), port})
                                     : Say(Text::LiveProgress, {made, port});
    }
    if (news.missing > 0) live += Say(Text::ProgressMissing, {std::to_string(news.missing)});
    if (news.waiting > 0) live += Say(Text::ProgressWaiting, {std::to_string(news.waiting)});
    if (news.lost && news.made > 0) live += Say(Text::LiveSilent);
    ShowLive(live, news.lost ? StatusLine::Mark::Lost : news.made == 0 ? StatusLine::Mark::Waiting : StatusLine::Mark::Coming);
}

void MainWindow::ShowFollowed() {
    const size_t count = m_document.GetSession()->Count();
    const bool lost = m_document.GetSession()->Recorded()->EndsInGap();
    std::string live = Say(Text::LiveFollows, {std::to_string(count)});
    if (lost) live += Say(Text::LiveSilent);
    ShowLive(live, lost ? StatusLine::Mark::Lost : count == 0 ? StatusLine::Mark::Waiting : StatusLine::Mark::Coming);
}

void MainWindow::ShowLive(const std::string& house, StatusLine::Mark mark) {
    if (house == m_line.live && mark == m_line.mark) return;
    m_line.live = house;
    m_line.mark = mark;
    const RECT status = StatusRect();
    ::InvalidateRect(m_hWnd, &status, FALSE);
}

void MainWindow::ReadingsCame() {
    m_chart.BeforeReadings();
    m_chart.AfterReadings();
    m_list.Update();
    UpdateTitle();
    const RECT status = StatusRect();
    ::InvalidateRect(m_hWnd, &status, FALSE);
}

void MainWindow::DownloadOver(const LiveDownload::News& news) {
    m_download.reset();
    m_document.GrowsNoMore();
    SetFollowTimer();
    UpdateMenu();
    const size_t count = m_document.GetSession()->Count();
    const std::string& why = news.end;
    std::string ended = Say(Text::LiveEnded, {std::to_string(news.made)});
    // A reason says itself how many there are.
    if (why.empty() && news.missing > 0) ended += Say(Text::ProgressMissing, {std::to_string(news.missing)});
    // Whoever is at work meanwhile is not interrupted; whoever waits for a first reading is told that none comes.
    if (why.empty() || count > 0 || m_asking) return ShowStatus(why.empty() ? ended : ended + ". " + why);
    ShowStatus(ended);
    Tell(why);
}

bool MainWindow::EndDownload() {
    if (!IsDownloading()) return true;
    const Asking guard(m_asking);
    if (m_manner == Manner::Interactive && m_document.GetSession()->Count() > 0) {
        const std::string question = Say(Text::AskEndDownload, {ToUtf8(m_download->Plan().port)});
        if (::MessageBoxA(m_hWnd, question.c_str(), "OrvikHost", MB_YESNO | MB_ICONQUESTION) != IDYES) return false;
    }
    if (IsDownloading()) m_download->Stop();
    while (IsDownloading() && !m_download->IsOver()) {
        constexpr DWORD kSlice = 20;  // ms
        MsgWaitForMultipleObjects(0, nullptr, FALSE, kSlice, QS_ALLINPUT);
        MSG message;
        while (::PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
            if (message.message == WM_QUIT) return ::PostQuitMessage(static_cast<int>(message.wParam)), true;
            ::TranslateMessage(&message);
            ::DispatchMessageA(&message);
        }
    }
    FollowReadings();
    return true;
}

// Comments of readings that are in no file of the user's yet outlive the program as the readings do.
void MainWindow::KeepComments() {
    const Session* const session = m_document.GetSession();
    if (m_unsaved.empty() || session == nullptr || session->Recorded() == nullptr || session->Recorded()->Path() != m_unsaved)
        return;
    if (m_document.State().tags == m_inFile) return;
    m_inFile = m_document.State().tags;
    std::unique_ptr<CPropertyDB> facts = m_document.Facts();
    if (IsDownloading()) return m_download->Note(std::move(facts));
    try {
        SaveIntoRecording(m_unsaved, *facts);
    } catch (const Failure& failure) {
        ShowStatus(failure.sentence);
    }
}

void MainWindow::ReadFrom(SessionFile file) {
    m_chart.BeforeReadings();
    m_document.ReadFrom(std::move(file));
    m_chart.AfterReadings();
    m_list.Update();
}

// The recording behind a download has done its work: its readings are saved, or their user does not want them.
void MainWindow::DropUnsaved() {
    // Two windows may have come by the same one.
    if (!m_unsaved.empty() && !IsRecordedInto(m_unsaved)) ::DeleteFileA(m_unsaved.c_str());
    m_unsaved.clear();
    m_inFile.clear();
}
