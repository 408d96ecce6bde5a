#include "host/download.h"

#include <algorithm>
#include <chrono>

#include "comm/comm_exception.h"
#include "comm/task.h"
#include "host/logger_file.h"
#include "host/stop_request.h"
#include "host/texts.h"
#include "ui/progress_bar.h"

namespace {
using Clock = std::chrono::steady_clock;

// The sentence for a port that could not be opened: the most telling one first.
std::string WhyNotOpened(const std::string& port, CCommException* failure) {
    const std::string name = ToUtf8(port);
    const bool refused = failure->m_nError == CCommException::DeviceNotOpen;
    const std::string text = TakeMessage(failure);
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

// The readings of one download: a task of the scheduler, which makes one reading a run and stays registered until the last one.
class Readings : public CVXTTask {
public:
    Readings(ILogger& logger, const DownloadPlan& plan, Session& session) : m_logger(logger), m_plan(plan), m_session(session) {
        m_bar.Start(static_cast<LONG>(plan.count), nullptr, nullptr, nullptr, TRUE, nullptr, TRUE);
    }

    // Handles this thread's messages and runs the scheduler until the readings are made. Gives what ended them early.
    std::optional<Failure> MakeAll() {
        Start(0);
        while (IsRunning()) {
            const long long left = MillisecondsLeft();
            // What a reading must look at does not wait for its due time, which a clock set back might put off.
            if (StopRequest::Asked() || !m_logger.Connection().IsConnected() || left == 0) {
                RaiseShedule(0);
            } else {
                constexpr long long kSlice = 50;  // so that the wish to stop is soon seen
                MsgWaitForMultipleObjects(0, nullptr, FALSE, static_cast<DWORD>(std::min(left, kSlice)), QS_ALLINPUT);
            }
            MSG message;
            while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
            OrvikShedule();
        }
        return std::move(m_ended);
    }

    BOOL OnShedule() override {
        const std::string text = Say(Text::Progress, {std::to_string(m_made + 1), std::to_string(m_plan.count)});
        m_bar.Feed(static_cast<LONG>(m_made), text.c_str(), nullptr, FALSE);  // messages are handled in MakeAll
        m_progress.Show(text);
        m_ended = MakeOne();
        if (m_ended || ++m_made == m_plan.count) return FALSE;
        RaiseShedule(static_cast<DWORD>(MillisecondsLeft()));
        return TRUE;
    }

private:
    // Until the next reading. Due times are counted from the start, so that slow readings do not push the later ones back.
    long long MillisecondsLeft() const {
        const auto due = m_started + std::chrono::milliseconds(static_cast<long long>(m_made) * m_plan.interval);
        return std::max<long long>(std::chrono::ceil<std::chrono::milliseconds>(due - Clock::now()).count(), 0);
    }

    std::optional<Failure> MakeOne() {
        const auto stopped = [&] {
            return Failure{kCommunicationFailed, Say(Text::Stopped, {std::to_string(m_session.Count())})};
        };
        if (StopRequest::Asked()) return stopped();
        try {
            const CVXTTime now = CVXTTime::Now();
            CDoubleArray values;
            m_logger.ReadSample(values);
            m_session.Add(now, values);
        } catch (CCommException* failure) {
            const std::string text = TakeMessage(failure);
            if (StopRequest::Asked()) return stopped();
            return Failure{kCommunicationFailed, Say(Text::PortFailed, {ToUtf8(m_plan.port), text})};
        }
        return std::nullopt;
    }

    ILogger& m_logger;
    const DownloadPlan& m_plan;
    Session& m_session;
    CProgressBar m_bar;
    ProgressLine m_progress;
    const Clock::time_point m_started = Clock::now();
    DWORD m_made = 0;
    std::optional<Failure> m_ended;
};
}  // namespace

std::optional<Failure> Download(CHostApp& app, CPropertyDB& description, const DownloadPlan& plan, Session& session) {
    const std::unique_ptr<ILogger> logger = MakeLogger(app, description);
    if (!plan.traceFile.empty()) {
        app.StartTrace(plan.traceFile);
        logger->Port().m_bTraceEnabled = TRUE;
        logger->Port().m_bTraceHex = plan.traceHex;
    }
    const StopRequest stop(logger.get());
    try {
        logger->Connect(plan.port.c_str(), plan.timeout);
    } catch (CCommException* failure) {
        return Failure{kCommunicationFailed, WhyNotOpened(plan.port, failure)};
    }
    std::optional<Failure> ended = Readings(*logger, plan, session).MakeAll();
    logger->Disconnect();
    return ended;
}
