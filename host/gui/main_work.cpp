// What the window works on: files, pictures, downloads, and what can go wrong with them.
#include <algorithm>
#include <utility>

#include "afx/dc.h"
#include "afx/exception.h"
#include "host/chart/chart_file.h"
#include "host/gui/dialog_progress.h"
#include "host/gui/main_window.h"
#include "host/gui/unsaved_recording.h"
#include "host/session/csv_export.h"
#include "host/session/database_file.h"
#include "host/session/gap_list.h"
#include "host/session/recording_files.h"
#include "platform/dpi.h"
#include "platform/picture.h"

namespace {
// From these on the progress dialog stands there at once.
constexpr unsigned __int64 kLargeFile = 4 * 1024 * 1024;
constexpr double kLargePicture = 8e6;  // pixels
}  // namespace

bool MainWindow::Try(const std::function<void()>& work) {
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
        const Asking guard(m_asking), busy(m_working);
        work(progress);
    } catch (const WorkStopped&) {
        ShowStatus(Say(stopped, {ToUtf8(path)}));
        throw;
    }
}

bool MainWindow::Open(const std::string& path) {
    m_chart.EndWriting(true);
    if (!EndDownload()) return false;
    return Try([&] {
        WorkWith(Text::WorkOpen, Text::WorkReading, Text::OpenStopped, path, FileSize(path) >= kLargeFile,
                 [&](WorkProgress& progress) { m_document.Open(path, progress); });
        if (path != m_unsaved) DropUnsaved();
        Remember(m_document.Path());
        m_line.told = OpenedNote();
        DocumentChanged();
        SetFollowTimer();
    });
}

// A gap in the chart may be too narrow to be seen.
std::string MainWindow::OpenedNote() const {
    if (!m_document.Note().empty()) return m_document.Note();
    const auto& gaps = m_document.Notes().Gaps();
    const auto places = std::count_if(gaps.begin(), gaps.end(), HasMissing);
    return places == 0 ? std::string() : Say(Text::OpenedWithGaps, {std::to_string(places)});
}

void MainWindow::OpenUnsaved() {
    const std::vector<std::string> left = UnsavedRecordings();
    if (left.empty() || !Open(left.front())) return;
    m_unsaved = left.front();
    m_document.MarkUnsaved();
    m_inFile = m_document.State().tags;
    UpdateTitle();
    Tell(Say(Text::UnsavedFound, {std::to_string(m_document.GetSession()->Count())}));
}

bool MainWindow::SaveTo(const std::string& path) {
    m_chart.EndWriting(true);
    return Try([&] {
        if (path != m_document.Path() && !HasSessionName(path) && !EndsInRec(path))
            throw Failure{kWrongUse, Say(Text::NoSessionName, {ToUtf8(path)})};
        FollowReadings();
        SessionFile file;
        // The recording behind a download is needed no more once its readings are in a file of the user's.
        const bool settles = !IsDownloading() && !m_unsaved.empty();
        WorkWith(Text::WorkSave, Text::WorkWriting, Text::WorkStopped, path, m_document.SizeAs(path) >= kLargeFile,
                 [&](WorkProgress& progress) {
                     m_document.Save(path, progress);
                     if (settles) file = OpenSession(path);
                 });
        if (settles) {
            ReadFrom(std::move(file));
            DropUnsaved();
        }
        Remember(path);
        m_line.told = Say(Text::SavedTo, {ToUtf8(path)});
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
        FollowReadings();
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
        m_line.told = Say(Text::Imported, {ToUtf8(path)});
        DocumentChanged();
    });
}

bool MainWindow::Copy() {
    return Try([this] { CopyShown(); });
}

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
    m_line.told = house;
    if (m_hWnd != nullptr) ::InvalidateRect(m_hWnd, nullptr, FALSE);
}
