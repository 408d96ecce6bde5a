// How much may wait unread on a line, and how long it is given to end. Any thread.
#pragma once

#include <chrono>
#include <cstddef>

namespace text {

// More than this that has waited may be a full buffer: there is a hole behind it, or a far end that still sends what is old.
inline constexpr size_t kMuch = 2048;
inline constexpr std::chrono::milliseconds kSettled{50};
inline constexpr size_t kMostAtOnce = 1 << 20;  // bytes that are taken before the clock is looked at

}  // namespace text
