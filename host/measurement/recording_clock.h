// What time a reading gets. A steady clock tied to the calendar once, so that times increase evenly whatever somebody does to the
// calendar: a calendar that drifts, or is led back gently, is followed; one that is set is not, until both agree again.
// Microseconds throughout. Values; one thread.
#pragma once

#include <optional>

#include "platform/win32.h"

inline constexpr __int64 kSecond = 1'000'000;  // microseconds

// Where the time comes from; a test gives its own.
class IMeasurementClock {
public:
    virtual __int64 Steady() = 0;    // goes on evenly, also while the machine sleeps; from any beginning
    virtual __int64 Calendar() = 0;  // since 1970-01-01 UTC

protected:
    ~IMeasurementClock() = default;
};

class SystemClock : public IMeasurementClock {
public:
    __int64 Steady() override;
    __int64 Calendar() override;
};

class RecordingClock {
public:
    // Both further apart than this: the calendar was set. Closer: it is followed, by at most a tenth of the time that goes by.
    static constexpr __int64 kAgree = 500'000;

    struct Step {
        __int64 amount;  // by which the calendar was set; 0: it agrees with the steady clock again
    };
    // The first call ties the two. `step` is filled when the calendar turns out to have been set since the last call.
    __int64 Stamp(__int64 steady, __int64 calendar, std::optional<Step>& step);
    // Ties them differently: `steady` is this time, and the calendar counts as set.
    void Tie(__int64 steady, __int64 time, __int64 calendar);
    // The same place on the same line for a moment that has passed, or is to come.
    __int64 At(__int64 steady) const { return steady + m_offset; }

private:
    bool m_tied = false;
    __int64 m_offset = 0, m_last = 0;
    __int64 m_apart = 0;  // how far the calendar was set; 0 while they agree
};
