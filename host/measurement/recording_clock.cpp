#include "host/measurement/recording_clock.h"

#include <algorithm>
#include <cstdlib>

__int64 SystemClock::Steady() {
    static const __int64 frequency = [] {
        LARGE_INTEGER ticks;
        QueryPerformanceFrequency(&ticks);
        return static_cast<__int64>(ticks.QuadPart);
    }();
    LARGE_INTEGER now;
    QueryPerformanceCounter(&now);
    return now.QuadPart / frequency * kSecond + now.QuadPart % frequency * kSecond / frequency;
}

__int64 SystemClock::Calendar() {
    constexpr __int64 k1970 = 116'444'736'000'000'000;  // in the system's 100 ns since 1601
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    return ((static_cast<__int64>(now.dwHighDateTime) << 32 | now.dwLowDateTime) - k1970) / 10;
}

__int64 RecordingClock::Stamp(__int64 steady, __int64 calendar, std::optional<Step>& step) {
    step.reset();
    if (!m_tied) {
        m_tied = true;
        m_offset = calendar - steady;
        m_last = steady;
    }
    const __int64 gone = std::max<__int64>(steady - m_last, 0);
    m_last = std::max(m_last, steady);
    const __int64 apart = calendar - At(steady);
    if (std::abs(apart) <= kAgree) {
        if (m_apart != 0) step = Step{0};
        m_apart = 0;
        m_offset += std::clamp(apart, -gone / 10, gone / 10);
    } else if (std::abs(apart - m_apart) > kAgree) {
        step = Step{apart - m_apart};
        m_apart = apart;
    }
    return At(steady);
}

void RecordingClock::Tie(__int64 steady, __int64 time, __int64 calendar) {
    m_tied = true;
    m_offset = time - steady;
    m_last = steady;
    m_apart = calendar - time;
}
