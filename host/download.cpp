#include "host/download.h"

#include <algorithm>
#include <chrono>

#include "comm/comm_exception.h"
#include "host/logger_file.h"
#include "host/stop_request.h"
#include "host/texts.h"

namespace {
using Clock = std::chrono::steady_clock;

// Handles this thread's messages until the time has come, or something happened that a reading must look at.
void WaitUntil(Clock::time_point due, ILogger& logger) {
    while (!StopRequest::Asked() && logger.Connection().IsConnected()) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(due - Clock::now()).count();
        if (left <= 0) return;
        constexpr long long kSlice = 50;  // so that the wish to stop is soon seen
        MsgWaitForMultipleObjects(0, nullptr, FALSE, static_cast<DWORD>(std::min<long long>(left, kSlice)), QS_ALLINPUT);
        MSG message;
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
    }
}

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
    ProgressLine progress;
    const auto started = Clock::now();
    std::optional<Failure> ended;
    for (DWORD i = 0; i < plan.count && !ended; ++i) {
        // Due times are counted from the start, so that slow readings do not push the later ones back.
        WaitUntil(started + std::chrono::milliseconds(static_cast<long long>(i) * plan.interval), *logger);
        progress.Show(Say(Text::Progress, {std::to_string(i + 1), std::to_string(plan.count)}));
        CDoubleArray values;
        try {
            if (StopRequest::Asked()) {
                ended = Failure{kCommunicationFailed, Say(Text::Stopped, {std::to_string(session.Count())})};
                break;
            }
            const CVXTTime now = CVXTTime::Now();
            logger->ReadSample(values);
            session.Add(now, values);
        } catch (CCommException* failure) {
            const std::string text = TakeMessage(failure);
            ended = Failure{kCommunicationFailed, StopRequest::Asked() ? Say(Text::Stopped, {std::to_string(session.Count())})
                                                                       : Say(Text::PortFailed, {ToUtf8(plan.port), text})};
        }
    }
    logger->Disconnect();
    return ended;
}
