// A logger that talks by itself, followed: each of its lines, or each group of lines that belong together, is one reading, in the
// order in which they came and with the time of that. Lines that come while another one is handled wait. Runs on the transport's
// thread; borrows description and transport.
//
// What was there before the line was opened is thrown away, and with it the line under way then. After that nothing is lost
// without a word. A line that is meant as one of the logger's (IsMeant) and is damaged is a reading without values; so is one
// that broke off, which is one that pauses longer than a line may. Headings and other sentences are passed over. More lines than
// can wait are left out, and each is a missing reading. So is all that has waited when nobody looked for so long that the
// system's own queue may have run over: there may be a hole in it anywhere.
//
// A line's time is that at which its end was found. Nobody looks while a reading is handled.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "comm/transport.h"
#include "host/logger_family.h"
#include "plugins/text/text_description.h"
#include "plugins/text/text_splitter.h"
#include "plugins/text/text_verdict.h"

namespace text {

class Stream {
public:
    using Duration = ITransport::Duration;
    using TimePoint = ITransport::TimePoint;

    Stream(const Description& description, ITransport& transport);

    // The line was opened. `wait`: how long for a line; `pause`: that a line may make in the middle.
    void Opened(Duration wait, Duration pause, Duration character);
    // The next reading: an outcome for each channel, or why there is none. The watch, if any, is told when it came, unless
    // nothing did. Throws what the transport throws.
    Failure Read(const std::vector<BYTE>& due, std::vector<Outcome>& outcomes, IReadingWatch* watch);

    static constexpr size_t kMostWaiting = 1 << 20;  // bytes of lines

private:
    // A line that waits, or so many that are lost there.
    struct Heard {
        Splitter::Line line;
        TimePoint came;
        size_t lost = 0;
        bool broken = false;            // it has no end
        Sentence why = Sentence::None;  // of what is lost

        size_t Size() const { return line.text.size() + sizeof(Heard); }
    };

    void Begin();
    bool Receive(TimePoint until);
    void Drain();
    void Break();
    void Wait(Heard heard);
    void Lose(size_t lines, Sentence why);
    Heard Next();
    bool Take(Heard heard, const std::vector<BYTE>& due, std::vector<Outcome>& outcomes, Failure& failure);
    bool TakeBroken(const Heard& heard, Failure& failure);

    const Description& m_description;
    ITransport& m_transport;
    Duration m_wait{}, m_pause{}, m_character{};
    Splitter m_splitter;
    std::deque<Heard> m_heard;
    size_t m_waiting = 0;  // bytes
    std::vector<BYTE> m_received;
    size_t m_skip = 0;                 // lines to be passed over since the line was opened
    bool m_opened = true;              // and nothing read since
    bool m_quiet = true;               // and no byte came since
    TimePoint m_looked{};              // when it was last looked for bytes
    TimePoint m_lastBytes{};           // when some came
    std::vector<std::string> m_lines;  // of the reading under way
    TimePoint m_lastLine{};            // of them
    std::vector<std::string> m_leads;  // of lines that gave values
};

}  // namespace text
