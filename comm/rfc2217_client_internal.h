// The client's half of a serial port over telnet (RFC 2217): agrees on the option, sets the line up and waits for the server to
// confirm it. Bytes in, bytes out; no thread, no clock.
#pragma once

#include "comm/telnet.h"
#include "comm/transport.h"

namespace orvik::detail {

class Rfc2217Client : public TelnetEnd {
public:
    enum EState {
        Offered,    // the server has not said yet whether it has a serial port
        Refused,    // it has none
        SettingUp,  // it has not confirmed everything yet
        OtherLine,  // it has confirmed something else than was asked for
        Ready,
    };

    Rfc2217Client() : TelnetEnd({kBinary, kSuppressGoAhead, kComPort}, {kBinary, kSuppressGoAhead}) {}

    // The first bytes to send.
    void Start(const CLineSettings& line, std::vector<BYTE>& out);
    // Other settings, once it is ready.
    void SetUp(const CLineSettings& line, std::vector<BYTE>& out);
    EState State() const { return m_state; }

protected:
    void OnOwnOption(BYTE option, bool agreed, std::vector<BYTE>& out) override;
    void OnMessage(BYTE option, std::span<const BYTE> content, std::vector<BYTE>& out) override;

private:
    void SendSettings(std::vector<BYTE>& out);

    CLineSettings m_line;
    EState m_state = Offered;
    unsigned m_open = 0;  // a bit for each command that waits for its confirmation
};

}  // namespace orvik::detail
