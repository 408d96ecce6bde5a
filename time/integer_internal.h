// 64-bit arithmetic that wraps, as the times of this house do on overflow.
// Pure; any thread.
#pragma once

#include <cmath>
#include <cstdint>

namespace orvik::detail {
constexpr long long WrapAdd(long long a, long long b) {
    return static_cast<long long>(static_cast<unsigned long long>(a) + static_cast<unsigned long long>(b));
}
constexpr long long WrapSub(long long a, long long b) {
    return static_cast<long long>(static_cast<unsigned long long>(a) - static_cast<unsigned long long>(b));
}
constexpr long long WrapMul(long long a, long long b) {
    return static_cast<long long>(static_cast<unsigned long long>(a) * static_cast<unsigned long long>(b));
}
// Truncates toward zero; numbers outside the range become its nearest end, and what is not a number 0.
inline long long ToInt64(double value) {
    constexpr double kLimit = 9223372036854775808.0;  // 2^63
    if (std::isnan(value)) return 0;
    if (value >= kLimit) return INT64_MAX;
    if (value < -kLimit) return INT64_MIN;
    return static_cast<long long>(value);
}
}  // namespace orvik::detail
