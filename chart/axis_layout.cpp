#include "chart/axis_layout.h"

#include <algorithm>

namespace orvik {
namespace {

// Steps to be looked at, drawn or not: far more than any screen has pixels.
constexpr LONG kMostSteps = 1 << 20;
constexpr LONG kLabelGap = 2;

class LayOut {
public:
    LayOut(AxisLayout& layout, const AxisDivisionRequest& request, const AxisDivision& division, int subDivisions,
           const AxisLabelText& text, const AxisLabelWidth& width)
        : m_layout(layout),
          m_mapping(request.mapping),
          m_division(division),
          m_sub(std::clamp<LONG>(subDivisions, 1, std::max<LONG>(1, kMostSteps / std::max<LONG>(1, division.count)))),
          m_labelSize(std::max<LONG>(request.labelSize, 1)),
          m_text(text),
          m_width(width),
          m_labelEnd(static_cast<__int64>(m_mapping.start) - m_labelSize - (m_mapping.vertical ? kLabelGap : 0)) {}

    void Run() {
        m_layout.ticks.clear();
        m_layout.labels.clear();
        m_layout.offsets.clear();
        if (m_division.count > 0) {
            for (LONG i = 0; i < m_division.count; ++i) {
                Large(i);
                for (LONG j = 1; j < m_sub; ++j) Tick(At(i, j), false);
            }
            Large(m_division.count);
        } else {
            m_layout.offsets.push_back(0);
        }
        m_layout.labelEnd = Clamped(m_labelEnd);
    }

private:
    static LONG Clamped(__int64 pixels) {
        return static_cast<LONG>(std::clamp<__int64>(pixels, -AxisMapping::kFarthest, AxisMapping::kFarthest));
    }

    // From the first tick on a horizontal axis, from the last one, which is at the top, on a vertical one.
    __int64 At(LONG i, LONG j) const {
        const __int64 from = m_mapping.vertical ? m_division.lastAt : m_division.firstAt;
        const __int64 to = m_mapping.vertical ? m_division.firstAt : m_division.lastAt;
        return from +
               PartOfDistance(to - from, static_cast<__int64>(i) * m_sub + j, static_cast<__int64>(m_division.count) * m_sub);
    }

    // Whether there is such a tick on the axis.
    bool Tick(__int64 at, bool large) {
        if (at < static_cast<__int64>(m_mapping.start) - 1 || at > m_mapping.end) return false;
        std::vector<AxisTick>& ticks = m_layout.ticks;
        const LONG pixel = static_cast<LONG>(at);
        if (ticks.empty() || ticks.back().at != pixel)
            ticks.push_back({pixel, large});
        else
            ticks.back().large |= large;
        return true;
    }

    void Large(LONG i) {
        const __int64 at = At(i, 0);
        m_layout.offsets.push_back(Clamped(at - m_mapping.start));
        if (!Tick(at, true)) return;
        if (m_mapping.vertical && m_labelEnd + m_labelSize >= at) return;
        const double value = m_mapping.vertical ? m_division.FromLast(i) : m_division.FromFirst(i);
        m_text(value, m_written);
        const LONG width = m_width(m_written);
        if (m_mapping.vertical) {
            m_labelEnd = at;
        } else {
            const LONG half = width / 2;
            if (m_labelEnd + half >= at) return;
            m_labelEnd = at + half + kLabelGap;
        }
        m_layout.labels.push_back({static_cast<LONG>(at), width, value, std::move(m_written)});
    }

    AxisLayout& m_layout;
    const AxisMapping& m_mapping;
    const AxisDivision& m_division;
    const LONG m_sub;
    const LONG m_labelSize;
    const AxisLabelText& m_text;
    const AxisLabelWidth& m_width;
    // The right end of the last label, with its gap; on a vertical axis the tick of the last label.
    __int64 m_labelEnd;
    CString m_written;
};

}  // namespace

void LayOutAxis(AxisLayout& layout, const AxisDivisionRequest& request, const AxisDivision& division, int subDivisions,
                const AxisLabelText& text, const AxisLabelWidth& width) {
    LayOut(layout, request, division, subDivisions, text, width).Run();
}

}  // namespace orvik
