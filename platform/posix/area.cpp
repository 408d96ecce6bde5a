#include <algorithm>

#include "platform/posix/area_internal.h"

namespace orvik::detail {

RECT CommonRectangle(const RECT& a, const RECT& b) {
    const RECT common{std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right), std::min(a.bottom, b.bottom)};
    return IsEmptyRectangle(common) ? RECT{} : common;
}

RECT Area::Bounds() const {
    if (m_parts.empty()) return {};
    RECT all = m_parts.front();
    for (const RECT& part : m_parts) {
        all = {std::min(all.left, part.left), std::min(all.top, part.top), std::max(all.right, part.right),
               std::max(all.bottom, part.bottom)};
    }
    return all;
}

void Area::Add(const RECT& rectangle) {
    if (IsEmptyRectangle(rectangle)) return;
    Subtract(rectangle);
    m_parts.push_back(rectangle);
}

void Area::Add(const Area& other) {
    for (const RECT& part : std::vector<RECT>(other.m_parts)) Add(part);
}

void Area::Subtract(const RECT& r) {
    if (IsEmptyRectangle(r)) return;
    std::vector<RECT> left;
    for (const RECT& part : m_parts) {
        const RECT cut = CommonRectangle(part, r);
        if (IsEmptyRectangle(cut)) {
            left.push_back(part);
            continue;
        }
        for (const RECT& rest :
             {RECT{part.left, part.top, part.right, cut.top}, RECT{part.left, cut.bottom, part.right, part.bottom},
              RECT{part.left, cut.top, cut.left, cut.bottom}, RECT{cut.right, cut.top, part.right, cut.bottom}}) {
            if (!IsEmptyRectangle(rest)) left.push_back(rest);
        }
    }
    m_parts = std::move(left);
}

void Area::Subtract(const Area& other) {
    for (const RECT& part : std::vector<RECT>(other.m_parts)) Subtract(part);
}

void Area::Intersect(const RECT& rectangle) { Intersect(Area(rectangle)); }

void Area::Intersect(const Area& other) {
    std::vector<RECT> common;
    for (const RECT& mine : m_parts) {
        for (const RECT& theirs : other.m_parts) {
            const RECT both = CommonRectangle(mine, theirs);
            if (!IsEmptyRectangle(both)) common.push_back(both);
        }
    }
    m_parts = std::move(common);
}

void Area::Move(LONG dx, LONG dy) {
    for (RECT& part : m_parts) part = Moved(part, dx, dy);
}

}  // namespace orvik::detail
