#include "host/station/station_recorder.h"

#include <algorithm>
#include <cstdlib>

#include "comm/task.h"
#include "host/app/stop_request.h"
#include "host/logger/logger_file.h"
#include "host/session/database_file.h"
#include "host/station/station_files.h"
#include "host/words/texts.h"
#include "platform/service.h"

const UINT StationRecorder::s_news = ::RegisterWindowMessageA("OrvikStationNews");

BEGIN_MESSAGE_MAP(StationRecorder, CWnd)
ON_REGISTERED_MESSAGE(s_news, OnNews)
END_MESSAGE_MAP()

StationRecorder::StationRecorder(CHostApp& app, Station station, std::vector<std::shared_ptr<const SinkSettings>> sinks, bool trace,
                                 bool hex)
    : m_app(app), m_station(std::move(station)), m_trace(trace), m_hex(hex), m_moreSinks(std::move(sinks)),
      m_watchdog(OrvikServiceWatchdog()) {
    AddSinks();
    CreateEx(0, AfxRegisterWndClass(0), "OrvikStation", WS_POPUP, 0, 0, 0, 0, HWND_MESSAGE, nullptr);
    m_status.name = m_station.name;
    m_status.started = m_clock.Calendar();
}

StationRecorder::~StationRecorder() {
    for (auto& [number, running] : m_running) End(running);
    m_ports.clear();  // each waits for its loggers
    m_running.clear();
    DestroyWindow();
}

// What stands where the recordings are to be, before anything is begun.
void StationRecorder::CheckFiles(const Station& station) const {
    StationMistakes mistakes;
    mistakes.sentences = FindFileMistakes(station, [&](const std::string& path) {
        return std::any_of(m_running.begin(), m_running.end(),
                           [&](const auto& entry) { return entry.second.run->Plan().record.path == path; });
    });
    if (!mistakes.sentences.empty()) throw mistakes;
}

StationRecorder::Result StationRecorder::Run() {
    const StopRequest stop;
    OrvikCatchReload();
    CheckFiles(m_station);
    DeleteFileA(ReloadWishOf(m_station.status).c_str());  // of an earlier life
    m_waiting = m_station.loggers;
    StartSinks();
    StartWaiting();
    m_progress.Clear();
    Print(Say(Text::StationRuns, {ToUtf8(m_station.name), std::to_string(m_station.loggers.size())}));
    WriteStatus(false);
    OrvikTellService("READY=1");
    while (!m_running.empty() || !m_waiting.empty()) {
        constexpr DWORD kSlice = 100;  // so that a wish is soon seen
        MsgWaitForMultipleObjects(0, nullptr, FALSE, kSlice, QS_ALLINPUT);
        MSG message;
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
        OrvikShedule();
        if (StopRequest::Asked() && m_stopping == 0) StopAll();
        if (OrvikReloadAsked() && m_stopping == 0) Reload();
        if (std::exchange(m_changed, false)) StartWaiting();
        const __int64 now = m_clock.Steady();
        if (now - m_second >= kSecond) EverySecond(now);
    }
    return Finish();
}

void StationRecorder::AddSinks() {
    m_station.sinks.insert(m_station.sinks.end(), m_moreSinks.begin(), m_moreSinks.end());
}

// Those that are described as before go on.
void StationRecorder::StartSinks() {
    std::map<std::string, Sending> before = std::exchange(m_sinks, {});
    for (const auto& settings : m_station.sinks) {
        std::vector<RecordingQueue::Plan> queues = m_station.QueuesFor(*settings, m_clock.Calendar());
        const auto same = before.find(settings->key);
        if (same != before.end() && same->second.settings->identity == settings->identity) {
            same->second.sender->SetLoggers(std::move(queues));
            m_sinks[settings->key] = std::move(same->second);
            continue;
        }
        if (same != before.end()) before.erase(same);  // lets go of the places before another one takes them
        try {
            SinkSender::Plan plan{settings->key, settings->family, m_station.PlacesFile(*settings), std::move(queues)};
            m_sinks[settings->key] = {settings, std::make_unique<SinkSender>(std::move(plan), MakeSink(m_app, *settings)), {}};
        } catch (const Failure& failure) {
            m_progress.Clear();
            PrintError(Say(Text::SinkMistake, {ToUtf8(settings->key), failure.sentence}));
        }
    }
}

