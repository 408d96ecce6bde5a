#include "time/timer.h"

#include <gtest/gtest.h>

#include <tuple>
#include <type_traits>
#include <vector>

#include "time/timer_internal.h"

namespace {
using orvik::detail::CountDown;

TEST(Timer, CountsDownOnTheTicks) {
    constexpr DWORD kLast = 4'294'967'295;
    using Row = std::tuple<const char*, DWORD, DWORD, DWORD, DWORD, DWORD, bool>;
    for (const auto& [what, armedAt, duration, now, remaining, elapsed, runOut] :
         {Row{"just armed", 5'000, 1'000, 5'000, 1'000, 0, false}, Row{"on its way", 5'000, 1'000, 5'400, 600, 400, false},
          Row{"one tick left", 5'000, 1'000, 5'999, 1, 999, false},
          Row{"at the deadline nothing remains, yet it has not run out", 5'000, 1'000, 6'000, 0, 1'000, false},
          Row{"a tick later it has", 5'000, 1'000, 6'001, 0, 1'000, true}, Row{"long after", 5'000, 1'000, 6'500, 0, 1'000, true},
          Row{"no duration", 5'000, 0, 5'000, 0, 0, false}, Row{"no duration, a tick later", 5'000, 0, 5'001, 0, 0, true},
          Row{"a deadline at the last tick", kLast - 1'000, 1'000, kLast - 1, 1, 999, false},
          Row{"and reached", kLast - 1'000, 1'000, kLast, 0, 1'000, false},
          Row{"a deadline behind the wrap has run out at once", kLast - 999, 1'000, kLast - 999, 0, 1'000, true},
          Row{"until the ticks have wrapped, too", kLast - 999, 1'002, 1, 1, 1'001, false}}) {
        SCOPED_TRACE(what);
        const CountDown countDown = CountDown::From(armedAt, duration);
        EXPECT_EQ(countDown.Remaining(now), remaining);
        EXPECT_EQ(countDown.Elapsed(now), elapsed);
        EXPECT_EQ(countDown.HasRunOut(now), runOut);
    }
}

// How often the counter is read before the wait ends.
size_t ReadsUntilPast(DWORD milliseconds, const std::vector<DWORD>& script) {
    size_t reads = 0;
    orvik::detail::SpinPast(milliseconds, [&] { return script.at(reads++); });
    return reads;
}

TEST(Timer, DelayEndsPastItsDeadline) {
    EXPECT_EQ(ReadsUntilPast(3, {100, 100, 102, 103, 103, 104, 105}), 6u);
    EXPECT_EQ(ReadsUntilPast(0, {100, 100, 101}), 3u);
}

TEST(Timer, DelayBehindTheWrapEndsAtOnce) { EXPECT_EQ(ReadsUntilPast(2, {4'294'967'295, 4'294'967'295, 0}), 2u); }

TEST(Timer, IsArmedByConstructionAndAssignment) {
    CTimer timer;
    EXPECT_EQ(timer.GetTimeRemaining(), 0u);
    EXPECT_EQ(timer.GetTimeElapsed(), 0u);
    timer = 3'600'000;
    EXPECT_EQ(timer, 0);
    EXPECT_GT(timer.GetTimeRemaining(), 3'000'000u);
    EXPECT_LE(timer.GetCount(), 3'600'000u);
    EXPECT_LT(timer.GetTimeElapsed(), 600'000u);
    CTimer copy(5);
    copy = timer;
    EXPECT_GT(copy.GetCount(), 3'000'000u);
    static_assert(std::is_trivially_copyable_v<CTimer> && sizeof(CTimer) == 8);
}

TEST(Timer, DelaysOnTheSystemsTicks) {
    const DWORD before = GetTickCount();
    const CTimer timer(5);
    CTimer::Delay(5);
    EXPECT_GT(GetTickCount() - before, 5u);
    EXPECT_EQ(timer, 1);
    EXPECT_EQ(timer.GetTimeElapsed(), 5u);
}
}  // namespace
