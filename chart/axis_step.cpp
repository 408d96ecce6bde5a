#include "chart/axis_step.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace orvik {
namespace {

// The least power of ten that a double can hold, and the greatest.
constexpr int kLeast = -323, kGreatest = 308;
using Powers = std::array<double, kGreatest - kLeast + 1>;

// Read from their decimal texts, which gives the nearest double in every C library.
Powers MakePowers() {
    Powers powers{};
    for (int exponent = kLeast; exponent <= kGreatest; ++exponent) {
        char text[8] = {'1', 'e'};
        const char* const end = std::to_chars(text + 2, text + sizeof text, exponent).ptr;
        std::from_chars(text, end, powers[static_cast<size_t>(exponent - kLeast)]);
    }
    return powers;
}

}  // namespace

double PowerOfTen(int exponent) {
    static const Powers powers = MakePowers();
    if (exponent < kLeast) return 0;
    if (exponent > kGreatest) return std::numeric_limits<double>::infinity();
    return powers[static_cast<size_t>(exponent - kLeast)];
}

int DecadeOf(double value) {
    // By the power of two at first, 315653 / 2^20 being a little below log10(2): the decade, or the one below.
    int decade = std::ilogb(value) * 315'653 >> 20;
    if (value >= PowerOfTen(decade + 1)) ++decade;
    // The logarithm can tell no more than a hair below the next one.
    if (value < PowerOfTen(decade + 1) * (1 - 0x1p-40)) return decade;
    decade = static_cast<int>(std::floor(std::log10(value)));
    return value >= PowerOfTen(decade + 1) ? decade + 1 : decade;
}

double AxisStep::Times(double count) const {
    const double whole = count * m_mantissa;
    // Up to 10^22 powers of ten are exact, so that the quotient is rounded once.
    if (m_exponent < 0 && m_exponent >= -22) return whole / PowerOfTen(-m_exponent);
    return whole * PowerOfTen(m_exponent);
}

}  // namespace orvik
