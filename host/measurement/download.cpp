#include "host/measurement/download.h"

#include <algorithm>
#include <set>

#include "comm/comm_exception.h"
#include "comm/task.h"
#include "frame/version.h"
#include "host/app/stop_request.h"
#include "host/logger/logger_file.h"
#include "host/measurement/csv_sink.h"
#include "host/session/channel_intervals.h"
#include "host/session/gap_list.h"
#include "host/words/texts.h"
#include "ui/progress_bar.h"

namespace {
constexpr unsigned __int64 kBarEnd = 0x7FFFFFFF;

// One run: the measurement, where its readings go, and what a person at the terminal is told meanwhile.
class DownloadRun : private IMeasurementSink, private RecordingWriter::Listener {
public:
    DownloadRun(ILogger& logger, CPropertyDB& facts, const DownloadPlan& plan, const MeasurementPlan& measure,
                const RecordingWriter::Plan& record)
        : m_plan(plan),
          m_writer(facts, record, *this),
          m_csv(plan.csvFile, plan.csvAppend, facts),
          m_measurement(logger, m_csv.ChannelCount(), *this, m_clock, measure),
          m_session(facts, std::string()) {
        const unsigned __int64 planned = m_measurement.Planned();
        m_bar.Start(static_cast<LONG>(std::min<unsigned __int64>(planned, kBarEnd)), nullptr, nullptr, nullptr, TRUE, nullptr,
                    TRUE);
    }

    DownloadResult Run() {
        while (!m_measurement.IsOver()) {
            if (StopRequest::Asked()) m_measurement.Stop();
            Show();
            m_measurement.Run();
            Advise();
            WaitForMessages();
            if (m_clock.Steady() - m_ticked >= kSecond) {
                m_ticked = m_clock.Steady();
                m_writer.Tick();
            }
        }
        return Result();
    }

private:
    // Until something is due, in slices, so that the wish to stop is soon seen. Plug-ins may have tasks and windows.
    void WaitForMessages() {
        constexpr __int64 kSlice = 50'000;
        const __int64 left = m_measurement.IsOver() ? 0 : std::min(m_measurement.NextDue() - m_clock.Steady(), kSlice);
        if (left > 0) MsgWaitForMultipleObjects(0, nullptr, FALSE, static_cast<DWORD>((left + 999) / 1000), QS_ALLINPUT);
        MSG message;
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
        OrvikShedule();
    }

    void Show() {
        const unsigned __int64 planned = m_measurement.Planned(), next = m_measurement.Slot() + 1;
        std::string text = planned != 0 ? Say(Text::Progress, {std::to_string(std::min(next, planned)), std::to_string(planned)})
                                        : Say(Text::ProgressOpen, {std::to_string(next)});
        if (m_measurement.Missing() > 0) text += Say(Text::ProgressMissing, {std::to_string(m_measurement.Missing())});
        if (m_measurement.IsLost()) {
            const __int64 left = std::max<__int64>(m_measurement.NextDue() - m_clock.Steady(), 0);
            text +=
                Say(Text::ProgressLost, {ToUtf8(m_measurement.LastFailure()), std::to_string((left + kSecond - 1) / kSecond)});
        }
        if (m_writer.Waiting() > 0) text += Say(Text::ProgressWaiting, {std::to_string(m_writer.Waiting())});
        m_bar.Feed(static_cast<LONG>(std::min<unsigned __int64>(m_measurement.Slot(), kBarEnd)), text.c_str(), nullptr, FALSE);
        m_progress.Show(text);
    }

    void Advise() {
        if (!m_advice.empty()) return;
        m_advice = LateAdvice(m_measurement.LateAnswers(), m_measurement.Latest(), m_plan.timeout);
        if (m_advice.empty() && !m_plan.shifts)
            m_advice = SlowAdvice(m_measurement.SlowReadings(), m_measurement.Slowest(), m_plan.interval);
        if (!m_advice.empty()) Tell(m_advice);
    }

