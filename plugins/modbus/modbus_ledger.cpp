#include "plugins/modbus/modbus_ledger.h"

#include <algorithm>

namespace modbus {
namespace {
constexpr std::chrono::milliseconds kMargin{50};
constexpr std::chrono::seconds kLongest{60};  // no silence is waited for longer
constexpr size_t kMostBooked = 128;           // of requests on the books
constexpr int kInVain = 8;                    // probes, until they are given up; bad lines lose several one after the other
}  // namespace

void Ledger::Sent(const Request& request, Question question, TimePoint sent) {
    if (m_open.size() == kMostBooked) m_open.erase(m_open.begin());
    m_open.push_back({request, question, sent});
    m_lastSent = sent;
}

Ledger::Verdict Ledger::Answered(const Answer& answer, TimePoint arrived, bool prompt) {
    const auto fits = [&](const Open& open) { return answer.Fits(open.request); };
    const auto first = std::find_if(m_open.begin(), m_open.end(), fits);
    if (first == m_open.end()) return {};
    const Open oldest = *first;
    const Open newest = *std::find_if(m_open.rbegin(), m_open.rend(), fits);
    const auto others = [&](const Open& open) { return fits(open) && open.question != oldest.question; };

    Verdict verdict;
    verdict.owed = true;
    if (std::none_of(m_open.begin(), m_open.end(), others)) verdict.owner = oldest.question;
    verdict.newest = newest.question;
    // Late for sure: even its newest owner's time is over.
    if (arrived - newest.sent > m_timeout) verdict.late = arrived - oldest.sent;
    // At least this long it took, whoever's it is.
    if (prompt) m_longest = std::max(arrived - newest.sent, m_longest - m_longest / 64);
    m_lastAnswer = arrived;

    // Answers come in the order of the requests: what was sent before the first possible owner will not be answered any more, nor
    // will that one, whichever it was.
    m_probeAnswered |= verdict.owner == kProbe;
    m_probesPassedOver += std::any_of(m_open.begin(), first, [](const Open& open) { return open.question == kProbe; });
    m_open.erase(m_open.begin(), first + 1);
    return verdict;
}

std::optional<Request> Ledger::Rival(const Request* request, Question question) const {
    const auto found = std::find_if(m_open.rbegin(), m_open.rend(), [&](const Open& open) {
        if (request == nullptr) return open.question != kProbe;
        return open.question != question && open.request.function == request->function;
    });
    return found == m_open.rend() ? std::nullopt : std::optional(found->request);
}

bool Ledger::ProbesHelp() const { return m_probeAnswered || m_probesPassedOver < kInVain; }

Duration Ledger::Wait() const { return std::max(m_timeout, std::min<Duration>(m_longest + m_longest / 2 + kMargin, kLongest)); }

TimePoint Ledger::SilentAt() const { return std::max(m_lastSent, m_lastAnswer) + std::max(3 * m_timeout, Wait()); }

}  // namespace modbus
