// A simulated logger at the far end of a virtual serial port.
// Serve runs on the thread that calls it; Stop may be called by any.
#pragma once

#include <atomic>
#include <string>

#include "host/logger/simulated_logger.h"
#include "host/words/texts.h"
#include "platform/virtual_port.h"

class SimulatedLine {
public:
    // A Failure if this system has no virtual ports, which says `withoutPorts`; `link` as in VirtualPort::Create. The logger
    // outlives it.
    SimulatedLine(SimulatedLogger& logger, Text withoutPorts, const std::string& link = {});

    std::string PortName() const { return m_port.GetDeviceName(); }
    // Answers until Stop, or until the fault has pulled the plug.
    void Serve();
    void Stop() { m_stopping = true; }

private:
    void Deliver(const LineFaults::Fate& fate);
    void Pause(DWORD milliseconds) const;

    SimulatedLogger& m_logger;
    VirtualPort m_port;
    std::atomic<bool> m_stopping = false;
};
