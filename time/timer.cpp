#include "time/timer.h"

#include "time/timer_internal.h"

using orvik::detail::CountDown;

CTimer::CTimer() : CTimer(0) {}
CTimer::CTimer(DWORD milliseconds) : m_countDown(CountDown::From(GetTickCount(), milliseconds)) {}

CTimer& CTimer::operator=(DWORD milliseconds) {
    m_countDown = CountDown::From(GetTickCount(), milliseconds);
    return *this;
}

DWORD CTimer::GetTimeRemaining() const { return m_countDown.Remaining(GetTickCount()); }
DWORD CTimer::GetTimeElapsed() const { return m_countDown.Elapsed(GetTickCount()); }
CTimer::operator int() const { return m_countDown.HasRunOut(GetTickCount()) ? 1 : 0; }

void CTimer::Delay(DWORD milliseconds) {
    orvik::detail::SpinPast(milliseconds, [] { return GetTickCount(); });
}
