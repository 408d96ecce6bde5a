// Files that are dropped on the window.
#include "host/gui/main_window.h"
#include "host/logger/logger_file.h"
#include "host/session/csv_file.h"
#include "host/words/console.h"

LRESULT MainWindow::OnDropped(WPARAM wParam, LPARAM) {
    const HDROP drop = reinterpret_cast<HDROP>(wParam);
    const UINT count = ::DragQueryFileA(drop, 0xFFFFFFFFu, nullptr, 0);
    std::string path(::DragQueryFileA(drop, 0, nullptr, 0), '\0');
    ::DragQueryFileA(drop, 0, path.data(), static_cast<UINT>(path.size() + 1));
    ::DragFinish(drop);
    if (path.empty() || m_asking || IsDragging()) return 0;
    m_chart.EndWriting(true);
    if (IsDownloading()) {
        Tell(Say(Text::DownloadRuns));
    } else if (IsLoggerDescription(path)) {
        m_loggerFile = path;
        AskAndDownload();
    } else if (MayLeave() && (EndsInCsv(path) ? Import(path) : Open(path)) && count > 1) {
        ShowStatus(Say(Text::DroppedMore, {ToUtf8(path), std::to_string(count - 1)}));
    }
    return 0;
}
