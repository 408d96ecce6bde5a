// The server's half of a serial port over telnet (RFC 2217), for a simulated logger: takes any settings and confirms them.
#pragma once

#include "comm/telnet.h"

class Rfc2217Port : public TelnetEnd {
public:
    Rfc2217Port() : TelnetEnd({kBinary, kSuppressGoAhead}, {kBinary, kSuppressGoAhead, kComPort}) {}

protected:
    void OnMessage(BYTE option, std::span<const BYTE> content, std::vector<BYTE>& out) override;

private:
    std::vector<BYTE> m_set[6];  // what was asked for by command, from 1 on: baud rate, data size, parity, stop size, control
};
