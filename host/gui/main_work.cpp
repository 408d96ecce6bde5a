// What the window works on: files, pictures, downloads, and what can go wrong with them.
#include <algorithm>
#include <utility>

#include "afx/dc.h"
#include "afx/exception.h"
#include "host/chart/chart_file.h"
#include "host/gui/dialog_progress.h"
#include "host/gui/main_window.h"
#include "host/gui/unsaved_recording.h"
#include "host/logger/logger_file.h"
#include "host/session/csv_export.h"
#include "host/session/database_file.h"
#include "host/session/recording_files.h"
#include "platform/dpi.h"
#include "platform/picture.h"

namespace {
// From these on the progress dialog stands there at once.
constexpr unsigned __int64 kLargeFile = 4 * 1024 * 1024;
constexpr double kLargePicture = 8e6;  // pixels
constexpr UINT kProgressPause = 100;   // ms
}  // namespace

namespace {
CVXTTime TimeAt(__int64 microseconds) {
    CVXTTime time;
    time.SetBinaryTime(microseconds);
    return time;
}
}  // namespace

template <class Work>
bool MainWindow::Try(Work work) {
    try {
        work();
        return true;
    } catch (const WorkStopped&) {
        return false;  // as the user wished
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
    if (m_manner == Manner::Interactive && m_hWnd != nullptr) {
        ::MessageBoxA(m_hWnd, sentence.c_str(), "OrvikHost", MB_OK | MB_ICONEXCLAMATION);
    } else {
        ShowStatus(sentence);
    }
}

// Work under a progress dialog, which handles messages: the window can do nothing else meanwhile.
template <class Work>
void MainWindow::WorkWith(Text caption, Text message, Text stopped, const std::string& path, bool large, Work work) {
    DialogProgress progress(*this, Say(caption), Say(message, {ToUtf8(path)}), large);
    try {
        const Asking guard(m_asking);
        work(progress);
    } catch (const WorkStopped&) {
        ShowStatus(Say(stopped, {ToUtf8(path)}));
        throw;
    }
}

bool MainWindow::Open(const std::string& path) {
    m_chart.EndWriting(true);
    return Try([&] {
        WorkWith(Text::WorkOpen, Text::WorkReading, Text::OpenStopped, path, FileSize(path) >= kLargeFile,
                 [&](WorkProgress& progress) { m_document.Open(path, progress); });
        if (path != m_unsaved) DropUnsaved();
        Remember(m_document.Path());
        if (!m_document.Note().empty()) m_status = m_document.Note();
        DocumentChanged();
    });
}

void MainWindow::OpenUnsaved() {
    const std::vector<std::string> left = UnsavedRecordings();
    if (left.empty() || !Open(left.front())) return;
    m_unsaved = left.front();
    m_document.MarkUnsaved();
    UpdateTitle();
    Tell(Say(Text::UnsavedFound, {std::to_string(m_document.GetSession()->Count())}));
}

bool MainWindow::SaveTo(const std::string& path) {
    m_chart.EndWriting(true);
    return Try([&] {
        TakeReadings();
        WorkWith(Text::WorkSave, Text::WorkWriting, Text::WorkStopped, path, m_document.SizeAs(path) >= kLargeFile,
                 [&](WorkProgress& progress) { m_document.Save(path, progress); });
        if (!IsDownloading()) DropUnsaved();
        Remember(path);
        m_status = Say(Text::SavedTo, {ToUtf8(path)});
        StateChanged();
    });
}

bool MainWindow::SavePicture(const std::string& path, SIZE size) {
    m_chart.EndWriting(true);
    return Try([&] {
        RequirePictureName(path);
        if (size.cx <= 0 || size.cy <= 0) size = ChartSize();
        RequirePictureSize(path, size);
        WorkWith(Text::WorkPicture, Text::WorkDrawing, Text::WorkStopped, path,
                 static_cast<double>(size.cx) * size.cy >= kLargePicture,
                 [&](WorkProgress& progress) { WritePicture(path, size, progress); });
        ShowStatus(Say(Text::SavedTo, {ToUtf8(path)}));
    });
}

bool MainWindow::ExportTo(const std::string& path, const CsvForm& form, bool shownOnly) {
    m_chart.EndWriting(true);
    return Try([&] {
        if (IsRecording(path)) throw Failure{kFileFailed, Say(Text::RecordingNotReplaced, {ToUtf8(path)})};
        RequireWritable(path);
        TakeReadings();
        const TimeRange range = shownOnly ? TimesShown() : TimeRange();
        const Session& session = *m_document.GetSession();
        constexpr unsigned __int64 kText = 18;  // bytes of a number
        const bool large = session.Count() * (session.Channels().size() + 1) * kText >= kLargeFile;
        bool whole = true;
        WorkWith(Text::WorkSave, Text::WorkWriting, Text::WorkStopped, path, large,
                 [&](WorkProgress& progress) { whole = StoreCsv(path, session, form, range, &progress); });
        ShowStatus(Say(whole ? Text::SavedTo : Text::SavedWithDamage, {ToUtf8(path)}));
    });
}

bool MainWindow::Import(const std::string& path) {
    return Try([&] {
        m_document.Import(path);
        DropUnsaved();
        m_status = Say(Text::Imported, {ToUtf8(path)});
        DocumentChanged();
    });
}

bool MainWindow::Copy() { return Try([this] { CopyShown(); }); }

SIZE MainWindow::ChartSize() const {
    CRect client;
    ::GetClientRect(m_chart.m_hWnd, &client);
    const UINT dpi = OrvikDpiOf(m_hWnd);  // pictures have 96, wherever they are made
    return client.IsRectEmpty() ? SIZE{1600, 900} : SIZE{OrvikUnscale(client.Width(), dpi), OrvikUnscale(client.Height(), dpi)};
}

void MainWindow::WritePicture(const std::string& path, SIZE size, WorkProgress& progress) {
    constexpr int kBegin = 0, kDrawn = 1, kWritten = 2;
    const auto go = [&](int done) {
        if (!progress.At(static_cast<unsigned>(done), kWritten)) throw WorkStopped{};
    };
    go(kBegin);
    const HDC picture = ::OrvikBeginPicture(path.c_str(), size.cx, size.cy);
    if (picture == nullptr) throw Failure{kFileFailed, Say(Text::FileNotWritten, {ToUtf8(path), Reason(GetLastError())})};
    CDC dc;
    dc.Attach(picture);
    dc.m_bPrinting = ::OrvikIsPrinting(picture);
    m_chart.DrawOn(dc, CRect(0, 0, size.cx, size.cy));
    dc.Detach();
    if (!progress.At(kDrawn, kWritten)) {
        ::OrvikEndPicture(picture, FALSE);
        throw WorkStopped{};
    }
    if (!::OrvikEndPicture(picture, TRUE))
        throw Failure{kFileFailed, Say(Text::FileNotWritten, {ToUtf8(path), Reason(GetLastError())})};
    progress.At(kWritten, kWritten);
}

void MainWindow::ShowStatus(const std::string& house) {
    m_status = house;
    if (m_hWnd != nullptr) ::InvalidateRect(m_hWnd, nullptr, FALSE);
}

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
    m_readings.clear();
    m_document.Begin(description, plan.port);
    DropUnsaved();
    if (m_manner == Manner::Interactive) m_unsaved = NewUnsavedRecording();
    m_download.reset(new LiveDownload(std::move(logger), description, plan, m_unsaved, *this));  // a listener in private
    m_download->Go();
    m_status = Say(Text::Connecting, {ToUtf8(plan.port)});
    DocumentChanged();
    if (plan.count < kForEver) ShowDownload(plan);
    OrvikShedule();
}

