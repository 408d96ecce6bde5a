// What a port's name means: a serial port, or an address of the network.
//   COM3, /dev/ttyUSB0     a serial port
//   tcp://meter.local:502  a connection that carries a protocol's own network form
//   rtu://10.0.0.7:4001    a connection that carries what would be on a serial line
//   rfc2217://10.0.0.7     the serial port of a terminal server, with its settings (RFC 2217)
// Plain data for any thread.
#pragma once

#include <string>

#include "platform/win32.h"

struct CLineAddress {
    enum EScheme { Serial, Tcp, Rtu, Rfc2217 };
    EScheme scheme = Serial;
    std::string host;  // a name, an IPv4 address, or an IPv6 one without its brackets; for a serial port its name
    WORD port = 0;

    // Throws CCommException 6 with a text for a scheme that is none of these, or a port that is no number from 1 to 65535. A
    // port that is left out is the scheme's own: 502 for tcp and rtu, 2217 for rfc2217. Case counts in names of ports only.
    ORVIK_API static CLineAddress Parse(const char* text);
    // Where a server is to listen: the host may be empty (all interfaces), and the port 0 (a free one).
    ORVIK_API static CLineAddress ParseListener(const char* text);

    // As Parse reads it.
    ORVIK_API std::string Text() const;
};
