#include "host/gui/live_download.h"

#include <algorithm>
#include <utility>

#include "frame/version.h"
#include "host/app/stop_request.h"
#include "host/logger/logger_file.h"
#include "host/words/texts.h"

LiveDownload::LiveDownload(std::unique_ptr<ILogger> logger, CPropertyDB& description, DownloadPlan plan, std::string recording,
                           Listener& listener)
    : m_logger(std::move(logger)), m_plan(std::move(plan)), m_recording(std::move(recording)), m_listener(listener) {
    DescribeSession(description, m_plan.port, m_facts);
    CStringArray channels;
    m_facts.Enum("Channels", channels, FALSE, FALSE);
    if (!m_recording.empty()) {
        RecordingWriter::Plan record;
        record.path = m_recording;
        record.version = ORVIK_MODULE_VERSION;
        RecordingWriter::Listener& listens = *this;
        m_writer = std::make_unique<RecordingWriter>(m_facts, record, listens);
    }
    MeasurementPlan measure = m_plan.Measure(description);
    measure.stopAsked = [this] { return m_stopped; };
    IMeasurementSink& sink = *this;
    m_measurement = std::make_unique<Measurement>(*m_logger, static_cast<size_t>(channels.GetSize()), sink, m_clock, measure);
}

LiveDownload::~LiveDownload() { CVXTTask::Stop(); }

void LiveDownload::Stop() {
    m_stopped = true;
    m_logger->Abort();
    if (!m_busy && !m_over) RaiseShedule(0);
}

BOOL LiveDownload::End() {
    m_over = true;
    std::string sentence;
    const std::string port = ToUtf8(m_plan.port), failure = ToUtf8(m_measurement->LastFailure());
    if (m_writer != nullptr) m_writer->Close();
    switch (m_measurement->End()) {
        case Measurement::Ended::NeverConnected:
            sentence = Say(Text::PortFailed, {port, failure});
            break;
        case Measurement::Ended::GivenUp:
            sentence = Say(Text::GivenUp, {port, failure});
            break;
        default:
            if (m_measurement->Missing() > 0 && !m_stopped)
                sentence = Say(Text::MissingHere,
                               {std::to_string(m_measurement->Missing()), CausesText(m_measurement->Gaps()->Counts(), m_facts)});
            break;
    }
    m_listener.OnDownloadEnd(m_stopped ? std::string() : sentence);
    return FALSE;
}

BOOL LiveDownload::OnShedule() {
    if (m_busy) return TRUE;  // this very task handles messages below, and one of them may run the scheduler
    if (m_stopped) m_measurement->Stop();
    m_busy = true;
    m_measurement->Run();
    if (m_writer != nullptr) m_writer->Tick();
    m_busy = false;
    if (m_stopped) m_measurement->Stop();
    if (m_measurement->IsOver()) return End();
    const __int64 left = m_measurement->NextDue() - m_clock.Steady();
    RaiseShedule(static_cast<DWORD>(std::clamp<__int64>((left + 999) / 1000, 0, 1000)));
    return TRUE;
}

LiveDownload::Begin LiveDownload::OnBegin(__int64 time) {
    if (m_writer == nullptr) return {};
    try {
        return m_writer->OnBegin(time);
    } catch (const Failure& failure) {
        // Without its recording the download is what it was before there were recordings.
        m_writer.reset();
        m_listener.OnDownloadState(failure.sentence);
        return {};
    }
}

void LiveDownload::OnReading(__int64 time, const std::vector<double>& values, const std::vector<BYTE>& flags) {
    if (m_writer != nullptr) m_writer->OnReading(time, values, flags);
    m_listener.OnReading(time, values);
}

void LiveDownload::OnGap(const CRecordedGap& gap) {
    if (m_writer != nullptr) m_writer->OnGap(gap);
}

void LiveDownload::OnEvent(const CRecordedEvent& event) {
    if (m_writer != nullptr) m_writer->OnEvent(event);
    const std::string port = ToUtf8(m_plan.port);
    if (event.kind == RE_LOST) {
        m_lost = true;
        m_listener.OnDownloadState(LineLostSentence(m_plan.port, m_measurement->LastCode(), event.text));
    } else if (event.kind == RE_CONNECTED && std::exchange(m_lost, false)) {
        m_listener.OnDownloadState(Say(Text::LineBack, {port}));
    }
}

void LiveDownload::OnWriting(const std::string& path, DWORD error) { m_listener.OnDownloadState(WritingSentence(path, error)); }

void LiveDownload::OnDropped(CRecordedGap gap) { m_measurement->Dropped(std::move(gap)); }
