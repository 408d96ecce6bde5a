// One reading after the other from a logger that prints lines: what is asked, which lines count, and how long is waited. Runs on
// the transport's thread; borrows description, transport and watch.
//
// A logger that talks by itself: what came before the reading began is thrown away, because nobody knows when; the next whole
// line is the reading. A line that was under way then may end it, unless it may be old or have a hole: after the line was opened,
// after much has waited (buffers overflow), and when nobody has looked for 10 s. So no line is used twice, and one that comes
// while nobody reads is passed over. Lines that give no value at all are passed over as long as there is time.
//
// A logger that is asked: an answer that is later than the time-out is waited for, three time-outs in all, and is still this
// reading's value. What is there before a question is thrown away. Answers do not say what they answer. After a reading without
// one, and after a line that was no answer, one may still be under way: then the first answer is thrown away and the question is
// asked once more, so that the value was made after this reading began, and at the end the line is listened to for a time-out. A
// bad answer is asked for again, up to three times. An echo of the question is passed over.
#pragma once

#include <string>
#include <vector>

#include "comm/transport.h"
#include "host/logger_family.h"
#include "plugins/text/text_description.h"
#include "plugins/text/text_fields.h"
#include "plugins/text/text_splitter.h"

namespace text {

class Reader {
public:
    Reader(const Description& description, ITransport& transport);

    // The line was opened; milliseconds for every answer.
    void Opened(DWORD timeout);
    // Told of answers and late ones; null for nobody.
    void Watch(IReadingWatch* watch) { m_watch = watch; }

    struct Failure {
        int code = 0;                   // of CCommException; 0: there is a value at least
        Sentence why = Sentence::None;  // None: the code's own words
        std::string text;
    };
    // One reading: an outcome for each channel. Those that are not due (a byte each, 0) do not matter for whether it is one. On
    // failure nothing came; throws what the transport throws.
    Failure Read(const std::vector<BYTE>& due, std::vector<Outcome>& outcomes);

    static constexpr int kAttempts = 3;

private:
    using TimePoint = ITransport::TimePoint;
    using Duration = ITransport::Duration;
    enum class Verdict { PassedOver, Bad, Good };

    Failure Listen(const std::vector<BYTE>& due, std::vector<Outcome>& outcomes);
    Failure Ask(const std::vector<BYTE>& due, std::vector<Outcome>& outcomes);
    Failure Await(TimePoint until, bool again, IReadingWatch* watch, const std::vector<BYTE>& due,
                  std::vector<Outcome>& outcomes);
    Verdict Judge(const Splitter::Line& line, Failure& failure) const;
    bool Next(Splitter::Line& line, TimePoint until);
    bool Take(Splitter::Line& line);
    size_t Discard(TimePoint until);
    void Forget();
    void TellLate(Duration took);

    const Description& m_description;
    ITransport& m_transport;
    IReadingWatch* m_watch = nullptr;
    Duration m_timeout{};
    Duration m_character{};  // that one is on the line
    Splitter m_splitter;
    std::vector<BYTE> m_received;  // of which the splitter has taken the first m_taken
    size_t m_taken = 0;
    size_t m_skip = 0;     // lines to be passed over since the line was opened
    size_t m_came = 0;     // bytes, since the reading began to throw away
    bool m_opened = true;  // and nothing read since
    TimePoint m_looked{};  // the end of the last reading
    bool m_owed = false;   // an answer, perhaps
    TimePoint m_asked{};   // the last question
    const std::string m_echo;
};

}  // namespace text