void StationRecorder::HearSinks() {
    const bool newFiles = std::exchange(m_newFiles, false);
    for (auto& [key, sending] : m_sinks) {
        if (newFiles) sending.sender->LookForFiles();
        sending.report = sending.sender->Report();
        for (const std::string& sentence : std::exchange(sending.report.sentences, {})) {
            m_progress.Clear();
            PrintError(sentence);
        }
    }
}

// All loggers have ended: what is still on its way gets a few seconds; the rest goes with the next start.
void StationRecorder::FinishSinks() {
    constexpr DWORD kMost = 5000;  // ms
    m_status.ended = true;
    const auto told = std::make_shared<const CSinkStatus>(m_status.ForSinks());
    for (auto& [key, sending] : m_sinks) sending.sender->Tell(told);
    std::map<std::string, bool> all;
    for (auto& [key, sending] : m_sinks) all[key] = sending.sender->Finish(kMost);
    HearSinks();
    for (const auto& [key, sending] : m_sinks) {
        if (sending.report.sent > 0) m_result.lines.push_back(Say(Text::SinkSummary, {ToUtf8(key), std::to_string(sending.report.sent)}));
        if (!all[key]) m_result.lines.push_back(Say(Text::SinkLeft, {ToUtf8(key)}));
    }
}

void StationRecorder::StartWaiting() {
    std::vector<std::shared_ptr<const StationLogger>> left;
    for (const auto& plan : std::exchange(m_waiting, {})) {
        if (MayStart(*plan)) {
            Start(plan);
        } else {
            left.push_back(plan);
        }
    }
    m_waiting = std::move(left);
    DropIdlePorts();
}

// One that is being ended may still hold the file, or have the same name.
bool StationRecorder::MayStart(const StationLogger& plan) const {
    return std::none_of(m_running.begin(), m_running.end(), [&](const auto& entry) {
        const StationLogger& other = entry.second.run->Plan();
        return other.key == plan.key || other.record.path == plan.record.path ||
               (!plan.plan.csvFile.empty() && other.plan.csvFile == plan.plan.csvFile);
    });
}

void StationRecorder::Start(const std::shared_ptr<const StationLogger>& plan) {
    try {
        CPropertyDB description = plan->description;
        std::unique_ptr<ILogger> logger = MakeLogger(m_app, description);
        if (m_trace) {
            logger->Port().m_bTraceEnabled = TRUE;
            logger->Port().m_bTraceHex = m_hex;
        }
        std::unique_ptr<PortThread>& port = m_ports[plan->plan.port];
        if (port == nullptr) port = std::make_unique<PortThread>(plan->plan.port, m_clock);
        const size_t number = m_next++;
        auto box = std::make_shared<ReportBox>();
        const HWND window = m_hWnd;
        const auto tell = [window, number] { return ::PostMessageA(window, s_news, number, 0) != 0; };
        Running running{std::make_unique<LoggerRun>(plan, std::move(logger), box, tell, m_clock), box, {}, false};
        running.report = StationStatus::Of(*plan).report;
        running.report.since = m_clock.Calendar();
        LoggerRun& run = *running.run;
        m_running.emplace(number, std::move(running));
        port->Add(run);
    } catch (const Failure& failure) {
        // It was checked before; what has changed since costs this logger only.
        m_result.whole = false;
        LoggerReport& report = m_last[plan->key] = StationStatus::Of(*plan).report;
        report.state = LoggerState::Over;
        report.since = m_clock.Calendar();
        report.why = failure.sentence;
        PrintError(Say(Text::StationMistake, {ToUtf8(plan->key), failure.sentence}));
    }
}

LRESULT StationRecorder::OnNews(WPARAM number, LPARAM) {
    Take(static_cast<size_t>(number));
    return 0;
}

