// Which answers a logger still owes, and whose an answer is.
//
// Modbus RTU has no transaction numbers: an answer is known by slave, function and length alone, an exception by slave and
// function. One thing is assumed: a logger answers in the order in which it was asked, each request at most once, however late.
// So every request is kept until its answer has come, or an answer to a later one. Time strikes nothing off: an answer can always
// be later than what is waited for. An answer belongs to the question that all its possible owners were sent for; where they
// differ, it is nobody's.
//
// A question is one block of one reading; its repetitions share its number, so any of their answers is right for it. The same
// block in the next reading is another question: a value from before it must not count for it.
//
// An answer that was lost would stay owed for ever, and each repetition because of it would leave one more. A probe ends that: a
// request that can only be refused, under another function, so that its answer looks different. When that has come, nothing older
// will. A logger that ignores probes is found out (`ProbesHelp`); there silence is all that is left to go by.
//
// Times are handed in; no clock, no port. One thread at a time.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "comm/transport.h"
#include "plugins/modbus/modbus_frame.h"

namespace modbus {

using Duration = ITransport::Duration;
using TimePoint = ITransport::TimePoint;

class Ledger {
public:
    using Question = uint64_t;
    static constexpr Question kProbe = 0;               // nobody's question
    static constexpr Question kUnknown = ~Question{0};  // what somebody else may have asked

    void SetTimeout(Duration timeout) { m_timeout = timeout; }

    // `sent`: when the request's last character leaves.
    void Sent(const Request& request, Question question, TimePoint sent);

    struct Verdict {
        bool owed = false;              // it fits a request that is still open
        std::optional<Question> owner;  // only when there can be no other
        Question newest = 0;            // its newest possible owner
        Duration late{};                // of an answer that is surely late: since its oldest possible owner was sent; else 0
    };
    // `prompt`: it was taken from the line as it came, so that `arrived` tells how long the logger took.
    Verdict Answered(const Answer& answer, TimePoint arrived, bool prompt);

    // The newest request that is owed an answer which could be confused with that to `request` for `question`, a refusal at
    // least. Without a request: the newest that is no probe.
    std::optional<Request> Rival(const Request* request, Question question) const;
    // False once several probes were passed over and none was ever answered.
    bool ProbesHelp() const;
    // Nothing is owed any more, as far as silence can tell.
    void Forget() { m_open.clear(); }

    // How long an answer may take before its request is repeated: the time-out, or half as much again as answers were seen to
    // take.
    Duration Wait() const;
    // When a line that stays silent after the last request and answer counts as silent for good.
    TimePoint SilentAt() const;

private:
    struct Open {
        Request request;
        Question question;
        TimePoint sent;
    };

    std::vector<Open> m_open;  // in the order of sending
    Duration m_timeout{};
    Duration m_longest{};  // that answers took at least, fading slowly
    TimePoint m_lastSent{}, m_lastAnswer{};
    bool m_probeAnswered = false;
    int m_probesPassedOver = 0;
};

}  // namespace modbus
