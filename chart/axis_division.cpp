#include "chart/axis_division.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

namespace orvik {
namespace {

// Digits that _NlsSetReal writes for a format that asks for none.
constexpr int kStandardDigits = 5;

int RunOf(std::string_view text, char c) { return static_cast<int>(std::min(text.find_first_not_of(c), text.size())); }

// The smallest difference that can be seen between labels of that magnitude.
AxisStep Resolution(std::string_view format, double magnitude) {
    const int decade = DecadeOf(magnitude);
    const char kind = format.empty() ? '\0' : format[0];
    int exponent;
    if (kind == '#' || kind == '.' || kind == ',') {
        const std::string_view rest = format.substr(static_cast<size_t>(RunOf(format, '#')));
        exponent = rest.empty() || (rest[0] != '.' && rest[0] != ',') ? 0 : -RunOf(rest.substr(1), '#');
    } else {
        exponent = decade + 1 - (kind == '@' ? RunOf(format, '@') : kStandardDigits);
    }
    // Four units in the last place of the double leave neighbours apart whatever rounding does.
    const double unit = 4 * (std::nextafter(magnitude, DBL_MAX) - magnitude);
    const int ofDouble = DecadeOf(unit) + 1;
    return AxisStep(std::max(exponent, ofDouble));
}

class Search {
public:
    explicit Search(const AxisDivisionRequest& request)
        : m_request(request), m_rising(request.mapping.extent > request.mapping.origin) {}

    // The outermost ticks for a step; whether labels fit between the ticks.
    bool Fits(AxisStep size) {
        const AxisMapping& mapping = m_request.mapping;
        AxisDivision& division = m_division;
        const double step = size.Value();
        const double first = mapping.origin / step, last = mapping.extent / step;
        division.size = size;
        // No tick is a negative zero.
        division.firstNumber = (m_rising ? std::floor(first) : std::ceil(first)) + 0.0;
        division.lastNumber = (m_rising ? std::ceil(last) : std::floor(last)) + 0.0;
        division.first = size.Times(division.firstNumber);
        division.last = size.Times(division.lastNumber);
        division.firstAt = mapping.ToFarCoordinate(division.first);
        division.lastAt = mapping.ToFarCoordinate(division.last);
        const double count = std::fabs(division.lastNumber - division.firstNumber);
        const double label = std::max<LONG>(m_request.labelSize, 1);
        // A range of a few units in the last place may round to a single tick: no division.
        return count >= 1 && count <= kMostAxisDivisions &&
               label * count * 3 <= 2 * std::fabs(static_cast<double>(division.lastAt - division.firstAt));
    }

    // First down the family while labels fit, then up until they do.
    bool Run() {
        const AxisStep smallest = SmallestAxisStep(m_request);
        AxisStep size(DecadeOf(std::fabs(m_request.mapping.extent - m_request.mapping.origin)));
        if (const AxisStep roomy = RoomyStep(); roomy <= size) size = roomy;
        if (size <= smallest) size = smallest;
        constexpr int kMostExponent = DBL_MAX_10_EXP - 1;  // of labels that do not outgrow the numbers themselves
        if (Fits(size)) {
            AxisDivision fitting;
            do {
                fitting = m_division;
                if (size <= smallest) break;
                size.Shrink();
            } while (Fits(size));
            m_division = fitting;
        } else {
            do size.Grow();
            while (size.Exponent() <= kMostExponent && !Fits(size));
        }
        AxisDivision& division = m_division;
        if (std::max(size.Exponent(), division.size.Exponent()) > kMostExponent) return false;
        division.count = static_cast<LONG>(std::fabs(division.lastNumber - division.firstNumber));
        division.step = division.last < division.first ? -division.size.Value() : division.size.Value();
        return true;
    }

