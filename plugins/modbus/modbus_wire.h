// The line as the master sees it: bytes out, bytes in, and a clock. The serial port is one (modbus_serial_wire.h); a simulated
// line in simulated time is another. One thread, but for Abort. Failures are CCommException objects, thrown by pointer.
#pragma once

#include <chrono>
#include <span>
#include <vector>

#include "plugins/modbus/modbus_description.h"

namespace modbus {

using Duration = std::chrono::steady_clock::duration;
using TimePoint = std::chrono::steady_clock::time_point;

class IWire {
public:
    virtual ~IWire() = default;

    // May be closed and opened again as often as wanted. 5 the port is somebody's, 6 it cannot be opened, 7 it cannot be set up
    // so.
    virtual void Open(const char* port, const Line& line) = 0;
    // Allowed on a closed wire, and on one whose port has vanished. Takes back an abort.
    virtual void Close() = 0;
    virtual bool IsOpen() const = 0;
    // Whether somebody else may have asked on this line just before, another program or this one's former life: then answers may
    // come that nobody here asked for.
    virtual bool IsShared() const { return false; }

    // A clock that only goes forward.
    virtual TimePoint Now() = 0;

    // Both throw 6 on a closed wire, 7 on a dead line and 9 after an abort, at once and in the middle of a wait as well.
    virtual void Send(std::span<const BYTE> bytes, TimePoint until) = 0;
    // Appends what has come; waits until something has, or `until` has passed. False when nothing came.
    virtual bool Receive(std::vector<BYTE>& received, TimePoint until) = 0;

    // Any thread. Holds until the wire is closed.
    virtual void Abort() = 0;
};

}  // namespace modbus
