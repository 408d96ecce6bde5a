// A millisecond count-down on the system tick counter, for bounding waits.
// A value type; any thread. Ticks are compared as plain numbers: they wrap after 49.7 days, and a deadline beyond the wrap reads
// as run out at once. How finely they step is the system's choice, 16 ms on some.
#pragma once

#include "platform/win32.h"

namespace orvik::detail {
// The arithmetic alone, on any counter of ticks that wraps at 32 bits.
struct CountDown {
    DWORD deadline;  // the tick at which it runs out
    DWORD duration;  // what it was armed with

    static CountDown From(DWORD now, DWORD duration) { return {now + duration, duration}; }
    DWORD Remaining(DWORD now) const { return now < deadline ? deadline - now : 0; }
    DWORD Elapsed(DWORD now) const { return duration - Remaining(now); }
    bool HasRunOut(DWORD now) const { return now > deadline; }
};
}  // namespace orvik::detail

class ORVIK_API CTimer {
public:
    CTimer();                               // duration 0, at its end
    explicit CTimer(DWORD milliseconds);    // runs out `milliseconds` from now
    CTimer& operator=(DWORD milliseconds);  // armed anew, from now
    CTimer(const CTimer&) = default;
    CTimer& operator=(const CTimer&) = default;

    // Milliseconds left, 0 at and after the deadline. GetCount is the same.
    DWORD GetTimeRemaining() const;
    DWORD GetCount() const { return GetTimeRemaining(); }

    // Milliseconds passed, never more than the duration (until the ticks wrap).
    DWORD GetTimeElapsed() const;

    // 1 once the deadline has passed, else 0. At the very tick of the deadline nothing remains, yet the timer has not run out:
    // callers that poll both see one tick of difference, and rely on it.
    operator int() const;

    // Returns once more than that many milliseconds have passed; at once, when that is beyond the tick counter's wrap. Keeps the
    // processor busy throughout: for waits of a few milliseconds only.
    static void Delay(DWORD milliseconds);

private:
    orvik::detail::CountDown m_countDown;
};
