#include "plugins/modbus/modbus_serial_master.h"

#include <algorithm>
#include <utility>

#include "plugins/modbus/modbus_plan.h"
#include "plugins/support/line_book.h"

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

SerialMaster::SerialMaster(ITransport& transport, const Description& description) : Master(transport, description) {
    for (const Block& block : PlanBlocks(description)) m_usual.push_back(block.request);
}

void SerialMaster::Configure(const char* address, const CLineSettings& line, DWORD timeout) {
    Master::Configure(address, line, timeout);
    if (!m_books || m_line != address) m_books = orvik::BookOfLine<LineBooks>(m_line = address);
    // 3.5 characters of silence separate frames; above 19,200 bit/s a fixed 1.75 ms (the serial line guide, 2.5.1.1).
    m_character = std::chrono::microseconds(static_cast<long long>(1e6 * line.BitsPerCharacter() / line.baud) + 1);
    m_gap = line.baud > 19200 ? std::chrono::microseconds(1750) : m_character * 7 / 2;
    for (const auto& [slave, state] : States()) BooksOf(slave).ledger.SetTimeout(state.timeout);
    m_strange = m_transport.IsShared();
    m_received.clear();
}

void SerialMaster::Begin() {
    // What came since the last reading, nobody knows when.
    const TimePoint limit = m_transport.Now() + States().begin()->second.timeout;
    while (m_transport.Now() < limit && Receive({}, false)) continue;
    if (std::exchange(m_strange, false)) Suspect();
}

// As if all had been asked for before, by somebody whose answers are still to come.
void SerialMaster::Suspect() {
    for (auto request = m_usual.begin(); request != m_usual.end(); ++request) {
        const auto alike = [&](const Request& other) {
            return other.slave == request->slave && other.function == request->function && other.count == request->count;
        };
        if (std::none_of(m_usual.begin(), request, alike))
            BooksOf(request->slave).ledger.Sent(*request, Ledger::kUnknown, m_transport.Now());
    }
}

Master::End SerialMaster::Exchange(const Request& request, Question question) {
    Ledger& ledger = BooksOf(request.slave).ledger;
    const Duration timeout = StateOf(request.slave).timeout;
    AwaitSilence(timeout);
    m_anythingCame = m_answered = m_doubtful = false;
    m_refusal = 0;
    m_unread = 0;
    const bool probe = question == Ledger::kProbe;
    const std::vector<BYTE> frame = Encode(request);
    // The port takes the request at once; it is on the line for as long as its characters last.
    const TimePoint sent = m_transport.Now() + static_cast<int>(frame.size()) * m_character;
    ledger.Sent(request, question, sent);
    m_transport.Send(frame, sent + timeout);
    for (;;) {
        // What is owed from before comes first, so a probe is waited for as long as anything comes, if that holds up nobody else.
        const TimePoint deadline = probe && IsAlone() ? ledger.SilentAt() : sent + ledger.Wait();
        const bool brokenOff = m_unread >= kShortestAnswer;
        const bool came = Receive(brokenOff ? std::min(deadline, m_lastByte + m_gap + kBrokenOff) : deadline);
        if (m_answered) return End::Answered;
        if (m_doubtful) return End::Doubtful;
        if (came && m_transport.Now() < deadline) continue;
        return m_anythingCame ? End::Damaged : End::Silence;
    }
}

void SerialMaster::Clear(const Request* request, Question question, BYTE slave) {
    Books& books = BooksOf(slave);
    while (const std::optional<Request> rival = books.ledger.Rival(request, question)) {
        if (!books.ledger.ProbesHelp()) {
            AwaitLongSilence(books.ledger);
            books.ledger.Forget();
            return;
        }
        if (books.probeInVain) return;
        // No register at all, since one that no channel names might change by being read: every logger has to refuse that, and
        // its refusal tells the function.
        const BYTE other = rival->function == kReadHoldingRegisters ? kReadInputRegisters : kReadHoldingRegisters;
        const End end = Try({slave, other, 0, 0}, Ledger::kProbe);
        books.probeInVain = end == End::Silence || end == End::Damaged;
    }
}

void SerialMaster::Finish() {
    for (const auto& [address, state] : States()) {
        if (!state.silent) Clear(nullptr, 0, address);
        // Several would wait for one.
        if (IsAlone() && BooksOf(address).ledger.Rival(nullptr, 0)) AwaitLongSilence(BooksOf(address).ledger);
    }
}

void SerialMaster::AwaitLongSilence(const Ledger& ledger) {
    while (m_transport.Now() < ledger.SilentAt()) Receive(ledger.SilentAt());
}

void SerialMaster::AwaitSilence(Duration atMost) {
    // A line that chatters for ever gets its request all the same after one time-out.
    const TimePoint limit = m_transport.Now() + atMost;
    while (m_transport.Now() < limit && Receive(std::min(limit, m_lastByte + m_gap))) continue;
}

bool SerialMaster::Receive(TimePoint until, bool prompt) {
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

void SerialMaster::Take(const Answer& answer, bool prompt) {
    const auto books = m_books->find(answer.slave);
    if (books == m_books->end()) return;
    const Ledger::Verdict verdict = books->second.ledger.Answered(answer, m_lastByte, prompt);
    if (!verdict.owed) return;
    books->second.probeInVain = false;
    if (States().count(answer.slave) == 0) return;  // asked by who shares the line
    Hear(answer);
    TellLate(verdict.late);
    m_doubtful |= !verdict.owner && verdict.newest == m_asked;
    if (verdict.owner) Deliver(*verdict.owner, answer);
}

}  // namespace modbus
