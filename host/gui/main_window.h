// The host's window: a chart, a split bar, a list of values, a menu and a line that says what can be done. User-interface thread.
// The object outlives its window. What fails is told in a box, or in quiet mode, in which nobody is there to answer, kept for the
// caller.
#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "host/app/host_app.h"
#include "host/gui/chart_window.h"
#include "host/gui/last_download.h"
#include "host/gui/live_download.h"
#include "host/gui/recent_files.h"
#include "host/gui/status_line.h"
#include "host/gui/tool_tips.h"
#include "host/gui/value_list.h"
#include "host/session/reading_source.h"
#include "host/session/reading_writer.h"

class SavingDialog;

class MainWindow : public CWnd, private PaneOwner {
public:
    enum class Manner {
        Interactive,  // for a user: asks, tells, ends the program's message loop with the window
        Quiet         // for a script
    };

    MainWindow(CHostApp& app, Manner manner);
    ~MainWindow() override;

    // Sizes are those of the client area; at first in pixels at 96 dots an inch, then in the window's own. A Failure if the
    // system makes no window.
    void CreateWindowOf(SIZE client, int show);
    void SetClientSize(SIZE client);

    // Each is told to the user, or thrown on as a Failure in quiet mode; false then, or when the user gives up.
    bool Open(const std::string& path);
    bool Import(const std::string& path);  // readings as text; they are not saved as a session yet
    bool SaveTo(const std::string& path);
    // An empty size is the chart's own.
    bool SavePicture(const std::string& path, SIZE size = {});
    // The readings as text, all of them or those in the range of times that the chart shows.
    bool ExportTo(const std::string& path, const CsvForm& form, bool shownOnly);
    // The chart and what it shows, or the row of the list that has the keys, for other programs.
    bool Copy();
    bool Connect(const std::string& loggerFile, const DownloadPlan& plan);
    // What a window that was killed had downloaded, as if it had just been; nothing else is opened if there is none.
    void OpenUnsaved();
    // With a logger that is there, of this description. It goes on beside all other work; the line at the bottom says how far.
    bool Connect(std::unique_ptr<ILogger> logger, CPropertyDB& description, const DownloadPlan& plan);
    bool Command(UINT command);

    ViewDocument& Document() { return m_document; }
    ChartWindow& Chart() { return m_chart; }
    ValueList& List() { return m_list; }
    bool IsDownloading() const { return m_download != nullptr; }
    // A dialog stands over the window.
    bool IsAsking() const { return m_asking; }
    bool IsDragging() const { return m_chart.IsDragging() || m_list.IsDragging() || m_dragging; }
    RECT BarRect() const;
    RECT StatusRect() const;
    void SetHint(const std::string& text) { ShowHint(text); }
    const StatusLine& Line() const { return m_line; }
    // Of what is cut short: 1 to 3 are hint, sentence and readings of that line, in a pane 1 is what the pointer is on.
    const ToolTips& Tips() const { return m_tips; }
    // As if the pointer were elsewhere.
    void ForgetPointer() { ShowValuesAt(std::nullopt); }
    // The text of a menu's item, and whether it can be chosen; for those who look at the menu.
    std::string MenuText(UINT command) const;
    bool CanCommand(UINT command) const;

protected:
    LRESULT OnPaintMessage(WPARAM, LPARAM);
    LRESULT OnDescribe(WPARAM, LPARAM);
    LRESULT OnErase(WPARAM, LPARAM) { return 1; }
    LRESULT OnSized(WPARAM, LPARAM);
    LRESULT OnColours(WPARAM wParam, LPARAM lParam);
    LRESULT OnSettings(WPARAM wParam, LPARAM lParam);
    LRESULT OnDpi(WPARAM, LPARAM);
    LRESULT OnPress(WPARAM, LPARAM);
    LRESULT OnPointer(WPARAM, LPARAM);
    LRESULT OnCursor(WPARAM, LPARAM);
    LRESULT OnKey(WPARAM, LPARAM);
    LRESULT OnSystemKey(WPARAM, LPARAM);
    LRESULT OnTimer(WPARAM, LPARAM);
    LRESULT OnFocusGot(WPARAM, LPARAM);
    LRESULT OnWheel(WPARAM, LPARAM);
    LRESULT OnWheelAcross(WPARAM, LPARAM);
    LRESULT OnDropped(WPARAM, LPARAM);
    void OnMenuCommand(UINT command);
    LRESULT OnMenuOpens(WPARAM, LPARAM);
    LRESULT OnCloseWish(WPARAM, LPARAM);
    LRESULT OnGone(WPARAM, LPARAM);
    DECLARE_MESSAGE_MAP()

private:
    // PaneOwner
    void Do(Text name, const ViewState& next) override;
    void OnPaneCommand(UINT command) override { Command(command); }
    void OnPaneKey(WORD key) override;
    void ShowHint(const std::string& text) override;
    void ShowTip(HWND pane, const RECT& place, const std::string& text, LPARAM pointer) override;
    void ShowValuesAt(std::optional<PointedTime> pointed) override;
    void ShowContextMenu(POINT screen) override;
    void OnDragEnd() override { FollowReadings(); }

