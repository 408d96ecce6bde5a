#include "plugins/text/text_stream.h"

#include <algorithm>
#include <utility>

#include "comm/comm_exception.h"
#include "plugins/text/text_letters.h"
#include "plugins/text/text_patience.h"

namespace text {
namespace {
using namespace std::chrono_literals;
constexpr auto kHeldUp = 1000ms;
// A serial port's queue holds at least so much.
constexpr size_t kQueue = 4000;
constexpr size_t kMostLeads = 16;

// Whether what came of a line may become one that begins with the text.
bool CanBegin(std::string_view half, std::string_view text) { return half.starts_with(text.substr(0, half.size())); }
}  // namespace

Stream::Stream(const Description& description, ITransport& transport)
    : m_description(description), m_transport(transport), m_splitter(description.end, description.longest) {}

void Stream::Opened(Duration wait, Duration pause, Duration character) {
    m_wait = wait;
    m_pause = pause;
    m_character = character;
    m_splitter = Splitter(m_description.end, m_description.longest);
    m_heard.clear();
    m_waiting = 0;
    m_lines.clear();
    m_skip = m_description.skip;
    m_opened = m_quiet = true;
    m_lastBytes = m_looked = m_transport.Now();
}

// Throws away what was there before, and what a far end that was held up still has to say.
void Stream::Begin() {
    size_t came = 0;
    while (came < kMostAtOnce && Receive(m_transport.Now())) came += m_received.size();
    const TimePoint limit = m_transport.Now() + kHeldUp;
    while (came > kMuch && m_transport.Now() < limit && Receive(std::min(limit, m_transport.Now() + kSettled))) {
    }
    m_heard.clear();
    m_waiting = 0;
    m_splitter.Drop();
    m_opened = false;
}

bool Stream::Receive(TimePoint until) {
    m_received.clear();
    const bool came = m_transport.Receive(m_received, until);
    const TimePoint now = m_looked = m_transport.Now();
    if (!came) return false;
    // A line that breaks off is not gone on with by the next one.
    const bool paused = now - m_lastBytes > m_pause;
    if (paused && m_splitter.HasHalf()) Break();
    // What begins after a pause is no half line, though the line was opened only now.
    if (std::exchange(m_quiet, false) && paused) m_splitter.Keep();
    m_lastBytes = now;
    std::string_view rest(reinterpret_cast<const char*>(m_received.data()), m_received.size());
    while (!rest.empty()) {
        Splitter::Line line;
        bool whole = false;
        rest.remove_prefix(m_splitter.Take(rest, line, whole));
        if (!whole) continue;
        if (m_skip > 0) {
            --m_skip;
        } else {
            Wait({std::move(line), now});
        }
    }
    return true;
}

// What came while nobody looked.
void Stream::Drain() {
    const Duration away = m_transport.Now() - m_looked;
    const size_t before = m_heard.size();
    size_t came = 0;
    while (came < kMostAtOnce && Receive(m_transport.Now())) came += m_received.size();
    if (came < kQueue || away < static_cast<int>(kQueue) * m_character) return;
    const size_t lines = m_heard.size() - before;
    for (; m_heard.size() > before; m_heard.pop_back()) m_waiting -= m_heard.back().Size();
    m_splitter.Drop();
    Lose(std::max<size_t>(lines, 1), Sentence::QueueRanOver);
}

// The line under way has lost its end.
void Stream::Break() {
    if (!m_splitter.IsDropped()) Wait({{m_splitter.Half(), m_splitter.IsHalfTooLong()}, m_lastBytes, 0, true});
    m_splitter.Drop();
}

void Stream::Wait(Heard heard) {
    if (m_waiting + heard.Size() > kMostWaiting) return Lose(1, Sentence::TooFast);
    m_waiting += heard.Size();
    m_heard.push_back(std::move(heard));
}

void Stream::Lose(size_t lines, Sentence why) {
    if (m_heard.empty() || m_heard.back().why != why) {
        m_heard.push_back({{}, m_looked, 0, false, why});
        m_waiting += m_heard.back().Size();
    }
    m_heard.back().lost += lines;
}

Stream::Heard Stream::Next() {
    Heard& front = m_heard.front();
    if (front.lost > 1) {
        --front.lost;
        return {{}, front.came, 1, false, front.why};
    }
    m_waiting -= front.Size();
    Heard next = std::move(front);
    m_heard.pop_front();
    return next;
}

Failure Stream::Read(const std::vector<BYTE>& due, std::vector<Outcome>& outcomes, IReadingWatch* watch) {
    outcomes.clear();
    if (m_opened) Begin();
    Drain();
    TimePoint until = m_transport.Now() + m_wait;
    Failure failure = SilentFor(m_wait);
    for (;;) {
        // The clock is looked at as well: a line that chatters without an end always has something.
        while (m_heard.empty()) {
            if (m_transport.Now() < until && Receive(until)) continue;
            if (failure.code != CCommException::ReceiveTimeout || !m_splitter.HasHalf()) return failure;
            const std::string half = Shown(m_splitter.Half());
            if (m_splitter.IsHalfTooLong()) return BadLine(Sentence::TooLong, {std::to_string(m_description.longest), half});
            return BadLine(Sentence::HalfLine, {half});
        }
        Heard heard = Next();
        const TimePoint came = heard.came;
        if (Take(std::move(heard), due, outcomes, failure)) {
            const auto ago = std::chrono::duration_cast<std::chrono::microseconds>(m_transport.Now() - came).count();
            if (watch != nullptr) watch->OnAnswer(static_cast<DWORD>(std::clamp<long long>(ago, 0, 4'000'000'000)));
            return failure;
        }
        if (!m_lines.empty()) until = m_transport.Now() + m_wait;
        if (m_transport.Now() >= until) return failure;
    }
}

// True where a reading ends, by its values or by its failure. A failure that ends none is one to remember.
bool Stream::Take(Heard heard, const std::vector<BYTE>& due, std::vector<Outcome>& outcomes, Failure& failure) {
    if (heard.lost > 0) {
        m_lines.clear();
        failure = BadLine(heard.why, {});
        return true;
    }
    if (heard.broken) return TakeBroken(heard, failure);
    Failure bad;
    const Verdict verdict = Judge(m_description, heard.line, bad);
    if (verdict == Verdict::PassedOver) return false;
    const bool first = LineBegins(heard.line.text, m_description.first);
    if (verdict == Verdict::Good) {
        // Lines that belong together follow one another; else one was lost in between.
        const bool apart = heard.came - m_lastLine > m_pause || (first && !m_description.first.empty());
        if (!m_lines.empty() && apart) {
            failure = BadLine(Sentence::HalfReading, {Shown(m_lines.back())});
            m_lines.clear();
            m_waiting += heard.Size();
            m_heard.push_front(std::move(heard));
            return true;
        }
        if (m_lines.empty() && !first) return false;
        m_lines.push_back(heard.line.text);
        m_lastLine = heard.came;
        if (m_lines.size() < m_description.lines) return false;
        bad = ReadLines(m_description, m_lines, due, outcomes);
        if (bad.code == 0) RememberLead(m_leads, m_lines.front());
    }
    // Of a group each line that is in it matters, and the first one.
    const bool group = m_description.lines > 1;
    const bool meant = group ? !m_lines.empty() || first || bad.why == Sentence::WrongChecksum
                             : bad.code == 0 || IsMeant(m_description, m_leads, heard.line.text);
    m_lines.clear();
    // Once its lines are known, another sentence is no reason for silence.
    if (meant || m_leads.empty()) failure = std::move(bad);
    return meant;
}

// Where nothing is known of the logger's lines yet, it may be anything.
bool Stream::TakeBroken(const Heard& heard, Failure& failure) {
    const std::string& half = heard.line.text;
    const bool begins = CanBegin(half, m_description.start) || CanBegin(LineText(half), LineText(m_description.start));
    if (!begins || (m_description.start.empty() && m_leads.empty())) return false;
    m_lines.clear();
    failure = heard.line.cut ? BadLine(Sentence::TooLong, {std::to_string(m_description.longest), Shown(half)})
                             : BadLine(Sentence::HalfLine, {Shown(half)});
    return true;
}

}  // namespace text
