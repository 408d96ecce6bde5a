// A simulated logger for the lines that ask it, with the faults that are wanted: one, or the connections of a server. Any thread.
#pragma once

#include <memory>
#include <mutex>

#include "host/logger/line_faults.h"

inline constexpr DWORD kBetweenPieces = 30;  // ms between the pieces of an answer

class SimulatedLogger {
public:
    // Takes the simulator. `address` is that of the line it will be on.
    SimulatedLogger(std::unique_ptr<ILoggerSimulator> simulator, LineFaults faults);

    void SetLine(const std::string& address);
    // What a line's master has said since the last time. False while there is no answer.
    class Asker;
    bool Receive(Asker& asker, const BYTE* data, size_t size, LineFaults::Fate& answer);
    // What it says by itself now; false for nothing. `wait`: milliseconds until it wants to be asked again, INFINITE for never.
    bool Speak(LineFaults::Fate& said, DWORD& wait);

private:
    std::mutex m_lock;
    std::unique_ptr<ILoggerSimulator> m_simulator;
    LineFaults m_faults;
    const Asker* m_last = nullptr;  // who asked last; never followed
};

// Who asks: a line, or a connection. Keeps what has no answer yet, since another's request may come between the pieces of this
// one's.
class SimulatedLogger::Asker {
    friend class SimulatedLogger;
    std::vector<BYTE> m_unanswered;
};
