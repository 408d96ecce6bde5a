// The master's side of a Modbus RTU line: one request, one answer, with the line's silent gaps, time-outs and bounded retries.
// Runs on the thread that opened the port: while it waits for an answer it handles that thread's messages, which is how the port
// tells that bytes came (or that it died). Borrows the port.
#pragma once

#include <atomic>
#include <chrono>
#include <vector>

#include "comm/serial_orvik.h"
#include "plugins/modbus/modbus_description.h"
#include "plugins/modbus/modbus_frame.h"

namespace modbus {

class Master {
public:
    explicit Master(CSerialOrvik& port) : m_port(port) {}

    // `timeout`: milliseconds from the end of a request to the end of its answer.
    void Configure(const Line& line, DWORD timeout);

    // The registers asked for. Throws CCommException: 8 no answer, 3 only unreadable bytes came, 4 the logger refused (the text
    // has the Modbus exception code), 6 port not open, 7 port lost or line failure, 9 aborted. After a failure the next call
    // starts afresh: what is still under way on the line is waited for and thrown away.
    std::vector<WORD> Read(const Request& request);

    // Told by the connection when the port's listener reports: on the thread of Read. True when this is the end of the line.
    bool OnLineEvent(CSerial::EEvent event, CSerial::EError error);
    // Any thread.
    void Abort() { m_aborted = true; }
    void ClearAbort() { m_aborted = false; }

    static constexpr int kAttempts = 3;

private:
    using Clock = std::chrono::steady_clock;

    Reply Exchange(const Request& request, bool& anythingCame);
    void AwaitSilence();
    // Appends what is there; waits until something is or `until` has passed. False when time ran out.
    bool Receive(std::vector<BYTE>& received, Clock::time_point until);
    size_t ReadAvailable(std::vector<BYTE>& received);
    void PumpMessages(Clock::time_point until);
    void CheckLine();
    [[noreturn]] void Fail(int code, const char* text = nullptr);

    CSerialOrvik& m_port;
    std::chrono::microseconds m_character{1042};  // that one is on the line
    std::chrono::microseconds m_gap{1750};
    std::chrono::milliseconds m_timeout{1000};
    Clock::time_point m_lastByte{};
    bool m_lineDied = false;
    std::atomic<bool> m_aborted = false;
};

}  // namespace modbus
