// One logger of a station while it is read: its measurement, its files, and what it tells the main thread. Made and destroyed on
// the main thread, as the logger itself is; between, all but Abort belongs to the thread of its port.
//
// What goes wrong ends nothing but the readings that it costs: where the recording cannot be made, everything begins anew after
// half a minute.
#pragma once

#include <atomic>
#include <memory>
#include <set>
#include <string>

#include "host/measurement/csv_sink.h"
#include "host/measurement/measurement.h"
#include "host/measurement/recording_writer.h"
#include "host/session/session.h"
#include "host/station/logger_report.h"
#include "host/station/station_file.h"

class LoggerRun : private IMeasurementSink, private RecordingWriter::Listener {
public:
    // Told that the box holds something new; called on the port's thread. False when that could not be passed on.
    using Tell = std::function<bool()>;
    LoggerRun(std::shared_ptr<const StationLogger> plan, std::unique_ptr<ILogger> logger, std::shared_ptr<ReportBox> box,
              Tell tell, IMeasurementClock& clock);
    ~LoggerRun();

    const StationLogger& Plan() const { return *m_plan; }
    ILogger& Logger() { return *m_logger; }

    // Does what is due, or ends it where that was asked for.
    void Run();
    __int64 NextDue() const;  // on the steady clock
    bool IsOver() const { return m_over; }
    // Once it is over: tells the main thread, which may then destroy it at any moment.
    void SayGoodbye();
    // How long one call of Run may take, in us, before something is wrong with the plug-in.
    __int64 Bound() const;

    // Any thread: it is to end, and the exchange under way with it.
    void Abort();
    bool IsAskedToEnd() const { return m_stop; }

private:
    Begin OnBegin(__int64 time) override { return m_writer->OnBegin(time); }
    void OnReading(__int64 time, const std::vector<double>& values, const std::vector<BYTE>& flags) override;
    void OnGap(const CRecordedGap& gap) override;
    void OnEvent(const CRecordedEvent& event) override;
    void OnWriting(const std::string& path, DWORD error) override;
    void OnDropped(CRecordedGap gap) override { m_measurement->Dropped(std::move(gap)); }
    void OnFile(const std::string& path) override { m_report.file = path; }

    void Make();
    void Step();
    void Advise();
    void CannotRecord(const std::string& sentence);
    void End();
    void Enter(LoggerState state, const std::string& why);
    void Report(bool now);
    void Measure();
    void Say(const std::string& sentence);

    const std::shared_ptr<const StationLogger> m_plan;
    const std::unique_ptr<ILogger> m_logger;
    const std::shared_ptr<ReportBox> m_box;
    const Tell m_tell;
    IMeasurementClock& m_clock;
    std::atomic<bool> m_stop = false;

    CPropertyDB m_facts;
    std::unique_ptr<Session> m_session;  // for its channels' names
    std::unique_ptr<RecordingWriter> m_writer;
    std::unique_ptr<CsvSink> m_csv;
    std::unique_ptr<Measurement> m_measurement;
    LoggerReport m_report;
    std::vector<bool> m_fails;                               // channels that were missing when they were last due
    unsigned __int64 m_madeBefore = 0, m_missingBefore = 0;  // until it began anew
    std::set<std::pair<std::vector<WORD>, std::string>> m_told;
    __int64 m_againAt = 0;  // when it begins anew, where it could not
    __int64 m_ticked = 0, m_reported = 0;
    bool m_lost = false, m_csvTold = false, m_advised = false, m_over = false;
};
