#include "host/chart/value_ticks.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <span>

#include "chart/axis_step.h"
#include "host/chart/unit_prefix.h"
#include "time/number_text.h"

namespace {
using orvik::DecadeOf;
using orvik::PowerOfTen;

constexpr size_t kEnough = 3;                     // labels
constexpr double kAiry = 1.5, kTight = 1.1;       // a step is so many labels long, or at least so many
constexpr double kSmallTick = 3;                  // pixels between small ticks
constexpr double kSamePixel = 0.25;               // a tick so many pixels outside stands at the end
constexpr double kExact = 9'007'199'254'740'992;  // whole numbers up to here are doubles
constexpr int kLongForUnit = 4, kLong = 6;        // digits that a label may have where the unit has prefixes, and at all
constexpr int kHundredThousands = 5;              // their power of ten
constexpr int kLongOnce = 7;                      // digits of what labels have in common

// mantissa * 10^exponent, the mantissa without zeros at its end.
struct Step {
    int mantissa = 1, exponent = 0;

    double Times(double count) const {
        const double whole = count * mantissa;
        return exponent < 0 ? whole / PowerOfTen(-exponent) : whole * PowerOfTen(exponent);
    }
    // Into how many equal parts small ticks divide it: round ones.
    int Parts() const { return mantissa == 2 || mantissa == 4 ? 4 : mantissa % 3 == 0 ? 3 : 5; }
};

// The whole multiples of a step within the range, with what rounding takes from its ends.
struct Multiples {
    double first = 0, last = -1;
    double Count() const { return std::max(last - first + 1, 0.0); }
};

class Range {
public:
    Range(double low, double high, LONG room) : m_low(low), m_high(high), m_pixel((high - low) / room) {}

    bool IsDivisible() const { return std::isfinite(m_pixel) && m_pixel > 0; }
    // A step of so many pixels, but none so small that doubles could not tell neighbours apart.
    double StepOf(double pixels) const {
        const double farthest = std::max(std::abs(m_low), std::abs(m_high));
        return std::max(pixels * m_pixel, 4 * (std::nextafter(farthest, DBL_MAX) - farthest));
    }
    Multiples Of(const Step& step) const {
        const double size = step.Times(1), slack = kSamePixel * m_pixel / size;
        const Multiples all{std::ceil(m_low / size - slack) + 0.0, std::floor(m_high / size + slack) + 0.0};
        return std::max(std::abs(all.first), std::abs(all.last)) * step.mantissa < kExact ? all : Multiples{};
    }
    double PixelsOf(double size) const { return size / m_pixel; }
    double Span() const { return m_high - m_low; }

private:
    double m_low, m_high, m_pixel;
};

constexpr int kNatural[] = {10, 20, 50}, kRound[] = {10, 15, 20, 25, 30, 40, 50, 75};

Step Normal(int tenths, int exponent) { return tenths % 10 == 0 ? Step{tenths / 10, exponent} : Step{tenths, exponent - 1}; }

// The smallest step of a family that is at least so large.
Step SmallestFrom(std::span<const int> family, double size) {
    for (int exponent = DecadeOf(size);; ++exponent) {
        for (const int tenths : family) {
            const Step step = Normal(tenths, exponent);
            if (step.Times(1) >= size) return step;
        }
    }
}

// The largest one below the range's span that has labels enough, and is no smaller than that; false if there is none.
bool LargestWithEnough(std::span<const int> family, const Range& range, double least, Step& found) {
    for (int exponent = DecadeOf(range.Span()); exponent >= DecadeOf(least); --exponent) {
        for (size_t i = family.size(); i-- > 0;) {
            const Step step = Normal(family[i], exponent);
            if (step.Times(1) < least || range.Of(step).Count() < kEnough) continue;
            found = step;
            return true;
        }
    }
    return false;
}

Step ChooseStep(const Range& range, LONG label) {
    Step step = SmallestFrom(kNatural, range.StepOf(kAiry * label));
    if (range.Of(step).Count() >= kEnough) return step;
    const double least = range.StepOf(kTight * label);
    if (!LargestWithEnough(kNatural, range, least, step)) LargestWithEnough(kRound, range, least, step);
    return step;
}

// Numbers that are whole multiples of a power of ten, and how they are written.
class Scale {
public:
    // For numbers up to `largest` times 10^exponent.
    Scale(__int64 largest, int exponent, const std::string& unit) : m_exponent(exponent), m_unit(unit) {
        const int decade = (largest > 0 ? DecadeOf(static_cast<double>(largest)) : 0) + exponent;
        const int plain = DigitsAt(decade, 0);
        for (int power = decade - ((decade % 3) + 3) % 3; power != 0 && plain > kLongForUnit; power += power > 0 ? -3 : 3) {
            const auto named = PrefixedUnit(unit, power);
            // Hundred thousands and more, whatever their number of digits, so that a closer look does not change the unit.
            if (!named || DigitsAt(decade, power) >= plain + (decade >= kHundredThousands ? 1 : 0)) continue;
            m_power = power, m_unit = *named;
            break;
        }
        if (DigitsAt(decade, m_power) <= kLong) return;
        m_power = decade - ((decade % 3) + 3) % 3;
        m_unit = unit;
        if (m_power != 0) m_unit = "×10^" + std::to_string(m_power) + (unit.empty() ? "" : " " + unit);
    }