    DownloadResult Result() {
        DownloadResult result;
        result.end = m_measurement.End();
        const bool waits = m_writer.HasBegun() && m_writer.Close() != ERROR_SUCCESS;
        const RecordingWriter::Loss loss = waits ? m_writer.Lost() : RecordingWriter::Loss();
        if (loss.gap.missed > 0) m_measurement.Dropped(loss.gap);
        result.made = m_writer.Written();
        result.missing = m_measurement.Missing();
        if (m_measurement.Gaps() != nullptr) result.causes = m_measurement.Gaps()->Counts();
        result.files = m_writer.Files();
        result.csvWhole = m_csv.Close();
        result.advice = m_advice;
        const std::string port = ToUtf8(m_plan.port), failure = ToUtf8(m_measurement.LastFailure());
        switch (result.end) {
            case Measurement::Ended::NeverConnected:
                result.failure = Failure{kCommunicationFailed, WhyNotOpened(m_plan.port, m_measurement.LastCode(), failure)};
                if (StopRequest::Asked()) result.failure->sentence = Say(Text::Stopped, {"0"});
                break;
            case Measurement::Ended::GivenUp:
                result.failure = Failure{kCommunicationFailed, Say(Text::GivenUp, {port, failure})};
                break;
            case Measurement::Ended::Stopped:
            case Measurement::Ended::AsPlanned:
                break;
        }
        if (waits) {
            result.failure = Failure{kFileFailed, Say(Text::NotAllWritten, {std::to_string(loss.readings), m_diskReason})};
        }
        return result;
    }

    // On a terminal the line at the bottom is put out of the way first.
    void Tell(const std::string& sentence) {
        m_progress.Clear();
        PrintError(sentence);
    }

    Begin OnBegin(__int64 time) override { return m_writer.OnBegin(time); }
    void OnReading(__int64 time, const std::vector<double>& values, const std::vector<BYTE>& flags) override {
        m_writer.OnReading(time, values, flags);
        if (!m_csv.Write(time, values, flags) && !std::exchange(m_csvTold, true))
            Tell(Say(Text::CsvNotWhole, {ToUtf8(m_plan.csvFile)}));
    }
    void OnGap(const CRecordedGap& gap) override {
        m_writer.OnGap(gap);
        // A channel that never works is seen at once; one that fails now and then is told once.
        if (gap.channels.empty() || !m_told.insert({gap.channels, GapKeeper::KindOf(gap.text)}).second) return;
        Tell(Say(Text::ChannelsFail, {ChannelNames(gap.channels, m_session), ToUtf8(gap.text)}));
    }
    void OnEvent(const CRecordedEvent& event) override {
        m_writer.OnEvent(event);
        const std::string port = ToUtf8(m_plan.port);
        if (event.kind == RE_LOST) {
            m_lost = true;
            Tell(LineLostSentence(m_plan.port, event.text));
        } else if (event.kind == RE_CONNECTED && std::exchange(m_lost, false)) {
            Tell(Say(Text::LineBack, {port}));
        } else if (event.kind == RE_CLOCK_STEPPED) {
            char seconds[32];
            std::snprintf(seconds, sizeof seconds, "%+.1f", static_cast<double>(event.amount) / 1e6);
            Tell(Say(Text::ClockStepped, {seconds}));
        }
    }

    void OnWriting(const std::string& path, DWORD error) override {
        if (error != ERROR_SUCCESS) m_diskReason = Reason(error);
        Tell(WritingSentence(path, error));
    }
    void OnDropped(CRecordedGap gap) override { m_measurement.Dropped(std::move(gap)); }
    void OnFile(const std::string&) override {}

    const DownloadPlan& m_plan;
    SystemClock m_clock;
    RecordingWriter m_writer;
    CsvSink m_csv;
    Measurement m_measurement;
    CProgressBar m_bar;
    ProgressLine m_progress;
    __int64 m_ticked = 0;
    bool m_lost = false, m_csvTold = false;
    std::string m_advice, m_diskReason;
    const Session m_session;  // its channels' names
    std::set<std::pair<std::vector<WORD>, std::string>> m_told;
};

std::string TextAt(CPropertyDB& db, const char* key) {
    CString text;
    db.GetValue(key, text);
    return text.GetString();
}
}  // namespace

MeasurementPlan DownloadPlan::Measure(CPropertyDB& description) const {
    MeasurementPlan measure;
    measure.port = port;
    measure.timeout = timeout;
    measure.interval = static_cast<__int64>(interval) * 1000;
    measure.count = duration != 0 || count == kForEver ? 0 : count;
    measure.duration = duration;
    measure.shifts = shifts;
    measure.follow = interval == 0;
    measure.giveUp = giveUp;
    measure.steps = ChannelSteps(description, measure.interval);
    measure.stopAsked = [] { return StopRequest::Asked(); };
    return measure;
}

