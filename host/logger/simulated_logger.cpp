#include "host/logger/simulated_logger.h"

#include <algorithm>

namespace {
// Longer than any request: what is older is none any more.
constexpr size_t kMostKept = 1024;
}  // namespace

SimulatedLogger::SimulatedLogger(std::unique_ptr<ILoggerSimulator> simulator, LineFaults faults)
    : m_simulator(std::move(simulator)), m_faults(std::move(faults)) {}

void SimulatedLogger::SetLine(const std::string& address) {
    const std::lock_guard lock(m_lock);
    m_simulator->SetLine(address.c_str());
}

bool SimulatedLogger::Receive(Asker& asker, const BYTE* data, size_t size, LineFaults::Fate& answer) {
    const std::lock_guard lock(m_lock);
    CByteArray reply;
    std::vector<BYTE>& kept = asker.m_unanswered;
    kept.insert(kept.end(), data, data + size);
    if (kept.size() > kMostKept) kept.erase(kept.begin(), kept.end() - kMostKept);
    if (m_last == &asker) {
        m_simulator->Receive(data, size, reply);
    } else {
        m_simulator->Reset();
        m_simulator->Receive(kept.data(), kept.size(), reply);
    }
    m_last = &asker;
    if (reply.GetSize() == 0) return false;
    kept.clear();
    answer = m_faults.Next(reply);
    return true;
}

bool SimulatedLogger::Speak(LineFaults::Fate& said, DWORD& wait) {
    const std::lock_guard lock(m_lock);
    CByteArray out;
    wait = m_simulator->Speak(out);
    if (out.GetSize() == 0) return false;
    said = m_faults.Next(out);
    return true;
}