    std::string Text(__int64 number) const {
        const int shift = m_exponent - m_power;
        std::string picture = "#";
        if (shift < 0) picture += "." + std::string(static_cast<size_t>(-shift), '#');
        const double whole = static_cast<double>(number);
        CString text;
        _NlsSetReal(text, shift < 0 ? whole / PowerOfTen(-shift) : whole * PowerOfTen(shift), picture.c_str());
        return text.GetString();
    }
    const std::string& Unit() const { return m_unit; }
    int DigitsOf(__int64 number) const { return DigitsAt(DecadeOf(static_cast<double>(number)) + m_exponent, m_power); }

private:
    // Of the largest number, when 10^power is the unit.
    int DigitsAt(int decade, int power) const { return std::max(decade - power, 0) + 1 + std::max(power - m_exponent, 0); }

    int m_exponent, m_power = 0;
    std::string m_unit;
};

__int64 PowerOf10(int exponent) {
    __int64 power = 1;
    while (exponent-- > 0) power *= 10;
    return power;
}

// What all numbers have in common, where telling it at each would make them too long: a multiple of the power of ten that is
// above their span.
__int64 CommonPart(__int64 first, __int64 last) {
    const __int64 largest = std::max(std::abs(first), std::abs(last));
    if (largest < PowerOf10(kLong) || (first < 0) != (last < 0)) return 0;
    const __int64 unit = PowerOf10(DecadeOf(static_cast<double>(std::max<__int64>(last - first, 1))) + 1);
    return (first / unit - (first % unit < 0 ? 1 : 0)) * unit;
}

// "Wh + 1,234,500"; in a unit of its own where that would be a very long number, "nA + 0.5 A".
std::string HeadText(const Scale& scale, __int64 common, int exponent, const std::string& unit) {
    if (common == 0) return scale.Unit();
    const std::string begin = scale.Unit() + (scale.Unit().empty() ? "" : " ") + (common < 0 ? "- " : "+ ");
    if (scale.DigitsOf(std::abs(common)) <= kLongOnce) return begin + scale.Text(std::abs(common));
    __int64 size = std::abs(common);
    for (; size % 10 == 0; size /= 10) ++exponent;
    const Scale itself(size, exponent, unit);
    return begin + itself.Text(size) + (itself.Unit() == scale.Unit() ? "" : " " + itself.Unit());
}

void AddSmall(ValueTicks& ticks, const Range& range, const Step& step, const Multiples& large) {
    const int parts = step.Parts();
    if (range.PixelsOf(step.Times(1)) < parts * kSmallTick) return;
    const Step part = Normal(step.mantissa * 100 / parts, step.exponent - 1);
    const Multiples all = range.Of(part);
    for (double n = all.first; n <= all.last; ++n) {
        if (std::fmod(n, parts) != 0 || n < large.first * parts || n > large.last * parts) ticks.small.push_back(part.Times(n));
    }
}
}  // namespace

ValueTicks DivideValues(double low, double high, LONG room, LONG label, const std::string& unit) {
    ValueTicks ticks;
    ticks.head = unit;
    const Range range(low, high, room);
    if (room <= 0 || !range.IsDivisible()) return ticks;
    const Step step = ChooseStep(range, std::max<LONG>(label, 1));
    const Multiples all = range.Of(step);
    if (all.Count() < 1) return ticks;
    const __int64 first = static_cast<__int64>(all.first) * step.mantissa, last = static_cast<__int64>(all.last) * step.mantissa;
    const __int64 common = CommonPart(first, last);
    const Scale scale(std::max(std::abs(first - common), std::abs(last - common)), step.exponent, unit);
    ticks.head = HeadText(scale, common, step.exponent, unit);
    for (__int64 number = first; number <= last; number += step.mantissa) {
        ticks.values.push_back(step.Times(static_cast<double>(number / step.mantissa)));
        ticks.labels.push_back(scale.Text(number - common));
    }
    AddSmall(ticks, range, step, all);
    return ticks;
}
