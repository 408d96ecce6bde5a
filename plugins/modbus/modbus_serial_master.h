// The master of a serial line, and of a network that carries what would be on one: frames between silences, answers that only the
// ledger can tell apart, one ledger a slave. On a line that was just opened, and after an answer that was lost, a probe clears up
// what may still be under way. Masters that share a line on one thread share its ledgers: what one of them is still owed must not
// be taken for the other's.
#pragma once

#include <memory>
#include <string>

#include "plugins/modbus/modbus_master.h"

namespace modbus {

class SerialMaster final : public Master {
public:
    SerialMaster(ITransport& transport, const Description& description);

    // A request is repeated after the time-out or, on a line that is known to be later, half as much again after the time at
    // which answers come. What is still owed from before stays known: a line that was opened again has the same loggers.
    void Configure(const char* address, const CLineSettings& line, DWORD timeout) override;

private:
    struct Books {
        Ledger ledger;
        bool probeInVain = false;  // the last probe was not answered, nor anything since
    };
    using LineBooks = std::map<BYTE, Books>;  // by address
    Books& BooksOf(BYTE slave) { return (*m_books)[slave]; }

    void Begin() override;
    void Clear(const Request& request, Question question) override { Clear(&request, question, request.slave); }
    End Exchange(const Request& request, Question question) override;
    bool Receive(TimePoint until) override { return Receive(until, true); }
    void Finish() override;

    void Suspect();
    // Probes until nothing is owed that could be taken for the answer to `request`, or nothing at all without one. What is owed
    // for `question` itself may be. Gives up when a probe was in vain, and sends no other before something has been answered.
    void Clear(const Request* request, Question question, BYTE slave);
    void AwaitLongSilence(const Ledger& ledger);
    void AwaitSilence(Duration atMost);
    // True when something came until then; whole answers among it have been dealt with.
    bool Receive(TimePoint until, bool prompt);
    void Take(const Answer& answer, bool prompt);

    std::vector<Request> m_usual;  // what a reading of everything asks
    std::string m_line;
    std::shared_ptr<LineBooks> m_books;
    std::chrono::microseconds m_character{1042};  // that one is on the line
    std::chrono::microseconds m_gap{1750};

    std::vector<BYTE> m_received;  // what may still become an answer; kept across requests, since answers come in pieces
    TimePoint m_lastByte{};
    bool m_strange = false;  // since the line was opened nothing is known of it
    // Of the attempt under way.
    bool m_doubtful = false;      // it, or an older request, was answered
    std::ptrdiff_t m_unread = 0;  // bytes that belong to no whole answer
};

}  // namespace modbus
