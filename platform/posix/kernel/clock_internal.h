// The monotonic clock in nanoseconds, and deadlines on it.
#pragma once

#include <time.h>

#include <cstdint>

#include "platform/posix/types.h"

namespace orvik::detail {

constexpr int64_t kNever = INT64_MAX;
constexpr int64_t kMillisecond = 1'000'000;

inline int64_t NowNs() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1'000'000'000LL + now.tv_nsec;
}
inline int64_t DeadlineIn(DWORD milliseconds) {
    return milliseconds == INFINITE ? kNever : NowNs() + milliseconds * kMillisecond;
}
inline timespec ToTimespec(int64_t ns) {
    return {static_cast<time_t>(ns / 1'000'000'000), static_cast<long>(ns % 1'000'000'000)};
}

}  // namespace orvik::detail
