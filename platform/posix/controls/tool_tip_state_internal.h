// When a tool tip comes and goes: after the pointer has rested on a tool, until it leaves, presses, types or has had long enough
// to read. Knows no window and no clock; who has it says what happened and when, and lets the time pass that it asks for.
#pragma once

#include <utility>

#include "platform/posix/types.h"

namespace orvik::detail {

class ToolTipState {
public:
    enum class Phase { Away, Waiting, Shown, Spent };

    DWORD initial = 500, reshow = 100, autopop = 5000;  // ms

    Phase Now() const { return m_phase; }
    // After how many ms Elapsed is to be called, from the last call that gave `true`; 0: not at all.
    DWORD Delay() const {
        return m_phase == Phase::Waiting ? (m_quick ? reshow : initial) : m_phase == Phase::Shown ? autopop : 0;
    }

    // Each gives whether the delay begins anew. The pointer was moved on a tool, which is the same one as before or another.
    bool Moved(bool same, DWORD now) {
        if (same && m_phase != Phase::Away) return m_phase == Phase::Waiting;
        m_quick = m_phase == Phase::Shown || (m_left && now - m_leftAt <= reshow);
        m_phase = Phase::Waiting;
        return true;
    }
    // It is on none.
    bool Left(DWORD now) {
        if (m_phase == Phase::Shown) m_left = true, m_leftAt = now;
        return std::exchange(m_phase, Phase::Away) != Phase::Away;
    }
    // A press or a key: the tip does not come back before the pointer was elsewhere.
    bool Pressed() {
        if (m_phase == Phase::Away) return false;
        m_left = false;
        return std::exchange(m_phase, Phase::Spent) != Phase::Spent;
    }
    bool Elapsed() {
        if (m_phase == Phase::Waiting)
            m_phase = Phase::Shown;
        else if (m_phase == Phase::Shown)
            m_phase = Phase::Spent;
        return true;
    }

private:
    Phase m_phase = Phase::Away;
    bool m_quick = false, m_left = false;
    DWORD m_leftAt = 0;
};

}  // namespace orvik::detail
