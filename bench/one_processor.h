// Two threads that wake each other, on one processor: on several, where the scheduler happens to put them counts ten times as much as
// their work.
#pragma once

#include <sched.h>

namespace bench {
// While it lives, this thread and those that it makes share one processor.
class OneProcessor {
public:
    OneProcessor() {
        sched_getaffinity(0, sizeof(m_before), &m_before);
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(sched_getcpu(), &one);
        sched_setaffinity(0, sizeof(one), &one);
    }
    ~OneProcessor() { sched_setaffinity(0, sizeof(m_before), &m_before); }

private:
    cpu_set_t m_before;
};
}  // namespace bench
