#include "host/gui/live_download.h"

#include <algorithm>
#include <exception>
#include <system_error>
#include <utility>

#include "frame/version.h"
#include "host/words/texts.h"

namespace {
constexpr size_t kMostSentences = 100;  // that wait for a window which is busy

CPropertyDB FactsOf(CPropertyDB& description, const std::string& port) {
    CPropertyDB facts;
    DescribeSession(description, port, facts);
    return facts;
}

RecordingWriter::Plan PlanFor(const std::string& recording) {
    RecordingWriter::Plan plan;
    plan.path = recording;
    plan.version = ORVIK_MODULE_VERSION;
    return plan;
}

size_t ChannelsOf(CPropertyDB& facts) {
    CStringArray channels;
    facts.Enum("Channels", channels, FALSE, FALSE);
    return static_cast<size_t>(channels.GetSize());
}

MeasurementPlan MeasureFor(const DownloadPlan& plan, CPropertyDB& description, const std::atomic<bool>& stop) {
    MeasurementPlan measure = plan.Measure(description);
    measure.stopAsked = [&stop] { return stop.load(); };
    return measure;
}
}  // namespace

LiveDownload::LiveDownload(std::unique_ptr<ILogger> logger, CPropertyDB& description, DownloadPlan plan, std::string recording)
    : m_logger(std::move(logger)),
      m_plan(std::move(plan)),
      m_recording(std::move(recording)),
      m_facts(FactsOf(description, m_plan.port)),
      m_writer(m_facts, PlanFor(m_recording), *this),
      m_measurement(*m_logger, ChannelsOf(m_facts), *this, m_clock, MeasureFor(m_plan, description, m_stop)),
      m_wake(CreateEventA(nullptr, FALSE, FALSE, nullptr)) {
    try {
        m_thread = std::thread([this] { Main(); });
    } catch (const std::system_error&) {
        CloseHandle(m_wake);
        throw Failure{kFileFailed, Say(Text::StationThreads, {ToUtf8(m_plan.port)})};
    }
}

LiveDownload::~LiveDownload() {
    Stop();
    m_thread.join();
    CloseHandle(m_wake);
}

void LiveDownload::Stop() {
    m_stop = true;
    m_logger->Abort();
    SetEvent(m_wake);
}

LiveDownload::News LiveDownload::Take() {
    const std::lock_guard lock(m_lock);
    News news = m_news;
    m_news.sentences.clear();
    return news;
}

void LiveDownload::Note(std::unique_ptr<CPropertyDB> facts) {
    {
        const std::lock_guard lock(m_lock);
        m_notes.push_back(std::move(facts));
    }
    SetEvent(m_wake);
}

// --- On the thread ---

void LiveDownload::Main() {
    std::string end;
    try {
        Run();
        end = End();
    } catch (const Failure& failure) {
        end = failure.sentence;
    } catch (const std::exception& failure) {
        end = failure.what();
    } catch (CException* failure) {
        char text[512] = "";
        failure->GetErrorMessage(text, sizeof text);
        failure->Delete();
        end = ToUtf8(text);
    }
    // After a failure of the recording it is not asked again, and the logger is still to be let go.
    if (!m_measurement.IsOver()) {
        try {
            m_logger->Disconnect();
        } catch (CException* failure) {
            failure->Delete();
        } catch (...) {
            // It is never used again in any case.
        }
    }
    Report();
    const std::lock_guard lock(m_lock);
    m_news.end = m_stop ? std::string() : end;
    m_news.over = true;
    m_over = true;
}

void LiveDownload::Run() {
    __int64 ticked = m_clock.Steady();
    while (!m_measurement.IsOver()) {
        if (m_stop) {
            m_measurement.Stop();
            break;
        }
        m_measurement.Run();
        TakeNotes();
        if (m_clock.Steady() - ticked >= kSecond) {
            ticked = m_clock.Steady();
            m_writer.Tick();
        }
        Report();
        const __int64 left = m_measurement.IsOver() ? 0 : std::min(m_measurement.NextDue() - m_clock.Steady(), kSecond);
        if (left > 0 && !m_stop)
            MsgWaitForMultipleObjects(1, &m_wake, FALSE, static_cast<DWORD>((left + 999) / 1000), QS_ALLINPUT);
        // Plug-ins may have windows.
        MSG message;
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
    }
}

void LiveDownload::TakeNotes() {
    std::vector<std::unique_ptr<CPropertyDB>> notes;
    {
        const std::lock_guard lock(m_lock);
        if (m_writer.HasBegun()) notes.swap(m_notes);
    }
    // The latest one says all that those before it say.
    if (!notes.empty()) m_writer.AddFacts(std::move(notes.back()));
}

void LiveDownload::Report() {
    const std::lock_guard lock(m_lock);
    m_news.lost = m_measurement.IsLost();
    m_news.made = m_measurement.Made();
    m_news.passed = m_measurement.Slot();
    m_news.missing = m_measurement.Missing();
    m_news.waiting = m_writer.Waiting();
}

void LiveDownload::Tell(const std::string& sentence) {
    const std::lock_guard lock(m_lock);
    if (m_news.sentences.size() < kMostSentences) m_news.sentences.push_back(sentence);
}

std::string LiveDownload::End() {
    TakeNotes();
    const bool waits = m_writer.HasBegun() && m_writer.Close() != ERROR_SUCCESS;
    if (waits) {
        const RecordingWriter::Loss loss = m_writer.Lost();
        if (loss.gap.missed > 0) m_measurement.Dropped(loss.gap);
        Tell(Say(Text::NotAllWritten, {std::to_string(loss.readings), m_writingFails}));
    }
    const std::string failure = ToUtf8(m_measurement.LastFailure());
    switch (m_measurement.End()) {
        case Measurement::Ended::NeverConnected:
            return WhyNotOpened(m_plan.port, m_measurement.LastCode(), failure);
        case Measurement::Ended::GivenUp:
            return Say(Text::GivenUp, {ToUtf8(m_plan.port), failure});
        default:
            if (m_measurement.Missing() == 0) return {};
            return Say(Text::MissingHere,
                       {std::to_string(m_measurement.Missing()), CausesText(m_measurement.Gaps()->Counts(), m_facts)});
    }
}

void LiveDownload::OnReading(__int64 time, const std::vector<double>& values, const std::vector<BYTE>& flags) {
    m_writer.OnReading(time, values, flags);
}

void LiveDownload::OnEvent(const CRecordedEvent& event) {
    m_writer.OnEvent(event);
    if (event.kind == RE_LOST) {
        m_lost = true;
        Tell(LineLostSentence(m_plan.port, event.text));
    } else if (event.kind == RE_CONNECTED && std::exchange(m_lost, false)) {
        Tell(Say(Text::LineBack, {ToUtf8(m_plan.port)}));
    }
}

void LiveDownload::OnWriting(const std::string& path, DWORD error) {
    m_writingFails = error == ERROR_SUCCESS ? std::string() : Reason(error);
    Tell(WritingSentence(path, error));
}

void LiveDownload::OnFile(const std::string&) {
    const std::lock_guard lock(m_lock);
    m_news.begun = true;
}
