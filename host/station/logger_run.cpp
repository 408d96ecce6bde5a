#include "host/station/logger_run.h"

#include <algorithm>
#include <exception>

#include "frame/version.h"
#include "host/session/gap_list.h"
#include "host/words/texts.h"

namespace {
constexpr __int64 kAgain = 30 * kSecond;
constexpr size_t kMostTold = 100;  // different failures of channels
}  // namespace

LoggerRun::LoggerRun(std::shared_ptr<const StationLogger> plan, std::unique_ptr<ILogger> logger, std::shared_ptr<ReportBox> box,
                     Tell tell, IMeasurementClock& clock)
    : m_plan(std::move(plan)), m_logger(std::move(logger)), m_box(std::move(box)), m_tell(std::move(tell)), m_clock(clock) {
    CPropertyDB description = m_plan->description;
    DescribeSession(description, m_plan->plan.port, m_facts);
    m_session = std::make_unique<Session>(m_facts, std::string());
    m_report.last.resize(m_session->Channels().size());
    m_fails.resize(m_report.last.size());
    m_report.file = m_plan->record.path;
    m_report.since = m_clock.Calendar();
    Make();
}

LoggerRun::~LoggerRun() = default;

void LoggerRun::Make() {
    RecordingWriter::Plan record = m_plan->record;
    record.version = ORVIK_MODULE_VERSION;
    RecordingWriter::Listener& listener = *this;
    m_writer = std::make_unique<RecordingWriter>(m_facts, record, listener);
    m_csv = std::make_unique<CsvSink>(m_plan->plan.csvFile, m_plan->plan.csvAppend, m_facts);
    CPropertyDB description = m_plan->description;
    MeasurementPlan measure = m_plan->plan.Measure(description);
    measure.patient = true;
    measure.stopAsked = [this] { return m_stop.load(); };
    IMeasurementSink& sink = *this;
    m_measurement = std::make_unique<Measurement>(*m_logger, m_report.last.size(), sink, m_clock, measure);
}

void LoggerRun::Abort() {
    m_stop = true;
    m_logger->Abort();
}

__int64 LoggerRun::Bound() const {
    // A family may ask several times for every channel, and once more to be sure.
    constexpr __int64 kSlack = 30 * kSecond, kAttempts = 4;
    const auto channels = static_cast<__int64>(m_report.last.size());
    return kSlack + kAttempts * (channels + kAttempts) * static_cast<__int64>(m_plan->plan.timeout) * 1000;
}

__int64 LoggerRun::NextDue() const {
    const __int64 tick = m_ticked + kSecond;
    return std::min(m_measurement ? m_measurement->NextDue() : m_againAt, tick);
}

void LoggerRun::Run() {
    if (m_over) return;
    try {
        Step();
    } catch (const Failure& failure) {
        CannotRecord(failure.sentence);
    } catch (const std::exception& failure) {
        CannotRecord(failure.what());
    } catch (CException* failure) {
        char text[512] = "";
        failure->GetErrorMessage(text, sizeof text);
        failure->Delete();
        CannotRecord(ToUtf8(text));
    }
}

void LoggerRun::Step() {
    if (m_stop) return End();
    if (m_measurement == nullptr) {
        if (m_clock.Steady() < m_againAt) {
            m_ticked = m_clock.Steady();
            return Report(false);
        }
        Make();
    }
    m_measurement->Run();
    if (m_measurement->IsOver()) return End();
    Advise();
    const __int64 now = m_clock.Steady();
    if (now - m_ticked >= kSecond) {
        m_ticked = now;
        m_writer->Tick();
    }
    if (m_writer->Waiting() > 0) {
        Enter(LoggerState::NoFile, m_report.why);
    } else if (m_measurement->IsLost()) {
        Enter(LoggerState::Silent, ToUtf8(m_measurement->LastFailure()));
    }
    Report(false);
}

// Told once: what happens again and again is how the logger is, and no accident.
void LoggerRun::Advise() {
    constexpr DWORD kAgain = 3;
    const auto say = [this](Text text, DWORD longest, DWORD allowed) {
        m_advised = true;
        Say(::Say(text, {std::to_string(longest), std::to_string(allowed)}));
    };
    if (m_advised) return;
    if (m_measurement->LateAnswers() >= kAgain) {
        say(Text::StationLateAnswers, m_measurement->Latest(), m_plan->plan.timeout);
    } else if (m_measurement->SlowReadings() >= kAgain) {
        say(Text::StationTooSlow, m_measurement->Slowest(), m_plan->plan.interval);
    }
}

// What was read since is lost; what is in the file stays.
void LoggerRun::CannotRecord(const std::string& sentence) {
    const bool again = m_report.state == LoggerState::NoFile && m_report.why == sentence;
    Enter(LoggerState::NoFile, sentence);
    if (m_measurement != nullptr) {
        m_madeBefore += m_writer->Written();
        m_missingBefore += m_measurement->Missing() + m_writer->Lost().gap.missed;
    }
    // The logger is let go; a sink that fails again is not asked.
    m_measurement.reset();
    m_writer.reset();
    m_csv.reset();
    try {
        m_logger->Disconnect();
    } catch (CException* failure) {
        failure->Delete();
    } catch (...) {
        // It is connected anew in any case.
    }
    m_ticked = m_clock.Steady();
    m_againAt = m_ticked + kAgain;
    if (!again) Say(sentence);
    Report(true);
}

