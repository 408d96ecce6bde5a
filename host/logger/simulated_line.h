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
    // Answers until Stop, or until a fault has pulled the plug for good. A port that a fault drops comes back after two seconds
    // where a link gives it its name again; without one nobody would find it.
    void Serve();
    void Stop() { m_stopping = true; }

private:
    void ComeBack();
    void Deliver(const LineFaults::Fate& fate);
    void Pause(DWORD milliseconds) const;

    SimulatedLogger& m_logger;
    const std::string m_link;
    VirtualPort m_port;
    std::atomic<bool> m_stopping = false;
};