void MainWindow::OnReading(__int64 time, const std::vector<double>& values) {
    m_readings.push_back({time, values});
    const std::string made = std::to_string(m_download->Made() + 1);
    m_status = Say(Text::LiveProgress, {made, ToUtf8(m_download->Plan().port)});
    if (m_progress != nullptr) {
        m_progress->SetPos(static_cast<LONG>(m_download->Made() + 1));
        m_progress->SetMessage2(Say(Text::WorkCount, {made, std::to_string(m_download->Plan().count)}).c_str());
    }
    if (!IsDragging()) TakeReadings();
}

void MainWindow::OnDownloadState(const std::string& sentence) { ShowStatus(sentence); }

// The recording behind a download has done its work: its readings are saved, or their user does not want them.
void MainWindow::DropUnsaved() {
    if (!m_unsaved.empty()) ::DeleteFileA(m_unsaved.c_str());
    m_unsaved.clear();
}

// A download of a known length is shown over the window, which draws the readings as they come; cancelling keeps them.
void MainWindow::ShowDownload(const DownloadPlan& plan) {
    if (m_hWnd == nullptr || !::IsWindowVisible(m_hWnd)) return;
    CProgressDlgParams params;
    params.m_strCaption = Say(Text::WorkDownload).c_str();
    params.m_strMessage = Say(Text::WorkLogger, {ToUtf8(plan.port)}).c_str();
    params.m_strMessage2 = Say(Text::WorkCount, {"0", std::to_string(plan.count)}).c_str();
    params.m_nRangeMax = static_cast<LONG>(plan.count);
    m_progress = std::make_unique<CProgressDialog>(this);
    if (!m_progress->Create(params, this)) return m_progress.reset();
    ::SetTimer(m_hWnd, kProgressTimer, kProgressPause, nullptr);
}

LRESULT MainWindow::OnTimer(WPARAM wParam, LPARAM) {
    POINT pointer = {};
    if (wParam == kPointerTimer && ::GetCursorPos(&pointer) && ::WindowFromPoint(pointer) != m_chart.m_hWnd && !IsDragging())
        ForgetPointer();
    if (wParam == kProgressTimer && m_progress != nullptr && m_progress->IsCancelled() && IsDownloading()) m_download->Stop();
    return 0;
}

// The chart's data are not touched while a tracker works on it.
void MainWindow::TakeReadings() {
    if (m_readings.empty() || !m_document.HasSession()) return;
    m_chart.BeforeReadings();
    for (const Reading& reading : m_readings) {
        CDoubleArray values;
        for (const double value : reading.values) values.Add(value);
        m_document.GetSession()->Add(TimeAt(reading.time), values);
    }
    m_readings.clear();
    m_chart.AfterReadings();
    m_list.Update();
    UpdateTitle();
    if (m_hWnd != nullptr) ::InvalidateRect(m_hWnd, nullptr, FALSE);
}

void MainWindow::OnDownloadEnd(const std::string& sentence) {
    if (m_progress != nullptr) {
        if (m_hWnd != nullptr) ::KillTimer(m_hWnd, kProgressTimer);
        m_progress->DestroyWindow();
        m_progress.reset();
    }
    if (!IsDragging()) TakeReadings();
    const size_t count = m_document.GetSession()->Count() + m_readings.size();
    m_status = Say(Text::LiveEnded, {std::to_string(count)});
    UpdateMenu();
    if (m_hWnd != nullptr) ::InvalidateRect(m_hWnd, nullptr, FALSE);
    if (m_closing && m_hWnd != nullptr) {
        ::PostMessageA(m_hWnd, WM_CLOSE, 0, 0);
    } else if (!sentence.empty()) {
        Tell(sentence);
    }
}

void MainWindow::OnDragEnd() { TakeReadings(); }
