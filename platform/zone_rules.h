// The rules of a time zone over a stretch of time, and the way from local calendar fields to the time they mean. Internal.
// Immutable once made; any thread. Times are seconds since 1970-01-01 00:00:00 UTC; "local" seconds are local fields counted as
// if they were UTC.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <vector>

namespace orvik::detail {

struct ZoneRule {
    int offset;    // seconds east of UTC
    int daylight;  // the C library's flag
    bool operator==(const ZoneRule&) const = default;
};

// Fields as seconds, as if they were UTC. Any field may lie outside its range, as for the C library.
long long LocalSecondsOf(const tm& fields);

class ZoneRules {
public:
    static constexpr int kAnyOffset = INT32_MIN;
    // The farthest that local time may lie from UTC, a little generously.
    static constexpr long long kFarthest = 25 * 3'600;
    // How far away a rule is looked for whose daylight flag was asked for.
    static constexpr long long kReach = 17 * 366 * 86'400LL;

    // Asks for the rule at `first`, at `last` and twice a day between them, which finds every transition that is no closer than
    // that to the one before, and each of these to the second. Before and after, the rules of the ends hold.
    ZoneRules(long long first, long long last, ZoneRule (*ask)(long long seconds));

    const ZoneRule& At(long long seconds) const { return m_rules[IndexAt(seconds)]; }
    bool HasFlag(int flag) const;

    // The time that local seconds mean.
    // Flag -1: where they come twice, standard time, or the later of the two if the flag is the same; where they are skipped, the
    // time moves on by what is skipped.
    // Flag 0 or 1: the time that has this flag; where the fields come twice with it, the one with `offset`, else the later one.
    // Without such a time, what the nearest rule with that flag makes of the fields: an hour beside, as a rule. A flag that no
    // rule within reach has is taken as -1.
    long long FromLocal(long long local, int flag, int offset = kAnyOffset) const;

    bool operator==(const ZoneRules&) const = default;

private:
    // Slices are so short that few hold more than one transition: a look-up starts at its slice's first rule.
    static constexpr int kSliceBits = 22;  // 48 days

    size_t IndexAt(long long seconds) const {
        size_t i = m_slices[static_cast<size_t>(std::clamp(seconds, m_first, m_last) - m_first) >> kSliceBits];
        while (seconds >= m_starts[i + 1]) ++i;
        return i;
    }
    size_t NearestWith(int flag, size_t from, long long seconds) const;

    long long m_first, m_last;
    std::vector<long long> m_starts;  // ascending; the last one is beyond every time
    std::vector<ZoneRule> m_rules;    // m_rules[i] holds from m_starts[i]
    std::vector<uint16_t> m_slices;   // the rule at the start of each slice from m_first
};

}  // namespace orvik::detail
