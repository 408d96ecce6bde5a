// What holds for every axis: a million random ranges of all magnitudes and directions, axis lengths and label sizes.
#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <cstring>
#include <random>
#include <string>

#include "chart/axis_layout.h"
#include "tests/support/time_limit.h"
#include "time/number_text.h"

using namespace orvik;

namespace {

// The same ranges on every machine, which the distributions of the standard library are not.
class Random {
public:
    explicit Random(uint64_t seed) : m_engine(seed) {}
    uint64_t Next() { return m_engine(); }
    LONG Below(LONG limit) { return static_cast<LONG>(Next() % static_cast<uint64_t>(limit)); }
    double Unit() { return static_cast<double>(Next() >> 11) * 0x1p-53; }
    // Either sign, any magnitude up to 10^38.
    double Value() { return (Below(2) ? 1 : -1) * (1 + 9 * Unit()) * std::pow(10.0, Below(76) - 38); }

private:
    std::mt19937_64 m_engine;
};

struct RandomAxis {
    AxisDivisionRequest request;
    std::string format;
    LONG character;
};

// The format that suits a range, worked out apart from the axis class: a digit below half the span's own.
std::string FormatFor(double origin, double extent) {
    const int place = static_cast<int>(std::floor(std::log10(std::fabs(extent - origin) / 2))) - 1;
    const double most = std::max(std::fabs(origin), std::fabs(extent));
    if (most > 999999.9 || most < 0.001)
        return std::string(static_cast<size_t>(static_cast<int>(std::floor(std::log10(most))) - place + 1), '@');
    return place < 0 ? "#######." + std::string(static_cast<size_t>(-place), '#') : "#######";
}

void Make(Random& random, RandomAxis& axis) {
    AxisMapping& mapping = axis.request.mapping;
    mapping.origin = random.Value();
    switch (random.Below(4)) {
        case 0:
            mapping.extent = random.Value();
            break;
        case 1:
            mapping.extent = mapping.origin * (1 + (random.Unit() - 0.5) * std::pow(10.0, -random.Below(9)));
            break;
        case 2:
            mapping.extent = mapping.origin + (random.Unit() - 0.5) * 200;
            break;
        default:
            mapping.origin = std::round(random.Unit() * 100), mapping.extent = mapping.origin - 50 + random.Below(200);
            break;
    }
    if (mapping.extent == mapping.origin) mapping.extent = mapping.origin * 2 + 1;
    mapping.start = random.Below(2000) - 1000;
    mapping.end = mapping.start + 1 + random.Below(random.Below(8) == 0 ? 3 : 4000);
    mapping.vertical = random.Below(2) != 0;
    axis.format = FormatFor(mapping.origin, mapping.extent);
    axis.request.format = axis.format;
    axis.character = 1 + random.Below(12);
    axis.request.labelSize = random.Below(16) == 0 ? random.Below(5000) : axis.character * static_cast<LONG>(axis.format.size());
}

bool IsFamily(double step) {
    char text[40];
    std::to_chars(text, text + sizeof text, std::fabs(step), std::chars_format::scientific, 14);
    return (text[0] == '1' || text[0] == '2' || text[0] == '5') && std::strncmp(text + 1, ".00000000000000e", 16) == 0;
}

double Read(const CString& text) {
    double value = NAN;
    const std::string_view view = text.GetView();
    std::from_chars(view.data(), view.data() + view.size(), value);
    return value;
}

// Null, or what is wrong. The comparisons are plain, since assertions would take most of the time.
const char* Fault(const RandomAxis& axis, AxisLayout& layout) {
    const AxisDivisionRequest& request = axis.request;
    const AxisMapping& mapping = request.mapping;
    const AxisDivision division = DivideAxis(request);
    const bool rising = mapping.extent > mapping.origin;
    if (division.count < 1) return "no division";
    if (!IsFamily(division.step)) return "the step is not of the family";
    if ((division.step > 0) != rising) return "the step goes the other way";
    if (rising ? division.first > mapping.origin || division.last < mapping.extent
               : division.first < mapping.origin || division.last > mapping.extent) {
        // A quotient that rounds to a whole number leaves the tick a few units in the last place inside.
        const double slack = 4e-16 * std::max(std::fabs(mapping.origin), std::fabs(mapping.extent));
        if (std::fabs(division.first - mapping.origin) > slack && std::fabs(division.last - mapping.extent) > slack)
            return "the outermost ticks are not outside";
    }
    const double room = std::fabs(static_cast<double>(division.lastAt - division.firstAt));
    if (1.5 * std::max<LONG>(request.labelSize, 1) * division.count > room) return "labels do not fit their divisions";

    LayOutAxis(
        layout, request, division, 5,
        [&](double value, CString& text) { _NlsSetReal(text, value, axis.format.c_str(), CString("."), CString()); },
        [&](const CString& text) { return axis.character * text.GetLength(); });
    for (size_t i = 0; i < layout.ticks.size(); ++i) {
        if (layout.ticks[i].at < mapping.start - 1 || layout.ticks[i].at > mapping.end) return "a tick is off the axis";
        if (i > 0 && layout.ticks[i].at <= layout.ticks[i - 1].at) return "ticks do not follow one another";
    }
    if (layout.offsets.size() != static_cast<size_t>(division.count) + 1) return "offsets and divisions differ";
    // Down a vertical axis values go the other way.
    const double direction = rising != mapping.vertical ? 1 : -1;
    for (size_t i = 0; i < layout.labels.size(); ++i) {
        const AxisLabel& label = layout.labels[i];
        const double value = Read(label.text);
        if (!(std::fabs(value - label.value) <= std::fabs(division.step) / 2)) return "a label is not its value's";
        if ((label.value == 0) != (label.text == "0" || value == 0)) return "something else is written as zero";
        if (label.text.GetAt(0) == '-' && value == 0) return "a negative zero";
        if (mapping.ToFarCoordinate(label.value) - label.at > 2 || label.at - mapping.ToFarCoordinate(label.value) > 2)
            return "a label is not at its value";
        if (i == 0) continue;
        const AxisLabel& before = layout.labels[i - 1];
        if (!((value - Read(before.text)) * direction > 0)) return "labels are not distinct and in order";
        const LONG gap = mapping.vertical ? label.at - before.at - std::max<LONG>(request.labelSize, 1)
                                          : label.at - label.width / 2 - (before.at - before.width / 2 + before.width);
        if (gap < 1) return "labels overlap";
    }

    // There and back, on the snapped range, as far as doubles tell pixels apart.
    AxisMapping snapped = mapping;
    snapped.origin = division.origin;
    snapped.extent = division.extent;
    const double pixel = std::fabs(snapped.extent - snapped.origin) / (mapping.end - mapping.start);
    if (pixel > 8e-16 * std::max(std::fabs(snapped.origin), std::fabs(snapped.extent))) {
        for (const LONG at : {mapping.start, mapping.start + (mapping.end - mapping.start) / 3, mapping.end}) {
            const LONG back = snapped.ToCoordinate(snapped.ToValue(at));
            if (back < at - 1 || back > at + 1) return "a pixel does not come back";
        }
    }
    return nullptr;
}

}  // namespace

TEST(AxisProperty, HoldsForAMillionRandomAxes) {
    LimitTest(240);
    Random random(20);
    RandomAxis axis;
    AxisLayout layout;
    for (int i = 0; i < 1000000; ++i) {
        Make(random, axis);
        const char* const fault = Fault(axis, layout);
        ASSERT_STREQ(fault, nullptr) << "axis " << i << ": " << axis.request.mapping.origin << " to "
                                     << axis.request.mapping.extent << ", pixels " << axis.request.mapping.start << " to "
                                     << axis.request.mapping.end << (axis.request.mapping.vertical ? ", vertical" : "")
                                     << ", label " << axis.request.labelSize << ", character " << axis.character << ", "
                                     << axis.format;
    }
}