void StationRecorder::Take(size_t number) {
    const auto found = m_running.find(number);
    if (found == m_running.end()) return;
    Running& running = found->second;
    std::vector<std::string> sentences;
    LoggerReport report = running.report;
    running.box->Take(report, sentences);
    m_newFiles |= report.file != running.report.file;
    if (!report.last.empty() || report.since != 0) running.report = std::move(report);
    for (const std::string& sentence : sentences) {
        m_progress.Clear();
        PrintError(sentence);
    }
    if (running.report.state != LoggerState::Over) return;
    const StationLogger& plan = running.run->Plan();
    m_result.made += running.report.made;
    m_result.missing += running.report.missing;
    m_result.whole = m_result.whole && running.report.why.empty();
    CPropertyDB description = plan.description;
    const std::string causes = CausesText(running.report.causes, description);
    m_result.lines.push_back(Say(Text::StationSummary, {ToUtf8(plan.key), std::to_string(running.report.made),
                                                        std::to_string(running.report.missing)}) +
                             (causes.empty() ? "" : ": " + causes));
    m_last[plan.key] = running.report;
    if (running.report.why.empty() && !running.ending) m_done[plan.key] = plan.identity;
    m_running.erase(found);
    m_changed = true;
}

void StationRecorder::DropIdlePorts() {
    std::erase_if(m_ports, [&](const auto& entry) {
        return std::none_of(m_running.begin(), m_running.end(),
                            [&](const auto& one) { return one.second.run->Plan().plan.port == entry.first; });
    });
}

void StationRecorder::End(Running& running) {
    if (std::exchange(running.ending, true)) return;
    running.run->Abort();
    const auto port = m_ports.find(running.run->Plan().plan.port);
    if (port != m_ports.end()) port->second->Wake();
}

void StationRecorder::StopAll() {
    m_stopping = m_clock.Steady();
    OrvikTellService("STOPPING=1");
    m_waiting.clear();
    for (auto& [number, running] : m_running) End(running);
}

// Loggers that are described as before go on undisturbed.
void StationRecorder::Reload() {
    OrvikTellService("RELOADING=1");
    m_status.refused = true;
    try {
        Station station = ReadStation(m_app, m_station.path);
        CheckFiles(station);
        std::vector<std::shared_ptr<const StationLogger>> fresh = station.loggers;
        size_t ended = 0;
        for (auto& [number, running] : m_running) {
            const StationLogger& plan = running.run->Plan();
            const auto same =
                std::find_if(fresh.begin(), fresh.end(), [&](const auto& one) { return one->identity == plan.identity; });
            if (same != fresh.end() && !running.ending) {
                fresh.erase(same);
            } else {
                End(running);
                ++ended;
            }
        }
        // What has ended as planned is not begun again.
        const size_t planned = fresh.size();
        std::erase_if(fresh, [&](const auto& one) {
            const auto done = m_done.find(one->key);
            return done != m_done.end() && done->second == one->identity;
        });
        const std::string started = std::to_string(fresh.size()), goesOn = std::to_string(station.loggers.size() - planned);
        if (station.status != m_station.status) DeleteFileA(m_station.status.c_str());
        // Places lie beside the status file.
        if (station.status != m_station.status || station.name != m_station.name) m_sinks.clear();
        m_station = std::move(station);
        AddSinks();
        StartSinks();
        m_waiting = std::move(fresh);
        m_changed = true;
        m_status.name = m_station.name;
        m_status.refused = false;
        m_status.reloaded = Say(Text::StationReloaded, {started, std::to_string(ended), goesOn});
        m_progress.Clear();
        Print(m_status.reloaded);
    } catch (const StationMistakes& mistakes) {
        m_status.reloaded = Say(Text::StationNotReloaded, {ToUtf8(m_station.path), std::to_string(mistakes.sentences.size())});
        m_progress.Clear();
        for (const std::string& sentence : mistakes.sentences) {
            PrintError(sentence);
            m_status.reloaded += " " + sentence;
        }
        PrintError(Say(Text::StationNotReloaded, {ToUtf8(m_station.path), std::to_string(mistakes.sentences.size())}));
    } catch (const Failure& failure) {
        m_status.reloaded = failure.sentence;
        m_progress.Clear();
        PrintError(failure.sentence);
    }
    OrvikTellService("READY=1");
    WriteStatus(false);
}

