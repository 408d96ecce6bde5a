// The master's side of a line: the requests of one reading and their answers, with time-outs, bounded repetitions, and slaves
// that stay silent. How a request and its answer travel, a line's own master says (modbus_serial_master.h,
// modbus_network_master.h). Runs on the transport's thread. Borrows the transport and the watch.
//
// With several slaves, one that does not answer costs the others one time-out in a reading: what else is to be asked of it waits
// until they have been read, and after a reading in which it stayed silent it gets one request, in every second, fourth, eighth
// ... reading, but at least every minute. Where none answers, there is nobody to be spared, and all are asked.
#pragma once

#include <map>
#include <span>
#include <string>
#include <tuple>
#include <vector>

#include "comm/transport.h"
#include "host/logger_family.h"
#include "plugins/modbus/modbus_description.h"
#include "plugins/modbus/modbus_ledger.h"

namespace modbus {

class Master {
public:
    Master(ITransport& transport, const Description& description);
    virtual ~Master() = default;

    // The line at this address was opened. `timeout`: milliseconds from the end of a request to the end of its answer, for slaves
    // that have none of their own.
    virtual void Configure(const char* address, const CLineSettings& line, DWORD timeout);
    // Told of the first value and of late answers; null for nobody.
    void Watch(IReadingWatch* watch) { m_watch = watch; }

    struct Outcome {
        std::vector<BYTE> data = {};  // as Answer has it; empty when there is none
        int code = 0;           // why: 8 no answer that is surely its own, 3 only unreadable bytes came, 4 the logger refused
        std::string text = {};  // the Modbus exception code and, where there are several, the slave; empty: the code's own text
    };
    // One reading: an outcome for each request. Returns when nothing that was asked is waited for any more. Throws what the
    // transport throws, which ends the reading; the outcomes hold what had come.
    void Read(std::span<const Request> requests, std::vector<Outcome>& outcomes);

protected:
    using Question = Ledger::Question;
    enum class End { Answered, Doubtful, Damaged, Silence };

    // What is known of a slave.
    struct State {
        Slave slave = {};
        Duration timeout = std::chrono::seconds(1);
        bool silent = false;   // a request was in vain to the last attempt, without one byte, and nothing came since
        int misses = 0;        // readings in a row that asked it and were not answered
        DWORD passedOver = 0;  // readings since it was asked
        TimePoint asked{};     // when it was, last
        TimePoint used{};      // when it was last spoken with
        // Of the reading under way.
        bool due = false, heard = false, gone = false, putOff = false;
    };

    // A reading begins.
    virtual void Begin() = 0;
    // Makes sure, as far as can be, that nothing is under way which could be taken for this request's answer.
    virtual void Clear(const Request& request, Question question) { static_cast<void>(request), static_cast<void>(question); }
    // One attempt, told to the attempt's marks below.
    virtual End Exchange(const Request& request, Question question) = 0;
    // What has come goes where it belongs. True when something came until then.
    virtual bool Receive(TimePoint until) = 0;
    // The reading ends.
    virtual void Finish() {}

    // An attempt with the pauses that its slave wants.
    End Try(const Request& request, Question question);
    // Something that a slave owes has come: it is there, unless a gateway speaks in its place.
    void Hear(const Answer& answer);
    // An answer that surely is this question's; of an earlier reading it counts for nothing.
    void Deliver(Question owner, Answer answer);
    void TellLate(Duration late) const;
    State& StateOf(BYTE address);  // a slave of the description
    std::map<BYTE, State>& States() { return m_states; }
    bool IsAlone() const { return m_states.size() < 2; }
    void WaitUntil(TimePoint until);

    ITransport& m_transport;
    // Of the attempt under way.
    Question m_asked = 0;
    BYTE m_refusal = 0;
    bool m_answered = false;  // surely
    bool m_anythingCame = false;

private:
    void Choose();
    void AskAll();
    std::vector<size_t> Order() const;
    void Ask(size_t index, int most, bool last);
    void Settle();
    using Place = std::tuple<BYTE, BYTE, WORD>;
    static Place PlaceOf(const Request& request) { return {request.slave, request.function, request.first}; }
    bool IsQuiet(size_t index) const { return m_quiet.count(PlaceOf(m_requests[index])) != 0; }
    void Explain(Outcome& outcome, const State& state, int code, BYTE refusal) const;

    const Duration m_pauseOpen;
    std::map<BYTE, State> m_states;     // by address
    std::map<Place, unsigned> m_quiet;  // requests that were not answered the last time, by their order
    unsigned m_silences = 0;
    IReadingWatch* m_watch = nullptr;
    TimePoint m_notBefore{};
    Question m_firstQuestion = 1;  // those of a reading follow each other
    // Of the reading under way.
    std::span<const Request> m_requests;
    std::vector<Outcome>* m_outcomes = nullptr;
    bool m_told = false;  // that the first value has come
};

}  // namespace modbus
