// Readings that come in while the window is in use: a task of the scheduler, which lets a measurement do what is due.
// User-interface thread, which stays responsive: while an answer is awaited its messages are handled. What has been read stays
// read, however it ends; it is also in a recording of its own, so that it outlives the program (see unsaved_recording.h).
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "comm/task.h"
#include "host/logger_family.h"
#include "host/measurement/download.h"
#include "host/measurement/measurement.h"
#include "host/measurement/recording_writer.h"

class LiveDownload : public CVXTTask, private IMeasurementSink, private RecordingWriter::Listener {
public:
    // Told as readings come. Each may begin another download, or end this one, but not destroy it.
    class Listener {
    public:
        virtual void OnReading(__int64 time, const std::vector<double>& values) = 0;
        // A sentence on what goes wrong, or is well again; the download goes on. UTF-8.
        virtual void OnDownloadState(const std::string& sentence) = 0;
        virtual void OnDownloadEnd(const std::string& sentence) = 0;  // UTF-8; empty: as planned, or as wished

    protected:
        ~Listener() = default;
    };

    // Records into `recording` as well, unless that is empty.
    LiveDownload(std::unique_ptr<ILogger> logger, CPropertyDB& description, DownloadPlan plan, std::string recording,
                 Listener& listener);
    ~LiveDownload() override;

    void Go() { Start(0); }
    // The exchange under way ends at once; the end is told when the task comes back.
    void Stop();
    bool IsOver() const { return m_over; }
    // Readings whose time has come.
    unsigned __int64 Made() const { return m_measurement->Slot(); }
    const DownloadPlan& Plan() const { return m_plan; }
    const std::string& Recording() const { return m_recording; }

    BOOL OnShedule() override;

private:
    Begin OnBegin(__int64 time) override;
    void OnReading(__int64 time, const std::vector<double>& values, const std::vector<BYTE>& flags) override;
    void OnGap(const CRecordedGap& gap) override;
    void OnEvent(const CRecordedEvent& event) override;
    void OnWriting(const std::string& path, DWORD error) override;
    void OnDropped(CRecordedGap gap) override;
    void OnFile(const std::string&) override {}
    BOOL End();

    std::unique_ptr<ILogger> m_logger;
    const DownloadPlan m_plan;
    const std::string m_recording;
    Listener& m_listener;
    SystemClock m_clock;
    CPropertyDB m_facts;
    std::unique_ptr<RecordingWriter> m_writer;  // null without a recording
    std::unique_ptr<Measurement> m_measurement;
    bool m_stopped = false, m_over = false, m_busy = false, m_lost = false;
};
