#include "chart/axis.h"

#include <algorithm>

#include "afx/geometry.h"

namespace {

constexpr LONG kDivisions = 10;

bool Contains(const RECT& rect, POINT point) { return CRect(rect).PtInRect(point) != 0; }

}  // namespace

const LONG CAxis::nAxisMargin = 4;
const LONG CAxis::nSmallDiv = 2;
const LONG CAxis::nLargeDiv = 4;

const CAxis::TimeSpanTypeSelector CAxis::tstsVector[7] = {
    {{1, TST_MICROSECONDS}, {500, TST_MICROSECONDS}},
    {{500, TST_MICROSECONDS}, {500, TST_MILLISECONDS}},
    {{500, TST_MILLISECONDS}, {20, TST_SECONDS}},
    {{30, TST_SECONDS}, {20, TST_MINUTES}},
    {{30, TST_MINUTES}, {10, TST_HOURS}},
    {{12, TST_HOURS}, {5, TST_DAYS}},
    {{7, TST_DAYS}, {7000, TST_DAYS}},
};

CAxis::CAxis(int horizontal) : m_divisionOffsets(kDivisions + 1), m_orientation(horizontal ? AX_HORIZONTAL : AX_VERTICAL) {}
CAxis::CAxis(const CAxis& other) = default;
CAxis& CAxis::operator=(const CAxis& other) = default;
CAxis::~CAxis() = default;

void CAxis::GetPosition(LONG* position, LONG* start, LONG* end) const {
    if (position != nullptr) *position = m_position;
    if (start != nullptr) *start = m_start;
    if (end != nullptr) *end = m_end;
}

void CAxis::SetPosition(LONG position, LONG start, LONG end) {
    m_position = position;
    m_start = start;
    m_end = end;
}

void CAxis::SetDivisions(int n) {
    n = std::max(n, 0);
    if (n == m_divisions) return;
    m_divisionOffsets.assign(static_cast<size_t>(n) + 1, 0);
    m_divisions = n;
}

int CAxis::GetTotalDivisions() const {
    return static_cast<int>(static_cast<unsigned>(m_divisions) * static_cast<unsigned>(m_subDivisions));
}

RECT CAxis::GetBoundRect() const {
    CRect bound;
    bound.UnionRect(&m_dragRect, &m_areaRect);
    return bound;
}

CAxis::HITCODE CAxis::HitTest(POINT point) const {
    if (Contains(m_zoomRect, point)) return HIT_ZOOM;
    if (Contains(m_rubberRect, point)) return HIT_RUBBER;
    if (Contains(m_dragRect, point)) return HIT_DRAG;
    return HIT_NONE;
}
