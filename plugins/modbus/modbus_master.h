// The master's side of a Modbus RTU line: the requests of one reading and their answers, with the line's silent gaps, time-outs
// and bounded repetitions. Whose an answer is, the ledger says; what is asked when, and what is waited for, stands here. Runs on
// the transport's thread. Borrows the transport and the watch.
#pragma once

#include <string>
#include <vector>

#include "comm/transport.h"
#include "host/logger_family.h"
#include "plugins/modbus/modbus_frame.h"
#include "plugins/modbus/modbus_ledger.h"

namespace modbus {

class Master {
public:
    explicit Master(ITransport& transport) : m_transport(transport) {}

    // `timeout`: milliseconds from the end of a request to the end of its answer; then it is repeated, or, on a line that is
    // known to be later, half as much again after the time at which answers come. What is still owed from before stays known: a
    // line that was opened again has the same logger.
    void Configure(const CLineSettings& line, DWORD timeout);
    // Told of the first value and of late answers; null for nobody.
    void Watch(IReadingWatch* watch) { m_watch = watch; }

    struct Outcome {
        std::vector<WORD> registers;  // those asked for; empty when there are none
        int code = 0;      // why: 8 no answer that is surely its own, 3 only unreadable bytes came, 4 the logger refused
        std::string text;  // with the Modbus exception code of a refusal; empty: the code's standard text
    };
    // One reading: an outcome for each request. Returns when nothing that was asked is waited for any more. Throws what the
    // transport throws, which ends the reading; the outcomes hold what had come.
    void Read(std::span<const Request> requests, std::vector<Outcome>& outcomes);

    static constexpr int kAttempts = 3;

private:
    enum class End { Answered, Doubtful, Damaged, Silence };

    void Suspect(std::span<const Request> requests);
    void Ask(const Request& request, size_t index);
    End Exchange(const Request& request, Ledger::Question question);
    void Explain(Outcome& outcome, bool damaged) const;
    // Probes until nothing is owed that could be taken for the answer to `request`, or nothing at all without one. What is owed
    // for `question` itself may be. Gives up when a probe was in vain, and sends no other before something has been answered.
    void Clear(const Request* request, Ledger::Question question);
    // Ends the reading: what is still owed is cleared, or listened for as long as it may come.
    void Finish();
    void AwaitLongSilence();
    void AwaitSilence();
    // True when something came until then; whole answers among it have been dealt with.
    bool Receive(TimePoint until, bool prompt = true);
    void Take(const Answer& answer, bool prompt);

    ITransport& m_transport;
    Ledger m_ledger;
    IReadingWatch* m_watch = nullptr;
    std::chrono::microseconds m_character{1042};  // that one is on the line
    std::chrono::microseconds m_gap{1750};
    Duration m_timeout = std::chrono::seconds(1);

    std::vector<BYTE> m_received;  // what may still become an answer; kept across requests, since answers come in pieces
    TimePoint m_lastByte{};

    bool m_probeInVain = false;  // the last probe was not answered, nor anything since

    // Of the reading under way.
    std::vector<Outcome>* m_outcomes = nullptr;
    Ledger::Question m_firstQuestion = 1;
    bool m_told = false;     // that the first value has come
    bool m_strange = false;  // since the line was opened nothing is known of it
    bool m_silent = false;   // a request was in vain to the last attempt, without one byte, and nothing came since
    // Of the attempt under way.
    Ledger::Question m_asked = 0;
    BYTE m_refusal = 0;
    bool m_answered = false;      // surely
    bool m_doubtful = false;      // it, or an older request
    std::ptrdiff_t m_unread = 0;  // bytes that belong to no whole answer
    bool m_anythingCame = false;
};

}  // namespace modbus
