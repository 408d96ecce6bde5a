#include "plugins/modbus/modbus_master.h"

#include <algorithm>
#include <atomic>
#include <utility>

#include "afx/string.h"
#include "comm/comm_exception.h"

namespace modbus {
namespace {
constexpr std::chrono::seconds kLongestRest{60};
constexpr int kMostDoublings = 16;
constexpr UINT kIllegalResponseText = 832, kTimeoutText = 836, kBadProtocolText = 831, kSlaveText = 8331;

// Of all masters: several may share a line, and what is owed on it.
std::atomic<Ledger::Question> g_nextQuestion{1};

bool IsFromGateway(BYTE exception) { return exception == kNoPath || exception == kNoTarget; }
}  // namespace

Master::Master(ITransport& transport, const Description& description)
    : m_transport(transport), m_pauseOpen(std::chrono::milliseconds(description.pauseOpen)) {
    for (const Slave& slave : description.slaves) {
        State& state = m_states[slave.address];
        state.slave = slave;
        // Of several nobody knows yet who is there.
        state.silent = description.slaves.size() > 1;
    }
}

void Master::Configure(const char*, const CLineSettings&, DWORD timeout) {
    for (auto& [address, state] : m_states)
        state.timeout = std::chrono::milliseconds(std::max<DWORD>(state.slave.timeout != 0 ? state.slave.timeout : timeout, 1));
    m_notBefore = m_transport.Now() + m_pauseOpen;
}

void Master::Read(std::span<const Request> requests, std::vector<Outcome>& outcomes) {
    outcomes.assign(requests.size(), {});
    m_requests = requests;
    m_outcomes = &outcomes;
    m_told = false;
    m_firstQuestion = g_nextQuestion.fetch_add(requests.size());
    Begin();
    Choose();
    AskAll();
    Settle();
    Finish();
}

// Which slaves this reading asks.
void Master::Choose() {
    const bool nobody = std::all_of(m_states.begin(), m_states.end(), [](const auto& each) { return each.second.misses > 0; });
    for (auto& [address, state] : m_states) {
        state.due = state.heard = state.gone = state.putOff = false;
        if (IsAlone()) state.silent = false;
    }
    for (const Request& request : m_requests) {
        State& state = StateOf(request.slave);
        const DWORD every = DWORD{1} << std::min(std::max(state.misses - 1, 0), kMostDoublings);
        // Whoever writes means it now.
        state.due = nobody || IsAlone() || Writes(request.function) || state.misses == 0 || state.passedOver + 1 >= every ||
                    m_transport.Now() - state.asked >= kLongestRest;
    }
}

void Master::AskAll() {
    std::vector<size_t> later;
    for (const size_t i : Order()) {
        State& state = StateOf(m_requests[i].slave);
        if (!state.due || state.gone) {
            if (state.putOff) later.push_back(i);
            continue;
        }
        const bool here = IsAlone() || state.heard, again = state.misses == 0 && state.slave.attempts > 1 && !IsQuiet(i);
        Ask(i, here && (IsAlone() || again) ? state.slave.attempts : 1, here || !again);
        if (IsAlone() || state.heard) continue;
        state.gone = true;
        state.putOff = again;
        if (again) later.push_back(i);
    }
    for (auto& [address, state] : m_states) state.gone = false;
    for (const size_t i : later) {
        State& state = StateOf(m_requests[i].slave);
        if (!state.gone) Ask(i, IsQuiet(i) ? 1 : std::max(state.slave.attempts - 1, 1), true);
        state.gone = !state.heard;
    }
}

// Of several slaves' requests those that were not answered the last time come last, the longest ago first: a request that a slave
// never answers does not keep the others from being asked.
std::vector<size_t> Master::Order() const {
    std::vector<size_t> order(m_requests.size());
    for (size_t i = 0; i < order.size(); ++i) order[i] = i;
    const auto silentSince = [&](size_t i) {
        const auto quiet = m_quiet.find(PlaceOf(m_requests[i]));
        return quiet == m_quiet.end() ? 0 : quiet->second;
    };
    if (!m_quiet.empty())
        std::stable_sort(order.begin(), order.end(), [&](size_t a, size_t b) { return silentSince(a) < silentSince(b); });
    return order;
}

// `last`: when it is silent now, it is for this reading.
void Master::Ask(size_t index, int most, bool last) {
    const Request& request = m_requests[index];
    State& state = StateOf(request.slave);
    bool damaged = false, silent = true;
    const Outcome& outcome = (*m_outcomes)[index];
    const Question question = m_firstQuestion + index;
    for (int attempts = 0;;) {
        if (!state.silent) Clear(request, question);
        if (!outcome.data.empty()) return;  // the answer to a former attempt
        const End end = Try(request, question);
        silent &= end == End::Silence;
        damaged |= m_anythingCame && end != End::Doubtful;
        // One that could be another's says nothing about this request. Each takes an older one off the books, so they come to an
        // end.
        if (end == End::Doubtful) continue;
        ++attempts;
        if (end == End::Answered) {
            const bool passing = m_refusal == kAcknowledge || m_refusal == kBusy;
            const int worth = passing ? state.slave.attempts : IsFromGateway(m_refusal) ? std::min(most, 2) : 1;
            if (attempts >= worth) break;
        } else if (attempts >= (state.silent ? 1 : most)) {
            break;
        }
    }
    state.silent |= silent && last;
    if (m_refusal != 0 || !outcome.data.empty()) {
        m_quiet.erase(PlaceOf(request));
    } else if (last && !IsAlone()) {
        m_quiet[PlaceOf(request)] = ++m_silences;
    }
    if (!outcome.data.empty()) return;
    Explain((*m_outcomes)[index], state, damaged ? CCommException::BadProtocol : CCommException::ReceiveTimeout, m_refusal);
}

// What the reading says of its slaves.
void Master::Settle() {
    std::map<BYTE, bool> asked;
    for (size_t i = 0; i < m_requests.size(); ++i) {
        State& state = StateOf(m_requests[i].slave);
        Outcome& outcome = (*m_outcomes)[i];
        if (outcome.data.empty() && outcome.code == 0) Explain(outcome, state, CCommException::ReceiveTimeout, 0);
        if (!std::exchange(asked[m_requests[i].slave], true)) {
            state.passedOver = state.due ? 0 : state.passedOver + 1;
            if (state.due) state.asked = m_transport.Now();
            if (state.due) state.misses = state.heard ? 0 : state.misses + 1;
            if (state.due && !state.heard && !IsAlone()) state.silent = true;
        }
    }
}

Master::End Master::Try(const Request& request, Question question) {
    State& state = StateOf(request.slave);
    WaitUntil(std::max(m_notBefore, state.used + std::chrono::milliseconds(state.slave.pause)));
    m_asked = question;
    m_refusal = 0;
    m_answered = m_anythingCame = false;
    const End end = Exchange(request, question);
    state.used = m_transport.Now();
    return end;
}

void Master::Hear(const Answer& answer) {
    State& state = StateOf(answer.slave);
    state.silent = false;
    state.heard |= !IsFromGateway(answer.exception);
}

void Master::Deliver(Question owner, Answer answer) {
    m_answered |= owner == m_asked;
    // An earlier reading's is right, but too late; another master's is not ours to keep.
    if (owner < m_firstQuestion || owner - m_firstQuestion >= m_requests.size()) return;
    Outcome& outcome = (*m_outcomes)[static_cast<size_t>(owner - m_firstQuestion)];
    if (answer.exception != 0) {
        if (owner == m_asked) m_refusal = answer.exception;
        return;
    }
    if (!outcome.data.empty()) return;  // the answer to a repetition
    outcome = {std::move(answer.data), 0, {}};
    if (!std::exchange(m_told, true) && m_watch != nullptr) m_watch->OnAnswer();
}

void Master::TellLate(Duration late) const {
    if (late == Duration{} || m_watch == nullptr) return;
    m_watch->OnLateAnswer(static_cast<DWORD>(std::chrono::ceil<std::chrono::milliseconds>(late).count()));
}

Master::State& Master::StateOf(BYTE address) { return m_states.at(address); }

void Master::WaitUntil(TimePoint until) {
    while (m_transport.Now() < until) Receive(until);
}

void Master::Explain(Outcome& outcome, const State& state, int code, BYTE refusal) const {
    outcome.code = refusal != 0 ? int{CCommException::IllegalResponse} : code;
    CString details, part, standard, text;
    const auto add = [&](const CString& detail) { details += (details.IsEmpty() ? "" : ", ") + detail; };
    if (refusal != 0) part.Format("Modbus %u", static_cast<unsigned>(refusal)), add(part);
    if (!IsAlone()) {
        standard.LoadString(kSlaveText);
        part.Format(standard, static_cast<unsigned>(state.slave.address));
        add(part);
        if (!state.slave.name.empty()) add(state.slave.name.c_str());
    }
    if (details.IsEmpty()) return;
    standard.LoadString(refusal != 0                             ? kIllegalResponseText
                        : code == CCommException::ReceiveTimeout ? kTimeoutText
                                                                 : kBadProtocolText);
    text.Format("%s (%s)", static_cast<const char*>(standard), static_cast<const char*>(details));
    outcome.text = text;
}

}  // namespace modbus
