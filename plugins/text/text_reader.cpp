#include "plugins/text/text_reader.h"

#include <algorithm>
#include <utility>

#include "comm/comm_exception.h"
#include "plugins/support/line_book.h"
#include "plugins/text/text_letters.h"
#include "plugins/text/text_patience.h"

namespace text {
namespace {
using namespace std::chrono_literals;
constexpr int kPatience = 3, kTellable = 10, kForgotten = 20;  // time-outs
constexpr int kDead = 3;                                       // readings in vain
}  // namespace

Reader::Reader(const Description& description, ITransport& transport)
    : m_description(description),
      m_transport(transport),
      m_splitter(description.end, description.longest),
      m_echo(Trimmed(std::string_view(description.ask).substr(0, description.ask.find_last_not_of("\r\n") + 1))),
      m_line(std::make_shared<std::vector<Reader*>>(1, this)),
      m_stream(description, transport) {}

Reader::~Reader() { std::erase(*m_line, this); }

void Reader::Opened(const std::string& address, DWORD timeout) {
    std::erase(*m_line, this);
    m_line = orvik::BookOfLine<std::vector<Reader*>>(address);
    m_line->push_back(this);
    m_timeout = std::chrono::milliseconds(std::max<DWORD>(timeout, 1));
    m_character = std::chrono::microseconds(
        static_cast<long long>(1e6 * m_description.line.BitsPerCharacter() / m_description.line.baud) + 1);
    m_pause = std::clamp<Duration>(std::chrono::milliseconds(m_description.every) * 3 / 4, 250ms, 2s);
    Forget();
    m_skip = m_description.skip;
    m_opened = m_quiet = true;
    m_lastBytes = m_transport.Now();
    m_stream.Opened(Patience(), m_pause, m_character);
}

// How long a line is waited for: twice its own time, for one may just have been missed.
Reader::Duration Reader::Patience() const {
    return std::max<Duration>(m_timeout, 2 * std::chrono::milliseconds(m_description.every) + 500ms);
}

bool Reader::Follow() {
    m_follows = m_description.ask.empty();
    return m_follows;
}

// What came so far is no beginning of a line.
void Reader::Forget() {
    m_splitter = Splitter(m_description.end, m_description.longest);
    m_received.clear();
    m_taken = 0;
}

Failure Reader::Read(const std::vector<BYTE>& due, std::vector<Outcome>& outcomes) {
    if (m_follows) return m_stream.Read(due, outcomes, m_watch);
    outcomes.clear();
    Failure failure = m_description.ask.empty() ? Listen(due, outcomes) : Ask(due, outcomes);
    m_looked = m_transport.Now();
    return failure;
}

Failure Reader::Listen(const std::vector<BYTE>& due, std::vector<Outcome>& outcomes) {
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
    // What is under way may be the beginning of one line and the end of another.
    const bool old = m_splitter.HasHalf() && m_transport.Now() - m_looked > m_pause;
    if (m_opened || m_came > kMuch || old) m_splitter.Drop();
    m_opened = false;
    return Await(m_transport.Now() + Patience(), true, m_watch, due, outcomes);
}

Failure Reader::Ask(const std::vector<BYTE>& due, std::vector<Outcome>& outcomes) {
    m_came = 0;
    Discard(m_transport.Now());
    AwaitOthers();
    while (!m_owed.empty() && m_transport.Now() - m_owed.front() > kForgotten * m_timeout) m_owed.pop_front();
    if (!m_owed.empty()) AwaitOwed(m_owed.back() + 2 * kPatience * m_timeout);
    size_t throwAway = m_owed.size();
    bool doubtful = throwAway > 0;
    for (size_t left = throwAway + kAttempts;; --left) {
        if (doubtful && m_description.lines > 1) AwaitSilence();
        Forget();
        const auto& ask = m_description.ask;
        // The port takes the question at once; it is on the line for as long as its characters last.
        const TimePoint asked = m_transport.Now() + static_cast<int>(ask.size()) * m_character;
        m_owed.push_back(asked);
        m_transport.Send({reinterpret_cast<const BYTE*>(ask.data()), ask.size()}, asked + m_timeout);
        Failure failure = Await(asked + kPatience * m_timeout, false, throwAway == 0 ? m_watch : nullptr, due, outcomes);
        if (failure.code == CCommException::ReceiveTimeout) ++m_inVain;
        if (failure.code == CCommException::ReceiveTimeout || failure.why == Sentence::HalfLine) return failure;
        const bool good = failure.code == 0;
        if (good) {
            m_answerLines = 0;
            Settle(m_description.lines, m_watch);
        }
        // A line that was no answer: the answer may still come.
        doubtful |= !good;
        if (good ? throwAway == 0 : left <= 1) {
            if (doubtful) AwaitOwed(m_transport.Now() + (m_late ? 2 * kPatience : 1) * m_timeout);
            m_owed.clear();
            return failure;
        }
        if (good) --throwAway;
    }
}

bool Reader::IsDead() const { return m_inVain >= kDead; }

// A line that came while nobody here waited for one. It is hardly a dead one's.
void Reader::Credit(const Splitter::Line& line) {
    const auto rank = [](const Reader& reader) { return std::pair(reader.IsDead(), reader.m_owed.front()); };
    Reader* owner = nullptr;
    for (Reader* const reader : *m_line) {
        if (reader->m_owed.empty() || (owner != nullptr && rank(*owner) <= rank(*reader))) continue;
        if (reader->IsAnswer(line)) owner = reader;
    }
    // What another's answer was late by can only be told in a reading of its own.
    if (owner != nullptr) owner->Settle(1, owner == this ? m_watch : nullptr);
}

// So many lines of answers have come.
void Reader::Settle(size_t lines, IReadingWatch* watch) {
    m_inVain = 0;
    for (m_answerLines += lines; m_answerLines >= m_description.lines && !m_owed.empty(); m_answerLines -= m_description.lines) {
        const Duration took = m_transport.Now() - m_owed.front();
        m_owed.pop_front();
        // What was found much later says nothing of when it came.
        if (took <= m_timeout || took > kTellable * m_timeout) continue;
        m_late = true;
        if (watch != nullptr) watch->OnLateAnswer(static_cast<DWORD>(std::chrono::ceil<std::chrono::milliseconds>(took).count()));
    }
}

// Of an answer of several lines, what is left of it must not be the beginning of the next one.
void Reader::AwaitSilence() {
    const TimePoint limit = m_transport.Now() + 2 * kPatience * m_timeout;
    for (size_t before = m_came + 1; before != m_came && m_transport.Now() < limit;) {
        before = m_came;
        Discard(m_transport.Now() + m_timeout);
    }
}

// Until when answers of others may come that are worth waiting for.
std::optional<Reader::TimePoint> Reader::OthersOweUntil() const {
    std::optional<TimePoint> latest;
    for (const Reader* const other : *m_line) {
        if (other == this || other->m_owed.empty() || other->IsDead()) continue;
        latest = std::max(latest, std::optional(other->m_owed.back() + 2 * kPatience * other->m_timeout));
    }
    return latest;
}

void Reader::AwaitOthers() {
    Splitter::Line line;
    // Looked at anew each time: loggers may come and go during a wait.
    for (auto until = OthersOweUntil(); until && Next(line, *until); until = OthersOweUntil()) Credit(line);
}

// Answers that nobody waits for any more are waited for all the same, so that they are not taken for others'.
void Reader::AwaitOwed(TimePoint until) {
    Splitter::Line line;
    while (!m_owed.empty() && Next(line, until)) Credit(line);
}

// Whether a line can be one of an answer.
bool Reader::IsAnswer(const Splitter::Line& line) const {
    Failure bad;
    if (Judge(line, bad) != Verdict::Good) return false;
    if (m_description.lines > 1) return true;
    const std::vector<Outcome> outcomes = ReadFields(m_description, {Bare(m_description, line.text)});
    return std::any_of(outcomes.begin(), outcomes.end(), [](const Outcome& outcome) { return outcome.IsValue(); });
}

// The lines of one reading. `again`: what is bad is passed over as long as there is time.
Failure Reader::Await(TimePoint until, bool again, IReadingWatch* watch, const std::vector<BYTE>& due,
                      std::vector<Outcome>& outcomes) {
    const Duration wait = until - m_transport.Now();
    const TimePoint limit = until + static_cast<int>(m_description.lines - 1) * wait;
    std::vector<std::string> lines;
    TimePoint lastLine{};
    Failure failure{CCommException::ReceiveTimeout, Sentence::None, {}};
    if (again) failure = SilentFor(wait);
    Splitter::Line line;
    while (Next(line, until)) {
        Failure bad;
        const Verdict verdict = Judge(line, bad);
        if (verdict == Verdict::PassedOver) continue;
        if (verdict == Verdict::Good) {
            const bool first = LineBegins(line.text, m_description.first);
            // Lines that belong together follow one another; else one was lost in between.
            const bool apart = m_description.ask.empty() && m_transport.Now() - lastLine > m_pause;
            if (apart || (!m_description.first.empty() && first)) lines.clear();
            lastLine = m_transport.Now();
            if (lines.empty() && !first) continue;
            lines.push_back(std::move(line.text));
            if (lines.size() < m_description.lines) {
                until = std::min(limit, m_transport.Now() + wait);
                continue;
            }
            bad = ReadLines(m_description, lines, due, outcomes);
            if (bad.code == 0) {
                RememberLead(m_leads, lines.front());
                if (watch != nullptr) watch->OnAnswer();
                return {};
            }
        }
        const std::string& meant = lines.empty() ? line.text : lines.front();
        if (again && watch != nullptr && IsMeant(m_description, m_leads, meant)) watch->OnDamaged(bad.code, bad.text.c_str());
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
Verdict Reader::Judge(const Splitter::Line& line, Failure& failure) const {
    if (!line.cut && !m_echo.empty() && Trimmed(line.text) == m_echo) return Verdict::PassedOver;
    return text::Judge(m_description, line, failure);
}

// The next line of those that come until then; false when there is none.
bool Reader::Next(Splitter::Line& line, TimePoint until) {
    do {
        if (Take(line)) return true;
        // The clock is looked at as well: a line that chatters without an end always has something.
    } while (m_transport.Now() < until && Receive(until));
    return false;
}

bool Reader::Receive(TimePoint until) {
    if (!m_transport.Receive(m_received, until)) return false;
    // A line that breaks off is not gone on with by the next one. An answer has its question.
    const TimePoint now = m_transport.Now();
    const bool paused = now - m_lastBytes > m_pause;
    if (m_description.ask.empty() && m_splitter.HasHalf() && paused) m_splitter.Drop();
    // What begins after a pause is no half line, though the line was opened only now.
    if (std::exchange(m_quiet, false) && paused) m_splitter.Keep();
    m_lastBytes = now;
    return true;
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

// Throws away what is there already and what comes until then.
void Reader::Discard(TimePoint until) {
    Splitter::Line line;
    for (size_t bytes = 0; bytes < kMostAtOnce;) {
        while (Take(line)) Credit(line);
        if (!Receive(until)) break;
        bytes += m_received.size();
        m_came += m_received.size();
    }
    while (Take(line)) Credit(line);
}

}  // namespace text