    // Ends whose pixel is that of their outermost tick move there; the others keep their distance.
    void Snap() {
        const AxisMapping& mapping = m_request.mapping;
        AxisDivision& division = m_division;
        const __int64 pixelStep = std::abs((division.lastAt - division.firstAt) / division.count);
        const double half = division.size.Value() / 2;
        const LONG originEnd = mapping.vertical ? mapping.end : mapping.start;
        const LONG extentEnd = mapping.vertical ? mapping.start : mapping.end;
        const __int64 inward = mapping.vertical ? pixelStep : -pixelStep;  // from an origin outside to the next tick
        if (division.firstAt == originEnd) {
            division.origin = division.first;
        } else {
            const __int64 nearer = mapping.origin - division.first > half ? inward : 0;
            division.originAlignment = Alignment(originEnd - division.firstAt + nearer);
        }
        if (division.lastAt == extentEnd) {
            division.extent = division.last;
        } else {
            const __int64 nearer = division.last - mapping.extent > half ? -inward : 0;
            division.extentAlignment = Alignment(extentEnd - division.lastAt + nearer);
        }
    }

    AxisDivision m_division;

private:
    // A step at which labels fit for certain, and all larger ones up to the range as well: the outermost ticks lie less than two
    // pixels nearer than by the mapping without its truncations. Where values are too close together for that to hold, and for
    // axes that would have too many ticks, the largest of all steps.
    AxisStep RoomyStep() const {
        const AxisMapping& mapping = m_request.mapping;
        const double span = std::fabs(mapping.extent - mapping.origin), pixels = static_cast<double>(mapping.end) - mapping.start;
        const double magnitude = std::max(std::fabs(mapping.origin), std::fabs(mapping.extent));
        AxisStep step(DBL_MAX_10_EXP);
        if (magnitude > span * 0x1p20 || pixels > kMostAxisDivisions) return step;
        const double enough = (3.0 * std::max<LONG>(m_request.labelSize, 1) + 5) / 2 * span / pixels;
        if (!(enough > DBL_MIN && enough < span)) return step;
        step = AxisStep(DecadeOf(enough));
        while (step.Value() < enough) step.Grow();
        return step;
    }
    static LONG Alignment(__int64 pixels) {
        return static_cast<LONG>(std::clamp<__int64>(pixels, -AxisMapping::kFarthest, AxisMapping::kFarthest));
    }

    const AxisDivisionRequest& m_request;
    const bool m_rising;
};

}  // namespace

AxisStep SmallestAxisStep(const AxisDivisionRequest& request) {
    const double magnitude = std::max(std::fabs(request.mapping.origin), std::fabs(request.mapping.extent));
    AxisStep smallest(0);
    const std::string_view format = request.format;
    if (format.starts_with('#')) {
        const size_t at = request.decimalSeparator != '\0' ? format.find(request.decimalSeparator) : format.npos;
        if (at != format.npos) smallest = AxisStep(-static_cast<int>(format.size() - at - 1));
    } else if (format.starts_with('@')) {
        smallest = AxisStep(DecadeOf(magnitude));
    }
    const AxisStep resolution = Resolution(format, magnitude);
    return smallest <= resolution ? resolution : smallest;
}

AxisDivision DivideAxis(const AxisDivisionRequest& request) {
    const AxisMapping& mapping = request.mapping;
    const double span = mapping.extent - mapping.origin;
    Search search(request);
    const bool found = std::isfinite(mapping.origin) && std::isfinite(mapping.extent) && std::isfinite(span) && span != 0 &&
                       mapping.end > mapping.start && search.Run();
    if (!found) {
        AxisDivision none;
        none.first = none.origin = mapping.origin;
        none.last = none.extent = mapping.extent;
        none.firstAt = mapping.vertical ? mapping.end : mapping.start;
        none.lastAt = mapping.vertical ? mapping.start : mapping.end;
        return none;
    }
    search.m_division.origin = mapping.origin;
    search.m_division.extent = mapping.extent;
    search.Snap();
    return search.m_division;
}

__int64 PartOfDistance(__int64 distance, __int64 i, __int64 total) {
    const __int64 rest = distance % total * i;
    const __int64 half = rest < 0 ? -(total / 2) : total / 2;
    return distance / total * i + (rest + half) / total;
}

}  // namespace orvik