void StationRecorder::EverySecond(__int64 now) {
    m_second = now;
    // News whose message found no place.
    std::vector<size_t> numbers;
    for (const auto& [number, running] : m_running) numbers.push_back(number);
    for (const size_t number : numbers) Take(number);
    const std::string wish = ReloadWishOf(m_station.status);
    if (m_stopping == 0 && FileExists(wish)) {
        Reload();
        DeleteFileA(wish.c_str());
    }
    HearSinks();
    WriteStatus(false);
    TellService();
    const auto reads = std::count_if(m_running.begin(), m_running.end(), [](const auto& entry) {
        return entry.second.report.state == LoggerState::Reads || entry.second.report.state == LoggerState::Partly;
    });
    m_progress.Show(Say(Text::StationProgress, {std::to_string(reads), std::to_string(m_station.loggers.size())}));
    // The plug-in of a thread that does not even end is left behind; what was read is in its files.
    if (m_stopping == 0 || m_hangs.empty()) return;
    PrintError(Say(Text::StationNotEnded, {ToUtf8(m_hangs)}));
    WriteStatus(true);
    std::_Exit(kCommunicationFailed);
}

void StationRecorder::FindHanging() {
    const auto hangs = std::find_if(m_ports.begin(), m_ports.end(), [](const auto& entry) { return entry.second->Hangs(); });
    // Twice in a row: this machine may just have woken up.
    const std::string suspect = hangs != m_ports.end() ? hangs->first : std::string();
    const std::string port = suspect == std::exchange(m_suspect, suspect) ? suspect : std::string();
    if (port != m_hangs && !port.empty()) {
        m_progress.Clear();
        PrintError(Say(Text::StationHangs, {ToUtf8(port)}));
    }
    m_hangs = port;
}

// The watchdog hears nothing while a thread hangs, so that the service is begun anew.
void StationRecorder::TellService() {
    FindHanging();
    const bool hangs = !m_hangs.empty();
    const auto silent = std::count_if(m_running.begin(), m_running.end(), [](const auto& entry) {
        return entry.second.report.state != LoggerState::Reads && entry.second.report.state != LoggerState::Partly;
    });
    const size_t all = m_running.size();
    std::string lines =
        "STATUS=" + Say(Text::StationProgress, {std::to_string(all - static_cast<size_t>(silent)), std::to_string(all)});
    if (hangs) lines += "; " + Say(Text::StationHangs, {ToUtf8(m_hangs)});
    const __int64 now = m_clock.Steady();
    // Half of what is allowed; this is called once a second.
    if (m_watchdog != 0 && !hangs && now - m_pinged >= std::max<__int64>(m_watchdog * 500ll - kSecond, 0)) {
        m_pinged = now;
        lines += "\nWATCHDOG=1";
    }
    OrvikTellService(lines.c_str());
}

void StationRecorder::WriteStatus(bool ended) {
    m_status.written = m_clock.Calendar();
    m_status.ended = ended;
    m_status.loggers.clear();
    for (const auto& plan : m_station.loggers) {
        StationStatus::Logger logger = StationStatus::Of(*plan);
        const auto running = std::find_if(m_running.begin(), m_running.end(), [&](const auto& entry) {
            return entry.second.run->Plan().key == plan->key && !entry.second.ending;
        });
        const auto last = m_last.find(plan->key);
        const LoggerReport* const report = running != m_running.end() ? &running->second.report
                                           : last != m_last.end()     ? &last->second
                                                                      : nullptr;
        if (report != nullptr && report->last.size() == logger.channels.size()) logger.report = *report;
        m_status.loggers.push_back(std::move(logger));
    }
    m_status.sinks.clear();
    for (const auto& [key, sending] : m_sinks) m_status.sinks.push_back({key, sending.settings->family, sending.report});
    if (!m_sinks.empty()) {
        const auto told = std::make_shared<const CSinkStatus>(m_status.ForSinks());
        for (const auto& [key, sending] : m_sinks) sending.sender->Tell(told);
    }
    const DWORD error = m_status.Store(m_station.status);
    const std::string sentence =
        error == ERROR_SUCCESS ? std::string() : Say(Text::FileNotWritten, {ToUtf8(m_station.status), Reason(error)});
    // On Windows somebody may be reading it at this moment; told is what stays so.
    if (!sentence.empty() && error != ERROR_ACCESS_DENIED && error != ERROR_SHARING_VIOLATION && sentence != m_statusError) {
        m_progress.Clear();
        PrintError(sentence);
    }
    m_statusError = sentence;
}

StationRecorder::Result StationRecorder::Finish() {
    m_ports.clear();
    FinishSinks();
    WriteStatus(true);
    m_sinks.clear();
    m_progress.Clear();
    return m_result;
}
