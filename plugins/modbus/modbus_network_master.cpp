#include "plugins/modbus/modbus_network_master.h"

#include <algorithm>
#include <atomic>
#include <utility>

#include "afx/string.h"
#include "comm/comm_exception.h"
#include "plugins/modbus/modbus_mbap.h"

namespace modbus {
namespace {
constexpr size_t kMostOpen = 128;  // an answer that is as many requests late is nobody's any more
// Of all masters: several may share a connection.
std::atomic<WORD> g_transaction{0};
constexpr UINT kNoModbusText = 8333;
}  // namespace

void NetworkMaster::Configure(const char* address, const CLineSettings& line, DWORD timeout) {
    Master::Configure(address, line, timeout);
    m_open.clear();
    m_received.clear();
    m_pending.clear();
}

void NetworkMaster::Begin() {
    // What came since the last reading. Where everything was answered, and nobody else asks, that is nothing.
    if (m_open.empty() && m_received.empty() && !m_transport.IsShared()) return;
    constexpr std::chrono::seconds kAtMost{1};
    for (const TimePoint limit = m_transport.Now() + kAtMost; m_transport.Now() < limit && Receive({});) continue;
}

Master::End NetworkMaster::Exchange(const Request& request, Question question) {
    const TimePoint sent = m_transport.Now(), deadline = sent + StateOf(request.slave).timeout;
    if (m_open.size() == kMostOpen) m_open.erase(m_open.begin());
    const WORD transaction = ++g_transaction;
    m_open.push_back({transaction, question, request, sent});
    m_transport.Send(NetworkFrame(transaction, request.slave, RequestMessage(request)), deadline);
    while (Receive(deadline) && !m_answered && m_transport.Now() < deadline) continue;
    if (m_answered) return End::Answered;
    if (!m_received.empty()) Break();
    return m_anythingCame ? End::Damaged : End::Silence;
}

bool NetworkMaster::Receive(TimePoint until) {
    if (!m_transport.Receive(m_received, until)) return false;
    for (;;) {
        WORD transaction = 0;
        Answer answer;
        size_t used = 0;
        const NetworkEnd end = FirstAnswer(m_received, transaction, answer, used);
        if (end == NetworkEnd::Broken) Break();
        if (end == NetworkEnd::More) break;
        m_received.erase(m_received.begin(), m_received.begin() + static_cast<std::ptrdiff_t>(used));
        m_pending.emplace_back(transaction, std::move(answer));
    }
    if (!m_received.empty()) return true;
    for (auto& [transaction, answer] : m_pending) Take(transaction, std::move(answer));
    m_pending.clear();
    return true;
}

void NetworkMaster::Break() {
    m_transport.Close();
    CString text;
    text.LoadString(kNoModbusText);
    OrvikThrowCommException(CCommException::BadProtocol, text);
}

void NetworkMaster::Take(WORD transaction, Answer answer) {
    const auto open =
        std::find_if(m_open.begin(), m_open.end(), [&](const Open& each) { return each.transaction == transaction; });
    if (open == m_open.end() || !answer.Fits(open->request)) {
        m_anythingCame = true;  // with the number of no request, or of one that it does not answer
        return;
    }
    const Open answered = std::move(*open);
    m_open.erase(open);
    Hear(answer);
    const Duration took = m_transport.Now() - answered.sent;
    if (took > StateOf(answer.slave).timeout) TellLate(took);
    Deliver(answered.question, std::move(answer));
}

}  // namespace modbus