void LoggerRun::End() {
    if (m_measurement != nullptr) {
        m_measurement->Stop();
        const bool waits = m_writer->Close() != ERROR_SUCCESS;
        if (!m_csv->Close() && !std::exchange(m_csvTold, true)) Say(::Say(Text::CsvNotWhole, {ToUtf8(m_plan->plan.csvFile)}));
        if (waits) {
            const RecordingWriter::Loss loss = m_writer->Lost();
            if (loss.gap.missed > 0) m_measurement->Dropped(loss.gap);
            m_report.why = ::Say(Text::NotAllWritten, {std::to_string(loss.readings), m_report.why});
            Say(m_report.why);
        }
        if (m_measurement->End() == Measurement::Ended::GivenUp) {
            const std::string failure = ToUtf8(m_measurement->LastFailure());
            m_report.why = ::Say(Text::GivenUp, {ToUtf8(m_plan->plan.port), failure});
            Say(m_report.why);
        } else if (!waits) {
            m_report.why.clear();
        }
    }
    Enter(LoggerState::Over, m_report.why);
    m_over = true;
}

void LoggerRun::SayGoodbye() {
    const std::shared_ptr<ReportBox> box = m_box;
    const Tell tell = m_tell;
    Measure();
    m_measurement.reset();
    m_writer.reset();
    m_csv.reset();
    // From here on this object may be gone.
    if (box->Put(m_report) && !tell()) box->NotTold();
}

void LoggerRun::Enter(LoggerState state, const std::string& why) {
    m_report.why = why;
    if (m_report.state == state) return;
    m_report.state = state;
    m_report.since = m_clock.Calendar();
    m_reported = 0;
}

void LoggerRun::Report(bool now) {
    const __int64 time = m_clock.Steady();
    if (!now && m_reported != 0 && time - m_reported < kSecond) return;
    m_reported = time;
    Measure();
    if (m_box->Put(m_report) && !m_tell()) m_box->NotTold();
}

void LoggerRun::Measure() {
    if (m_measurement != nullptr) {
        m_report.made = m_madeBefore + m_writer->Written();
        m_report.missing = m_missingBefore + m_measurement->Missing();
        m_report.waiting = m_report.state == LoggerState::Over ? 0 : m_writer->Waiting();  // then it is lost, and missing
        if (m_measurement->Gaps() != nullptr) m_report.causes = m_measurement->Gaps()->Counts();
        m_report.late = m_measurement->Late().Below(0.5);
        m_report.veryLate = m_measurement->Late().Below(0.99);
        m_report.latest = m_measurement->Late().Latest();
    }
}

void LoggerRun::Say(const std::string& sentence) {
    if (m_box->Put(::Say(Text::StationMistake, {ToUtf8(m_plan->key), sentence})) && !m_tell()) m_box->NotTold();
}

void LoggerRun::OnReading(__int64 time, const std::vector<double>& values, const std::vector<BYTE>& flags) {
    m_writer->OnReading(time, values, flags);
    if (!m_csv->Write(time, values, flags) && !std::exchange(m_csvTold, true))
        Say(::Say(Text::CsvNotWhole, {ToUtf8(m_plan->plan.csvFile)}));
    bool any = false;
    for (size_t i = 0; i < std::min(values.size(), m_report.last.size()); ++i) {
        if (flags[i] == RF_NOT_DUE) continue;
        m_fails[i] = flags[i] == RF_MISSING;
        any = any || !m_fails[i];
        if (!m_fails[i]) m_report.last[i] = {values[i], time};
    }
    const bool all = std::find(m_fails.begin(), m_fails.end(), true) == m_fails.end();
    if (any && m_writer->Waiting() == 0)
        Enter(all ? LoggerState::Reads : LoggerState::Partly, all ? std::string() : m_report.why);
}

void LoggerRun::OnGap(const CRecordedGap& gap) {
    m_writer->OnGap(gap);
    if (gap.channels.empty()) return;
    const std::string sentence = ::Say(Text::ChannelsFail, {ChannelNames(gap.channels, *m_session), ToUtf8(gap.text)});
    m_report.why = sentence;
    // A channel that never works is seen at once; one that fails now and then is told once.
    if (m_told.size() < kMostTold && m_told.insert({gap.channels, GapKeeper::KindOf(gap.text)}).second) Say(sentence);
}

void LoggerRun::OnEvent(const CRecordedEvent& event) {
    m_writer->OnEvent(event);
    const std::string port = ToUtf8(m_plan->plan.port);
    if (event.kind == RE_LOST) {
        m_lost = true;
        Say(LineLostSentence(m_plan->plan.port, event.text));
    } else if (event.kind == RE_CONNECTED && std::exchange(m_lost, false)) {
        Say(::Say(Text::LineBack, {port}));
    } else if (event.kind == RE_CLOCK_STEPPED) {
        char seconds[32];
        std::snprintf(seconds, sizeof seconds, "%+.1f", static_cast<double>(event.amount) / 1e6);
        Say(::Say(Text::ClockStepped, {seconds}));
    }
}

void LoggerRun::OnWriting(const std::string& path, DWORD error) {
    if (error != ERROR_SUCCESS) m_report.why = Reason(error);
    Say(WritingSentence(path, error));
}
