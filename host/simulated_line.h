// A simulated logger at the far end of a virtual serial port, with the faults that real lines have.
// Serve runs on the thread that calls it; Stop may be called by any.
#pragma once

#include <atomic>
#include <memory>
#include <string>

#include "host/logger_family.h"
#include "host/texts.h"
#include "platform/virtual_port.h"

enum class LineFault {
    None,
    Noise,   // stray bytes around some answers, a flipped bit in others
    Silent,  // no answers
    Unplug,  // the device goes away after a few answers
};

class SimulatedLine {
public:
    // Takes the simulator. A Failure if this system has no virtual ports, which says `withoutPorts`; `link` as in
    // VirtualPort::Create.
    SimulatedLine(std::unique_ptr<ILoggerSimulator> simulator, LineFault fault, Text withoutPorts, const std::string& link = {});

    std::string PortName() const { return m_port.GetDeviceName(); }
    // Answers until Stop, or until the fault has pulled the plug.
    void Serve();
    void Stop() { m_stopping = true; }

private:
    void Answer(const CByteArray& reply);

    std::unique_ptr<ILoggerSimulator> m_simulator;
    const LineFault m_fault;
    VirtualPort m_port;
    std::atomic<bool> m_stopping = false;
    unsigned m_answers = 0;
};
