// The units of a span in microseconds, and the decimals of a part of one.
// Pure; any thread.
#pragma once

#include <cstdint>

#include "time/time_span.h"

namespace orvik::detail {

inline constexpr __int64 kSpanUnits[] = {1, 1'000, 1'000'000, 60'000'000, 3'600'000'000, 86'400'000'000, 604'800'000'000};

inline bool IsSpanUnit(CVXTTimeSpanType unit) { return unit >= TST_MICROSECONDS && unit <= TST_WEEKS; }

// Without the sign; the lowest span, too.
inline constexpr uint64_t kLowestMagnitude = uint64_t{1} << 63;
inline uint64_t SpanMagnitude(__int64 span) { return span < 0 ? 0 - static_cast<uint64_t>(span) : static_cast<uint64_t>(span); }

// The decimals of halves / (2 * unit), one after the other and without end; halves are half microseconds, fewer than two units.
// Nothing overflows, however many are taken.
class SpanDecimals {
public:
    SpanDecimals(uint64_t halves, CVXTTimeSpanType unit) : m_rest(halves), m_unit(2 * static_cast<uint64_t>(kSpanUnits[unit])) {}
    int Next() {
        m_rest *= 10;
        const auto digit = static_cast<int>(m_rest / m_unit);
        m_rest %= m_unit;
        return digit;
    }

private:
    uint64_t m_rest, m_unit;
};

}  // namespace orvik::detail
