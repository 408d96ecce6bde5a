#include "host/session/gap_list.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <span>
#include <vector>

#include "comm/comm_exception.h"
#include "host/session/value_text.h"
#include "host/words/isolated.h"
#include "host/words/texts.h"
#include "time/span_text.h"

namespace {
// What a number of a recording is called; empty for one that later versions may know.
struct Word {
    unsigned number;
    Text text;
};
std::string InWords(std::span<const Word> words, unsigned number) {
    const auto found = std::find_if(words.begin(), words.end(), [&](const Word& word) { return word.number == number; });
    return found == words.end() ? std::string() : Say(found->text);
}

constexpr Word kEvents[] = {{RE_STARTED, Text::EventStarted},
                            {RE_CONNECTED, Text::EventConnected},
                            {RE_LOST, Text::EventLost},
                            {RE_CLOCK_STEPPED, Text::EventClockStepped},
                            {RE_CLOCK_AGREES, Text::EventClockAgrees},
                            {RE_TAG, Text::EventTag},
                            {RE_CONTINUED, Text::EventContinued},
                            {RE_ENDED, Text::EventEnded}};
constexpr Word kCauses[] = {{GC_STALLED, Text::GapStalled},
                            {GC_DISK, Text::GapDisk},
                            {GC_NOT_RUNNING, Text::GapNotRunning},
                            {GC_PLUGIN, Text::GapPlugin},
                            {GC_DAMAGED, Text::GapDamaged}};

// With its sign: the clock was set on or back by so much.
std::string StepInWords(__int64 microseconds) {
    constexpr __int64 kMostMicroseconds = std::numeric_limits<__int64>::max();
    const CVXTTimeSpan span(microseconds < -kMostMicroseconds ? kMostMicroseconds : std::abs(microseconds), TST_MICROSECONDS);
    CString text;
    _NlsSetShortTimeSpan(text, span, nullptr, -1);
    return (microseconds < 0 ? "-" : "+") + ToUtf8(text.GetString());
}

std::string GapLine(const CRecordedGap& gap, const Session& session) {
    const std::string channels = ChannelNames(gap.channels, session);
    std::string line = Isolated(TimeTextOf(gap.from)) + "  " + Isolated(TimeTextOf(gap.until)) + "  ";
    line += Say(Text::GapLine, {std::to_string(gap.missed), std::to_string(gap.attempts), Isolated(CauseOf(gap))});
    if (!channels.empty()) line += ": " + Isolated(channels);
    return line;
}

std::string EventLine(const CRecordedEvent& event) {
    std::string line = Isolated(TimeTextOf(event.time)) + "  " + InWords(kEvents, event.kind);
    if (event.kind == RE_CLOCK_STEPPED) line += " " + Isolated(StepInWords(event.amount));
    if (!event.text.empty()) line += " (" + Isolated(ToUtf8(event.text)) + ")";
    return line;
}
}  // namespace

std::string ChannelNames(const std::vector<WORD>& places, const Session& session) {
    std::string names;
    for (const WORD place : places) {
        if (place < session.Channels().size()) names += (names.empty() ? "" : ", ") + ToUtf8(session.Channels()[place].name);
    }
    return names;
}

std::string CauseInWords(unsigned cause) {
    if (const std::string words = InWords(kCauses, cause); !words.empty()) return words;
    // The module's own words for a failed exchange, and the ones for a code that has none.
    constexpr unsigned kFirst = 828, kOther = 838;
    CString text;
    text.LoadString(cause <= CCommException::SessionAborted ? kFirst + cause : kOther);
    return ToUtf8(text.GetString());
}

std::string CauseOf(const CRecordedGap& gap) {
    const std::string cause = CauseInWords(gap.cause), told = ToUtf8(gap.text);
    // What is told of a port that is gone says more than the code's own words.
    const bool port = gap.cause == CCommException::DeviceNotOpen || gap.cause == CCommException::HardwareError;
    if (told.starts_with(cause) || (port && !told.empty())) return told;
    return told.empty() ? cause : cause + " (" + told + ")";
}

bool HasMissing(const CRecordedGap& gap) { return gap.missed > 0 || gap.attempts == 0; }

std::string GapList(const RecordedNotes& notes, const Session& session, TimeRange range) {
    struct Line {
        __int64 time;
        std::string text;
    };
    std::vector<Line> lines;
    for (const CRecordedGap& gap : notes.Gaps()) {
        if (HasMissing(gap) && gap.until >= range.from && gap.from <= range.to) lines.push_back({gap.from, GapLine(gap, session)});
    }
    for (const CRecordedEvent& event : notes.Events()) {
        if (event.time >= range.from && event.time <= range.to && !InWords(kEvents, event.kind).empty())
            lines.push_back({event.time, EventLine(event)});
    }
    std::stable_sort(lines.begin(), lines.end(), [](const Line& a, const Line& b) { return a.time < b.time; });
    std::string text;
    for (const Line& line : lines) text += line.text + '\n';
    return text;
}
