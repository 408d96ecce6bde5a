#include "plugins/text/text_reader.h"

#include <algorithm>

#include "comm/comm_exception.h"

namespace text {
namespace {
using namespace std::chrono_literals;
// More than this that has waited may be a full buffer: there is a hole behind it, or a far end that still sends what is old.
constexpr size_t kMuch = 2048;
constexpr auto kSettled = 50ms;
constexpr auto kOldHalf = 10s;
constexpr int kPatience = 3, kTellable = 10;  // time-outs
constexpr size_t kMostAtOnce = 1 << 20;       // bytes that are thrown away before the clock is looked at
}  // namespace

Reader::Reader(const Description& description, ITransport& transport)
    : m_description(description),
      m_transport(transport),
      m_splitter(description.end, description.longest),
      m_echo(Trimmed(std::string_view(description.ask).substr(0, description.ask.find_last_not_of("\r\n") + 1))) {}

void Reader::Opened(DWORD timeout) {
    m_timeout = std::chrono::milliseconds(std::max<DWORD>(timeout, 1));
    m_character = std::chrono::microseconds(
        static_cast<long long>(1e6 * m_description.line.BitsPerCharacter() / m_description.line.baud) + 1);
    Forget();
    m_skip = m_description.skip;
    m_opened = true;
}

// What came so far is no beginning of a line.
void Reader::Forget() {
    m_splitter = Splitter(m_description.end, m_description.longest);
    m_received.clear();
    m_taken = 0;
}

Reader::Failure Reader::Read(const std::vector<BYTE>& due, std::vector<Outcome>& outcomes) {
    outcomes.clear();
    Failure failure = m_description.ask.empty() ? Listen(due, outcomes) : Ask(due, outcomes);
    m_looked = m_transport.Now();
    return failure;
}

Reader::Failure Reader::Listen(const std::vector<BYTE>& due, std::vector<Outcome>& outcomes) {
    m_came = 0;
    Discard(m_transport.Now());
    if (m_came > kMuch) {
        // A far end that was held up goes on with what it had to say then.
        const TimePoint limit = m_transport.Now() + m_timeout;
        for (size_t before = 0; before != m_came && m_transport.Now() < limit;) {
            before = m_came;
            Discard(std::min(limit, m_transport.Now() + kSettled));
        }
    }
    const bool old = m_splitter.HasHalf() && m_transport.Now() - m_looked > kOldHalf;
    if (m_opened || m_came > kMuch || old) m_splitter.Drop();
    m_opened = false;
    // Twice its own time: one line may just have been missed.
    const Duration wait = std::max<Duration>(m_timeout, 2 * std::chrono::milliseconds(m_description.every) + 500ms);
    return Await(m_transport.Now() + wait, true, m_watch, due, outcomes);
}

Reader::Failure Reader::Ask(const std::vector<BYTE>& due, std::vector<Outcome>& outcomes) {
    m_came = 0;
    if (Discard(m_transport.Now()) > 0 && m_owed) {
        m_owed = false;
        TellLate(m_transport.Now() - m_asked);
    }
    bool doubtful = m_owed;
    Failure failure;
    for (int attempt = doubtful ? -1 : 0; attempt < kAttempts; ++attempt) {
        const bool counts = attempt >= 0;
        Forget();
        const auto& ask = m_description.ask;
        // The port takes the question at once; it is on the line for as long as its characters last.
        m_asked = m_transport.Now() + static_cast<int>(ask.size()) * m_character;
        m_owed = true;
        m_transport.Send({reinterpret_cast<const BYTE*>(ask.data()), ask.size()}, m_asked + m_timeout);
        failure = Await(m_asked + kPatience * m_timeout, false, counts ? m_watch : nullptr, due, outcomes);
        if (failure.code == CCommException::ReceiveTimeout || failure.why == Sentence::HalfLine) return failure;
        TellLate(m_transport.Now() - m_asked);
        if (!counts) continue;
        if (failure.code == 0) break;
        // A line that was no answer: the answer may still come.
        doubtful = true;
    }
    if (doubtful) {
        for (const TimePoint until = m_transport.Now() + m_timeout; m_transport.Now() < until;) Discard(until);
    }
    m_owed = false;
    return failure;
}

void Reader::TellLate(Duration took) {
    // What was found much later says nothing of when it came.
    if (m_watch == nullptr || took <= m_timeout || took > kTellable * m_timeout) return;
    m_watch->OnLateAnswer(static_cast<DWORD>(std::chrono::ceil<std::chrono::milliseconds>(took).count()));
}

// The lines of one reading. `again`: what is bad is passed over as long as there is time.
Reader::Failure Reader::Await(TimePoint until, bool again, IReadingWatch* watch, const std::vector<BYTE>& due,
                              std::vector<Outcome>& outcomes) {
    const Duration wait = until - m_transport.Now();
    const TimePoint limit = until + static_cast<int>(m_description.lines - 1) * wait;
    std::vector<std::string> lines;
    Failure failure{CCommException::ReceiveTimeout, Sentence::None, {}};
    Splitter::Line line;
    while (Next(line, until)) {
        Failure bad;
        const Verdict verdict = Judge(line, bad);
        if (verdict == Verdict::PassedOver) continue;
        if (verdict == Verdict::Good) {
            const bool first = line.text.starts_with(m_description.first);
            if (!m_description.first.empty() && first) lines.clear();
            if (lines.empty() && !first) continue;
            lines.push_back(std::move(line.text));
            if (lines.size() < m_description.lines) {
                until = std::min(limit, m_transport.Now() + wait);
                continue;
            }
            for (std::string& whole : lines) {
                std::string_view rest = whole;
                TakeChecksum(m_description.checksum, rest);
                whole.resize(rest.size());
            }
            outcomes = ReadFields(m_description, lines);
            const Outcome* worst = nullptr;
            bool any = false;
            for (size_t i = 0; i < outcomes.size(); ++i) {
                if (i < due.size() && due[i] == 0) continue;
                any |= outcomes[i].IsValue();
                if (worst == nullptr && !outcomes[i].IsValue()) worst = &outcomes[i];
            }
            if (any || worst == nullptr) {
                if (watch != nullptr) watch->OnAnswer();
                return {};
            }
            bad = {CCommException::IllegalResponse, worst->why, worst->text};
        }
        failure = std::move(bad);
        lines.clear();
        outcomes.clear();
        if (!again) return failure;
    }
    if (failure.code != CCommException::ReceiveTimeout || !m_splitter.HasHalf()) return failure;
    const std::string half = Shown(m_splitter.Half());
    if (m_splitter.IsHalfTooLong())
        return {CCommException::BadProtocol, Sentence::TooLong,
                Say(Sentence::TooLong, {std::to_string(m_description.longest), half})};
    return {CCommException::BadProtocol, Sentence::HalfLine, Say(Sentence::HalfLine, {half})};
}

// Whether a line counts, and why it is none.
Reader::Verdict Reader::Judge(const Splitter::Line& line, Failure& failure) const {
    if (!line.text.starts_with(m_description.start)) return Verdict::PassedOver;
    const auto bad = [&](Sentence why, std::initializer_list<std::string_view> arguments) {
        failure = {CCommException::BadProtocol, why, Say(why, arguments)};
        return Verdict::Bad;
    };
    if (line.cut) return bad(Sentence::TooLong, {std::to_string(m_description.longest), Shown(line.text)});
    if (!m_echo.empty() && Trimmed(line.text) == m_echo) return Verdict::PassedOver;
    std::string_view rest = line.text;
    switch (TakeChecksum(m_description.checksum, rest)) {
        case ChecksumResult::Missing:
            return bad(Sentence::NoChecksum, {Shown(line.text)});
        case ChecksumResult::Wrong:
            return bad(Sentence::WrongChecksum, {Shown(line.text)});
        case ChecksumResult::Right:
            break;
    }
    return Verdict::Good;
}

// The next line of those that come until then; false when there is none.
bool Reader::Next(Splitter::Line& line, TimePoint until) {
    do {
        if (Take(line)) return true;
        // The clock is looked at as well: a line that chatters without an end always has something.
    } while (m_transport.Now() < until && m_transport.Receive(m_received, until));
    return false;
}

bool Reader::Take(Splitter::Line& line) {
    while (m_taken < m_received.size()) {
        bool whole = false;
        const char* const bytes = reinterpret_cast<const char*>(m_received.data());
        m_taken += m_splitter.Take({bytes + m_taken, m_received.size() - m_taken}, line, whole);
        if (!whole) continue;
        if (m_skip == 0) return true;
        --m_skip;
    }
    m_received.clear();
    m_taken = 0;
    return false;
}

// Throws lines away, what is there already and what comes until then, and tells how many there were.
size_t Reader::Discard(TimePoint until) {
    size_t lines = 0;
    Splitter::Line line;
    for (size_t bytes = 0; bytes < kMostAtOnce;) {
        while (Take(line)) ++lines;
        if (!m_transport.Receive(m_received, until)) break;
        bytes += m_received.size();
        m_came += m_received.size();
    }
    while (Take(line)) ++lines;
    return lines;
}

}  // namespace text
