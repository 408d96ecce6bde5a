// A step of the 1-2-5 family: 1, 2 or 5 times a power of ten. Kept as those two whole numbers, so that a walk along the family
// comes back to where it was, and a tick is the double nearest to its decimal number. A value type; any thread.
#pragma once

#include "platform/api.h"

namespace orvik {

// 10 to a power, the nearest double; 0 below -324, infinite above 308.
ORVIK_API double PowerOfTen(int exponent);

// The power of ten that a value reaches: floor(log10(value)), raised where the logarithm of a power of ten comes out too low, so
// that it is its own decade. Never lowered: 0.3 - 0.1, halved, lies a hair below 0.1 and is meant as 0.1. The value is above 0
// and finite.
ORVIK_API int DecadeOf(double value);

class ORVIK_API AxisStep {
public:
    constexpr AxisStep() = default;
    // 10 to that power.
    explicit constexpr AxisStep(int exponent) : m_exponent(exponent) {}

    constexpr int Mantissa() const { return m_mantissa; }
    constexpr int Exponent() const { return m_exponent; }
    double Value() const { return Times(1); }
    // That many steps; `count` is a whole number. The nearest double as long as the step has at most 22 decimals.
    double Times(double count) const;

    // The neighbours: 1, 2, 5, 10, 20, ...
    void Grow() {
        if (m_mantissa == 5) ++m_exponent;
        m_mantissa = m_mantissa == 1 ? 2 : m_mantissa == 2 ? 5 : 1;
    }
    void Shrink() {
        if (m_mantissa == 1) --m_exponent;
        m_mantissa = m_mantissa == 1 ? 5 : m_mantissa == 5 ? 2 : 1;
    }
    friend constexpr bool operator<=(const AxisStep& a, const AxisStep& b) {
        return a.m_exponent != b.m_exponent ? a.m_exponent < b.m_exponent : a.m_mantissa <= b.m_mantissa;
    }
    friend constexpr bool operator==(const AxisStep&, const AxisStep&) = default;

private:
    int m_mantissa = 1;
    int m_exponent = 0;
};

}  // namespace orvik
