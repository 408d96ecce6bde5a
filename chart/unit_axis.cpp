#include "chart/unit_axis.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "afx/geometry.h"
#include "chart/axis_step.h"
#include "time/locale_cache.h"
#include "time/number_text.h"

using orvik::AxisMapping;
using orvik::DecadeOf;

namespace {

constexpr double kMost = FLT_MAX;
constexpr double kLeastSpan = FLT_MIN;
constexpr double kEpsilon = FLT_EPSILON;
// Labels stand in plain digits up to here, and from here on.
constexpr double kLargestFixed = 999999.9;
constexpr double kSmallestFixed = 0.001;
constexpr int kWholeDigits = 7;
// Free on either side of the data: the 50th part.
constexpr double kMarginParts = 50;

}  // namespace

CUnitAxis::CUnitAxis(int horizontal) : CAxis(horizontal), m_unit("?"), m_format(NlsRealFmt(kWholeDigits, 1)) {}
CUnitAxis::CUnitAxis(const CUnitAxis& other) = default;
CUnitAxis& CUnitAxis::operator=(const CUnitAxis& other) = default;
CUnitAxis::~CUnitAxis() = default;

DWORD CUnitAxis::AddRef() { return ++m_nRefCount; }

DWORD CUnitAxis::Release() {
    const DWORD left = --m_nRefCount;
    if (left == 0) delete this;
    return left;
}

void CUnitAxis::SaveRange() {
    m_savedExtent = m_extent;
    m_savedOrigin = m_origin;
}

void CUnitAxis::RestoreRange() {
    m_extent = m_savedExtent;
    m_origin = m_savedOrigin;
}

BOOL CUnitAxis::IsRangeModified() const { return !(m_origin == m_savedOrigin && m_extent == m_savedExtent); }

AxisMapping CUnitAxis::GetMapping() const { return {m_origin, m_extent, m_start, m_end, GetOrientation() == AX_VERTICAL}; }

BOOL CUnitAxis::Coord2Value(LONG coord, double& value) const {
    value = GetMapping().ToValue(coord);
    return TRUE;
}

BOOL CUnitAxis::Value2Coord(double value, LONG& coord) const {
    coord = GetMapping().ToCoordinate(value);
    return TRUE;
}

void CUnitAxis::SetRange(double a, double b) {
    if (std::isnan(a) || std::isnan(b)) return;
    a = std::clamp(a, -kMost, kMost);
    b = std::clamp(b, -kMost, kMost);
    const double larger = std::fabs(a) < std::fabs(b) ? b : a;  // with its sign
    const double d = std::max(kLeastSpan, larger * kEpsilon);
    if (std::fabs(b - a) >= d) {
        m_origin = a;
        m_extent = b;
    } else if (a == m_origin) {
        if (b < a) {
            m_extent = a - d;
            if (m_extent < -kMost) {
                m_extent = -kMost;
                m_origin = -kMost - d;  // below the extent, kept so
            }
        } else {
            m_extent = a + d;
            if (m_extent > kMost) {
                m_extent = kMost;
                m_origin = kMost - d;
            }
        }
    } else if (b == m_extent) {
        if (b < a) {
            m_origin = b + d;
            if (m_origin > kMost) {
                m_origin = kMost;
                m_extent = kMost - d;
            }
        } else {
            m_origin = b - d;
            if (m_origin < -kMost) {
                m_origin = -kMost;
                m_extent = d - kMost;
            }
        }
    } else if (b < a) {
        m_origin = std::min((a + b + d) / 2, kMost);
        m_extent = m_origin - d;
    } else {
        m_origin = std::max((a + b - d) / 2, -kMost);
        m_extent = m_origin + d;
        if (m_extent > kMost) {
            m_extent = kMost;
            m_origin = kMost - d;
        }
    }
    DeriveFormat();
}

// An empty range, which no tick divides, keeps the format that it had.
void CUnitAxis::DeriveFormat() {
    const double span = std::fabs(m_extent - m_origin);
    if (span == 0) return;
    const int place = DecadeOf(span / 2) - 1;  // one below the magnitude of half the span
    const double extent = std::fabs(m_extent), origin = std::fabs(m_origin);
    if (extent > kLargestFixed || origin > kLargestFixed || (extent < kSmallestFixed && origin < kSmallestFixed))
        m_format = NlsRealFmt(DecadeOf(std::max(extent, origin)) - place + 1);
    else
        m_format = NlsRealFmt(kWholeDigits, -place);
}

void CUnitAxis::AutoScale(double lowest, double highest) {
    if (std::isnan(lowest) || std::isnan(highest)) return;
    // With both ends, or an end beyond what an infinite one is taken as would turn the axis round.
    if (std::isinf(lowest) || std::isinf(highest))
        lowest = std::clamp(lowest, -kMost, kMost), highest = std::clamp(highest, -kMost, kMost);
    const double d = std::max(kLeastSpan, std::max(std::fabs(lowest), std::fabs(highest)) * kEpsilon);
    const double span = std::fabs(highest - lowest);
    if (span >= d) {
        const double margin = span / kMarginParts;
        if (highest <= lowest)
            SetRange(lowest + margin, highest - margin);
        else
            SetRange(lowest - margin, highest + margin);
        return;
    }
    const double from = std::max((lowest + highest - d) / 2, -kMost);
    SetRange(from, from + d);
}

void CUnitAxis::Zoom(LONG a, LONG b) {
    const AxisMapping mapping = GetMapping();
    SetRange(mapping.ToValue(a), mapping.ToValue(b));
}

void CUnitAxis::Zoom(CPoint point, double factor) {
    if (!(factor > -1.0)) return;
    const double span = m_extent - m_origin;
    const double part = (GetMapping().ToValue(point.y) - m_origin) / span;
    SetRange(m_origin + part * span * factor, m_extent - (1 - part) * span * factor);
}

CUnitAxisState::CUnitAxisState() = default;
CUnitAxisState::CUnitAxisState(const CUnitAxisState& other) = default;
CUnitAxisState& CUnitAxisState::operator=(const CUnitAxisState& other) = default;
CUnitAxisState::~CUnitAxisState() = default;
