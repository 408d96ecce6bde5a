// The lock of the lists that modules join and leave while they load and unload. Internal.
// A spin lock that needs no construction: it is taken before any constructor of this module may have run, for a few instructions.
#pragma once

#include <atomic>

namespace orvik::detail {
class ClassListLock {
public:
    ClassListLock() {
        while (s_taken.test_and_set(std::memory_order_acquire)) {
        }
    }
    ~ClassListLock() { s_taken.clear(std::memory_order_release); }
    ClassListLock(const ClassListLock&) = delete;
    ClassListLock& operator=(const ClassListLock&) = delete;

private:
    static std::atomic_flag s_taken;
};
}  // namespace orvik::detail
