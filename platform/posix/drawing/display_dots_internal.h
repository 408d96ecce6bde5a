// The dots an inch that the display tells of itself: of its DCs, and of windows that nobody has put on a screen. Any thread.
#pragma once

#include <atomic>

namespace orvik::detail {
inline std::atomic<int>& DisplayDots() {
    static std::atomic<int> dots{96};
    return dots;
}
}  // namespace orvik::detail
