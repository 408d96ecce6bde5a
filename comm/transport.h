// A line to a device, whatever it runs over: bytes out, bytes in, and a clock. A serial port is one, a network connection is one,
// a simulated line in simulated time is another; a protocol that stands on this interface need not know.
//
// One thread, that of the connection, but for Abort. Failures are CCommException objects, thrown by pointer.
#pragma once

#include <chrono>
#include <memory>
#include <span>
#include <vector>

#include "comm/serial.h"

class CLineConnection;
class CSerialOrvik;

// How characters are framed where there are any; a plain network connection takes no notice of it.
struct CLineSettings {
    DWORD baud = 9600;
    CSerial::EDataBits dataBits = CSerial::DataBits8;
    CSerial::EParity parity = CSerial::ParityNone;
    CSerial::EStopBits stopBits = CSerial::StopBits1;

    ORVIK_API double BitsPerCharacter() const;  // start, data, parity and stop bits
    bool operator==(const CLineSettings&) const = default;
};

class ITransport {
public:
    using Duration = std::chrono::steady_clock::duration;
    using TimePoint = std::chrono::steady_clock::time_point;

    virtual ~ITransport() = default;

    // May be closed and opened again as often as wanted. `until` bounds whatever has to be waited for. 5 the port is somebody's,
    // 6 it cannot be opened or reached, 7 it cannot be set up so, 9 after an abort.
    virtual void Open(const char* address, const CLineSettings& line, TimePoint until) = 0;
    // Allowed on a closed line, and on one whose far end has vanished. Takes back an abort.
    virtual void Close() = 0;
    virtual bool IsOpen() const = 0;
    // Whether somebody else may have asked on this line just before, another program or this one's former life: then answers may
    // come that nobody here asked for.
    virtual bool IsShared() const { return false; }

    // A clock that only goes forward.
    virtual TimePoint Now() = 0;

    // Both throw 6 on a closed line, 7 on a dead one and 9 after an abort, at once and in the middle of a wait as well.
    virtual void Send(std::span<const BYTE> bytes, TimePoint until) = 0;
    // Appends what has come; waits until something has, or `until` has passed. False when nothing came.
    virtual bool Receive(std::vector<BYTE>& received, TimePoint until) = 0;

    // Any thread. Holds until the line is closed, or until it has ended an Open.
    virtual void Abort() = 0;
};

// The transport that the address given to Open asks for: a network for one with a scheme (comm/line_address.h), else the serial
// port of that name. `port` carries the serial line, and the trace of either; both are borrowed and outlive it.
// Several transports may open the same address on one thread, as those of loggers on one bus do: they share the line and take
// turns, it is set up for whoever sends, and IsShared is true. It is closed with the last of them; a serial port whose opener
// goes first is opened again by the next who uses it. A line that was lost is opened anew by the first Open, for all. One
// that a network's far end has closed while nobody used it is opened anew by who uses it next.
ORVIK_API std::unique_ptr<ITransport> OrvikMakeTransport(CSerialOrvik& port, CLineConnection& connection);
