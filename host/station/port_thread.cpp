#include "host/station/port_thread.h"

#include <algorithm>
#include <limits>
#include <system_error>

#include "host/words/texts.h"

namespace {
constexpr __int64 kSlack = 30 * kSecond;  // of a thread that only waits
constexpr __int64 kLongestWait = kSecond;
}  // namespace

PortThread::PortThread(std::string port, IMeasurementClock& clock)
    : m_port(std::move(port)),
      m_clock(clock),
      m_wake(CreateEventA(nullptr, FALSE, FALSE, nullptr)),
      m_until(clock.Steady() + kSlack) {
    try {
        m_thread = std::thread([this] { Main(); });
    } catch (const std::system_error&) {
        CloseHandle(m_wake);
        throw Failure{kFileFailed, Say(Text::StationThreads, {ToUtf8(m_port)})};
    }
}

PortThread::~PortThread() {
    m_quit = true;
    Wake();
    if (m_thread.joinable()) {
        m_thread.join();
        CloseHandle(m_wake);
    }
}

void PortThread::Wake() { SetEvent(m_wake); }

void PortThread::Add(LoggerRun& run) {
    {
        const std::lock_guard lock(m_lock);
        m_new.push_back(&run);
    }
    Wake();
}

void PortThread::TakeNew() {
    const std::lock_guard lock(m_lock);
    m_runs.insert(m_runs.end(), m_new.begin(), m_new.end());
    m_new.clear();
}

void PortThread::Main() {
    for (;;) {
        TakeNew();
        if (m_quit && m_runs.empty()) return;
        const __int64 now = m_clock.Steady();
        m_until = now + kSlack;
        const auto first = std::min_element(m_runs.begin(), m_runs.end(),
                                            [](const LoggerRun* a, const LoggerRun* b) { return a->NextDue() < b->NextDue(); });
        const __int64 due = first != m_runs.end() ? (*first)->NextDue() : now + kLongestWait;
        const __int64 left = std::min(due - now, kLongestWait);
        if (left > 0) {
            MsgWaitForMultipleObjects(1, &m_wake, FALSE, static_cast<DWORD>((left + 999) / 1000), QS_ALLINPUT);
            MSG message;
            while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
            // Whoever is to end does so now, not when it is due.
            for (LoggerRun* const run : m_runs) {
                if (run->IsAskedToEnd()) run->Run();
            }
        } else {
            m_until = now + (*first)->Bound();
            (*first)->Run();
        }
        // One that is over may be gone any moment, once the main thread has heard of it.
        std::erase_if(m_runs, [](LoggerRun* run) { return run->IsOver() && (run->SayGoodbye(), true); });
    }
}
