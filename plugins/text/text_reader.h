// One reading after the other from a logger that prints lines: what is asked, which lines count, and how long is waited. Runs on
// the transport's thread; borrows description, transport and watch.
//
// A logger that talks by itself: what came before the reading began is thrown away, because nobody knows when; the next whole
// line is the reading. A line that was under way then may end it, unless it may be old or have a hole: after the line was opened
// (if it was not silent at first), after much has waited (buffers overflow), and when nobody has looked for as long as a line may
// pause in the middle: three quarters of the logger's own interval, at least 250 ms and at most 2 s. A line that pauses longer
// has lost its end, and so have lines of one reading between which there is more. So no line is used twice, and one that comes
// while nobody reads is passed over. Lines that give no value at all are passed over as long as there is time; of those that are
// meant as the logger's the watch is told. This is for readings at an interval; to have each line, see text_stream.h.
//
// A logger that is asked: an answer that is later than the time-out is waited for, three time-outs in all, and is still this
// reading's value. What is there before a question is thrown away. Answers do not say what they answer: after a reading without
// one it may still be under way, for twenty time-outs. So the next reading first waits for it, until six time-outs after its
// question; then it asks once more for each that is owed, and the last answer counts, which was then made after the reading
// began. A bad answer is asked for again, up to three times; it may have been a line that nobody asked for, so the line is
// listened to afterwards until the answer that may be left over has come, or a time-out has passed. An echo of the question is
// passed over.
//
// Several loggers that are asked on one line wait for one another's late answers as well, until six time-outs after the question;
// a line that comes meanwhile counts for the one who asked first of those whose it may be. One that has left three readings in a
// row without an answer is not waited for: it is dead, and costs the others nothing.
#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "comm/transport.h"
#include "host/logger_family.h"
#include "plugins/text/text_description.h"
#include "plugins/text/text_fields.h"
#include "plugins/text/text_splitter.h"
#include "plugins/text/text_stream.h"

namespace text {

class Reader {
public:
    Reader(const Description& description, ITransport& transport);
    ~Reader();
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    // The line at this address was opened; milliseconds for every answer.
    void Opened(const std::string& address, DWORD timeout);
    // Told of answers and late ones; null for nobody.
    void Watch(IReadingWatch* watch) { m_watch = watch; }

    // From now on each line of a logger that talks by itself is a reading (text_stream.h). False: it is asked.
    bool Follow();

    // One reading: an outcome for each channel. Those that are not due (a byte each, 0) do not matter for whether it is one. On
    // failure nothing came; throws what the transport throws.
    Failure Read(const std::vector<BYTE>& due, std::vector<Outcome>& outcomes);

    static constexpr int kAttempts = 3;

private:
    using TimePoint = ITransport::TimePoint;
    using Duration = ITransport::Duration;

    Failure Listen(const std::vector<BYTE>& due, std::vector<Outcome>& outcomes);
    Failure Ask(const std::vector<BYTE>& due, std::vector<Outcome>& outcomes);
    Failure Await(TimePoint until, bool again, IReadingWatch* watch, const std::vector<BYTE>& due,
                  std::vector<Outcome>& outcomes);
    Verdict Judge(const Splitter::Line& line, Failure& failure) const;
    bool Next(Splitter::Line& line, TimePoint until);
    bool Receive(TimePoint until);
    bool Take(Splitter::Line& line);
    void Discard(TimePoint until);
    void Forget();
    Duration Patience() const;
    bool IsDead() const;
    void Credit(const Splitter::Line& line);
    void Settle(size_t lines, IReadingWatch* watch);
    std::optional<TimePoint> OthersOweUntil() const;
    void AwaitOthers();
    void AwaitOwed(TimePoint until);
    void AwaitSilence();
    bool IsAnswer(const Splitter::Line& line) const;

    const Description& m_description;
    ITransport& m_transport;
    IReadingWatch* m_watch = nullptr;
    Duration m_timeout{};
    Duration m_character{};  // that one is on the line
    Duration m_pause{};      // that a line may make in the middle
    Splitter m_splitter;
    std::vector<BYTE> m_received;  // of which the splitter has taken the first m_taken
    size_t m_taken = 0;
    size_t m_skip = 0;             // lines to be passed over since the line was opened
    size_t m_came = 0;             // bytes, since the reading began to throw away
    bool m_opened = true;          // and nothing read since
    bool m_quiet = true;           // and no byte came since
    TimePoint m_looked{};          // the end of the last reading
    TimePoint m_lastBytes{};       // when some came
    std::deque<TimePoint> m_owed;  // when questions were asked that may still be answered
    size_t m_answerLines = 0;      // of an answer that is owed, that have come
    int m_inVain = 0;              // readings in a row that came to an end without an answer
    bool m_late = false;           // answers have been later than the time-out
    const std::string m_echo;
    std::shared_ptr<std::vector<Reader*>> m_line;  // all readers on it, this one among them
    std::vector<std::string> m_leads;              // of lines that gave values
    Stream m_stream;
    bool m_follows = false;
};

}  // namespace text