    // While it lives a dialog stands over the window, and nothing else can be asked of it.
    class Asking {
    public:
        explicit Asking(bool& asking) : m_asking(asking), m_before(std::exchange(asking, true)) {}
        ~Asking() { m_asking = m_before; }
        Asking(const Asking&) = delete;
        Asking& operator=(const Asking&) = delete;

    private:
        bool& m_asking;
        const bool m_before;
    };

    static constexpr UINT_PTR kFollowTimer = 1, kPointerTimer = 2, kPaneTip = 1, kLineTips = 1;

    bool Try(const std::function<void()>& work);
    template <class Work>
    void WorkWith(Text caption, Text message, Text stopped, const std::string& path, bool large, Work work);
    template <class Question>
    auto Ask(Question question);
    void Tell(const std::string& sentence);
    void DocumentChanged();
    void StateChanged();
    void Layout();
    LONG Scaled(LONG pixels) const;  // from 96 dots an inch to the window's
    LONG PaneWidth() const;
    void SetPaneWidth(LONG width);
    void NextPane(bool backwards);
    void MakeMenu();
    void SetIcons();
    bool IsOverChart(POINT screen) const;
    void UpdateMenu();
    std::string ItemText(const MenuCommand& command) const;
    void FillPorts(HMENU menu);
    void FillRecent(HMENU menu);
    void FillChannels(HMENU menu);
    void UpdateTitle();
    // What has come meanwhile: news of the download, and readings in a recording that grows.
    void FollowReadings();
    void TakeNews();
    void ReadingsCame();
    void DownloadOver(const LiveDownload::News& news);
    // Often while readings may come, else not at all.
    void SetFollowTimer();
    // Ends the download, if there is one and its user agrees to that; messages are handled until it has ended.
    bool EndDownload();
    void KeepComments();
    void ReadFrom(SessionFile file);
    void DropUnsaved();
    bool MayLeave();  // what is not saved is saved, or given up by the user
    bool AskAndSave();
    bool AskAndSaveAs();
    void AskAndExport();
    bool MayReplace(const SavingDialog& dialog);
    void AskAndOpen();
    void OpenRecent(size_t place);
    void Remember(const std::string& path);
    void AskAndSavePicture();
    void AskAndPrint();
    void TellOfPrinting(DWORD error, Text withoutPrinter);
    void AskAndDownload();
    LastDownload KeptDownload() const;
    std::string FolderToAsk() const;
    std::string Beside(const std::string& name) const;
    std::string BareTitle() const;  // without a file's extension
    void AskRange();
    void AskTimeRange();
    void ShowProperties();
    void ShowMissing();
    std::string OpenedNote() const;  // what the line says of a session that was just opened
    void ShowStatus(const std::string& house);
    // Of readings that come: a download's, or those that somebody else records.
    void ShowLive(const std::string& house, StatusLine::Mark mark);
    void ShowNews(const LiveDownload::News& news, const DownloadPlan& plan);
    void ShowFollowed();
    void Begin(std::unique_ptr<ILogger> logger, CPropertyDB& description, const DownloadPlan& plan);
    SIZE ChartSize() const;
    TimeRange TimesShown();
    void CopyShown();
    void CopyChart();
    void CopyRow(size_t channel);
    void WritePicture(const std::string& path, SIZE size, WorkProgress& progress);
    void ConnectTo(size_t port);

    CHostApp& m_app;
    const Manner m_manner;
    ViewDocument m_document;
    ChartWindow m_chart;
    ValueList m_list;
    std::unique_ptr<LiveDownload> m_download;
    std::string m_unsaved;                 // the recording behind the download; empty without
    std::vector<ViewState::Tag> m_inFile;  // the comments that are in it
    DWORD m_quietSince = 0;                // when a recording that somebody else writes last grew, in ticks
    std::vector<std::string> m_ports;
    std::optional<DownloadPlan> m_lastPlan;  // of the download that runs, or ran last
    const RecentFiles m_recent{"recent"}, m_recentLoggers{"recent-loggers"};
    std::vector<std::string> m_recentShown;  // by the menu
    std::string m_loggerFile;                // the description that was used last; empty: the embedded one
    HMENU m_recentMenu = nullptr, m_portMenu = nullptr, m_channelMenu = nullptr;
    StatusLine m_line;
    ToolTips m_tips;
    bool m_dragging = false;
    bool m_barFocus = false;
    bool m_asking = false;   // or working, under a progress dialog
    bool m_working = false;  // the document is being read or written
};
