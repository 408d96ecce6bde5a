#include "plugins/modbus/modbus_master.h"

#include <algorithm>
#include <utility>

#include "afx/string.h"
#include "comm/comm_exception.h"

namespace modbus {
namespace {
// An answer comes in one piece; a pause this much longer than a frame gap within one means that the rest was lost. USB adapters
// deliver in steps of 16 ms.
constexpr std::chrono::milliseconds kBrokenOff{100};
// Fewer unreadable bytes than the shortest answer has are noise: its answer may still come.
constexpr std::ptrdiff_t kShortestAnswer = 5;
// Enough for the longest answer; a line that never falls silent must not grow the buffer.
constexpr size_t kKept = 256;
}  // namespace

void Master::Configure(const CLineSettings& line, DWORD timeout) {
    // 3.5 characters of silence separate frames; above 19,200 bit/s a fixed 1.75 ms (the serial line guide, 2.5.1.1).
    m_character = std::chrono::microseconds(static_cast<long long>(1e6 * line.BitsPerCharacter() / line.baud) + 1);
    m_gap = line.baud > 19200 ? std::chrono::microseconds(1750) : m_character * 7 / 2;
    m_timeout = std::chrono::milliseconds(std::max<DWORD>(timeout, 1));
    m_ledger.SetTimeout(m_timeout);
    m_strange = m_transport.IsShared();
    m_received.clear();
}

void Master::Read(std::span<const Request> requests, std::vector<Outcome>& outcomes) {
    outcomes.assign(requests.size(), {});
    m_outcomes = &outcomes;
    m_told = m_silent = false;
    try {
        // What came since the last reading, nobody knows when.
        for (const TimePoint limit = m_transport.Now() + m_timeout; m_transport.Now() < limit && Receive({}, false);) continue;
        if (std::exchange(m_strange, false)) Suspect(requests);
        for (size_t i = 0; i < requests.size(); ++i) Ask(requests[i], i);
        Finish();
    } catch (...) {
        m_firstQuestion += requests.size();
        throw;
    }
    m_firstQuestion += requests.size();
}

// As if each of these had been asked for before, by somebody whose answers are still to come.
void Master::Suspect(std::span<const Request> requests) {
    for (size_t i = 0; i < requests.size(); ++i) {
        const auto alike = [&](const Request& other) {
            return other.function == requests[i].function && other.count == requests[i].count;
        };
        if (std::none_of(requests.begin(), requests.begin() + static_cast<std::ptrdiff_t>(i), alike))
            m_ledger.Sent(requests[i], Ledger::kUnknown, m_transport.Now());
    }
}

void Master::Ask(const Request& request, size_t index) {
    bool damaged = false, silent = true;
    const Outcome& outcome = (*m_outcomes)[index];
    const Ledger::Question question = m_firstQuestion + index;
    for (int attempts = 0;;) {
        if (!m_silent) Clear(&request, question);
        if (!outcome.registers.empty()) return;  // the answer to a former attempt
        const End end = Exchange(request, question);
        silent &= end == End::Silence;
        damaged |= m_anythingCame && end != End::Doubtful;
        // One that could be another's says nothing about this request. Each takes an older one off the books, so they come to an
        // end.
        if (end == End::Doubtful) continue;
        ++attempts;
        if (end == End::Answered) {
            const bool passing = m_refusal == kAcknowledge || m_refusal == kBusy;
            const bool gateway = m_refusal == kNoPath || m_refusal == kNoTarget;
            if (attempts >= (passing ? kAttempts : gateway ? 2 : 1)) break;
        } else if (attempts >= (m_silent ? 1 : kAttempts)) {
            break;
        }
    }
    m_silent |= silent;
    if (outcome.registers.empty()) Explain((*m_outcomes)[index], damaged);
}

Master::End Master::Exchange(const Request& request, Ledger::Question question) {
    AwaitSilence();
    const bool probe = question == Ledger::kProbe;
    const std::vector<BYTE> frame = Encode(request);
    // The port takes the request at once; it is on the line for as long as its characters last.
    const TimePoint sent = m_transport.Now() + static_cast<int>(frame.size()) * m_character;
    m_asked = question;
    m_ledger.Sent(request, question, sent);
    m_refusal = 0;
    m_answered = m_doubtful = m_anythingCame = false;
    m_unread = 0;
    m_transport.Send(frame, sent + m_timeout);
    for (;;) {
        // What is owed from before comes first, so a probe is waited for as long as anything comes.
        const TimePoint deadline = probe ? m_ledger.SilentAt() : sent + m_ledger.Wait();
        const bool brokenOff = m_unread >= kShortestAnswer;
        const bool came = Receive(brokenOff ? std::min(deadline, m_lastByte + m_gap + kBrokenOff) : deadline);
        if (m_answered) return End::Answered;
        if (m_doubtful) return End::Doubtful;
        if (came && m_transport.Now() < deadline) continue;
        return m_anythingCame ? End::Damaged : End::Silence;
    }
}

void Master::Explain(Outcome& outcome, bool damaged) const {
    outcome.code = m_refusal != 0 ? CCommException::IllegalResponse
                   : damaged      ? CCommException::BadProtocol
                                  : CCommException::ReceiveTimeout;
    if (m_refusal == 0) return;
    CString standard, text;
    standard.LoadString(832);  // "Illegal response"
    text.Format("%s (Modbus %u)", static_cast<const char*>(standard), static_cast<unsigned>(m_refusal));
    outcome.text = text;
}

void Master::Clear(const Request* request, Ledger::Question question) {
    while (const std::optional<Request> rival = m_ledger.Rival(request, question)) {
        if (!m_ledger.ProbesHelp()) {
            AwaitLongSilence();
            m_ledger.Forget();
            return;
        }
        if (m_probeInVain) return;
        // No register at all, since one that no channel names might change by being read: every logger has to refuse that, and
        // its refusal tells the function.
        const BYTE other = rival->function == kReadInputRegisters ? kReadHoldingRegisters : kReadInputRegisters;
        const End end = Exchange({rival->slave, other, 0, 0}, Ledger::kProbe);
        m_probeInVain = end == End::Silence || end == End::Damaged;
    }
}

void Master::Finish() {
    if (!m_silent) Clear(nullptr, 0);
    if (m_ledger.Rival(nullptr, 0)) AwaitLongSilence();
}

void Master::AwaitLongSilence() {
    while (m_transport.Now() < m_ledger.SilentAt()) Receive(m_ledger.SilentAt());
}

void Master::AwaitSilence() {
    // A line that chatters for ever gets its request all the same after one time-out.
    const TimePoint limit = m_transport.Now() + m_timeout;
    while (m_transport.Now() < limit && Receive(std::min(limit, m_lastByte + m_gap))) continue;
}

bool Master::Receive(TimePoint until, bool prompt) {
    const size_t before = m_received.size();
    if (!m_transport.Receive(m_received, until)) return false;
    m_lastByte = m_transport.Now();
    m_anythingCame = true;
    m_unread += static_cast<std::ptrdiff_t>(m_received.size() - before);
    size_t begin = 0, end = 0;
    while (const std::optional<Answer> answer = FindAnswer(m_received, begin, end)) {
        m_received.erase(m_received.begin(), m_received.begin() + static_cast<std::ptrdiff_t>(end));
        m_unread -= static_cast<std::ptrdiff_t>(end - begin);
        Take(*answer, prompt);
    }
    if (m_received.size() > 4 * kKept)
        m_received.erase(m_received.begin(), m_received.end() - static_cast<std::ptrdiff_t>(kKept));
    return true;
}

void Master::Take(const Answer& answer, bool prompt) {
    const Ledger::Verdict verdict = m_ledger.Answered(answer, m_lastByte, prompt);
    if (!verdict.owed) return;
    m_silent = m_probeInVain = false;
    if (verdict.late != Duration{} && m_watch != nullptr)
        m_watch->OnLateAnswer(static_cast<DWORD>(std::chrono::ceil<std::chrono::milliseconds>(verdict.late).count()));
    m_answered |= verdict.owner == m_asked;
    m_doubtful |= !verdict.owner && verdict.newest == m_asked;
    if (!verdict.owner) return;
    if (*verdict.owner < m_firstQuestion || *verdict.owner == Ledger::kUnknown)
        return;  // an earlier reading's: right, but too late
    Outcome& outcome = (*m_outcomes)[*verdict.owner - m_firstQuestion];
    if (answer.exception != 0) {
        if (*verdict.owner == m_asked) m_refusal = answer.exception;
        return;
    }
    if (!outcome.registers.empty()) return;  // the answer to a repetition
    outcome = {answer.registers, 0, {}};
    if (!std::exchange(m_told, true) && m_watch != nullptr) m_watch->OnAnswer();
}

}  // namespace modbus
