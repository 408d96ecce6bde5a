// The recorder of a station: makes its loggers, gives each port a thread, hears from them by messages of its window, tells the
// user and the service manager, keeps the status file, and reads the station again when asked to. Main thread; nothing here waits
// for a logger.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "afx/wnd.h"
#include "host/app/host_app.h"
#include "host/station/port_thread.h"
#include "host/station/station_file.h"
#include "host/station/station_status.h"

class StationRecorder : public CWnd {
public:
    struct Result {
        unsigned __int64 made = 0, missing = 0;  // readings
        bool whole = true;                       // every logger ended as planned or as wished, and in order
        std::vector<std::string> lines;          // one for each logger
    };

    // `sinks` are there besides the station's own. `trace`: the application's trace takes the traffic of all ports, as bytes where `hex`.
    StationRecorder(CHostApp& app, Station station, std::vector<std::shared_ptr<const SinkSettings>> sinks, bool trace, bool hex);
    ~StationRecorder() override;

    // Until all loggers have ended, or the user's wish to stop. A Failure, or StationMistakes, if nothing could be begun.
    Result Run();

protected:
    LRESULT OnNews(WPARAM number, LPARAM);
    DECLARE_MESSAGE_MAP()

private:
    static const UINT s_news;
    struct Running {
        std::unique_ptr<LoggerRun> run;
        std::shared_ptr<ReportBox> box;
        LoggerReport report;
        bool ending = false;
    };
    struct Sending {
        std::shared_ptr<const SinkSettings> settings;
        std::unique_ptr<SinkSender> sender;
        SinkReport report;
    };

    void AddSinks();
    void StartSinks();
    void HearSinks();
    void FinishSinks();
    void CheckFiles(const Station& station) const;
    // Starts those that wait for nothing any more.
    void StartWaiting();
    void Start(const std::shared_ptr<const StationLogger>& plan);
    bool MayStart(const StationLogger& plan) const;
    void End(Running& running);
    void Take(size_t number);
    void DropIdlePorts();
    void Reload();
    void StopAll();
    void EverySecond(__int64 now);
    void FindHanging();
    void WriteStatus(bool ended);
    void TellService();
    Result Finish();

    CHostApp& m_app;
    Station m_station;
    const bool m_trace, m_hex;
    SystemClock m_clock;
    size_t m_next = 1;
    std::map<size_t, Running> m_running;  // by numbers that never come again
    std::map<std::string, std::unique_ptr<PortThread>> m_ports;
    std::vector<std::shared_ptr<const StationLogger>> m_waiting;  // for others to end
    const std::vector<std::shared_ptr<const SinkSettings>> m_moreSinks;
    std::map<std::string, Sending> m_sinks;  // by their keys
    std::map<std::string, LoggerReport> m_last;                   // of loggers of the station, by their keys
    std::map<std::string, std::string> m_done;                    // what those were made of that ended as planned
    StationStatus m_status;
    ProgressLine m_progress;
    Result m_result;
    std::string m_statusError, m_suspect, m_hangs;
    bool m_newFiles = false;
    bool m_changed = false;  // some logger is gone, or is to be begun
    DWORD m_watchdog = 0;
    __int64 m_second = 0, m_pinged = 0, m_stopping = 0;
};
