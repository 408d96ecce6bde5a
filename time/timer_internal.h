// The busy wait of CTimer over any source of ticks.
#pragma once

#include "time/timer.h"

namespace orvik::detail {
template <class Ticks>
void SpinPast(DWORD milliseconds, Ticks ticks) {
    const CountDown wait = CountDown::From(ticks(), milliseconds);
    while (!wait.HasRunOut(ticks())) {
    }
}
}  // namespace orvik::detail
