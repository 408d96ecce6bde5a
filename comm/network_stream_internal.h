// Bytes over a TCP connection, for the transports of the network. While it waits it handles its thread's messages, and a byte, an
// abort or a message ends the wait at once. Failures are CCommException objects with a sentence that names the address: 6 it
// cannot be reached, 7 the connection is lost, which its connection is told as well, 9 an abort. One thread. Borrows the
// connection and the signal.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "comm/line_address.h"
#include "comm/line_transport_internal.h"
#include "platform/socket.h"

namespace orvik::detail {

class NetworkStream {
public:
    using TimePoint = ITransport::TimePoint;
    // Who is told of the line: `user` points to whose turn it is.
    explicit NetworkStream(LineUser* const& user) : m_user(user) {}

    void Open(const CLineAddress& address, TimePoint until);
    void Close() { m_socket.Close(); }
    bool IsOpen() const { return m_socket.IsOpen(); }
    bool IsLost() const { return m_lost; }
    // Looks only where nothing was received for so long, and no answer is awaited.
    bool WasClosedWhileIdle(ITransport::Duration idle);

    // All of it, or 7.
    void Send(std::span<const BYTE> bytes, TimePoint until);
    // Appends what has come; false when nothing came until then.
    bool Receive(std::vector<BYTE>& received, TimePoint until);
    // `text` is one of res/strings.def that takes the address.
    [[noreturn]] void Fail(int code, UINT text) const;

private:
    bool TakeWaiting(std::vector<BYTE>& received, bool linger);
    void Wait(HANDLE event, TimePoint until);
    void PumpMessages() const;
    void CheckLine() const;
    [[noreturn]] void Lose(DWORD error);
    [[noreturn]] void FailBy(int code, DWORD error, bool connected) const;

    LineUser* const& m_user;
    Socket m_socket;
    std::string m_address;   // "host:port"
    bool m_pending = false;  // nothing was received since the last request
    bool m_asked = false;    // nothing was looked for since the last request
    bool m_prompt = true;    // the far end answers almost at once
    TimePoint m_askedAt, m_used;
    std::vector<BYTE> m_early;  // came before anybody asked
    bool m_lost = false;
    DWORD m_lossError = 0;
};

}  // namespace orvik::detail
