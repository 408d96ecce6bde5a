// When a simulated logger that talks by itself has something to say.
#pragma once

#include <algorithm>
#include <chrono>

#include "host/logger/simulated_logger.h"

class Speech {
public:
    explicit Speech(SimulatedLogger& logger) : m_logger(logger) {}

    // Milliseconds, `most` at the longest, after which Next is to be asked again.
    DWORD Wait(DWORD most) const {
        if (m_ended) return most;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(m_due - Clock::now()).count();
        return static_cast<DWORD>(std::clamp<long long>(left, 0, most));
    }
    // True when something is to be said now.
    bool Next(LineFaults::Fate& said) {
        if (m_ended || Clock::now() < m_due) return false;
        DWORD wait = INFINITE;
        const bool any = m_logger.Speak(said, wait);
        m_ended = wait == INFINITE;
        // By the time when it was due, so that its pace is its own; a logger that was held up does not catch up.
        m_due = std::max(m_due, Clock::now() - std::chrono::seconds(1)) + std::chrono::milliseconds(std::max<DWORD>(wait, 1));
        return any;
    }

private:
    using Clock = std::chrono::steady_clock;
    SimulatedLogger& m_logger;
    Clock::time_point m_due = Clock::now();
    bool m_ended = false;
};