void DescribeSession(CPropertyDB& description, const std::string& port, CPropertyDB& facts) {
    facts.SetValue("Session.sFamily", TextAt(description, "sFamily").c_str());
    facts.SetValue("Session.sLogger", TextAt(description, "sName").c_str());
    facts.SetValue("Session.sPort", port.c_str());
    CStringArray keys;
    description.Enum("Channels", keys, FALSE, FALSE);
    facts.SetPath("Channels");
    for (INT_PTR i = 0; i < keys.GetSize(); ++i) {
        const std::string key = keys.GetAt(i).GetString(), at = "Channels." + key;
        const std::string name = TextAt(description, (at + ".sName").c_str());
        facts.SetValue((at + ".sName").c_str(), name.empty() ? key.c_str() : name.c_str());
        facts.SetValue((at + ".sUnit").c_str(), TextAt(description, (at + ".sUnit").c_str()).c_str());
    }
    facts.OverlayCopy(&description, nullptr, "Logger", TRUE);
}

std::string WhyNotOpened(const std::string& port, LONG code, const std::string& text) {
    const std::string name = ToUtf8(port);
    if (port.find("://") != std::string::npos) return text + ".";  // a network's own sentence names the place
    const bool refused = code == CCommException::DeviceNotOpen;
    const DWORD attributes = GetFileAttributesA(port.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY)) return Say(Text::NoSerialPort, {name});
    const CSerial::EPort found = CSerial::CheckPort(port.c_str());
    // It opens, and is free, or knows nothing of lines.
    if (refused && (found == CSerial::PortAvailable || GetLastError() == ERROR_INVALID_FUNCTION))
        return Say(Text::NoSerialPort, {name});
    switch (found) {
        case CSerial::PortMissing:
            return Say(Text::PortMissing, {name});
        case CSerial::PortInUse:
            return Say(Text::PortInUse, {name});
        default:
            return Say(Text::PortFailed, {name, text});
    }
}

std::string LineLostSentence(const std::string& port, const std::string& text) {
    // A network's own sentence names the place as well.
    const size_t scheme = port.find("://");
    const std::string place = scheme == std::string::npos ? port : port.substr(scheme + 3);
    const bool named = text.starts_with(place + ": ");
    return Say(Text::LineLost, {ToUtf8(port), ToUtf8(named ? text.substr(place.size() + 2) : text)});
}

std::string LateAdvice(DWORD lateAnswers, DWORD latest, DWORD timeout) {
    constexpr DWORD kAgain = 3, kStep = 100;  // ms
    if (lateAnswers < kAgain) return {};
    const DWORD proposal = (latest + latest / 2 + kStep - 1) / kStep * kStep;
    return Say(Text::LateAnswers,
               {std::to_string(latest), std::to_string(timeout), std::to_string(std::max(proposal, timeout + kStep))});
}

std::string SlowAdvice(DWORD slowReadings, DWORD longest, DWORD interval) {
    constexpr DWORD kAgain = 3, kStep = 100;  // ms
    if (slowReadings < kAgain) return {};
    const DWORD proposal = (longest + longest / 4 + kStep - 1) / kStep * kStep;
    return Say(Text::ReadingsTooSlow, {std::to_string(longest), std::to_string(interval), std::to_string(proposal)});
}

std::string CausesText(const std::vector<GapKeeper::Count>& causes, CPropertyDB& description) {
    const Session session(description, std::string());
    std::string text;
    for (const GapKeeper::Count& cause : causes) {
        text += (text.empty() ? "" : ", ") + std::to_string(cause.missed) + " x " + ToUtf8(cause.text);
        const std::string names = ChannelNames(cause.channels, session);
        if (!names.empty()) text += " (" + names + ")";
    }
    return text;
}

DownloadResult Download(CHostApp& app, CPropertyDB& description, const DownloadPlan& plan, const RecordingWriter::Plan& record) {
    const std::unique_ptr<ILogger> logger = MakeLogger(app, description);
    if (!plan.traceFile.empty()) {
        app.StartTrace(plan.traceFile);
        logger->Port().m_bTraceEnabled = TRUE;
        logger->Port().m_bTraceHex = plan.traceHex;
    }
    CPropertyDB facts;
    DescribeSession(description, plan.port, facts);
    const StopRequest stop(logger.get());
    RecordingWriter::Plan versioned = record;
    versioned.version = ORVIK_MODULE_VERSION;
    return DownloadRun(*logger, facts, plan, plan.Measure(description), versioned).Run();
}
