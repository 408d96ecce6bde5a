#include "host/gui/live_download.h"

#include "comm/comm_exception.h"
#include "host/logger_file.h"
#include "host/texts.h"

LiveDownload::LiveDownload(std::unique_ptr<ILogger> logger, DownloadPlan plan, Listener& listener)
    : m_logger(std::move(logger)), m_plan(std::move(plan)), m_listener(listener) {}

LiveDownload::~LiveDownload() { CVXTTask::Stop(); }

void LiveDownload::Stop() {
    m_stopped = true;
    m_logger->Abort();
    if (!m_busy && !m_over) RaiseShedule(0);
}

BOOL LiveDownload::End(const std::string& sentence) {
    m_over = true;
    m_logger->Disconnect();
    m_listener.OnDownloadEnd(m_stopped ? std::string() : sentence);
    return FALSE;
}

BOOL LiveDownload::OnShedule() {
    if (m_busy) return TRUE;  // this very task handles messages below, and one of them may run the scheduler
    if (m_stopped) return End({});
    m_busy = true;
    CDoubleArray values;
    std::string failure;
    const CVXTTime now = CVXTTime::Now();
    try {
        if (!m_connected) {
            m_logger->Connect(m_plan.port.c_str(), m_plan.timeout);
            m_connected = true;
            m_started = GetTickCount();
        }
        m_logger->ReadSample(values);
    } catch (CCommException* exception) {
        failure = Say(Text::PortFailed, {ToUtf8(m_plan.port), TakeMessage(exception)});
    }
    m_busy = false;
    if (!failure.empty()) return End(failure);
    m_listener.OnReading(now, values);
    ++m_made;
    if (m_stopped || m_made == m_plan.count) return End({});
    // Due times are counted from the start, so that slow readings do not push the later ones back.
    const unsigned __int64 due = static_cast<unsigned __int64>(m_made) * m_plan.interval;
    const DWORD gone = GetTickCount() - m_started;
    RaiseShedule(due > gone ? static_cast<DWORD>(due - gone) : 0);
    return TRUE;
}
