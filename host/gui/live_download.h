// Readings that come in while the window is in use: a task of the scheduler, one reading a run. User-interface thread, which
// stays responsive: while an answer is awaited its messages are handled. What has been read stays read, however it ends.
#pragma once

#include <memory>
#include <string>

#include "comm/task.h"
#include "host/download.h"
#include "host/logger_family.h"

class LiveDownload : public CVXTTask {
public:
    // Told at the end of each reading. Each may begin another download, or end this one, but not destroy it.
    class Listener {
    public:
        virtual void OnReading(CVXTTime time, const CDoubleArray& values) = 0;
        virtual void OnDownloadEnd(const std::string& sentence) = 0;  // UTF-8; empty: as planned, or as wished

    protected:
        ~Listener() = default;
    };

    LiveDownload(std::unique_ptr<ILogger> logger, DownloadPlan plan, Listener& listener);
    ~LiveDownload() override;

    void Begin() { Start(0); }
    // The exchange under way ends at once; the end is told when the task comes back.
    void Stop();
    bool IsOver() const { return m_over; }
    DWORD Made() const { return m_made; }
    const DownloadPlan& Plan() const { return m_plan; }

    BOOL OnShedule() override;

private:
    BOOL End(const std::string& sentence);

    std::unique_ptr<ILogger> m_logger;
    DownloadPlan m_plan;
    Listener& m_listener;
    bool m_connected = false, m_stopped = false, m_over = false, m_busy = false;
    DWORD m_made = 0;
    DWORD m_started = 0;
};
