// Readings that come in while the window is in use: a measurement on a thread of its own, into a recording, which the window
// follows as it would follow anybody's. What has been read stays read, however it ends, also when the program is killed (see
// unsaved_recording.h).
//
// Made, asked and destroyed on the user-interface thread, which never waits for the logger; the destructor ends the exchange
// under way and waits for that.
#pragma once

#include <atomic>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "host/logger_family.h"
#include "host/measurement/download.h"
#include "host/measurement/measurement.h"
#include "host/measurement/recording_writer.h"

class LiveDownload : private IMeasurementSink, private RecordingWriter::Listener {
public:
    // How it stands, and what has happened since it was last asked. UTF-8.
    struct News {
        bool begun = false;  // the recording is there
        bool lost = false;   // nothing comes at the moment
        bool over = false;
        unsigned __int64 made = 0;                 // readings with a value at least
        unsigned __int64 passed = 0, missing = 0;  // readings whose time has come; those of which all or something is missing
        size_t waiting = 0;                        // readings that cannot be written at the moment
        std::vector<std::string> sentences;        // what goes wrong, or is well again
        std::string end;                           // why it is over; empty: as planned, or as wished
    };

    // Records into `recording`, which nothing has yet. A Failure if the system has no thread for it.
    LiveDownload(std::unique_ptr<ILogger> logger, CPropertyDB& description, DownloadPlan plan, std::string recording);
    ~LiveDownload();
    LiveDownload(const LiveDownload&) = delete;
    LiveDownload& operator=(const LiveDownload&) = delete;

    News Take();
    bool IsOver() const { return m_over; }
    // The exchange under way ends at once, the download soon after.
    void Stop();
    // What else is to be known of the session, into the recording (CRecorder::AddFacts).
    void Note(std::unique_ptr<CPropertyDB> facts);
    const DownloadPlan& Plan() const { return m_plan; }
    const std::string& Recording() const { return m_recording; }

private:
    Begin OnBegin(__int64 time) override { return m_writer.OnBegin(time); }
    void OnReading(__int64 time, const std::vector<double>& values, const std::vector<BYTE>& flags) override;
    void OnGap(const CRecordedGap& gap) override { m_writer.OnGap(gap); }
    void OnEvent(const CRecordedEvent& event) override;
    void OnWriting(const std::string& path, DWORD error) override;
    void OnDropped(CRecordedGap gap) override { m_measurement.Dropped(std::move(gap)); }
    void OnFile(const std::string&) override;
    void Main();
    void Run();
    void TakeNotes();
    void Tell(const std::string& sentence);
    void Report();
    std::string End();

    const std::unique_ptr<ILogger> m_logger;
    const DownloadPlan m_plan;
    const std::string m_recording;
    SystemClock m_clock;
    CPropertyDB m_facts;
    RecordingWriter m_writer;
    Measurement m_measurement;
    std::atomic<bool> m_stop = false, m_over = false;
    bool m_lost = false;
    std::string m_writingFails;  // why; empty while all is written

    std::mutex m_lock;
    News m_news;                                        // under the lock
    std::vector<std::unique_ptr<CPropertyDB>> m_notes;  // the same
    const HANDLE m_wake;
    std::thread m_thread;
};
